#include "Types/Online/HttpTransfer.h"

#include <curl/curl.h>

#include <cstdio>
#include <memory>
#include <mutex>

#include <strings.h>
#include <unistd.h>

namespace Kx::Types {

namespace {

// The one place where libcurl's results become ours.
ETransferOutcome translate(CURLcode code)
{
    switch (code) {
    case CURLE_OK: return ETransferOutcome::eDone;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM: return ETransferOutcome::eConnection;
    case CURLE_OPERATION_TIMEDOUT: return ETransferOutcome::eTimedOut;
    case CURLE_ABORTED_BY_CALLBACK: return ETransferOutcome::eCancelled;
    case CURLE_FILESIZE_EXCEEDED: return ETransferOutcome::eTooLarge;
    case CURLE_WRITE_ERROR: return ETransferOutcome::eFileError;
    default: return ETransferOutcome::eFailed;
    }
}

struct Transfer {
    const HttpRequest& request;
    std::FILE* file = nullptr;
    std::uint64_t offset = 0;  // bytes kept from an earlier attempt
    std::uint64_t written = 0; // bytes of this reply
    std::uint64_t expected = 0;
    long status = 0;
    bool started = false;
    bool tooLarge = false;
    bool fileError = false;
    CURL* curl = nullptr;

    // Decides, at the first bytes of the body, whether they belong to the file.
    bool start()
    {
        started = true;
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
        if (status != 200 && status != 206)
            return false;
        if (status == 200 && offset != 0) {
            // The server ignored the range: the whole body comes again.
            if (std::fflush(file) != 0 || ::ftruncate(fileno(file), 0) != 0 || std::fseek(file, 0, SEEK_SET) != 0) {
                fileError = true;
                return false;
            }
            offset = 0;
        }
        curl_off_t length = -1;
        curl_easy_getinfo(curl, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
        expected = length > 0 ? offset + static_cast<std::uint64_t>(length) : 0;
        if (request.maxBytes != 0 && expected > request.maxBytes) {
            tooLarge = true;
            return false;
        }
        return true;
    }

    std::size_t write(const char* data, std::size_t size)
    {
        if (!started && !start())
            return (tooLarge || fileError) ? 0 : size; // an error reply's body is read and dropped
        if (status != 200 && status != 206)
            return size;
        if (request.maxBytes != 0 && offset + written + size > request.maxBytes) {
            tooLarge = true;
            return 0;
        }
        if (std::fwrite(data, 1, size, file) != size) {
            fileError = true;
            return 0;
        }
        written += size;
        return size;
    }
};

std::size_t onBody(char* data, std::size_t size, std::size_t count, void* user)
{
    return static_cast<Transfer*>(user)->write(data, size * count);
}

int onProgress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    const Transfer& transfer = *static_cast<Transfer*>(user);
    if (transfer.request.cancelled != nullptr && transfer.request.cancelled->load())
        return 1;
    if (transfer.request.progress && transfer.started)
        transfer.request.progress(transfer.offset + transfer.written, transfer.expected);
    return 0;
}

std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* user)
{
    const std::string line(data, size * count);
    std::string& etag = *static_cast<std::string*>(user);
    constexpr std::string_view s_name = "etag:";
    if (line.size() > s_name.size() && strncasecmp(line.c_str(), s_name.data(), s_name.size()) == 0) {
        const std::size_t first = line.find_first_not_of(" \t", s_name.size());
        const std::size_t last = line.find_last_not_of(" \t\r\n");
        etag = first == std::string::npos || last < first ? std::string() : line.substr(first, last - first + 1);
    }
    return size * count;
}

std::string describe(const HttpResult& result, const std::string& url, const char* curlText)
{
    switch (result.outcome) {
    case ETransferOutcome::eDone: return {};
    case ETransferOutcome::eNotModified: return "not modified";
    case ETransferOutcome::eClientError:
    case ETransferOutcome::eServerError: return "the server answered " + std::to_string(result.status) + " for " + url;
    case ETransferOutcome::eCancelled: return "cancelled";
    case ETransferOutcome::eTooLarge: return "the download from " + url + " is larger than allowed";
    case ETransferOutcome::eFileError: return "the download from " + url + " could not be written";
    case ETransferOutcome::eTimedOut: return "the server at " + url + " did not answer in time (" + curlText + ")";
    default: return std::string(curlText) + ": " + url;
    }
}

} // namespace

