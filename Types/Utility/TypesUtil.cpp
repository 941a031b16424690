#include "Types/Utility/TypesUtil.h"

#include <base/AppLogMgr.h>
#include <base/Paths.h>
#include <base/Strings.h>
#include <base/TempFile.h>

#include <core/Strings.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
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

// Compared a block at a time, without holding either file whole.
bool sameBytes(const fs::path& left, const fs::path& right)
{
    std::ifstream leftIn(left, std::ios::binary);
    std::ifstream rightIn(right, std::ios::binary);
    std::array<char, 64 * 1024> leftBlock;
    std::array<char, 64 * 1024> rightBlock;
    while (leftIn && rightIn) {
        leftIn.read(leftBlock.data(), leftBlock.size());
        rightIn.read(rightBlock.data(), rightBlock.size());
        const std::streamsize count = leftIn.gcount();
        if (count != rightIn.gcount() || !std::equal(leftBlock.begin(), leftBlock.begin() + count, rightBlock.begin())) {
            return false;
        }
    }
    return leftIn.eof() && rightIn.eof();
}

// A copy is stamped with the installed file's modification time plus one nanosecond (copyStamp), a
// time no ordinary write leaves (file systems take their times from a clock that moves by whole
// ticks), so at every load an unchanged copy is known by its size and time alone, without reading a
// megabyte of libraries twice. Anything else (a copy written to since, which moves its time; a new
// installed file; a copy made before copies were stamped) is compared byte by byte, and an equal
// copy is stamped so that the next load need not read it again.
fs::file_time_type copyStamp(fs::file_time_type installed)
{
    return installed + std::chrono::nanoseconds(1);
}

bool copyIsCurrent(const fs::path& source, const fs::path& target)
{
    std::error_code error;
    const auto sourceSize = fs::file_size(source, error);
    const auto targetSize = error ? 0 : fs::file_size(target, error);
    if (error || sourceSize != targetSize) {
        return false;
    }
    const auto stamp = copyStamp(fs::last_write_time(source, error));
    const auto targetTime = error ? stamp : fs::last_write_time(target, error);
    if (error) {
        return false;
    }
    if (targetTime == stamp) {
        return true;
    }
    if (!sameBytes(source, target)) {
        return false;
    }
    fs::last_write_time(target, stamp, error);
    return true;
}

// Written beside the target and renamed over it: another process that opens the library meanwhile
// sees the old file or the new one, never a part.
void copyInto(const fs::path& source, const fs::path& target)
{
    TempFile temporary = TempFile::beside(target);
    fs::copy_file(source, temporary.path(), fs::copy_options::overwrite_existing);
    fs::last_write_time(temporary.path(), copyStamp(fs::last_write_time(source)));
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
                    if (!copyIsCurrent(source, target)) {
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
