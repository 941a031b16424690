#include "base/Paths.h"

#include <cstdlib>
#include <system_error>

#include <dlfcn.h>
#include <pwd.h>
#include <unistd.h>

namespace Kx::Paths {

namespace {

const char* environment(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

std::filesystem::path homeDirectory()
{
    if (const char* home = environment("HOME")) {
        return home;
    }
    if (const passwd* entry = ::getpwuid(::getuid()); entry != nullptr && entry->pw_dir != nullptr) {
        return entry->pw_dir;
    }
    std::error_code ignored;
    return std::filesystem::temp_directory_path(ignored);
}

// Where the installation that holds this library keeps its content, looked up once: the library
// does not move while it is loaded, and content paths are asked for on every string-table lookup.
// The library's own file, not the executable, anchors the lookup, so a host program installed
// anywhere finds the content of the prefix its libkx_base came from. KX_CONTENT_FROM_LIBDIR is the
// installed content folder relative to the library folder (cmake/KxInstall.cmake).
const std::filesystem::path& installedContent()
{
    static const std::filesystem::path s_installed = [] {
        Dl_info library{};
        if (::dladdr(reinterpret_cast<const void*>(&installedContent), &library) == 0 || library.dli_fname == nullptr) {
            return std::filesystem::path{};
        }
        std::error_code error;
        // Through symbolic links, so a library linked into another folder still finds its own prefix.
        const auto file = std::filesystem::canonical(library.dli_fname, error);
        if (error) {
            return std::filesystem::path{};
        }
        auto candidate = (file.parent_path() / KX_CONTENT_FROM_LIBDIR).lexically_normal();
        return std::filesystem::is_directory(candidate, error) ? candidate : std::filesystem::path{};
    }();
    return s_installed;
}

} // namespace

std::filesystem::path userDirectory()
{
    if (const char* directory = environment("KX_USER_DIR")) {
        return directory;
    }
    return homeDirectory() / ".kx";
}

std::filesystem::path optionsDirectory()
{
    return userDirectory() / "options";
}

std::filesystem::path contentRoot()
{
    if (const char* directory = environment("KX_CONTENT_DIR")) {
        return directory;
    }
    if (const auto& installed = installedContent(); !installed.empty()) {
        return installed;
    }
    return KX_BUILD_CONTENT_DIR;
}

std::filesystem::path tempDirectory()
{
    auto directory = userDirectory() / "temp";
    std::error_code ignored;
    std::filesystem::create_directories(directory, ignored);
    return directory;
}

std::string edition()
{
    const char* value = environment("KX_EDITION");
    return value != nullptr ? value : "desktop";
}

} // namespace Kx::Paths
