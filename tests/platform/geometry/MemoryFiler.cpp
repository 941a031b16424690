#include "MemoryFiler.h"

#include <cstring>

namespace KxTest {

using Tmk::ErrorStatus;

ErrorStatus MemoryFiler::put(Record record)
{
    if (m_operations++ >= m_failAt)
        return ErrorStatus::eEndOfFile;
    m_records.push_back(std::move(record));
    return ErrorStatus::eOk;
}

ErrorStatus MemoryFiler::take(EField field, Record& record)
{
    if (m_operations++ >= m_failAt || m_cursor >= m_records.size())
        return ErrorStatus::eEndOfFile;
    if (m_records[m_cursor].field != field)
        return ErrorStatus::eCorruptData;
    record = m_records[m_cursor++];
    return ErrorStatus::eOk;
}

namespace {

MemoryFiler::Record integerRecord(MemoryFiler::EField field, std::int64_t v)
{
    return {field, {0.0, 0.0, 0.0}, v, {}};
}

MemoryFiler::Record realRecord(MemoryFiler::EField field, double x, double y = 0.0, double z = 0.0)
{
    return {field, {x, y, z}, 0, {}};
}

template <class T>
ErrorStatus readInteger(ErrorStatus s, const MemoryFiler::Record& r, T* value)
{
    if (s == ErrorStatus::eOk)
        *value = static_cast<T>(r.integer);
    return s;
}

} // namespace

ErrorStatus MemoryFiler::readBool(bool* value)
{
    Record r;
    const ErrorStatus s = take(EField::eBool, r);
    if (s == ErrorStatus::eOk)
        *value = r.integer != 0;
    return s;
}

ErrorStatus MemoryFiler::readBoolean(Tmk::Boolean* value)
{
    Record r;
    const ErrorStatus s = take(EField::eBoolean, r);
    if (s == ErrorStatus::eOk)
        *value = static_cast<Tmk::Boolean>(r.integer);
    return s;
}

ErrorStatus MemoryFiler::readChar(char* value)
{
    Record r;
    const ErrorStatus s = take(EField::eChar, r);
    return readInteger(s, r, value);
}

ErrorStatus MemoryFiler::readShort(std::int16_t* value)
{
    Record r;
    const ErrorStatus s = take(EField::eShort, r);
    return readInteger(s, r, value);
}

ErrorStatus MemoryFiler::readLong(std::int32_t* value)
{
    Record r;
    const ErrorStatus s = take(EField::eLong, r);
    return readInteger(s, r, value);
}

ErrorStatus MemoryFiler::readUChar(std::uint8_t* value)
{
    Record r;
    const ErrorStatus s = take(EField::eUChar, r);
    return readInteger(s, r, value);
}

ErrorStatus MemoryFiler::readUShort(std::uint16_t* value)
{
    Record r;
    const ErrorStatus s = take(EField::eUShort, r);
    return readInteger(s, r, value);
}

ErrorStatus MemoryFiler::readULong(std::uint32_t* value)
{
    Record r;
    const ErrorStatus s = take(EField::eULong, r);
    return readInteger(s, r, value);
}

ErrorStatus MemoryFiler::readBytes(void* buffer, unsigned long count)
{
    Record r;
    const ErrorStatus s = take(EField::eBytes, r);
    if (s != ErrorStatus::eOk)
        return s;
    if (r.bytes.size() != count)
        return ErrorStatus::eCorruptData;
    std::memcpy(buffer, r.bytes.data(), count);
    return s;
}

ErrorStatus MemoryFiler::readDouble(double* value)
{
    Record r;
    const ErrorStatus s = take(EField::eDouble, r);
    if (s == ErrorStatus::eOk)
        *value = r.values[0];
    return s;
}

ErrorStatus MemoryFiler::readPoint2d(TmGePoint2d* value)
{
    Record r;
    const ErrorStatus s = take(EField::ePoint2d, r);
    if (s == ErrorStatus::eOk)
        value->set(r.values[0], r.values[1]);
    return s;
}

ErrorStatus MemoryFiler::readPoint3d(TmGePoint3d* value)
{
    Record r;
    const ErrorStatus s = take(EField::ePoint3d, r);
    if (s == ErrorStatus::eOk)
        value->set(r.values[0], r.values[1], r.values[2]);
    return s;
}

ErrorStatus MemoryFiler::readVector2d(TmGeVector2d* value)
{
    Record r;
    const ErrorStatus s = take(EField::eVector2d, r);
    if (s == ErrorStatus::eOk)
        value->set(r.values[0], r.values[1]);
    return s;
}

ErrorStatus MemoryFiler::readVector3d(TmGeVector3d* value)
{
    Record r;
    const ErrorStatus s = take(EField::eVector3d, r);
    if (s == ErrorStatus::eOk)
        value->set(r.values[0], r.values[1], r.values[2]);
    return s;
}

ErrorStatus MemoryFiler::writeBool(bool value) { return put(integerRecord(EField::eBool, value ? 1 : 0)); }
ErrorStatus MemoryFiler::writeBoolean(Tmk::Boolean value) { return put(integerRecord(EField::eBoolean, value)); }
ErrorStatus MemoryFiler::writeChar(char value) { return put(integerRecord(EField::eChar, value)); }
ErrorStatus MemoryFiler::writeShort(std::int16_t value) { return put(integerRecord(EField::eShort, value)); }
ErrorStatus MemoryFiler::writeLong(std::int32_t value) { return put(integerRecord(EField::eLong, value)); }
ErrorStatus MemoryFiler::writeUChar(std::uint8_t value) { return put(integerRecord(EField::eUChar, value)); }
ErrorStatus MemoryFiler::writeUShort(std::uint16_t value) { return put(integerRecord(EField::eUShort, value)); }
ErrorStatus MemoryFiler::writeULong(std::uint32_t value) { return put(integerRecord(EField::eULong, value)); }
ErrorStatus MemoryFiler::writeDouble(double value) { return put(realRecord(EField::eDouble, value)); }

ErrorStatus MemoryFiler::writeBytes(const void* buffer, unsigned long count)
{
    const auto* bytes = static_cast<const std::uint8_t*>(buffer);
    return put({EField::eBytes, {0.0, 0.0, 0.0}, 0, std::vector<std::uint8_t>(bytes, bytes + count)});
}

ErrorStatus MemoryFiler::writePoint2d(const TmGePoint2d& value) { return put(realRecord(EField::ePoint2d, value.x, value.y)); }
ErrorStatus MemoryFiler::writePoint3d(const TmGePoint3d& value)
{
    return put(realRecord(EField::ePoint3d, value.x, value.y, value.z));
}
ErrorStatus MemoryFiler::writeVector2d(const TmGeVector2d& value) { return put(realRecord(EField::eVector2d, value.x, value.y)); }
ErrorStatus MemoryFiler::writeVector3d(const TmGeVector3d& value)
{
    return put(realRecord(EField::eVector3d, value.x, value.y, value.z));
}

} // namespace KxTest
