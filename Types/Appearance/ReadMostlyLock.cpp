#include "Types/Appearance/internal/ReadMostlyLock.h"

#include <bit>
#include <thread>

namespace Kx {

namespace {

// A thread keeps its slot from its first read to its end, and gives it back then, so that threads
// that live together have slots of their own for as long as there are enough; only beyond that
// (more than 32 threads reading at once) do some share.
class SlotClaim {
public:
    SlotClaim() noexcept
    {
        std::uint32_t taken = s_taken.load(std::memory_order_relaxed);
        while (taken != ~std::uint32_t{0}) {
            const int free = std::countr_one(taken);
            if (s_taken.compare_exchange_weak(taken, taken | (std::uint32_t{1} << free), std::memory_order_relaxed)) {
                m_index = static_cast<std::size_t>(free);
                m_owned = true;
                return;
            }
        }
        m_index = s_overflow.fetch_add(1, std::memory_order_relaxed);
    }
    ~SlotClaim()
    {
        if (m_owned) {
            s_taken.fetch_and(~(std::uint32_t{1} << m_index), std::memory_order_relaxed);
        }
    }
    SlotClaim(const SlotClaim&) = delete;
    SlotClaim& operator=(const SlotClaim&) = delete;

    [[nodiscard]] std::size_t index() const noexcept { return m_index; }

private:
    static inline std::atomic<std::uint32_t> s_taken{0};
    static inline std::atomic<std::size_t> s_overflow{0};
    std::size_t m_index = 0;
    bool m_owned = false;
};

std::size_t slotIndexOfThisThread(std::size_t slotCount) noexcept
{
    thread_local const SlotClaim s_claim;
    return s_claim.index() % slotCount;
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
