#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace Kx {

// Which textures each downloaded material needs and which of them are on this machine. A texture
// counts as resolved once its file is installed; the download manager announces a material's
// textures as complete when every one of them is. The records live in
// <user directory>/downloads/TextureRecords.json (docs/formats.md) and are written after every
// change (temporary file, then rename), so they survive the session.
class MaterialLocalTexRecordManager {
public:
    // The application's records, in the user directory of the moment they are first asked for.
    [[nodiscard]] static MaterialLocalTexRecordManager& get();
    // Records kept in `file` (tools, tests); read when it exists.
    explicit MaterialLocalTexRecordManager(std::filesystem::path file);

    // Sets the textures of a material (the ones already recorded keep their resolved flag).
    void setRecordTextures(const std::wstring& materialId, const std::vector<std::wstring>& textureIds);
    // Marks one texture of a material resolved; a texture the material did not list is added.
    void setRecordTextureResolved(const std::wstring& materialId, const std::wstring& textureId);
    // True when the material is recorded and every one of its textures is resolved.
    [[nodiscard]] bool getRecordResolved(const std::wstring& materialId) const;
    [[nodiscard]] std::map<std::wstring, bool> getRecordTextures(const std::wstring& materialId) const;
    void removeRecord(const std::wstring& materialId);
    [[nodiscard]] const std::filesystem::path& file() const { return m_file; }

private:
    void read();
    void write() const;

    std::filesystem::path m_file;
    mutable std::mutex m_mutex;
    std::map<std::wstring, std::map<std::wstring, bool>> m_records;
};

} // namespace Kx
