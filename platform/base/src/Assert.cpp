#include "base/Assert.h"

#include "base/AppLogMgr.h"
#include "base/Strings.h"

#include <memory>

namespace Kx {

namespace {

std::mutex s_handlerMutex;
// Never destroyed: static destructors elsewhere may still assert.
std::shared_ptr<const AssertionHandler>& s_handler = *new std::shared_ptr<const AssertionHandler>;

void logReport(const AssertionReport& report)
{
    const std::string line = "Assertion failed: \"" + report.condition + "\" in " + report.function + " ["
        + report.module + "] at " + report.file + ":" + std::to_string(report.line);
    AppLogMgr::appLogEx(ELogLevel::eError, ToIString(line));
}

} // namespace

AssertionHandler setAssertionHandler(AssertionHandler handler)
{
    auto next = handler ? std::make_shared<const AssertionHandler>(std::move(handler)) : nullptr;
    std::lock_guard lock(s_handlerMutex);
    AssertionHandler previous = s_handler ? *s_handler : AssertionHandler{};
    s_handler = std::move(next);
    return previous;
}

void reportAssertion(const char* condition, const char* function, const char* module, const char* file, int line)
{
    const AssertionReport report{condition ? condition : "", function ? function : "", module ? module : "",
        file ? file : "", line};
    std::shared_ptr<const AssertionHandler> handler;
    {
        std::lock_guard lock(s_handlerMutex);
        handler = s_handler;
    }
    // Called outside the lock: a handler may itself assert or swap handlers.
    if (handler) {
        (*handler)(report);
    } else {
        logReport(report);
    }
}

ScopedAssertionCapture::ScopedAssertionCapture()
{
    m_previous = setAssertionHandler([this](const AssertionReport& report) {
        std::lock_guard lock(m_mutex);
        m_reports.push_back(report);
    });
}

ScopedAssertionCapture::~ScopedAssertionCapture()
{
    setAssertionHandler(std::move(m_previous));
}

std::size_t ScopedAssertionCapture::count() const
{
    std::lock_guard lock(m_mutex);
    return m_reports.size();
}

} // namespace Kx
