#include <Types/Geometry/Point2.h>

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <limits>
#include <typeinfo>

namespace {

using Kx::Point2;
using Kx::Size2;

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

TEST(Point2Test, ArithmeticWrapsIn32Bits)
{
    EXPECT_EQ(Point2(kMax, kMin) + Point2(1, -1), Point2(kMin, kMax));
    EXPECT_EQ(Point2(kMax, 0) + Size2(2, 0), Point2(kMin + 1, 0));
    EXPECT_EQ(Point2(kMin, 0) - Size2(1, 0), Point2(kMax, 0));
    // this minus other, as a Size2
    EXPECT_EQ(Point2(kMin, 0) - Point2(1, 3), Size2(kMax, -3));
    EXPECT_EQ(-Point2(kMin, kMax), Point2(kMin, kMin + 1));

    Point2 p(kMax, kMax);
    p.offset(1, 1);
    EXPECT_EQ(p, Point2(kMin, kMin));
    p -= Point2(1, 1);
    EXPECT_EQ(p, Point2(kMax, kMax));
}

TEST(Point2Test, OrderedBySumOfComponents)
{
    struct Case {
        const char* name;
        Point2 a, b;
        bool aLess, bLess;
    };
    const Case cases[] = {
        {"equal sums are unordered", {1, 2}, {3, 0}, false, false},
        {"not lexicographic", {5, -5}, {0, 1}, true, false},
        {"sum wraps to INT_MIN", {kMax, 1}, {0, 0}, true, false},
        {"equal points", {4, 4}, {4, 4}, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.a < c.b, c.aLess);
        EXPECT_EQ(c.b < c.a, c.bLess);
    }
}

TEST(Point2Test, TextFormRoundTrips)
{
    EXPECT_EQ(Point2(3, -4).toString(), L"(3, -4)");
    for (const Point2& p : {Point2(), Point2(3, -4), Point2(kMax, kMin), Point2(kMin, kMax), Point2(-1, 1)}) {
        SCOPED_TRACE(testing::PrintToString(p.toString()));
        EXPECT_EQ(Point2::fromString(p.toString()), p);
    }
}

TEST(Point2Test, FromStringAcceptsSignsAndBlanksAroundItems)
{
    EXPECT_EQ(Point2::fromString(L"(+5, -2147483648)"), Point2(5, kMin));
    EXPECT_EQ(Point2::fromString(L"( 7 ,8 )"), Point2(7, 8));
    EXPECT_EQ(Point2::fromString(L"(\"12\", -0)"), Point2(12, 0));
}

// boost::bad_lexical_cast derives from std::bad_cast, so the two failures are told apart here.
enum class EFailure { eNone, eWrongShape, eBadInteger };

EFailure failureOf(const std::wstring& text)
{
    try {
        (void)Point2::fromString(text);
    } catch (const boost::bad_lexical_cast&) {
        return EFailure::eBadInteger;
    } catch (const std::bad_cast&) {
        return EFailure::eWrongShape;
    }
    return EFailure::eNone;
}

TEST(Point2Test, FromStringRejectsMalformedText)
{
    struct Case {
        const wchar_t* text;
        EFailure failure;
    };
    const Case cases[] = {
        {L"(1)", EFailure::eWrongShape},
        {L"(1, 2, 3)", EFailure::eWrongShape},
        {L"()", EFailure::eWrongShape},
        {L"1, 2", EFailure::eWrongShape},
        {L"(1, 2", EFailure::eWrongShape},
        {L"", EFailure::eWrongShape},
        {L"(2147483648, 0)", EFailure::eBadInteger},
        {L"(0, -2147483649)", EFailure::eBadInteger},
        {L"(0x5, 1)", EFailure::eBadInteger},
        {L"(1.5, 2)", EFailure::eBadInteger},
        {L"(1e3, 0)", EFailure::eBadInteger},
        {L"(+-1, 0)", EFailure::eBadInteger},
        {L"(-, 0)", EFailure::eBadInteger},
        {L"(\u0663, 0)", EFailure::eBadInteger},
        // Quoted items keep their blanks, so the strict integer rule shows through them.
        {L"(\" 5\", 1)", EFailure::eBadInteger},
        {L"(\"5 \", 1)", EFailure::eBadInteger},
        {L"(\"\", 1)", EFailure::eBadInteger},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.text)));
        EXPECT_EQ(failureOf(c.text), c.failure);
    }
}

} // namespace
