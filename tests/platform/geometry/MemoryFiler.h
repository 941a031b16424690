#pragma once

#include <geometry/TmGeFieldFiler.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace KxTest {

// A TmGeFiler over a list of typed records, for tests. Every record remembers which operation
// wrote it, so a reader that asks for a different kind of field (a layout mismatch) gets
// eCorruptData instead of reinterpreted bits. failAt(n) makes operation n and every later one
// fail, to check that failures propagate and leave the target untouched.
class MemoryFiler : public TmGeFieldFiler<MemoryFiler> {
public:
    struct Record {
        // Raw bytes are the one kind TmGeField does not name.
        std::optional<TmGeField> field;
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

    Tmk::ErrorStatus readBytes(void* buffer, unsigned long count) override;
    Tmk::ErrorStatus writeBytes(const void* buffer, unsigned long count) override;

private:
    friend class TmGeFieldFiler<MemoryFiler>;

    template <TmGeField field, class T>
    Tmk::ErrorStatus readField(T* value);
    template <TmGeField field, class T>
    Tmk::ErrorStatus writeField(const T& value);
    Tmk::ErrorStatus put(Record record);
    Tmk::ErrorStatus take(std::optional<TmGeField> field, Record& record);

    std::vector<Record> m_records;
    std::size_t m_cursor = 0;
    std::size_t m_operations = 0;
    std::size_t m_failAt = SIZE_MAX;
};

} // namespace KxTest

extern template class TmGeFieldFiler<KxTest::MemoryFiler>;
