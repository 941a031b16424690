#pragma once

#include <ostream>

namespace Kx::Console {

// Tells a session's user how the downloads its text commands started ended: one line each on
// standard output ("Material Download: <id> installed") or, when one failed, on standard error.
// While it lives it hears the download manager's events; finish() waits (pumping the UI thread's
// queue) until nothing is in flight or the wait of KX_DOWNLOAD_WAIT seconds (default 120) is over.
class DownloadReport {
public:
    DownloadReport(std::ostream& out, std::ostream& err);
    ~DownloadReport();
    DownloadReport(const DownloadReport&) = delete;
    DownloadReport& operator=(const DownloadReport&) = delete;

    // Lets the events that arrived so far be heard (between the lines of a session).
    static void pump();
    // The session's status once its downloads ended: `status`, or 1 when a download failed or
    // did not end in time.
    [[nodiscard]] int finish(int status);

private:
    class Site;
    Site* m_site;
};

} // namespace Kx::Console
