#include "Types/Appearance/AmbrelManager.h"

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <base/AppLogMgr.h>
#include <base/Paths.h>
#include <base/TempFile.h>

#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

namespace Kx {

namespace {

constexpr std::wstring_view s_bitmapProperty = L"unifiedbitmap_Bitmap";

// The resource's name as a path inside the extraction folder; empty when the name would lead out
// of it (absolute, or climbing with "..").
std::filesystem::path relativeResourcePath(std::wstring_view name)
{
    const std::filesystem::path relative = std::filesystem::path(name).lexically_normal();
    if (relative.empty() || relative.has_root_path() || !relative.has_filename()) {
        return {};
    }
    for (const std::filesystem::path& part : relative) {
        if (part == "..") {
            return {};
        }
    }
    return relative;
}

// Writes the bytes to a temporary file beside the target first, renamed over it, so that a reader
// never sees half an image.
bool writeWhole(const std::filesystem::path& target, const std::vector<std::uint8_t>& bytes)
{
    std::error_code error;
    std::filesystem::create_directories(target.parent_path(), error);
    std::optional<TempFile> temporary = TempFile::tryBeside(target);
    if (!temporary) {
        return false;
    }
    {
        std::ofstream out(temporary->path(), std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!out.flush()) {
            return false;
        }
    }
    std::filesystem::rename(temporary->path(), target, error);
    if (error) {
        return false;
    }
    temporary->release();
    return true;
}

} // namespace

std::filesystem::path AmbrelManager::GetEmbeddedResourceFolder(const WideString& libraryId)
{
    return std::filesystem::path(Types::GetTextureLibraryPath()) / std::filesystem::path(libraryId);
}

void AmbrelManager::ExtractEmbedResource(Assets::IAssetLibrary& library, Assets::IAssetInstance& instance)
{
    const std::filesystem::path folder = GetEmbeddedResourceFolder(library.GetLibraryId());
    for (Assets::IAssetInstance* texture : CollectTextureAssets(&instance)) {
        WideString bitmap;
        if (texture->GetStringValue(WideString(s_bitmapProperty), bitmap) && bitmap.starts_with(Assets::s_resourcePrefix)) {
            const std::filesystem::path relative = relativeResourcePath(std::wstring_view(bitmap).substr(Assets::s_resourcePrefix.size()));
            std::vector<std::uint8_t> bytes;
            if (relative.empty() || !library.ReadEmbeddedResource(bitmap, bytes)) {
                AppLogMgr::appLogEx(ELogLevel::eWarning, L"Embedded resource not found: " + bitmap);
            } else {
                const std::filesystem::path file = folder / relative;
                std::error_code error;
                const bool present = std::filesystem::file_size(file, error) == bytes.size() && !error;
                if (present || writeWhole(file, bytes)) {
                    texture->SetStringValue(WideString(s_bitmapProperty), file.wstring());
                } else {
                    AppLogMgr::appLogEx(ELogLevel::eWarning, L"Embedded resource not written: " + file.wstring());
                }
            }
        }
        texture->Release();
    }
}

} // namespace Kx
