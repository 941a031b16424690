#pragma once

#include <datamodel/Entity.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

class BlobFolder;
class IBlobFolder;
class IDocumentAdapter;
class Segment;
class TransactionManager;

enum class EBlobFolderKind {
    // Part names are single names: "AmbrelAsset.ambrel".
    eFlat,
    // Part names may hold folders: "textures/wood/grain.png".
    eMultiLevel,
};

// A document (an asset, in the data model's terms): named segments of entities, the blob parts
// that travel with them, the transactions that change them, and the host's adapter. Documents are
// saved and opened by DocumentFile; DocumentRegistry keeps those a host has open.
class Document final : public IEntityResolver {
public:
    explicit Document(EBlobFolderKind blobFolderKind = EBlobFolderKind::eFlat);
    ~Document() override;
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    // A GUID text given at creation and kept in the file; a document opened as a copy gets a new one.
    [[nodiscard]] const std::string& identifier() const noexcept { return m_identifier; }
    void identifier(std::string identifier) { m_identifier = std::move(identifier); }
    // The file the document was last opened from or saved to; empty for a new document.
    [[nodiscard]] const std::filesystem::path& path() const noexcept { return m_path; }
    void path(std::filesystem::path path) { m_path = std::move(path); }

    [[nodiscard]] IDocumentAdapter* adapter() const noexcept { return m_adapter; }
    void adapter(IDocumentAdapter* adapter) noexcept { m_adapter = adapter; }

    // A new segment; null (and a report) when the name is empty or taken.
    Segment* createSegment(std::string name, bool transient = false);
    [[nodiscard]] Segment* segment(std::string_view name) const;
    // In creation order, which is the order they are saved, loaded and walked in.
    [[nodiscard]] const std::vector<std::unique_ptr<Segment>>& segments() const noexcept { return m_segments; }
    // Removes a segment with its entities; the undo history goes with it, since it may refer to them.
    bool removeSegment(Segment& segment);

    [[nodiscard]] IBlobFolder* blobFolder() const noexcept;
    [[nodiscard]] TransactionManager& transactions() const noexcept { return *m_transactions; }

    // Any entity of any segment.
    [[nodiscard]] Entity* resolveEntity(EntityId id) const override;
    [[nodiscard]] std::size_t entityCount() const;
    // The id the next new entity gets; ids are never reused while the document is open or saved.
    [[nodiscard]] EntityId nextEntityId() const noexcept { return m_nextEntityId; }
    void nextEntityId(EntityId next) noexcept;

    [[nodiscard]] static std::string newIdentifier();

private:
    friend class Segment;

    EntityId allocateEntityId() noexcept { return m_nextEntityId++; }
    void noteEntityId(EntityId id) noexcept;

    std::string m_identifier;
    std::filesystem::path m_path;
    IDocumentAdapter* m_adapter = nullptr;
    std::unique_ptr<BlobFolder> m_blobFolder;
    std::unique_ptr<TransactionManager> m_transactions;
    std::vector<std::unique_ptr<Segment>> m_segments;
    EntityId m_nextEntityId = 1;
};

// The data model's word for a document.
using Asset = Document;

} // namespace Kx
