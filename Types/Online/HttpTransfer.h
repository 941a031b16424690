#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace Kx::Types {

// How one transfer ended. Only connection trouble and the server's own failures (5xx) are worth
// another attempt; everything else would fail the same way again.
enum class ETransferOutcome {
    eDone,
    eNotModified,   // 304: the copy named by If-None-Match is still current
    eClientError,   // 4xx: the request is wrong or refused (not found, forbidden...)
    eServerError,   // 5xx
    eConnection,    // no connection, dropped connection, a reply cut short
    eTimedOut,      // no connection in time, or the transfer stalled below the lowest speed
    eCancelled,
    eTooLarge,      // the body went past the size allowed
    eFileError,     // the body could not be written
    eFailed,        // anything else (bad URL, unsupported protocol, TLS problems)
};

[[nodiscard]] bool isWorthRetrying(ETransferOutcome outcome);

struct TransferLimits {
    std::chrono::milliseconds connectTimeout{10000};
    // A transfer slower than lowSpeedBytes per second for lowSpeedTime is given up.
    long lowSpeedBytes = 100;
    std::chrono::seconds lowSpeedTime{30};
};

struct HttpRequest {
    std::string url;
    // The body is written here. With `resume`, the bytes already in the file are kept and only the
    // rest is asked for (Range); a server that answers with the whole body starts the file again.
    std::filesystem::path file;
    bool resume = false;
    std::uint64_t maxBytes = 0; // 0: no limit
    std::string ifNoneMatch;    // an ETag: the server answers 304 while it is current
    std::string bearerToken;    // sent as "Authorization: Bearer ..."; never logged
    const std::atomic<bool>* cancelled = nullptr;
    // Bytes in the file so far and the size expected (0 when unknown); called on the transfer's thread.
    std::function<void(std::uint64_t, std::uint64_t)> progress;
};

struct HttpResult {
    ETransferOutcome outcome = ETransferOutcome::eFailed;
    long status = 0;        // the HTTP status, 0 when there was no reply
    std::string etag;
    std::string message;    // one line for the user; never holds the token
    std::uint64_t bytes = 0; // in the file after the transfer
};

// One HTTP or HTTPS GET with libcurl, on the calling thread. Follows up to five redirects within
// http and https. A body of a reply that is no success is not written to the file.
[[nodiscard]] HttpResult runHttpTransfer(const HttpRequest& request, const TransferLimits& limits);

} // namespace Kx::Types
