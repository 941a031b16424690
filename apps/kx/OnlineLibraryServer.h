#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace Kx::Console {

// Serves a folder over HTTP as any static web server would serve an online library: every file
// below it by GET (ranges included, so downloads resume), an ETag from the file's size and time
// (so the index is revalidated), nothing outside it. Blocks until `stopRequested` answers true
// (asked every 100 ms); `ready` hears the URL once the server listens. Throws Kx::Exception when
// the folder or the address cannot be used.
void serveOnlineLibrary(const std::filesystem::path& folder, const std::string& host, int port,
    const std::function<void(const std::string& url)>& ready, const std::function<bool()>& stopRequested);

} // namespace Kx::Console
