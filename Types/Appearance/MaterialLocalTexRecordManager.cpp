#include "Types/Appearance/MaterialLocalTexRecordManager.h"

#include <base/AppLogMgr.h>
#include <base/Paths.h>
#include <base/TempFile.h>
#include <core/Strings.h>

#include <boost/json.hpp>

#include <fstream>
#include <sstream>

namespace Kx {

namespace {

using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

constexpr std::int64_t s_recordsVersion = 1;

} // namespace

MaterialLocalTexRecordManager& MaterialLocalTexRecordManager::get()
{
    static MaterialLocalTexRecordManager s_records(Paths::userDirectory() / "downloads" / "TextureRecords.json");
    return s_records;
}

MaterialLocalTexRecordManager::MaterialLocalTexRecordManager(std::filesystem::path file) : m_file(std::move(file))
{
    read();
}

void MaterialLocalTexRecordManager::setRecordTextures(const std::wstring& materialId,
    const std::vector<std::wstring>& textureIds)
{
    std::lock_guard lock(m_mutex);
    std::map<std::wstring, bool>& textures = m_records[materialId];
    std::map<std::wstring, bool> kept;
    for (const std::wstring& id : textureIds)
        kept[id] = textures.contains(id) && textures[id];
    textures = std::move(kept);
    write();
}

void MaterialLocalTexRecordManager::setRecordTextureResolved(const std::wstring& materialId, const std::wstring& textureId)
{
    std::lock_guard lock(m_mutex);
    m_records[materialId][textureId] = true;
    write();
}

bool MaterialLocalTexRecordManager::getRecordResolved(const std::wstring& materialId) const
{
    std::lock_guard lock(m_mutex);
    const auto found = m_records.find(materialId);
    if (found == m_records.end())
        return false;
    for (const auto& [id, resolved] : found->second) {
        if (!resolved)
            return false;
    }
    return true;
}

std::map<std::wstring, bool> MaterialLocalTexRecordManager::getRecordTextures(const std::wstring& materialId) const
{
    std::lock_guard lock(m_mutex);
    const auto found = m_records.find(materialId);
    return found == m_records.end() ? std::map<std::wstring, bool>{} : found->second;
}

void MaterialLocalTexRecordManager::removeRecord(const std::wstring& materialId)
{
    std::lock_guard lock(m_mutex);
    if (m_records.erase(materialId) != 0)
        write();
}

// A damaged file loses the records, not the session: every texture is then simply fetched again.
void MaterialLocalTexRecordManager::read()
{
    std::ifstream in(m_file, std::ios::binary);
    if (!in)
        return;
    std::stringstream text;
    text << in.rdbuf();
    boost::system::error_code error;
    const boost::json::value root = boost::json::parse(text.str(), error);
    const boost::json::object* object = root.if_object();
    const boost::json::value* version = object != nullptr ? object->if_contains("version") : nullptr;
    const boost::json::value* materials = object != nullptr ? object->if_contains("materials") : nullptr;
    if (error || version == nullptr || !version->is_int64() || version->as_int64() != s_recordsVersion
        || materials == nullptr || !materials->is_object()) {
        AppLogMgr::appLogEx(ELogLevel::eWarning, L"Texture records not read: " + m_file.wstring());
        return;
    }
    for (const auto& [material, textures] : materials->as_object()) {
        if (!textures.is_object())
            continue;
        std::map<std::wstring, bool>& record = m_records[toWide(material)];
        for (const auto& [texture, resolved] : textures.as_object())
            record[toWide(texture)] = resolved.is_bool() && resolved.as_bool();
    }
}

void MaterialLocalTexRecordManager::write() const
{
    boost::json::object materials;
    for (const auto& [material, textures] : m_records) {
        boost::json::object record;
        for (const auto& [texture, resolved] : textures)
            record[toUTF8(texture)] = resolved;
        materials[toUTF8(material)] = std::move(record);
    }
    const std::string text = boost::json::serialize(boost::json::object{{"version", s_recordsVersion}, {"materials", materials}});
    std::error_code ignored;
    std::filesystem::create_directories(m_file.parent_path(), ignored);
    std::string problem;
    std::optional<TempFile> temporary = TempFile::tryBeside(m_file, &problem);
    if (temporary) {
        std::ofstream out(temporary->path(), std::ios::binary | std::ios::trunc);
        out << text;
        out.close();
        std::error_code renamed;
        if (out && (std::filesystem::rename(temporary->path(), m_file, renamed), !renamed)) {
            (void)temporary->release();
            return;
        }
        problem = "cannot be written";
    }
    AppLogMgr::appLogEx(ELogLevel::eWarning, L"Texture records not saved: " + m_file.wstring() + L": " + toWide(problem));
}

} // namespace Kx
