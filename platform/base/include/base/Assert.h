#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

// Every library is compiled with the name of its module (kx_add_library); code built outside one
// still gets a name to report.
#ifndef KX_MODULE_NAME
#define KX_MODULE_NAME "unknown"
#endif

namespace Kx {

// What a violated invariant reports: the condition as written, the signature of the function that
// checked it, the module it was compiled into and the source position.
struct AssertionReport {
    std::string condition;
    std::string function;
    std::string module;
    std::string file;
    int line = 0;
};

using AssertionHandler = std::function<void(const AssertionReport&)>;

// Installs `handler` for the whole process and answers the previous one. A null handler restores
// the default, which writes the report to the application log. Handlers may run on any thread.
AssertionHandler setAssertionHandler(AssertionHandler handler);

void reportAssertion(const char* condition, const char* function, const char* module, const char* file, int line);

// Collects every report made while it lives (from any thread) instead of logging it; tests check
// the exact texts. Read reports() once the threads that may report have finished.
class ScopedAssertionCapture {
public:
    ScopedAssertionCapture();
    ~ScopedAssertionCapture();
    ScopedAssertionCapture(const ScopedAssertionCapture&) = delete;
    ScopedAssertionCapture& operator=(const ScopedAssertionCapture&) = delete;

    [[nodiscard]] const std::vector<AssertionReport>& reports() const { return m_reports; }
    [[nodiscard]] std::size_t count() const;

private:
    mutable std::mutex m_mutex;
    std::vector<AssertionReport> m_reports;
    AssertionHandler m_previous;
};

} // namespace Kx

// Reports a violated invariant and carries on: the check never changes the path the program takes.
// `cond` is evaluated exactly once, in every build.
#define KX_ASSERT(cond)                                                                              \
    do {                                                                                             \
        if (!static_cast<bool>(cond)) {                                                              \
            ::Kx::reportAssertion(#cond, __PRETTY_FUNCTION__, KX_MODULE_NAME, __FILE__, __LINE__);   \
        }                                                                                            \
    } while (false)

// KX_ASSERT reporting `text` as the condition: for a check written once for several cases, each
// of which reports the condition as its own case spells it.
#define KX_ASSERT_TEXT(cond, text)                                                                   \
    do {                                                                                             \
        if (!static_cast<bool>(cond)) {                                                              \
            ::Kx::reportAssertion((text), __PRETTY_FUNCTION__, KX_MODULE_NAME, __FILE__, __LINE__);  \
        }                                                                                            \
    } while (false)
