#pragma once

#include <cstdint>

namespace telvarin::platform::core::io {

// Origin of a cursor move.
enum teStreamPosition : int {
    eFromStart = 0,
    eFromCurrent = 1,
    eFromEnd = 2,
};

// A source of bytes with one read cursor. Counts are in bytes; positions are signed so that
// relative moves can go backwards.
class IDataReadStream {
public:
    virtual ~IDataReadStream() = default;

    virtual bool openForRead() = 0;
    virtual bool closeForRead() = 0;
    virtual bool close() = 0;
    [[nodiscard]] virtual bool availableToRead() = 0;
    // Copies up to `count` bytes to `destination`; answers how many were copied.
    virtual std::uint64_t read(void* destination, std::uint64_t count) = 0;
    // All or nothing: copies exactly `count` bytes and answers true, or copies none and answers false.
    virtual bool fill(void* destination, std::uint64_t count) = 0;
    // Checked move: refused (position unchanged) when the target lies outside the data.
    virtual std::int64_t rfind(std::int64_t offset, teStreamPosition from) = 0;
    // Clamped move: the target is clamped into [0, size].
    virtual std::int64_t rseek(std::int64_t offset, teStreamPosition from) = 0;
};

// A sink of bytes with one write cursor.
class IDataWriteStream {
public:
    virtual ~IDataWriteStream() = default;

    virtual bool openForWrite() = 0;
    virtual bool closeForWrite() = 0;
    virtual bool close() = 0;
    [[nodiscard]] virtual bool availableToWrite() = 0;
    // Writes `count` bytes at the cursor; answers how many were written.
    virtual std::uint64_t write(const void* source, std::uint64_t count) = 0;
    virtual bool commit(const void* source, std::uint64_t count) = 0;
    virtual bool truncate() = 0;
    virtual std::int64_t wfind(std::int64_t offset, teStreamPosition from) = 0;
    virtual std::int64_t wseek(std::int64_t offset, teStreamPosition from) = 0;
};

} // namespace telvarin::platform::core::io
