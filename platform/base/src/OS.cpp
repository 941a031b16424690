#include "base/OS.h"

#include <atomic>
#include <thread>

namespace Kx::OS {

namespace {

std::atomic<std::thread::id> s_uiThread{};

} // namespace

bool platformIsUIThread()
{
    const auto self = std::this_thread::get_id();
    std::thread::id expected{};
    if (s_uiThread.compare_exchange_strong(expected, self)) {
        return true;
    }
    return expected == self;
}

void markUIThread()
{
    s_uiThread.store(std::this_thread::get_id());
}

} // namespace Kx::OS
