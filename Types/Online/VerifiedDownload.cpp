#include "Types/Online/VerifiedDownload.h"

#include "Types/Online/Sha256.h"

#include <base/AppLogMgr.h>
#include <core/Strings.h>

#include <algorithm>
#include <thread>

namespace Kx::Types {

namespace {

// Waits out a pause between attempts, but not past a cancellation.
bool pauseUnlessCancelled(std::chrono::milliseconds pause, const std::atomic<bool>& cancelled)
{
    const auto until = std::chrono::steady_clock::now() + pause;
    while (std::chrono::steady_clock::now() < until) {
        if (cancelled)
            return false;
        std::this_thread::sleep_for(std::min<std::chrono::milliseconds>(pause, std::chrono::milliseconds(10)));
    }
    return !cancelled;
}

void log(const std::string& line)
{
    AppLogMgr::appLog(telvarin::platform::core::toWide("Online library: " + line));
}

} // namespace

HttpResult runWithRetries(const OnlineLibrarySettings& settings, HttpRequest request, const std::atomic<bool>& cancelled,
    bool resumable)
{
    request.cancelled = &cancelled;
    std::chrono::milliseconds pause = settings.backoff;
    for (int attempt = 1;; ++attempt) {
        // The first attempt starts the file afresh; later ones keep what arrived.
        request.resume = resumable && attempt > 1;
        HttpResult transfer = runHttpTransfer(request, settings.limits);
        log("GET " + request.url + " attempt " + std::to_string(attempt) + ": "
            + (transfer.outcome == ETransferOutcome::eDone ? std::to_string(transfer.bytes) + " bytes" : transfer.message));
        if (transfer.outcome == ETransferOutcome::eDone || !isWorthRetrying(transfer.outcome) || attempt >= settings.attempts)
            return transfer;
        if (!pauseUnlessCancelled(pause, cancelled)) {
            transfer.outcome = ETransferOutcome::eCancelled;
            transfer.message = "cancelled";
            return transfer;
        }
        pause *= 2;
    }
}

VerifiedDownloadResult downloadVerified(const OnlineLibrarySettings& settings, const OnlineFile& file,
    const std::filesystem::path& into, const std::atomic<bool>& cancelled,
    const std::function<void(std::uint64_t, std::uint64_t)>& progress)
{
    VerifiedDownloadResult result;
    if (file.size > settings.maxFileBytes) {
        result.outcome = ETransferOutcome::eTooLarge;
        result.message = file.path + " is larger than allowed (" + std::to_string(file.size) + " bytes)";
        return result;
    }
    HttpRequest request;
    request.url = settings.urlOf(file.path);
    request.file = into;
    request.maxBytes = file.size;
    request.bearerToken = settings.accessToken;
    request.progress = progress;
    const HttpResult transfer = runWithRetries(settings, request, cancelled);
    result.outcome = transfer.outcome;
    result.message = transfer.message;
    if (transfer.outcome != ETransferOutcome::eDone)
        return result;
    std::error_code sizeError;
    const std::uint64_t size = std::filesystem::file_size(into, sizeError);
    if (sizeError || size != file.size) {
        result.outcome = ETransferOutcome::eFailed;
        result.message = file.path + " has " + std::to_string(size) + " bytes, the index says " + std::to_string(file.size);
        return result;
    }
    if (Sha256::ofFile(into) != file.sha256) {
        result.outcome = ETransferOutcome::eFailed;
        result.message = file.path + " does not have the SHA-256 the index gives; it was not installed";
        return result;
    }
    result.verified = true;
    result.message.clear();
    return result;
}

} // namespace Kx::Types
