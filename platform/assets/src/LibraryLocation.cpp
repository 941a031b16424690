#include "assets/LibraryLocation.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace telvarin::platform::assets {

namespace {

constexpr std::wstring_view s_scheme = L"netfs://";

bool isSegmentCharacter(wchar_t c)
{
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9') || c == L'.' || c == L'_' ||
           c == L'-';
}

bool isAuthorityCharacter(wchar_t c)
{
    return c > L' ' && c != L'/' && c != L'?' && c != L'#' && c != L'\\' && c != 0x7F;
}

bool validPath(std::wstring_view path)
{
    if (path.size() < 2 || path.front() != L'/') {
        return false;
    }
    std::size_t start = 1;
    while (start <= path.size()) {
        const std::size_t end = std::min(path.find(L'/', start), path.size());
        const std::wstring_view segment = path.substr(start, end - start);
        if (segment.empty() || segment == L"." || segment == L".." ||
            !std::all_of(segment.begin(), segment.end(), isSegmentCharacter)) {
            return false;
        }
        start = end + 1;
    }
    return true;
}

// <content root>/libraries/netfs.mounts: "<netfs path> <file relative to the libraries folder>" per
// line; blank lines, lines starting with '#' and lines whose file lies outside the folder are skipped.
std::optional<std::filesystem::path> mountedFile(const std::filesystem::path& libraries, const WideString& path)
{
    std::ifstream mounts(libraries / "netfs.mounts");
    std::string line;
    const std::string wanted = core::toUTF8(path);
    while (std::getline(mounts, line)) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (line.empty() || line.front() == '#') {
            continue;
        }
        const std::size_t blank = line.find(' ');
        if (blank != std::string::npos && line.compare(0, blank, wanted) == 0 && blank == wanted.size() &&
            blank + 1 < line.size()) {
            // The file is relative to the libraries folder: a line naming one elsewhere (absolute,
            // or climbing out with "..") would let the table hand out any file of the machine, and
            // one naming the folder itself is no library.
            // The name as UTF-8, not through a wide string: converting that to a path goes through
            // the process's locale, which refuses any name beyond ASCII in the "C" locale.
            const std::u8string name(line.begin() + static_cast<std::ptrdiff_t>(blank) + 1, line.end());
            const std::filesystem::path file = std::filesystem::path(name).lexically_normal();
            if (file.is_absolute() || file.has_root_path() || file.empty() || file == "." || *file.begin() == "..") {
                continue;
            }
            return libraries / file;
        }
    }
    return std::nullopt;
}

} // namespace

bool IsNetfsUri(const WideString& location)
{
    return location.starts_with(s_scheme);
}

std::optional<NetfsUri> ParseNetfsUri(const WideString& location)
{
    if (!IsNetfsUri(location)) {
        return std::nullopt;
    }
    const std::wstring_view rest = std::wstring_view(location).substr(s_scheme.size());
    const std::size_t slash = rest.find(L'/');
    if (slash == std::wstring_view::npos) {
        return std::nullopt;
    }
    std::wstring_view authority = rest.substr(0, slash);
    if (authority.ends_with(L':')) {
        authority.remove_suffix(1);
    }
    const std::wstring_view path = rest.substr(slash);
    if (authority.empty() || !std::all_of(authority.begin(), authority.end(), isAuthorityCharacter) ||
        authority.find(L':') != std::wstring_view::npos || !validPath(path)) {
        return std::nullopt;
    }
    return NetfsUri{WideString(authority), WideString(path)};
}

WideString MakeNetfsUri(const WideString& authority, const WideString& path)
{
    return WideString(s_scheme) + authority + L":" + path;
}

std::optional<std::filesystem::path> ResolveNetfsUri(const WideString& location, const std::filesystem::path& contentRoot)
{
    const auto uri = ParseNetfsUri(location);
    if (!uri) {
        return std::nullopt;
    }
    const std::filesystem::path libraries = contentRoot / "libraries";
    if (auto mounted = mountedFile(libraries, uri->path)) {
        return mounted;
    }
    std::filesystem::path file = libraries / std::filesystem::path(uri->path.substr(1));
    file += L".tvrnlib";
    return file;
}

std::optional<std::filesystem::path> ResolveNetfsUri(const WideString& location, const std::filesystem::path& contentRoot,
    const std::filesystem::path& userDirectory)
{
    const auto uri = ParseNetfsUri(location);
    if (!uri) {
        return std::nullopt;
    }
    if (uri->path.starts_with(L"/user/")) {
        std::filesystem::path file = userDirectory / "netfs" / std::filesystem::path(uri->path.substr(1));
        file += L".tvrnlib";
        return file;
    }
    return ResolveNetfsUri(location, contentRoot);
}

} // namespace telvarin::platform::assets
