#include "datamodel/BinaryStreams.h"

#include <base/Exception.h>
#include <base/Strings.h>

#include <algorithm>
#include <limits>

namespace Kx {

void BinaryWriteStream::write(std::string_view utf8)
{
    write(static_cast<std::uint32_t>(utf8.size()));
    writeBytes(utf8.data(), utf8.size());
}

void BinaryWriteStream::write(std::wstring_view text)
{
    write(std::string_view(ToUTF8(text)));
}

void BinaryWriteStream::patch(std::size_t offset, const void* data, std::size_t count)
{
    std::memcpy(m_data.get() + offset, data, count);
}

std::vector<std::uint8_t> BinaryWriteStream::takeBytes()
{
    std::vector<std::uint8_t> bytes(m_data.get(), m_data.get() + m_size);
    m_data.reset();
    m_size = m_capacity = 0;
    return bytes;
}

void BinaryWriteStream::grow(std::size_t count)
{
    const std::size_t capacity = std::max({m_size + count, m_capacity * 2, std::size_t{256}});
    auto data = std::make_unique_for_overwrite<std::uint8_t[]>(capacity);
    if (m_size != 0)
        std::memcpy(data.get(), m_data.get(), m_size);
    m_data = std::move(data);
    m_capacity = capacity;
}

std::string_view BinaryReadStream::readText() const
{
    const auto length = read<std::uint32_t>();
    if (length > remaining())
        throwTruncated(length);
    const std::string_view text(reinterpret_cast<const char*>(m_bytes.data() + m_position), length);
    m_position += length;
    return text;
}

void BinaryReadStream::read(std::string& utf8) const
{
    utf8.assign(readText());
}

void BinaryReadStream::read(std::wstring& text) const
{
    text = ToIString(readText());
}

void BinaryReadStream::skip(std::size_t count) const
{
    if (count > remaining())
        throwTruncated(count);
    m_position += count;
}

BinaryReadStream BinaryReadStream::sub(std::size_t count) const
{
    if (count > remaining())
        throwTruncated(count);
    BinaryReadStream part(m_bytes.subspan(m_position, count));
    m_position += count;
    return part;
}

void BinaryReadStream::throwTruncated(std::size_t wanted) const
{
    throw Exception(L"The data is damaged: it ends before its content does.",
        "binary stream: " + std::to_string(wanted) + " bytes wanted at offset " + std::to_string(m_position) + " of "
            + std::to_string(m_bytes.size()));
}

} // namespace Kx
