#pragma once

#include <core/io/DataStream.h>

#include <cstdint>

namespace Kx {

// An in-memory byte stream with one cursor shared by reading and writing, so that data written by
// one component can be handed to another without a file. The stream owns its block (malloc family)
// until DetachStreamBuffer hands it to the caller.
//
// The block grows to exactly what a write needs, never by doubling: a run of small writes past the
// initial 64 KiB reallocates on every write, so writers of much data write in large pieces. New
// bytes are zero, so gaps left by moving the write cursor beyond the data read as zeros.
//
// Movable, not copyable: a copy would either share the block or silently duplicate megabytes.
class MemoryDataStream : public telvarin::platform::core::io::IDataReadStream,
                         public telvarin::platform::core::io::IDataWriteStream {
public:
    using teStreamPosition = telvarin::platform::core::io::teStreamPosition;

    MemoryDataStream() noexcept = default;
    ~MemoryDataStream() override;
    MemoryDataStream(MemoryDataStream&& other) noexcept;
    MemoryDataStream& operator=(MemoryDataStream&& other) noexcept;
    MemoryDataStream(const MemoryDataStream&) = delete;
    MemoryDataStream& operator=(const MemoryDataStream&) = delete;

    // Both start over with a fresh zeroed block of 64 KiB (any previous block is freed).
    bool open();
    bool openForWrite() override;

    // Gives the block and the number of valid bytes to the caller, who frees the block with free();
    // the stream is left empty, without a block.
    void DetachStreamBuffer(std::uint64_t& size, unsigned char*& buffer) noexcept;

    // The stream holds everything in memory, so these have nothing to do and always succeed.
    bool openForRead() override { return true; }
    bool closeForRead() override { return true; }
    bool closeForWrite() override { return true; }
    bool close() override { return true; }
    [[nodiscard]] bool availableToWrite() override { return true; }
    bool commit(const void* source, std::uint64_t count) override { return true; }
    bool truncate() override { return true; }

    [[nodiscard]] bool availableToRead() override { return m_position < m_size; }
    // Copies min(count, size - position) bytes; 0 when nothing is left, count is 0 or destination
    // is null.
    std::uint64_t read(void* destination, std::uint64_t count) override;
    // All or nothing: false, and the cursor unmoved, unless `count` (> 0) bytes remain.
    bool fill(void* destination, std::uint64_t count) override;
    // Writes at the cursor, growing the block to exactly cursor + count + 1 bytes when it is too
    // small; answers count. A null source with a non-zero count is a program error: it is reported
    // as an assertion and count zero bytes are written in its place. A cursor before the start is
    // also reported; nothing is written there (answer 0).
    std::uint64_t write(const void* source, std::uint64_t count) override;

    // Each answers the resulting position.
    // Checked: moves only to a position inside the data [0, size); otherwise (and for an unknown
    // origin) the cursor stays.
    std::int64_t rfind(std::int64_t offset, teStreamPosition from) override;
    // Clamped into [0, size]; an unknown origin counts from the start.
    std::int64_t rseek(std::int64_t offset, teStreamPosition from) override;
    // Growing: a target beyond the block grows it to exactly the target; a negative target from the
    // start or the current position (and an unknown origin) leaves the cursor where it is. From the
    // end, a move back by no more than the block's capacity is taken even when it passes the start,
    // leaving a cursor before the data at which reads and writes do nothing. The data size is
    // unchanged until a write.
    std::int64_t wfind(std::int64_t offset, teStreamPosition from) override;
    // The same move as wfind: the stream has a single cursor and a single growth rule.
    std::int64_t wseek(std::int64_t offset, teStreamPosition from) override { return wfind(offset, from); }

    [[nodiscard]] std::uint64_t capacity() const noexcept { return m_capacity; }
    [[nodiscard]] std::int64_t size() const noexcept { return m_size; }
    [[nodiscard]] std::int64_t position() const noexcept { return m_position; }
    [[nodiscard]] const unsigned char* data() const noexcept { return m_buffer; }

private:
    // Starts over with an owned zeroed block of `capacity` bytes (none when 0).
    bool Open(std::uint64_t capacity);
    // Starts over with `data` (from the malloc family) as the owned block, all `count` bytes valid.
    bool Open(unsigned char* data, std::uint64_t count) noexcept;

    // Allocates exactly `capacity` bytes, copies the old block into it and frees the old one.
    void grow(std::uint64_t capacity);
    void release() noexcept;

    unsigned char* m_buffer = nullptr;
    std::uint64_t m_capacity = 0;
    std::int64_t m_size = 0;
    std::int64_t m_position = 0;
};

} // namespace Kx
