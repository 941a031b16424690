#include <base/Strings.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Kx::Strings::groupStrings;
using Kx::Strings::ungroupStrings;
using Items = std::vector<std::wstring>;

struct ListCase {
    const char* name;
    Items items;
    std::wstring text;
};

// Each list, its exact written form, and that the form reads back to the same list.
TEST(GroupStrings, HostileItemsRoundTrip)
{
    const std::vector<ListCase> cases = {
        {"empty list", {}, L"()"},
        {"numbers", {L"3", L"-4"}, L"(3, -4)"},
        {"inner blanks stay unquoted", {L"a b", L"x\ty"}, L"(a b, x\ty)"},
        {"empty item", {L""}, L"(\"\")"},
        {"two empty items", {L"", L""}, L"(\"\", \"\")"},
        {"comma", {L"a,b"}, L"(\"a,b\")"},
        {"parentheses", {L"(1)", L"f(x"}, L"(\"(1)\", \"f(x\")"},
        {"quotes are doubled", {L"say \"hi\""}, L"(\"say \"\"hi\"\"\")"},
        {"only a quote", {L"\""}, L"(\"\"\"\")"},
        {"leading blank", {L" a"}, L"(\" a\")"},
        {"trailing newline", {L"a\n"}, L"(\"a\n\")"},
        {"only blanks", {L"   "}, L"(\"   \")"},
        {"non-ASCII", {L"Gr\u00fcn", L"\U0001F600"}, L"(Gr\u00fcn, \U0001F600)"},
        {"everything at once", {L" ,\"() ", L"", L"plain"}, L"(\" ,\"\"() \", \"\", plain)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(groupStrings(c.items), c.text);
        Items parsed{L"stale"};
        ASSERT_TRUE(ungroupStrings(c.text, parsed));
        EXPECT_EQ(parsed, c.items);
    }
}

TEST(GroupStrings, NarrowFormMatchesTheWideOne)
{
    const std::vector<std::string> items = {"a,b", "", " c", "\xc3\xbc"};
    const std::string text = groupStrings(items);
    EXPECT_EQ(text, "(\"a,b\", \"\", \" c\", \xc3\xbc)");
    std::vector<std::string> parsed;
    ASSERT_TRUE(ungroupStrings(text, parsed));
    EXPECT_EQ(parsed, items);
}

TEST(GroupStrings, ReadingIsLenientAboutBlanks)
{
    const std::vector<ListCase> cases = {
        {"blanks around the text", {L"1", L"2"}, L"  \t(1,2)\n "},
        {"blanks around items are trimmed", {L"a b", L"c"}, L"(  a b  ,\tc\t)"},
        {"blanks around a quoted item", {L" q "}, L"(   \" q \"   )"},
        {"blank empty list", {}, L"(   )"},
        {"single item", {L"x"}, L"(x)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Items parsed;
        ASSERT_TRUE(ungroupStrings(c.text, parsed));
        EXPECT_EQ(parsed, c.items);
    }
}

TEST(GroupStrings, MalformedTextIsRefusedAndLeavesTheOutputAlone)
{
    const struct {
        const char* name;
        std::wstring text;
    } cases[] = {
        {"empty text", L""},
        {"no parentheses", L"1, 2"},
        {"missing close", L"(1, 2"},
        {"missing open", L"1, 2)"},
        {"text before", L"x(1)"},
        {"text after", L"(1) x"},
        {"second list", L"(1)(2)"},
        {"unterminated quote", L"(\"abc)"},
        {"text after closing quote", L"(\"a\"b, c)"},
        {"stray open parenthesis", L"(a(b, c)"},
        {"nested list", L"((1, 2), 3)"},
        {"stray close parenthesis", L"(a), b)"},
        {"quote inside unquoted item", L"(a\"b\")"},
        {"empty item between commas", L"(3,,4)"},
        {"trailing comma", L"(1, )"},
        {"leading comma", L"(, 1)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Items items{L"kept"};
        EXPECT_FALSE(ungroupStrings(c.text, items));
        EXPECT_EQ(items, Items{L"kept"});
    }
}

} // namespace
