#pragma once

#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

namespace Kx {

// Remembers, per document, the materials that could be found neither in the document nor in any
// library when it was opened, and were replaced by the default material; the host reports them.
class DocumentMissingMaterialRecordMgr {
public:
    enum class EKind { ePhysical, eVisual };
    struct Record {
        std::string documentIdentifier;
        std::filesystem::path documentPath;
        EKind kind;
        std::wstring materialId;
    };

    [[nodiscard]] static DocumentMissingMaterialRecordMgr& get();

    // Each material once per document.
    void registerMissingPhysicalMaterial(const std::string& documentIdentifier, const std::filesystem::path& path,
        const std::wstring& materialId);
    void registerMissingVisualMaterial(const std::string& documentIdentifier, const std::filesystem::path& path,
        const std::wstring& materialId);
    // The records of one document, in the order they were made.
    [[nodiscard]] std::vector<Record> missingMaterials(const std::string& documentIdentifier) const;
    // Forgets a document's records (it was closed, or the report was shown).
    void clear(const std::string& documentIdentifier);

private:
    void add(Record record);

    mutable std::mutex m_mutex;
    std::vector<Record> m_records;
};

} // namespace Kx
