#include "Table.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace Kx::Console {
namespace {

TEST(DisplayWidth, CountsColumnsOnScreenNotBytes)
{
    const struct {
        const char* name;
        const char* text;
        std::size_t width;
    } cases[] = {
        {"Empty", "", 0},
        {"ASCII", "Steel", 5},
        {"Umlauts", "Messing (geschützt), Zähigkeit", 30},
        {"SharpS", "Gießharz", 8},
        {"DecomposedUmlaut", "Gu\xCC\x88te", 4}, // u + combining diaeresis
        {"Superscript", "kg/m\xC2\xB3", 5},
        {"Wide", "\xE9\x8B\xBC\xE9\x89\x84", 4}, // two CJK ideographs
        {"FourByte", "\xF0\x9F\x94\xA9", 2}, // a pictograph
        {"LoneContinuationByte", "a\x80z", 3},
        {"TruncatedSequence", "ab\xC3", 3},
        {"OverlongLead", "\xF8\x88\x80\x80\x80", 5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(displayWidth(c.text), c.width);
    }
}

std::vector<std::string> printed(const Table& table, std::string_view indent = "  ")
{
    std::ostringstream out;
    table.print(out, indent);
    std::vector<std::string> lines;
    std::istringstream in(out.str());
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

TEST(Table, ColumnsLineUpOnScreenWithUmlautsAndLongNames)
{
    Table table({{"id"}, {"name"}, {"density", Table::EAlign::eRight}, {"colour"}});
    table.addRow({"PM-1", "Aluminium, geschäumt", "270", "#C0C0C0"});
    table.addRow({"PM-22", "Messing", "8500", "textured"});
    table.addRow({"PM-3", "A name far longer than any column was ever meant to hold, kept whole", "-", ""});
    EXPECT_EQ(printed(table), (std::vector<std::string>{
                                  "  id     name                                                                  density  colour",
                                  "  PM-1   Aluminium, geschäumt                                                      270  #C0C0C0",
                                  "  PM-22  Messing                                                                  8500  textured",
                                  "  PM-3   A name far longer than any column was ever meant to hold, kept whole        -",
                              }));
}

TEST(Table, HeaderAloneShortAndLongRows)
{
    Table empty({{"library"}, {"presets", Table::EAlign::eRight}});
    EXPECT_EQ(printed(empty, ""), std::vector<std::string>{"library  presets"});

    Table table({{"a"}, {"b"}});
    table.addRow({"only"});
    table.addRow({"x", "y", "dropped"});
    EXPECT_EQ(table.rowCount(), 2u);
    EXPECT_EQ(printed(table, "    "), (std::vector<std::string>{"    a     b", "    only", "    x     y"}));
}

} // namespace
} // namespace Kx::Console
