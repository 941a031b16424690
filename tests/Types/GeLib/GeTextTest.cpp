// The grouped text form: 17 significant digits, so every double (signed zero, infinities, the
// sign of NaN included) reads back as itself; malformed text throws the stated exception.

#include <kx/GeLib.h>
#include <Types/Geometry/BRect.h>

#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePoint2d.h>
#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector2d.h>
#include <geometry/TmGeVector3d.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <typeinfo>

namespace {

using namespace Kx::Types;

constexpr double s_inf = std::numeric_limits<double>::infinity();
const double s_nan = std::numeric_limits<double>::quiet_NaN();

// Identical doubles, with any NaN of one sign standing for every NaN of that sign (the text form
// keeps the sign of a NaN, not its payload).
bool sameDouble(double a, double b)
{
    if (std::isnan(a) || std::isnan(b)) {
        return std::isnan(a) && std::isnan(b) && std::signbit(a) == std::signbit(b);
    }
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

const double s_catalogue[] = {0.1, 1.0 / 3, 2.0 / 3, 1e-300, -0.0, 0.0, 5e-324, 2.2250738585072014e-308,
                              1.7976931348623157e308, -1e21, 123456789012345678.0, s_inf, -s_inf, s_nan, -s_nan};

TEST(GeTextTest, ItemsHaveSeventeenSignificantDigits)
{
    struct Case {
        double value;
        const wchar_t* text;
    };
    for (const Case& c : {Case{0.1, L"0.10000000000000001"}, Case{1.0 / 3, L"0.33333333333333331"},
                          Case{1e-300, L"1e-300"}, Case{-0.0, L"-0"}, Case{100, L"100"}, Case{-1e21, L"-1e+21"},
                          Case{5e-324, L"4.9406564584124654e-324"}, Case{s_inf, L"inf"}, Case{-s_inf, L"-inf"},
                          Case{s_nan, L"nan"}, Case{-s_nan, L"-nan"}}) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(DoubleToString(c.value), c.text);
    }
    EXPECT_EQ(Point3dToString({0.1, 0, 0}), L"(0.10000000000000001, 0, 0)");
    EXPECT_EQ(Vector2dToString({-0.0, 2.5}), L"(-0, 2.5)");
}

TEST(GeTextTest, EveryTypeRoundTripsEveryDouble)
{
    constexpr std::size_t n = std::size(s_catalogue);
    for (std::size_t i = 0; i < n; ++i) {
        const double a = s_catalogue[i], b = s_catalogue[(i + 3) % n], c = s_catalogue[(i + 7) % n];
        SCOPED_TRACE(testing::Message() << a << ", " << b << ", " << c);

        const TmGePoint2d p2 = StringToPoint2d(Point2dToString({a, b}));
        EXPECT_TRUE(sameDouble(p2.x, a) && sameDouble(p2.y, b));
        const TmGeVector2d v2 = StringToVector2d(Vector2dToString({b, c}));
        EXPECT_TRUE(sameDouble(v2.x, b) && sameDouble(v2.y, c));
        const TmGePoint3d p3 = StringToPoint3d(Point3dToString({a, b, c}));
        EXPECT_TRUE(sameDouble(p3.x, a) && sameDouble(p3.y, b) && sameDouble(p3.z, c));
        const TmGeVector3d v3 = StringToVector3d(Vector3dToString({c, a, b}));
        EXPECT_TRUE(sameDouble(v3.x, c) && sameDouble(v3.y, a) && sameDouble(v3.z, b));

        TmGeMatrix3d m;
        for (unsigned k = 0; k < 16; ++k) {
            m(k / 4, k % 4) = s_catalogue[(i + k) % n];
        }
        const TmGeMatrix3d read = StringToMatrix3d(Matrix3dToString(m));
        for (unsigned k = 0; k < 16; ++k) {
            EXPECT_TRUE(sameDouble(read(k / 4, k % 4), m(k / 4, k % 4))) << k;
        }
    }
}

TEST(GeTextTest, ReadersAcceptHandWrittenNumbers)
{
    const TmGePoint3d p = StringToPoint3d(L"( +1.5 , -.25e1, \"3\" )");
    EXPECT_TRUE(p.x == 1.5 && p.y == -2.5 && p.z == 3);
    const TmGeVector2d v = StringToVector2d(L"(INF, -Infinity)");
    EXPECT_TRUE(v.x == s_inf && v.y == -s_inf);
    EXPECT_TRUE(std::isnan(StringToPoint2d(L"(NaN, 0)").x));

    const TmGeMatrix3d m = StringToMatrix3d(L"(1,2,3,4, 5,6,7,8, 9,10,11,12, 13,14,15,16)");
    EXPECT_EQ(m(0, 3), 4);
    EXPECT_EQ(m(1, 0), 5);
    EXPECT_EQ(m(3, 3), 16);
}

// boost::bad_lexical_cast derives from std::bad_cast: the two are told apart by catching it first.
enum class EFailure { eNone, eWrongShape, eNotANumber };

EFailure failureOf(const std::function<void()>& read)
{
    try {
        read();
    } catch (const boost::bad_lexical_cast&) {
        return EFailure::eNotANumber;
    } catch (const std::bad_cast&) {
        return EFailure::eWrongShape;
    }
    return EFailure::eNone;
}

TEST(GeTextTest, MalformedTextThrowsTheStatedException)
{
    std::wstring manyItems = L"(1";
    for (int i = 0; i < 100000; ++i) {
        manyItems += L", 1";
    }
    manyItems += L")";
    const std::wstring longNumber = L"(1" + std::wstring(5000, L'0') + L", 0, 0)";

    struct Case {
        const char* name;
        std::wstring text;
        EFailure point3d, point2d;
    };
    using enum EFailure;
    const Case cases[] = {
        {"two items", L"(1, 2)", eWrongShape, eNone},
        {"four items", L"(1, 2, 3, 4)", eWrongShape, eWrongShape},
        {"no parentheses", L"1, 2, 3", eWrongShape, eWrongShape},
        {"unterminated", L"(1, 2, 3", eWrongShape, eWrongShape},
        {"empty unquoted item", L"(1, , 3)", eWrongShape, eWrongShape},
        {"empty text", L"", eWrongShape, eWrongShape},
        {"many items", manyItems, eWrongShape, eWrongShape},
        {"a word", L"(1, x, 3)", eNotANumber, eWrongShape},
        {"quoted empty item", L"(1, \"\", 3)", eNotANumber, eWrongShape},
        {"blank inside a quoted item", L"(\" 1\", 2, 3)", eNotANumber, eWrongShape},
        {"hexadecimal", L"(0x10, 2, 3)", eNotANumber, eWrongShape},
        {"decimal comma", L"(\"1,5\", 2, 3)", eNotANumber, eWrongShape},
        {"digit grouping", L"(1 000, 2, 3)", eNotANumber, eWrongShape},
        {"trailing exponent", L"(1e, 2, 3)", eNotANumber, eWrongShape},
        {"two signs", L"(+-1, 2, 3)", eNotANumber, eWrongShape},
        {"beyond double", L"(1e400, 2, 3)", eNotANumber, eWrongShape},
        {"too long to be a double", longNumber, eNotANumber, eWrongShape},
        {"non-ASCII digit", L"(\x0661, 2, 3)", eNotANumber, eWrongShape},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(failureOf([&] { (void)StringToPoint3d(c.text); }), c.point3d);
        EXPECT_EQ(failureOf([&] { (void)StringToVector3d(c.text); }), c.point3d);
        EXPECT_EQ(failureOf([&] { (void)StringToPoint2d(c.text); }), c.point2d);
        EXPECT_EQ(failureOf([&] { (void)StringToMatrix3d(c.text); }), eWrongShape);
    }
}

} // namespace

