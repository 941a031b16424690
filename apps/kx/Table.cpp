#include "Table.h"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>

namespace Kx::Console {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

bool inRanges(char32_t c, const Range* begin, const Range* end)
{
    return std::any_of(begin, end, [c](const Range& range) { return c >= range.first && c <= range.last; });
}

// Combining marks (the decomposed umlaut of a name typed on some systems), joiners and variation
// selectors: drawn onto the character before them.
constexpr Range s_zeroWidth[] = {{0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A},
    {0x064B, 0x065F}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F}, {0x202A, 0x202E}, {0x2060, 0x2064},
    {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}};

// East Asian wide and full-width characters, and the pictographs terminals draw two columns wide.
constexpr Range s_wide[] = {{0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0x33FF}, {0x3400, 0x4DBF},
    {0x4E00, 0x9FFF}, {0xA000, 0xA4CF}, {0xAC00, 0xD7A3}, {0xF900, 0xFAFF}, {0xFE30, 0xFE4F}, {0xFF00, 0xFF60},
    {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

// The character starting at `text[at]` and its length in bytes; a malformed sequence is one
// character of one byte, so that nothing is ever skipped.
std::pair<char32_t, std::size_t> decode(std::string_view text, std::size_t at)
{
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3 : (lead >> 3) == 0x1E ? 4 : 0;
    if (length == 0 || at + length > text.size())
        return {lead, 1};
    char32_t c = length == 1 ? lead : lead & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xC0) != 0x80)
            return {lead, 1};
        c = (c << 6) | (next & 0x3F);
    }
    return {c, length};
}

} // namespace

std::size_t displayWidth(std::string_view utf8)
{
    std::size_t width = 0;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto [c, length] = decode(utf8, at);
        at += length;
        if (inRanges(c, std::begin(s_zeroWidth), std::end(s_zeroWidth)))
            continue;
        width += inRanges(c, std::begin(s_wide), std::end(s_wide)) ? 2 : 1;
    }
    return width;
}

Table::Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}

void Table::addRow(std::vector<std::string> cells)
{
    cells.resize(m_columns.size());
    m_rows.push_back(std::move(cells));
}

void Table::print(std::ostream& out, std::string_view indent) const
{
    std::vector<std::size_t> widths(m_columns.size(), 0);
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        widths[column] = displayWidth(m_columns[column].header);
        for (const auto& row : m_rows)
            widths[column] = std::max(widths[column], displayWidth(row[column]));
    }
    // Padding is counted here in screen columns; fmt's own width would count the umlaut's bytes
    // or code points, depending on how it was built.
    const auto printLine = [&](const auto& cellOf) {
        std::string line(indent);
        for (std::size_t column = 0; column < m_columns.size(); ++column) {
            const std::string& cell = cellOf(column);
            const std::size_t padding = widths[column] - displayWidth(cell);
            if (column != 0)
                line += "  ";
            if (m_columns[column].align == EAlign::eRight)
                line += fmt::format("{:{}}{}", "", padding, cell);
            else
                line += fmt::format("{}{:{}}", cell, "", padding);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    };
    printLine([&](std::size_t column) -> const std::string& { return m_columns[column].header; });
    for (const auto& row : m_rows)
        printLine([&](std::size_t column) -> const std::string& { return row[column]; });
}

} // namespace Kx::Console
