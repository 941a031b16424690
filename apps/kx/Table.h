#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace Kx::Console {

// The number of terminal columns UTF-8 text takes: one per character, none for combining marks and
// zero-width characters, two for East Asian wide characters. Byte counts misalign a column as soon
// as a name holds an umlaut ("Aluminium, geschäumt" is 20 columns but 21 bytes). Malformed bytes
// count one column each.
[[nodiscard]] std::size_t displayWidth(std::string_view utf8);

// A console table: a header row, then one row per item, each column as wide as its widest cell on
// screen, two blanks between columns. Nothing is cut: a long name widens its column.
class Table {
public:
    enum class EAlign { eLeft, eRight };
    struct Column {
        std::string header;
        EAlign align = EAlign::eLeft;
    };

    explicit Table(std::vector<Column> columns);

    // Rows with fewer cells than columns are padded with empty cells; extra cells are dropped.
    void addRow(std::vector<std::string> cells);
    [[nodiscard]] std::size_t rowCount() const noexcept { return m_rows.size(); }
    // Each line starts with `indent` and has no trailing blanks.
    void print(std::ostream& out, std::string_view indent = "  ") const;

private:
    std::vector<Column> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace Kx::Console
