#pragma once

#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

namespace Kx {

// The documents a host has open, each once: opening a file that is open already answers the
// document open from it. The registry owns its documents until they are closed.
class DocumentRegistry {
public:
    [[nodiscard]] static DocumentRegistry& get();

    Document& create(EBlobFolderKind blobFolderKind = EBlobFolderKind::eFlat);
    // Throws Kx::Exception when the file cannot be opened (DocumentFile::open). A copy is always
    // a new document.
    Document& open(const std::filesystem::path& path, const DocumentOpenOptions& options = {});
    // Takes a document made elsewhere.
    Document& adopt(std::unique_ptr<Document> document);

    [[nodiscard]] Document* find(std::string_view identifier) const;
    [[nodiscard]] Document* findByPath(const std::filesystem::path& path) const;
    [[nodiscard]] std::vector<Document*> documents() const;
    // Destroys the document; false when the registry does not hold it.
    bool close(Document& document);

    // The document the user works on: the one created, opened or adopted last, or the one made
    // active since; after it closes, the newest of those still open. Null when none is open.
    [[nodiscard]] Document* active() const;
    // False when the registry does not hold the document.
    bool activate(Document& document);

private:
    mutable std::mutex m_mutex;
    std::vector<std::unique_ptr<Document>> m_documents;
    Document* m_active = nullptr;
};

} // namespace Kx
