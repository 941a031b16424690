#pragma once

#include <filesystem>
#include <string>

namespace Kx {

enum class ELogLevel { eDebug, eInfo, eWarning, eError };

// The application log ("kx.log") and the performance log ("kx-perf.log") in logDirectory(). The
// files are opened at the first line written; when they cannot be created, logging goes on without
// them (and to stderr when that is on). Each file is rotated at 5 MiB (the environment variable
// KX_LOG_MAX_BYTES, read when the logs open, sets another size), keeping three older files
// ("kx.1.log" the newest). Safe to call from any thread.
class AppLogMgr {
public:
    static void appLog(const std::wstring& text);
    static void appLogEx(ELogLevel level, const std::wstring& text);
    static void appPerfLog(const std::wstring& text);
    // The console mirrors the application log on stderr when asked to.
    static void logToStderr(bool on);
    // Paths::userDirectory()/"logs" as it was when the logs were opened, or as it is now if they
    // have not been opened yet.
    [[nodiscard]] static std::filesystem::path logDirectory();
};

} // namespace Kx
