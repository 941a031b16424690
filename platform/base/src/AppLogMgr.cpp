#include "base/AppLogMgr.h"

#include "base/Paths.h"

#include <core/Strings.h>

#include <spdlog/logger.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdlib>
#include <memory>
#include <mutex>

namespace Kx {

namespace {

struct Logs {
    std::filesystem::path directory;
    std::shared_ptr<spdlog::logger> app;
    std::shared_ptr<spdlog::logger> perf;
    std::shared_ptr<spdlog::logger> console;
};

std::once_flag s_openOnce;
// Never destroyed: static destructors elsewhere may still log (an assertion at exit, say).
Logs& s_logs = *new Logs;
// Set once s_logs is complete; s_logs is never written again after that.
std::atomic<bool> s_opened{false};
std::atomic<bool> s_toStderr{false};

// A log file is rotated when it reaches this size (KX_LOG_MAX_BYTES overrides it), keeping this many
// older files beside it ("kx.1.log" the newest): a long-running host never fills the disk.
constexpr std::size_t s_defaultMaxBytes = 5 * 1024 * 1024;
constexpr std::size_t s_keptFiles = 3;
constexpr std::size_t s_smallestMaxBytes = 1024;

std::size_t maxLogBytes()
{
    const char* text = std::getenv("KX_LOG_MAX_BYTES");
    std::size_t value = 0;
    if (text == nullptr || *text == '\0') {
        return s_defaultMaxBytes;
    }
    const char* end = text + std::char_traits<char>::length(text);
    const auto [at, error] = std::from_chars(text, end, value);
    if (error != std::errc() || at != end) {
        return s_defaultMaxBytes;
    }
    return std::max(value, s_smallestMaxBytes);
}

std::shared_ptr<spdlog::logger> openFileLog(const std::string& name, const std::filesystem::path& file)
{
    try {
        auto sink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(file.string(), maxLogBytes(), s_keptFiles);
        auto logger = std::make_shared<spdlog::logger>(name, std::move(sink));
        logger->set_level(spdlog::level::trace);
        // Lines reach the file at once: the log is read after crashes and by tests.
        logger->flush_on(spdlog::level::trace);
        return logger;
    } catch (const std::exception&) {
        return nullptr;
    }
}

// Loggers are not registered with spdlog's global registry: the host may use spdlog for itself.
const Logs& logs()
{
    std::call_once(s_openOnce, [] {
        s_logs.directory = Paths::userDirectory() / "logs";
        std::error_code error;
        std::filesystem::create_directories(s_logs.directory, error);
        if (!error) {
            s_logs.app = openFileLog("kx", s_logs.directory / "kx.log");
            s_logs.perf = openFileLog("kx-perf", s_logs.directory / "kx-perf.log");
        }
        try {
            s_logs.console = std::make_shared<spdlog::logger>("kx-console",
                std::make_shared<spdlog::sinks::stderr_sink_mt>());
            s_logs.console->set_level(spdlog::level::trace);
        } catch (const std::exception&) {
            s_logs.console = nullptr;
        }
        s_opened.store(true, std::memory_order_release);
    });
    return s_logs;
}

spdlog::level::level_enum toSpdlog(ELogLevel level)
{
    switch (level) {
    case ELogLevel::eDebug: return spdlog::level::debug;
    case ELogLevel::eInfo: return spdlog::level::info;
    case ELogLevel::eWarning: return spdlog::level::warn;
    case ELogLevel::eError: return spdlog::level::err;
    }
    return spdlog::level::info;
}

void write(const std::shared_ptr<spdlog::logger>& logger, spdlog::level::level_enum level, const std::string& text)
{
    if (!logger) {
        return;
    }
    try {
        logger->log(level, spdlog::string_view_t(text.data(), text.size()));
    } catch (const std::exception&) {
        // A full disk must not take the application down with it.
    }
}

} // namespace

void AppLogMgr::appLog(const std::wstring& text)
{
    appLogEx(ELogLevel::eInfo, text);
}

void AppLogMgr::appLogEx(ELogLevel level, const std::wstring& text)
{
    const Logs& current = logs();
    const std::string line = telvarin::platform::core::toUTF8(text);
    write(current.app, toSpdlog(level), line);
    if (s_toStderr.load(std::memory_order_relaxed)) {
        write(current.console, toSpdlog(level), line);
    }
}

void AppLogMgr::appPerfLog(const std::wstring& text)
{
    write(logs().perf, spdlog::level::info, telvarin::platform::core::toUTF8(text));
}

void AppLogMgr::logToStderr(bool on)
{
    s_toStderr.store(on, std::memory_order_relaxed);
}

std::filesystem::path AppLogMgr::logDirectory()
{
    if (s_opened.load(std::memory_order_acquire)) {
        return s_logs.directory;
    }
    return Paths::userDirectory() / "logs";
}

} // namespace Kx