bool isWorthRetrying(ETransferOutcome outcome)
{
    return outcome == ETransferOutcome::eServerError || outcome == ETransferOutcome::eConnection
        || outcome == ETransferOutcome::eTimedOut;
}

HttpResult runHttpTransfer(const HttpRequest& request, const TransferLimits& limits)
{
    static std::once_flag s_initialised;
    std::call_once(s_initialised, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });

    HttpResult result;
    Transfer transfer{request};
    std::error_code sizeError;
    transfer.offset = request.resume ? std::filesystem::file_size(request.file, sizeError) : 0;
    if (sizeError)
        transfer.offset = 0;
    transfer.file = std::fopen(request.file.c_str(), transfer.offset != 0 ? "ab" : "wb");
    if (transfer.file == nullptr) {
        result.outcome = ETransferOutcome::eFileError;
        result.message = "the download could not be written to " + request.file.string();
        return result;
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closeFile(transfer.file, &std::fclose);
    const std::unique_ptr<CURL, void (*)(CURL*)> curl(curl_easy_init(), &curl_easy_cleanup);
    transfer.curl = curl.get();
    curl_slist* headers = nullptr;
    if (!request.bearerToken.empty())
        headers = curl_slist_append(headers, ("Authorization: Bearer " + request.bearerToken).c_str());
    if (!request.ifNoneMatch.empty())
        headers = curl_slist_append(headers, ("If-None-Match: " + request.ifNoneMatch).c_str());
    const std::unique_ptr<curl_slist, void (*)(curl_slist*)> freeHeaders(headers, &curl_slist_free_all);
    const std::string range = std::to_string(transfer.offset) + "-";

    CURL* handle = curl.get();
    curl_easy_setopt(handle, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle, CURLOPT_MAXREDIRS, 5L);
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits.connectTimeout.count()));
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, limits.lowSpeedBytes);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits.lowSpeedTime.count()));
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &onBody);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &onHeader);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &result.etag);
    curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &onProgress);
    curl_easy_setopt(handle, CURLOPT_XFERINFODATA, &transfer);
    curl_easy_setopt(handle, CURLOPT_USERAGENT, "kx-online-library/1");
    if (transfer.offset != 0)
        curl_easy_setopt(handle, CURLOPT_RANGE, range.c_str());
    if (request.maxBytes != 0)
        curl_easy_setopt(handle, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(request.maxBytes - std::min(request.maxBytes, transfer.offset)));

    const CURLcode code = curl_easy_perform(handle);
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &result.status);
    result.outcome = translate(code);
    if (transfer.tooLarge)
        result.outcome = ETransferOutcome::eTooLarge;
    else if (transfer.fileError)
        result.outcome = ETransferOutcome::eFileError;
    else if (code == CURLE_OK) {
        if (result.status == 304)
            result.outcome = ETransferOutcome::eNotModified;
        else if (result.status == 416 && transfer.offset != 0)
            result.outcome = ETransferOutcome::eDone; // the earlier attempt had every byte already
        else if (result.status >= 500)
            result.outcome = ETransferOutcome::eServerError;
        else if (result.status >= 400 || (result.status != 200 && result.status != 206))
            result.outcome = ETransferOutcome::eClientError;
    }
    if (std::fflush(transfer.file) != 0 && result.outcome == ETransferOutcome::eDone)
        result.outcome = ETransferOutcome::eFileError;
    result.bytes = (result.outcome == ETransferOutcome::eDone && result.status == 416) ? transfer.offset
                                                                                      : transfer.offset + transfer.written;
    result.message = describe(result, request.url, curl_easy_strerror(code));
    return result;
}

} // namespace Kx::Types