namespace Kx::Types {
namespace {

TEST(BRectText, CornersAreSortedPerAxisSoTheEmptyRectangleReadsBackAsThePlane)
{
    const BRect rect(TmGePoint2d(-0.1, 2), TmGePoint2d(1.0 / 3.0, 1e300));
    const BRect back = StringToBRect(BRectToString(rect));
    EXPECT_EQ(back.m_min.x, rect.m_min.x);
    EXPECT_EQ(back.m_max.x, rect.m_max.x);
    EXPECT_EQ(back.m_max.y, rect.m_max.y);

    const BRect swapped = StringToBRect(L"(5, 1, -5, 3)");
    EXPECT_EQ(swapped.m_min.x, -5.0);
    EXPECT_EQ(swapped.m_max.x, 5.0);
    EXPECT_EQ(swapped.m_min.y, 1.0);

    const BRect plane = StringToBRect(BRectToString(BRect()));
    EXPECT_FALSE(plane.isEmpty());
    EXPECT_EQ(plane.m_min.x, -std::numeric_limits<double>::max());
    EXPECT_EQ(plane.m_max.y, std::numeric_limits<double>::max());
    EXPECT_THROW((void)StringToBRect(L"(1, 2, 3)"), std::bad_cast);
}

} // namespace
} // namespace Kx::Types
