#include "MemoryFiler.h"

#include <geometry/TmGeFieldFilerImpl.h>

#include <cstring>
#include <type_traits>

namespace KxTest {

using Tmk::ErrorStatus;

ErrorStatus MemoryFiler::put(Record record)
{
    if (m_operations++ >= m_failAt)
        return ErrorStatus::eEndOfFile;
    m_records.push_back(std::move(record));
    return ErrorStatus::eOk;
}

ErrorStatus MemoryFiler::take(std::optional<TmGeField> field, Record& record)
{
    if (m_operations++ >= m_failAt || m_cursor >= m_records.size())
        return ErrorStatus::eEndOfFile;
    if (m_records[m_cursor].field != field)
        return ErrorStatus::eCorruptData;
    record = m_records[m_cursor++];
    return ErrorStatus::eOk;
}

template <TmGeField field, class T>
ErrorStatus MemoryFiler::readField(T* value)
{
    Record r;
    const ErrorStatus s = take(field, r);
    if (s != ErrorStatus::eOk)
        return s;
    if constexpr (std::is_same_v<T, bool>)
        *value = r.integer != 0;
    else if constexpr (std::is_integral_v<T>)
        *value = static_cast<T>(r.integer);
    else if constexpr (std::is_same_v<T, double>)
        *value = r.values[0];
    else if constexpr (requires { value->z; })
        value->set(r.values[0], r.values[1], r.values[2]);
    else
        value->set(r.values[0], r.values[1]);
    return s;
}

template <TmGeField field, class T>
ErrorStatus MemoryFiler::writeField(const T& value)
{
    if constexpr (std::is_integral_v<T>)
        return put({field, {0.0, 0.0, 0.0}, static_cast<std::int64_t>(value), {}});
    else if constexpr (std::is_same_v<T, double>)
        return put({field, {value, 0.0, 0.0}, 0, {}});
    else if constexpr (requires { value.z; })
        return put({field, {value.x, value.y, value.z}, 0, {}});
    else
        return put({field, {value.x, value.y, 0.0}, 0, {}});
}

ErrorStatus MemoryFiler::readBytes(void* buffer, unsigned long count)
{
    Record r;
    const ErrorStatus s = take(std::nullopt, r);
    if (s != ErrorStatus::eOk)
        return s;
    if (r.bytes.size() != count)
        return ErrorStatus::eCorruptData;
    std::memcpy(buffer, r.bytes.data(), count);
    return s;
}

ErrorStatus MemoryFiler::writeBytes(const void* buffer, unsigned long count)
{
    const auto* bytes = static_cast<const std::uint8_t*>(buffer);
    return put({std::nullopt, {0.0, 0.0, 0.0}, 0, std::vector<std::uint8_t>(bytes, bytes + count)});
}

} // namespace KxTest

template class TmGeFieldFiler<KxTest::MemoryFiler>;
