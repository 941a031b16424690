#pragma once

#include <geometry/TmGeFiler.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace KxTest {

// A TmGeFiler over a list of typed records, for tests. Every record remembers which operation
// wrote it, so a reader that asks for a different kind of field (a layout mismatch) gets
// eCorruptData instead of reinterpreted bits. failAt(n) makes operation n and every later one
// fail, to check that failures propagate and leave the target untouched.
class MemoryFiler : public TmGeFiler {
public:
    enum class EField : std::uint8_t {
        eBool, eBoolean, eBytes, eChar, eShort, eLong, eUChar, eUShort, eULong, eDouble,
        ePoint2d, ePoint3d, eVector2d, eVector3d,
    };

    struct Record {
        EField field;
        double values[3];
        std::int64_t integer;
        std::vector<std::uint8_t> bytes;
    };

    void rewind() { m_cursor = 0; }
    void failAt(std::size_t operation) { m_failAt = operation; }
    [[nodiscard]] std::size_t operations() const { return m_operations; }
    [[nodiscard]] const std::vector<Record>& records() const { return m_records; }
    [[nodiscard]] std::vector<Record>& records() { return m_records; }
    [[nodiscard]] bool atEnd() const { return m_cursor == m_records.size(); }

    Tmk::ErrorStatus readBool(bool* value) override;
    Tmk::ErrorStatus readBoolean(Tmk::Boolean* value) override;
    Tmk::ErrorStatus readBytes(void* buffer, unsigned long count) override;
    Tmk::ErrorStatus readChar(char* value) override;
    Tmk::ErrorStatus readShort(std::int16_t* value) override;
    Tmk::ErrorStatus readLong(std::int32_t* value) override;
    Tmk::ErrorStatus readUChar(std::uint8_t* value) override;
    Tmk::ErrorStatus readUShort(std::uint16_t* value) override;
    Tmk::ErrorStatus readULong(std::uint32_t* value) override;
    Tmk::ErrorStatus readDouble(double* value) override;
    Tmk::ErrorStatus readPoint2d(TmGePoint2d* value) override;
    Tmk::ErrorStatus readPoint3d(TmGePoint3d* value) override;
    Tmk::ErrorStatus readVector2d(TmGeVector2d* value) override;
    Tmk::ErrorStatus readVector3d(TmGeVector3d* value) override;

    Tmk::ErrorStatus writeBool(bool value) override;
    Tmk::ErrorStatus writeBoolean(Tmk::Boolean value) override;
    Tmk::ErrorStatus writeBytes(const void* buffer, unsigned long count) override;
    Tmk::ErrorStatus writeChar(char value) override;
    Tmk::ErrorStatus writeShort(std::int16_t value) override;
    Tmk::ErrorStatus writeLong(std::int32_t value) override;
    Tmk::ErrorStatus writeUChar(std::uint8_t value) override;
    Tmk::ErrorStatus writeUShort(std::uint16_t value) override;
    Tmk::ErrorStatus writeULong(std::uint32_t value) override;
    Tmk::ErrorStatus writeDouble(double value) override;
    Tmk::ErrorStatus writePoint2d(const TmGePoint2d& value) override;
    Tmk::ErrorStatus writePoint3d(const TmGePoint3d& value) override;
    Tmk::ErrorStatus writeVector2d(const TmGeVector2d& value) override;
    Tmk::ErrorStatus writeVector3d(const TmGeVector3d& value) override;

private:
    Tmk::ErrorStatus put(Record record);
    Tmk::ErrorStatus take(EField field, Record& record);

    std::vector<Record> m_records;
    std::size_t m_cursor = 0;
    std::size_t m_operations = 0;
    std::size_t m_failAt = SIZE_MAX;
};

} // namespace KxTest
