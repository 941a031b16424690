#include <Types/Geometry/Size2.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Kx::Border4;
using Kx::Point2;
using Kx::Size2;

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

TEST(Size2Test, OrderedByArea)
{
    struct Case {
        const char* name;
        Size2 a, b;
        bool aLess, bLess;
    };
    const Case cases[] = {
        {"equal areas are unordered", {2, 8}, {4, 4}, false, false},
        {"not lexicographic", {3, 1}, {1, 5}, true, false},
        {"negative extent gives negative area", {-1, 5}, {0, 0}, true, false},
        {"area wraps to zero", {65536, 65536}, {1, 1}, true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.a < c.b, c.aLess);
        EXPECT_EQ(c.b < c.a, c.bLess);
    }
}

TEST(Size2Test, DiagonalSquaresWrapBeforeWidening)
{
    EXPECT_DOUBLE_EQ(Size2(3, -4).diagonal(), 5.0);
    EXPECT_DOUBLE_EQ(Size2(46340, 0).diagonal(), 46340.0);
    // 70000^2 = 4'900'000'000 wraps to 605'032'704.
    EXPECT_DOUBLE_EQ(Size2(70000, 0).diagonal(), std::sqrt(605032704.0));
    // 50000^2 wraps to a negative number, whose root is not a number at all.
    EXPECT_TRUE(std::isnan(Size2(50000, 0).diagonal()));
}

TEST(Size2Test, BorderGrowsWidthByLeftRightAndHeightByTopBottom)
{
    const Border4 border(1, 2, 3, 4); // top, bottom, left, right
    EXPECT_EQ(Size2(10, 20) + border, Size2(17, 23));
    EXPECT_EQ(Size2(10, 20) - border, Size2(3, 17));

    Size2 inPlace(10, 20);
    inPlace += border;
    EXPECT_EQ(inPlace, Size2(17, 23));
    inPlace -= border;
    EXPECT_EQ(inPlace, Size2(10, 20));
}

TEST(Size2Test, ArithmeticWrapsAndMixesWithPoints)
{
    EXPECT_EQ(Size2(kMax, 1) + Size2(1, kMax), Size2(kMin, kMin));
    EXPECT_EQ(Size2(kMin, 0) - Size2(1, 0), Size2(kMax, 0));
    EXPECT_EQ(-Size2(kMin, 5), Size2(kMin, -5));
    EXPECT_EQ(Size2(kMax, 0) + Border4(0, 0, 1, 0), Size2(kMin, 0));

    EXPECT_EQ(Size2(10, 20) + Point2(1, 2), Point2(11, 22));
    EXPECT_EQ(Size2(10, 20) - Point2(1, 2), Point2(9, 18));
    EXPECT_EQ(Size2(Point2(-3, 4)), Size2(-3, 4));
    EXPECT_EQ(Size2(640, -480).toString(), L"(640, -480)");
}

} // namespace
