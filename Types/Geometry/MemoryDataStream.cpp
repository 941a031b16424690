#include <Types/Geometry/MemoryDataStream.h>

#include <base/Assert.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <optional>
#include <utility>

namespace Kx {

using telvarin::platform::core::io::eFromCurrent;
using telvarin::platform::core::io::eFromEnd;
using telvarin::platform::core::io::eFromStart;

namespace {

constexpr std::uint64_t s_initialCapacity = 0x10000;

// Offsets come from callers unchecked; a sum outside the 64-bit range is no position at all.
std::optional<std::int64_t> checkedSum(std::int64_t base, std::int64_t offset) noexcept
{
    std::int64_t sum = 0;
    if (__builtin_add_overflow(base, offset, &sum)) {
        return std::nullopt;
    }
    return sum;
}

} // namespace

MemoryDataStream::~MemoryDataStream() { release(); }

MemoryDataStream::MemoryDataStream(MemoryDataStream&& other) noexcept
    : m_buffer(std::exchange(other.m_buffer, nullptr))
    , m_capacity(std::exchange(other.m_capacity, 0))
    , m_size(std::exchange(other.m_size, 0))
    , m_position(std::exchange(other.m_position, 0))
{
}

MemoryDataStream& MemoryDataStream::operator=(MemoryDataStream&& other) noexcept
{
    if (this != &other) {
        release();
        m_buffer = std::exchange(other.m_buffer, nullptr);
        m_capacity = std::exchange(other.m_capacity, 0);
        m_size = std::exchange(other.m_size, 0);
        m_position = std::exchange(other.m_position, 0);
    }
    return *this;
}

bool MemoryDataStream::open() { return Open(s_initialCapacity); }
bool MemoryDataStream::openForWrite() { return Open(s_initialCapacity); }

bool MemoryDataStream::Open(std::uint64_t capacity)
{
    release();
    if (capacity != 0) {
        grow(capacity);
    }
    return true;
}

bool MemoryDataStream::Open(unsigned char* data, std::uint64_t count) noexcept
{
    if (data != m_buffer) {
        release();
    }
    m_buffer = data;
    m_capacity = count;
    m_size = static_cast<std::int64_t>(count);
    m_position = 0;
    return true;
}

void MemoryDataStream::DetachStreamBuffer(std::uint64_t& size, unsigned char*& buffer) noexcept
{
    size = static_cast<std::uint64_t>(m_size);
    buffer = std::exchange(m_buffer, nullptr);
    m_capacity = 0;
    m_size = 0;
    m_position = 0;
}

std::uint64_t MemoryDataStream::read(void* destination, std::uint64_t count)
{
    // A cursor moved before the start (wfind from the end) has nothing to read there.
    if (!availableToRead() || m_position < 0 || count == 0 || destination == nullptr) {
        return 0;
    }
    const std::uint64_t copied = std::min(count, static_cast<std::uint64_t>(m_size - m_position));
    std::memcpy(destination, m_buffer + m_position, copied);
    m_position += static_cast<std::int64_t>(copied);
    return copied;
}

bool MemoryDataStream::fill(void* destination, std::uint64_t count)
{
    if (!availableToRead() || m_position < 0 || count == 0 || destination == nullptr
        || static_cast<std::uint64_t>(m_size - m_position) < count) {
        return false;
    }
    return read(destination, count) == count;
}

std::uint64_t MemoryDataStream::write(const void* source, std::uint64_t count)
{
    // Bytes cannot be placed before the block: a program error, and nothing is written.
    KX_ASSERT(m_position >= 0);
    if (m_position < 0) {
        return 0;
    }
    // The end and the block of end + 1 bytes must both stay representable as positions.
    const auto maxCount = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max() - m_position);
    if (count >= maxCount) {
        throw std::bad_alloc();
    }
    const std::int64_t end = m_position + static_cast<std::int64_t>(count);
    if (static_cast<std::uint64_t>(end) >= m_capacity) {
        grow(static_cast<std::uint64_t>(end) + 1);
    }
    // A null source is a program error that the checked copy reports; the copy then clears the
    // bytes it was to fill, so the stream still advances by count over zeros.
    KX_ASSERT(source != nullptr || count == 0);
    if (source == nullptr) {
        std::memset(m_buffer + m_position, 0, count);
    } else if (count != 0) {
        std::memcpy(m_buffer + m_position, source, count);
    }
    m_position = end;
    m_size = std::max(m_size, end);
    return count;
}

std::int64_t MemoryDataStream::rfind(std::int64_t offset, teStreamPosition from)
{
    std::optional<std::int64_t> target;
    switch (from) {
    case eFromStart:
        target = offset;
        break;
    case eFromCurrent:
        target = checkedSum(m_position, offset);
        break;
    case eFromEnd:
        // From the end only backwards, and the end itself is a valid target.
        if (offset <= 0 && offset > -m_size) {
            m_position = m_size + offset;
        }
        return m_position;
    }
    if (target && *target >= 0 && *target < m_size) {
        m_position = *target;
    }
    return m_position;
}

std::int64_t MemoryDataStream::rseek(std::int64_t offset, teStreamPosition from)
{
    std::int64_t base = 0;
    if (from == eFromCurrent) {
        base = m_position;
    } else if (from == eFromEnd) {
        base = m_size;
    }
    // A sum beyond the range can only come from a positive offset (base is never negative).
    const std::int64_t target = checkedSum(base, offset).value_or(std::numeric_limits<std::int64_t>::max());
    m_position = target < 0 ? 0 : std::min(target, m_size);
    return m_position;
}

std::int64_t MemoryDataStream::wfind(std::int64_t offset, teStreamPosition from)
{
    std::optional<std::int64_t> target;
    switch (from) {
    case eFromStart:
        target = offset;
        break;
    case eFromCurrent:
        target = checkedSum(m_position, offset);
        break;
    case eFromEnd:
        // Forward past the block grows it; any other move from the end is taken as long as the
        // distance back does not exceed the block, which can leave the cursor before the start
        // (reads and writes there do nothing until it is moved back).
        if (offset > 0) {
            target = checkedSum(m_size, offset);
        } else if (offset >= -static_cast<std::int64_t>(std::min<std::uint64_t>(m_capacity, std::numeric_limits<std::int64_t>::max()))) {
            m_position = m_size + offset;
            return m_position;
        }
        break;
    }
    if (!target || *target < 0) {
        return m_position;
    }
    if (static_cast<std::uint64_t>(*target) > m_capacity) {
        grow(static_cast<std::uint64_t>(*target));
    }
    m_position = *target;
    return m_position;
}

void MemoryDataStream::grow(std::uint64_t capacity)
{
    auto* block = static_cast<unsigned char*>(std::calloc(capacity, 1));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    if (m_buffer != nullptr) {
        std::memcpy(block, m_buffer, std::min(m_capacity, capacity));
        std::free(m_buffer);
    }
    m_buffer = block;
    m_capacity = capacity;
}

void MemoryDataStream::release() noexcept
{
    std::free(m_buffer);
    m_buffer = nullptr;
    m_capacity = 0;
    m_size = 0;
    m_position = 0;
}

} // namespace Kx
