#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Kx {

// A reader-writer lock for data that every cache hit reads and that changes only on a miss or a
// library change. Each reading thread counts itself in on a cache line of its own, kept while the
// thread lives, so readers on different cores never write to a line another reader touches; a
// shared counter, as in std::shared_mutex, would bounce between the cores on every hit and make two
// threads slower than one.
//
// Readers never wait: while a writer is in or coming, a Reader is not let in and the caller takes
// its slow path instead. Writers must already be serialised by the caller (the library manager's
// mutex); a writer waits until the readers that got in have left.
class ReadMostlyLock {
public:
    ReadMostlyLock() = default;
    ReadMostlyLock(const ReadMostlyLock&) = delete;
    ReadMostlyLock& operator=(const ReadMostlyLock&) = delete;

    // A read section: true when the reader is in, and then left again when the section ends.
    class Reader {
    public:
        explicit Reader(ReadMostlyLock& lock) noexcept;
        ~Reader();
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;
        explicit operator bool() const noexcept { return m_slot != nullptr; }

    private:
        std::atomic<std::uint32_t>* m_slot;
    };

    // A write section: waits for the readers in to leave; no reader gets in until it ends.
    class Writer {
    public:
        explicit Writer(ReadMostlyLock& lock) noexcept;
        ~Writer();
        Writer(const Writer&) = delete;
        Writer& operator=(const Writer&) = delete;

    private:
        ReadMostlyLock& m_lock;
    };

private:
    // 128 bytes: the hardware prefetches cache lines in pairs.
    struct alignas(128) Slot {
        std::atomic<std::uint32_t> readers{0};
    };
    static constexpr std::size_t s_slotCount = 32;

    [[nodiscard]] Slot& slotOfThisThread() noexcept;

    std::array<Slot, s_slotCount> m_slots;
    alignas(128) std::atomic<bool> m_writing{false};
};

} // namespace Kx
