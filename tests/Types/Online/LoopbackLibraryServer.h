#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace httplib {
class Server;
}

namespace OnlineTest {

// What a test makes the server do with one path (relative to the library, e.g. "index.json").
struct Fault {
    int failuresFirst = 0;       // answer `failureStatus` to the first N requests, then serve
    int failureStatus = 500;
    std::int64_t dropAfter = -1; // the first request: close the connection after this many body bytes
    bool stall = false;          // send the headers and a few bytes, then nothing (until the server stops)
    int slowChunkMs = 0;         // serve in 4 KiB pieces with this pause between them
    std::string replaceBody = {}; // serve these bytes instead of the file's (when not empty)
};

// One request as the server saw it.
struct SeenRequest {
    std::string path;
    std::string authorization;
    std::string range;
    std::string ifNoneMatch;
    int status = 0;
};

// A real HTTP server on 127.0.0.1 (an ephemeral port) serving a folder on a thread of its own, with
// range requests, an ETag on every file, and the faults a test arms.
class LoopbackLibraryServer {
public:
    explicit LoopbackLibraryServer(std::filesystem::path root);
    ~LoopbackLibraryServer();

    [[nodiscard]] std::string baseUrl() const;
    void setFault(const std::string& path, Fault fault);
    [[nodiscard]] std::vector<SeenRequest> requests() const;
    [[nodiscard]] std::vector<SeenRequest> requestsFor(const std::string& path) const;
    void clearRequests();

private:
    std::filesystem::path m_root;
    std::unique_ptr<httplib::Server> m_server;
    int m_port = 0;
    std::thread m_thread;
    std::atomic<bool> m_stopping{false};
    mutable std::mutex m_mutex;
    std::map<std::string, Fault> m_faults;
    std::vector<SeenRequest> m_requests;
};

} // namespace OnlineTest
