#include "OnlineLibraryServer.h"

#include <base/Exception.h>

#include <httplib.h>

#include <chrono>
#include <optional>
#include <fstream>
#include <thread>

namespace Kx::Console {

namespace {

std::string etagOf(const std::filesystem::path& file)
{
    std::error_code ignored;
    const auto size = std::filesystem::file_size(file, ignored);
    const auto time = std::filesystem::last_write_time(file, ignored).time_since_epoch().count();
    return "\"" + std::to_string(size) + "-" + std::to_string(time) + "\"";
}

// The file a request names, or none for a path that is not plainly below the folder.
std::optional<std::filesystem::path> fileOf(const std::filesystem::path& folder, const std::string& path)
{
    if (path.empty() || path.find("..") != std::string::npos || path.find('\\') != std::string::npos)
        return std::nullopt;
    const std::filesystem::path file = folder / path;
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(file, ignored))
        return std::nullopt;
    return file;
}

} // namespace

void serveOnlineLibrary(const std::filesystem::path& folder, const std::string& host, int port,
    const std::function<void(const std::string& url)>& ready, const std::function<bool()>& stopRequested)
{
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error))
        throw Exception(L"There is no folder to serve", folder.string());
    const std::filesystem::path root = std::filesystem::canonical(folder, error);
    httplib::Server server;
    server.Get(R"(/(.*))", [&root](const httplib::Request& request, httplib::Response& response) {
        const std::optional<std::filesystem::path> file = fileOf(root, request.matches[1]);
        if (!file) {
            response.status = 404;
            return;
        }
        const std::string etag = etagOf(*file);
        response.set_header("ETag", etag);
        if (request.get_header_value("If-None-Match") == etag) {
            response.status = 304;
            return;
        }
        auto in = std::make_shared<std::ifstream>(*file, std::ios::binary);
        std::error_code ignored;
        const std::size_t size = std::filesystem::file_size(*file, ignored);
        const std::string type = file->extension() == ".json" ? "application/json" : "application/octet-stream";
        response.set_content_provider(size, type, [in](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
            char buffer[1 << 16];
            in->seekg(static_cast<std::streamoff>(offset));
            in->read(buffer, static_cast<std::streamsize>(std::min(length, sizeof buffer)));
            if (in->gcount() <= 0)
                return false;
            sink.write(buffer, static_cast<std::size_t>(in->gcount()));
            return true;
        });
    });
    const int bound = port == 0 ? server.bind_to_any_port(host) : (server.bind_to_port(host, port) ? port : -1);
    if (bound <= 0)
        throw Exception(L"The server cannot listen there", host + ":" + std::to_string(port));
    std::thread listener([&server] { server.listen_after_bind(); });
    for (int waited = 0; !server.is_running() && waited < 5000; ++waited)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (!server.is_running()) {
        server.stop();
        listener.join();
        throw Exception(L"The server cannot listen there", host + ":" + std::to_string(bound));
    }
    ready("http://" + host + ":" + std::to_string(bound) + "/");
    while (!stopRequested())
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    server.stop();
    listener.join();
}

} // namespace Kx::Console
