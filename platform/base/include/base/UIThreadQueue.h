#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace Kx {

// Work that must run on the UI thread, posted from any thread (download completions, events) and
// run when the host pumps the queue from its UI thread.
class UIThreadQueue {
public:
    [[nodiscard]] static UIThreadQueue& get();

    void post(std::function<void()> task);
    // Runs, in order, the tasks queued when it was called (tasks they post wait for the next pump)
    // and answers how many ran. A task that throws is logged; the others still run.
    std::size_t pump();
    // Waits up to `timeout` for a task, then pumps; true when at least one task ran.
    bool waitAndPump(std::chrono::milliseconds timeout);
    [[nodiscard]] std::size_t pending() const;

private:
    UIThreadQueue() = default;

    mutable std::mutex m_mutex;
    std::condition_variable m_posted;
    std::deque<std::function<void()>> m_tasks;
};

} // namespace Kx
