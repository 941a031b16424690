#pragma once

#include "Types/Online/HttpTransfer.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace Kx::Types {

// How the download helper reaches the online material library and how patient it is.
struct OnlineLibrarySettings {
    // The library's base URL (http or https); index.json and the files it lists lie below it.
    std::string baseUrl;
    // Nothing is fetched: queries answer from the index read last, downloads of what is installed
    // succeed and others fail.
    bool offline = false;
    // The access token of the online service, sent as a bearer header and never logged.
    std::string accessToken;
    // Where downloads are installed: Downloaded.tvrnlib, thumbnails/, index.json and its ETag.
    std::filesystem::path downloadDirectory;
    // Where texture images are installed: <textureDirectory>/<material UUID>/<file name>.
    std::filesystem::path textureDirectory;
    TransferLimits limits;
    // Attempts of one file in all (a 5xx reply, a dropped or refused connection, a stall), with a
    // pause of `backoff` before the second, doubled before each further one.
    int attempts = 4;
    std::chrono::milliseconds backoff{500};
    // No file is taken larger than the index says, nor larger than this.
    std::uint64_t maxFileBytes = std::uint64_t{1} << 30;

    // KX_ONLINE_LIBRARY (base URL), KX_ONLINE_OFFLINE ("1": offline), KX_ONLINE_TOKEN, and the
    // folders under the user directory: downloads/ and textures/online/.
    [[nodiscard]] static OnlineLibrarySettings fromEnvironment();
    // The URL of a file below the base URL.
    [[nodiscard]] std::string urlOf(const std::string& relativePath) const;
};

} // namespace Kx::Types
