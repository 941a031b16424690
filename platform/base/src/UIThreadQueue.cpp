#include "base/UIThreadQueue.h"

#include "base/AppLogMgr.h"
#include "base/Assert.h"
#include "base/OS.h"
#include "base/Strings.h"

namespace Kx {

UIThreadQueue& UIThreadQueue::get()
{
    static UIThreadQueue s_queue;
    return s_queue;
}

void UIThreadQueue::post(std::function<void()> task)
{
    if (!task) {
        return;
    }
    {
        std::lock_guard lock(m_mutex);
        m_tasks.push_back(std::move(task));
    }
    m_posted.notify_all();
}

std::size_t UIThreadQueue::pump()
{
    KX_ASSERT(OS::platformIsUIThread());
    std::deque<std::function<void()>> tasks;
    {
        std::lock_guard lock(m_mutex);
        tasks.swap(m_tasks);
    }
    for (auto& task : tasks) {
        try {
            task();
        } catch (const std::exception& error) {
            AppLogMgr::appLogEx(ELogLevel::eError, L"A UI-thread task failed: " + ToIString(error.what()));
        } catch (...) {
            AppLogMgr::appLogEx(ELogLevel::eError, L"A UI-thread task failed with an unknown exception");
        }
    }
    return tasks.size();
}

bool UIThreadQueue::waitAndPump(std::chrono::milliseconds timeout)
{
    {
        std::unique_lock lock(m_mutex);
        m_posted.wait_for(lock, timeout, [this] { return !m_tasks.empty(); });
    }
    return pump() != 0;
}

std::size_t UIThreadQueue::pending() const
{
    std::lock_guard lock(m_mutex);
    return m_tasks.size();
}

} // namespace Kx
