#pragma once

#include <datamodel/Streams.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Kx {

static_assert(std::endian::native == std::endian::little,
    "the binary form is little-endian and written with plain copies");

// Bytes a scalar takes in the binary form: its size, one byte for a bool.
template <class T>
[[nodiscard]] constexpr std::size_t encodedSize() noexcept
{
    return std::is_same_v<T, bool> ? 1 : sizeof(T);
}

// Binary save stream: fixed-width little-endian fields appended to a byte buffer, no tags.
// Strings are a 32-bit byte count followed by UTF-8.
class BinaryWriteStream final : public IWriteStreamBase {
public:
    BinaryWriteStream() noexcept : IWriteStreamBase(EStreamMode::eBinary) {}
    explicit BinaryWriteStream(std::size_t reserve) : IWriteStreamBase(EStreamMode::eBinary) { grow(reserve); }

    // Scalars are the hot path of every binary save: always inlined, with a copy of a size known
    // where it is compiled (a single move), never a call per field.
    template <class T>
        requires std::is_arithmetic_v<T>
    [[gnu::always_inline]] void write(T value)
    {
        if constexpr (std::is_same_v<T, bool>) {
            const std::uint8_t byte = value ? 1 : 0;
            writeFixed<1>(&byte);
        } else {
            writeFixed<sizeof value>(&value);
        }
    }
    // Several scalars in a row, as write() of each would put them, with one bounds check.
    template <class... T>
        requires(std::is_arithmetic_v<T> && ...)
    [[gnu::always_inline]] void writeAll(T... values)
    {
        constexpr std::size_t total = (encodedSize<T>() + ...);
        if (total > m_capacity - m_size) [[unlikely]]
            grow(total);
        (put(values), ...);
    }
    void write(std::string_view utf8);
    void write(std::wstring_view text);
    void writeBytes(const void* data, std::size_t count)
    {
        if (count > m_capacity - m_size)
            grow(count);
        std::memcpy(m_data.get() + m_size, data, count);
        m_size += count;
    }

    [[nodiscard]] std::span<const std::uint8_t> bytes() const noexcept { return {m_data.get(), m_size}; }
    [[nodiscard]] std::vector<std::uint8_t> takeBytes();
    [[nodiscard]] std::size_t size() const noexcept { return m_size; }
    // Overwrites bytes already written (length prefixes patched after their payload).
    void patch(std::size_t offset, const void* data, std::size_t count);

private:
    template <class T>
    [[gnu::always_inline]] void put(T value) noexcept
    {
        if constexpr (std::is_same_v<T, bool>)
            m_data[m_size] = value ? 1 : 0;
        else
            std::memcpy(m_data.get() + m_size, &value, sizeof value);
        m_size += encodedSize<T>();
    }
    template <std::size_t N>
    [[gnu::always_inline]] void writeFixed(const void* data)
    {
        if (N > m_capacity - m_size) [[unlikely]]
            grow(N);
        std::memcpy(m_data.get() + m_size, data, N);
        m_size += N;
    }
    // Makes room for `count` more bytes, at least doubling the buffer.
    void grow(std::size_t count);

    std::unique_ptr<std::uint8_t[]> m_data;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

// Binary load stream over bytes it does not own. Every read checks the remaining length first and
// throws Kx::Exception when the data ends early, so a truncated file can never be read past its end.
class BinaryReadStream final : public IReadStreamBase {
public:
    explicit BinaryReadStream(std::span<const std::uint8_t> bytes) noexcept
        : IReadStreamBase(EStreamMode::eBinary)
        , m_bytes(bytes)
    {
    }

    // Inlined like the writes: a length check and a fixed-size copy per scalar.
    template <class T>
        requires std::is_arithmetic_v<T>
    [[gnu::always_inline]] void read(T& value) const
    {
        if constexpr (std::is_same_v<T, bool>) {
            std::uint8_t byte = 0;
            readFixed<1>(&byte);
            value = byte != 0;
        } else {
            readFixed<sizeof value>(&value);
        }
    }
    template <class T>
        requires std::is_arithmetic_v<T>
    [[nodiscard]] T read() const
    {
        T value{};
        read(value);
        return value;
    }
    // Several scalars in a row with one length check; when too few bytes remain, none is read.
    template <class... T>
        requires(std::is_arithmetic_v<T> && ...)
    [[gnu::always_inline]] void readAll(T&... values) const
    {
        constexpr std::size_t total = (encodedSize<T>() + ...);
        if (total > m_bytes.size() - m_position) [[unlikely]]
            throwTruncated(total);
        (take(values), ...);
    }
    void read(std::string& utf8) const;
    void read(std::wstring& text) const;
    void readBytes(void* data, std::size_t count) const
    {
        if (count > m_bytes.size() - m_position)
            throwTruncated(count);
        std::memcpy(data, m_bytes.data() + m_position, count);
        m_position += count;
    }
    void skip(std::size_t count) const;
    // A stream over the next `count` bytes, which this stream skips. Throws like a read when fewer remain.
    [[nodiscard]] BinaryReadStream sub(std::size_t count) const;

    [[nodiscard]] std::size_t position() const noexcept { return m_position; }
    [[nodiscard]] std::size_t remaining() const noexcept { return m_bytes.size() - m_position; }
    [[nodiscard]] bool atEnd() const noexcept { return m_position == m_bytes.size(); }

private:
    template <class T>
    [[gnu::always_inline]] void take(T& value) const noexcept
    {
        if constexpr (std::is_same_v<T, bool>)
            value = m_bytes[m_position] != 0;
        else
            std::memcpy(&value, m_bytes.data() + m_position, sizeof value);
        m_position += encodedSize<T>();
    }
    template <std::size_t N>
    [[gnu::always_inline]] void readFixed(void* data) const
    {
        if (N > m_bytes.size() - m_position) [[unlikely]]
            throwTruncated(N);
        std::memcpy(data, m_bytes.data() + m_position, N);
        m_position += N;
    }
    // A length-prefixed text, viewed in place.
    [[nodiscard]] std::string_view readText() const;
    [[noreturn]] void throwTruncated(std::size_t wanted) const;

    std::span<const std::uint8_t> m_bytes;
    mutable std::size_t m_position = 0;
};

// The binary stream behind a base stream whose mode is binary; null for any other stream.
[[nodiscard]] inline BinaryWriteStream* asBinary(IWriteStreamBase* stream) noexcept
{
    return stream->isBinary() ? static_cast<BinaryWriteStream*>(stream) : nullptr;
}
[[nodiscard]] inline const BinaryReadStream* asBinary(const IReadStreamBase* stream) noexcept
{
    return stream->isBinary() ? static_cast<const BinaryReadStream*>(stream) : nullptr;
}

} // namespace Kx
