#include "Types/Appearance/internal/ReadMostlyLock.h"

#include <thread>

namespace Kx {

namespace {

// Threads take slots in the order they first read, so the first few threads never share one.
std::size_t slotIndexOfThisThread(std::size_t slotCount) noexcept
{
    static std::atomic<std::size_t> s_nextThread{0};
    thread_local const std::size_t s_thread = s_nextThread.fetch_add(1, std::memory_order_relaxed);
    return s_thread % slotCount;
}

} // namespace

ReadMostlyLock::Slot& ReadMostlyLock::slotOfThisThread() noexcept
{
    return m_slots[slotIndexOfThisThread(s_slotCount)];
}

// The reader announces itself, then looks for a writer; the writer announces itself, then looks for
// readers. Both sides sequentially consistent, so at least one of them sees the other.
ReadMostlyLock::Reader::Reader(ReadMostlyLock& lock) noexcept : m_slot(&lock.slotOfThisThread().readers)
{
    m_slot->fetch_add(1, std::memory_order_seq_cst);
    if (lock.m_writing.load(std::memory_order_seq_cst)) {
        m_slot->fetch_sub(1, std::memory_order_release);
        m_slot = nullptr;
    }
}

ReadMostlyLock::Reader::~Reader()
{
    if (m_slot != nullptr) {
        m_slot->fetch_sub(1, std::memory_order_release);
    }
}

ReadMostlyLock::Writer::Writer(ReadMostlyLock& lock) noexcept : m_lock(lock)
{
    m_lock.m_writing.store(true, std::memory_order_seq_cst);
    for (Slot& slot : m_lock.m_slots) {
        while (slot.readers.load(std::memory_order_seq_cst) != 0) {
            std::this_thread::yield();
        }
    }
}

ReadMostlyLock::Writer::~Writer()
{
    m_lock.m_writing.store(false, std::memory_order_release);
}

} // namespace Kx
