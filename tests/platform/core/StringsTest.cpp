#include <core/Strings.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

namespace {

struct RoundTrip {
    const char* name;
    std::wstring wide;
    std::string utf8;
};

TEST(CoreStrings, ValidTextRoundTripsBothWays)
{
    const std::string longAscii(37, 'a');
    const std::vector<RoundTrip> cases = {
        {"empty", L"", ""},
        {"ascii", L"Point2 (3, -4)", "Point2 (3, -4)"},
        {"two-byte", L"Gr\u00fcn \u00e9t\u00e9", "Gr\xc3\xbcn \xc3\xa9t\xc3\xa9"},
        {"three-byte", L"\u20ac \u65e5\u672c", "\xe2\x82\xac \xe6\x97\xa5\xe6\x9c\xac"},
        {"non-BMP", L"\U0001F600\U00010348", "\xf0\x9f\x98\x80\xf0\x90\x8d\x88"},
        {"highest code point", L"\U0010FFFF", "\xf4\x8f\xbf\xbf"},
        {"embedded NUL", std::wstring(L"a\0b", 3), std::string("a\0b", 3)},
        // Non-ASCII right after a run that the eight-byte fast path consumes, and inside one.
        {"after fast path", std::wstring(37, L'a') + L"\u00fc", longAscii + "\xc3\xbc"},
        {"inside fast path", L"abc\u00fcdefghijklmnop", "abc\xc3\xbc" "defghijklmnop"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(toUTF8(c.wide), c.utf8);
        EXPECT_EQ(toWide(c.utf8), c.wide);
    }
}

TEST(CoreStrings, EveryScalarValueRoundTrips)
{
    std::wstring all;
    for (char32_t cp = 0; cp <= 0x10FFFF; ++cp) {
        if (cp < 0xD800 || cp > 0xDFFF) {
            all.push_back(static_cast<wchar_t>(cp));
        }
    }
    EXPECT_EQ(toWide(toUTF8(all)), all);
}

TEST(CoreStrings, InvalidUTF8BecomesOneReplacementPerMaximalSubpart)
{
    const struct {
        const char* name;
        std::string utf8;
        std::wstring wide;
    } cases[] = {
        {"lone continuation", "a\x80z", L"a\uFFFDz"},
        {"overlong two-byte lead", "\xc0\xaf", L"\uFFFD\uFFFD"},
        {"overlong three-byte", "\xe0\x80\xaf", L"\uFFFD\uFFFD\uFFFD"},
        {"encoded surrogate", "\xed\xa0\x80", L"\uFFFD\uFFFD\uFFFD"},
        {"above U+10FFFF", "\xf4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"lead F5", "\xf5\x80", L"\uFFFD\uFFFD"},
        {"byte FF", "\xff", L"\uFFFD"},
        {"truncated three-byte at end", "x\xe2\x82", L"x\uFFFD"},
        {"truncated four-byte at end", "\xf0\x9f\x98", L"\uFFFD"},
        {"truncated sequence keeps the next character", "\xe2\x82" "A", L"\uFFFDA"},
        {"truncated then valid multibyte", "\xf0\x9f\xc3\xbc", L"\uFFFD\u00fc"},
        {"two leads in a row", "\xc3\xc3\xbc", L"\uFFFD\u00fc"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(toWide(c.utf8), c.wide);
    }
}

TEST(CoreStrings, UnencodableWideCharactersBecomeReplacement)
{
    const std::string replacement = "\xef\xbf\xbd";
    const struct {
        const char* name;
        wchar_t value;
    } cases[] = {
        {"high surrogate", static_cast<wchar_t>(0xD800)},
        {"low surrogate", static_cast<wchar_t>(0xDFFF)},
        {"above U+10FFFF", static_cast<wchar_t>(0x110000)},
        {"negative", static_cast<wchar_t>(-1)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(toUTF8(std::wstring{L'<', c.value, L'>'}), "<" + replacement + ">");
    }
}

} // namespace
