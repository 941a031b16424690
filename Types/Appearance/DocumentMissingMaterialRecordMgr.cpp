#include "Types/Appearance/DocumentMissingMaterialRecordMgr.h"

#include <algorithm>

namespace Kx {

DocumentMissingMaterialRecordMgr& DocumentMissingMaterialRecordMgr::get()
{
    static DocumentMissingMaterialRecordMgr manager;
    return manager;
}

void DocumentMissingMaterialRecordMgr::registerMissingPhysicalMaterial(const std::string& documentIdentifier,
    const std::filesystem::path& path, const std::wstring& materialId)
{
    add({documentIdentifier, path, EKind::ePhysical, materialId});
}

void DocumentMissingMaterialRecordMgr::registerMissingVisualMaterial(const std::string& documentIdentifier,
    const std::filesystem::path& path, const std::wstring& materialId)
{
    add({documentIdentifier, path, EKind::eVisual, materialId});
}

void DocumentMissingMaterialRecordMgr::add(Record record)
{
    std::lock_guard lock(m_mutex);
    const bool known = std::any_of(m_records.begin(), m_records.end(), [&](const Record& other) {
        return other.documentIdentifier == record.documentIdentifier && other.kind == record.kind
            && other.materialId == record.materialId;
    });
    if (!known) {
        m_records.push_back(std::move(record));
    }
}

std::vector<DocumentMissingMaterialRecordMgr::Record> DocumentMissingMaterialRecordMgr::missingMaterials(
    const std::string& documentIdentifier) const
{
    std::lock_guard lock(m_mutex);
    std::vector<Record> found;
    for (const Record& record : m_records) {
        if (record.documentIdentifier == documentIdentifier) {
            found.push_back(record);
        }
    }
    return found;
}

void DocumentMissingMaterialRecordMgr::clear(const std::string& documentIdentifier)
{
    std::lock_guard lock(m_mutex);
    std::erase_if(m_records, [&](const Record& record) { return record.documentIdentifier == documentIdentifier; });
}

} // namespace Kx
