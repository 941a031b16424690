#include "Types/Online/OnlineLibrarySettings.h"

#include <base/Paths.h>

#include <cstdlib>

namespace Kx::Types {

namespace {
std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}
} // namespace

OnlineLibrarySettings OnlineLibrarySettings::fromEnvironment()
{
    OnlineLibrarySettings settings;
    settings.baseUrl = environment("KX_ONLINE_LIBRARY");
    settings.offline = environment("KX_ONLINE_OFFLINE") == "1";
    settings.accessToken = environment("KX_ONLINE_TOKEN");
    settings.downloadDirectory = Paths::userDirectory() / "downloads";
    settings.textureDirectory = Paths::userDirectory() / "textures" / "online";
    return settings;
}

std::string OnlineLibrarySettings::urlOf(const std::string& relativePath) const
{
    if (baseUrl.empty() || baseUrl.back() == '/')
        return baseUrl + relativePath;
    return baseUrl + "/" + relativePath;
}

} // namespace Kx::Types
