#include "Types/Utility/TypesUtil.h"

#include <base/AppLogMgr.h>
#include <base/Paths.h>
#include <base/Strings.h>
#include <base/TempFile.h>

#include <core/Strings.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace Kx::Types {

namespace fs = std::filesystem;

std::wstring GetReducedLibraryPath()
{
    std::wstring set = GetCurrentMaterialLibraryGUID();
    if (set.empty()) {
        set = L"unversioned";
    }
    return (Paths::userDirectory() / "libraries" / set).lexically_normal().wstring();
}

std::wstring GetLocalMaterialLibraryID()
{
    return L"LOCAL";
}

bool IsServerOrCloudTranslatorEdition()
{
    const std::string edition = Paths::edition();
    return edition == "server" || edition == "cloudtranslator";
}

std::wstring GetTextureLibraryPath()
{
    return (Paths::userDirectory() / "textures").lexically_normal().wstring();
}

std::wstring GetTempDirectory()
{
    return Paths::tempDirectory().wstring();
}

const std::vector<std::wstring>& GetStandardLibraryFileNames()
{
    static const std::vector<std::wstring> s_files{L"assetlibrary_base.tvrnlib", L"PhysicalMaterial.tvrnlib",
        L"assetlibrary_advanced.tvrnlib", L"PhysicalMaterialAdvanced.tvrnlib", L"Additive.tvrnlib",
        L"Nonlinear Material Library.tvrnlib"};
    return s_files;
}

namespace {

std::string readAll(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Sizes first: an unchanged file of the same size is then read once each, a megabyte at most.
bool sameContent(const fs::path& left, const fs::path& right)
{
    std::error_code error;
    const auto leftSize = fs::file_size(left, error);
    if (error) {
        return false;
    }
    const auto rightSize = fs::file_size(right, error);
    return !error && leftSize == rightSize && readAll(left) == readAll(right);
}

// Written beside the target and renamed over it: another process that opens the library meanwhile
// sees the old file or the new one, never a part.
void copyInto(const fs::path& source, const fs::path& target)
{
    TempFile temporary = TempFile::beside(target);
    fs::copy_file(source, temporary.path(), fs::copy_options::overwrite_existing);
    fs::permissions(temporary.path(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read |
        fs::perms::others_read);
    fs::rename(temporary.path(), target);
    temporary.release();
}

} // namespace

bool SetUpSharedInstall(std::string* problem)
{
    std::string problems;
    const auto note = [&](const std::string& text) {
        AppLogMgr::appLogEx(ELogLevel::eWarning, ToIString("Material library set-up: " + text));
        problems += (problems.empty() ? "" : "; ") + text;
    };
    const fs::path folder(GetReducedLibraryPath());
    const fs::path installed = Paths::contentRoot() / "libraries";
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        note(folder.string() + ": " + error.message());
    } else {
        for (const std::wstring& name : GetStandardLibraryFileNames()) {
            const fs::path source = installed / name;
            const fs::path target = folder / name;
            try {
                if (fs::exists(source)) {
                    if (!sameContent(source, target)) {
                        copyInto(source, target);
                    }
                } else {
                    // The installed set no longer has it: a stale copy must not be opened instead.
                    fs::remove(target);
                }
            } catch (const std::exception& failure) {
                note(target.string() + ": " + failure.what());
            }
        }
        const fs::path favorites = folder / s_favoritesFileName;
        if (!fs::exists(favorites, error)) {
            // The newest earlier set first: that is the favourites the user saw last.
            const std::vector<std::wstring> legacy = GetLegacyMaterialLibraryGUID();
            for (auto set = legacy.rbegin(); set != legacy.rend(); ++set) {
                const fs::path earlier = Paths::userDirectory() / "libraries" / *set / s_favoritesFileName;
                if (!set->empty() && fs::exists(earlier, error)) {
                    try {
                        copyInto(earlier, favorites);
                    } catch (const std::exception& failure) {
                        note(favorites.string() + ": " + failure.what());
                    }
                    break;
                }
            }
        }
    }
    if (problem != nullptr) {
        *problem = problems;
    }
    return problems.empty();
}

} // namespace Kx::Types
