#pragma once

#include "Types/Online/OnlineLibraryIndex.h"
#include "Types/Online/OnlineLibrarySettings.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>

namespace Kx::Types {

// Runs `request` attempt after attempt as the settings allow (5xx replies, connection trouble and
// stalls are tried again after a pause that doubles), each later attempt resuming where the
// bytes stopped. Answers the last attempt's result; eCancelled once `cancelled` is set.
[[nodiscard]] HttpResult runWithRetries(const OnlineLibrarySettings& settings, HttpRequest request,
    const std::atomic<bool>& cancelled, bool resumable = true);

struct VerifiedDownloadResult {
    ETransferOutcome outcome = ETransferOutcome::eFailed;
    bool verified = false; // size and SHA-256 are the index's
    std::string message;   // one line for the user when not verified
};

// Fetches one file the index lists into `into` (a temporary file the caller owns), attempt after
// attempt as the settings allow, each later attempt resuming where the bytes stopped, and checks
// its size and SHA-256. The file holds the whole verified body only when `verified`; the caller
// removes it otherwise. Returns early, as eCancelled, once `cancelled` is set.
[[nodiscard]] VerifiedDownloadResult downloadVerified(const OnlineLibrarySettings& settings, const OnlineFile& file,
    const std::filesystem::path& into, const std::atomic<bool>& cancelled,
    const std::function<void(std::uint64_t, std::uint64_t)>& progress = {});

} // namespace Kx::Types
