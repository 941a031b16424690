#include "LoopbackLibraryServer.h"

#include <httplib.h>

#include <chrono>
#include <fstream>
#include <sstream>

namespace OnlineTest {

namespace {

std::string readFile(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Weak enough for a test: the ETag changes when the bytes do.
std::string etagOf(const std::string& body)
{
    return "\"" + std::to_string(std::hash<std::string>{}(body)) + "-" + std::to_string(body.size()) + "\"";
}

} // namespace

LoopbackLibraryServer::LoopbackLibraryServer(std::filesystem::path root)
    : m_root(std::move(root)), m_server(std::make_unique<httplib::Server>())
{
    m_server->Get(R"(/(.+))", [this](const httplib::Request& request, httplib::Response& response) {
        const std::string path = request.matches[1];
        SeenRequest seen{path, request.get_header_value("Authorization"), request.get_header_value("Range"),
            request.get_header_value("If-None-Match")};
        Fault fault;
        int served = 0;
        {
            std::lock_guard lock(m_mutex);
            fault = m_faults[path];
            for (const SeenRequest& earlier : m_requests)
                served += earlier.path == path ? 1 : 0;
        }
        const auto record = [&](int status) {
            seen.status = status;
            std::lock_guard lock(m_mutex);
            m_requests.push_back(seen);
        };
        if (served < fault.failuresFirst) {
            response.status = fault.failureStatus;
            response.set_content("failure armed by the test", "text/plain");
            return record(fault.failureStatus);
        }
        const std::filesystem::path file = m_root / path;
        std::error_code missing;
        if (path.find("..") != std::string::npos || !std::filesystem::is_regular_file(file, missing)) {
            response.status = 404;
            return record(404);
        }
        auto body = std::make_shared<std::string>(fault.replaceBody.empty() ? readFile(file) : fault.replaceBody);
        const std::string etag = etagOf(*body);
        response.set_header("ETag", etag);
        if (!seen.ifNoneMatch.empty() && seen.ifNoneMatch == etag) {
            response.status = 304;
            return record(304);
        }
        const bool firstServe = served == fault.failuresFirst;
        const std::int64_t dropAfter = firstServe ? fault.dropAfter : -1;
        const bool stall = fault.stall;
        const int pauseMs = fault.slowChunkMs;
        record(request.has_header("Range") ? 206 : 200);
        response.set_content_provider(body->size(), "application/octet-stream",
            [this, body, dropAfter, stall, pauseMs](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                std::size_t piece = std::min<std::size_t>(length, pauseMs > 0 || stall || dropAfter >= 0 ? 4096 : length);
                if (dropAfter >= 0 && offset >= static_cast<std::size_t>(dropAfter))
                    return false; // the connection closes with the body cut short
                if (dropAfter >= 0)
                    piece = std::min(piece, static_cast<std::size_t>(dropAfter) - offset);
                if (stall && offset >= 16) {
                    while (!m_stopping)
                        std::this_thread::sleep_for(std::chrono::milliseconds(10));
                    return false;
                }
                if (stall)
                    piece = std::min<std::size_t>(piece, 16 - offset);
                if (pauseMs > 0)
                    std::this_thread::sleep_for(std::chrono::milliseconds(pauseMs));
                sink.write(body->data() + offset, piece);
                return !m_stopping;
            });
    });
    m_port = m_server->bind_to_any_port("127.0.0.1");
    m_thread = std::thread([this] { m_server->listen_after_bind(); });
    while (!m_server->is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

LoopbackLibraryServer::~LoopbackLibraryServer()
{
    m_stopping = true;
    m_server->stop();
    m_thread.join();
}

std::string LoopbackLibraryServer::baseUrl() const
{
    return "http://127.0.0.1:" + std::to_string(m_port) + "/";
}

void LoopbackLibraryServer::setFault(const std::string& path, Fault fault)
{
    std::lock_guard lock(m_mutex);
    m_faults[path] = std::move(fault);
}

std::vector<SeenRequest> LoopbackLibraryServer::requests() const
{
    std::lock_guard lock(m_mutex);
    return m_requests;
}

std::vector<SeenRequest> LoopbackLibraryServer::requestsFor(const std::string& path) const
{
    std::vector<SeenRequest> matching;
    for (const SeenRequest& request : requests()) {
        if (request.path == path)
            matching.push_back(request);
    }
    return matching;
}

void LoopbackLibraryServer::clearRequests()
{
    std::lock_guard lock(m_mutex);
    m_requests.clear();
}

} // namespace OnlineTest
