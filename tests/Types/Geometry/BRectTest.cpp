#include <Types/Geometry/BRect.h>

#include <base/Strings.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <ostream>

namespace Kx {
static void PrintTo(const BRect& value, std::ostream* os) { *os << ToUTF8(value.toString()); }
} // namespace Kx

namespace {

using Kx::BRect;

// The empty state, bit for bit: the largest finite double in min, its negative in max.
void expectEmptySentinels(const BRect& rect)
{
    EXPECT_TRUE(rect.isEmpty());
    for (unsigned axis = 0; axis < 2; ++axis) {
        SCOPED_TRACE(axis);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(rect.m_min[axis]), 0x7FEFFFFFFFFFFFFFull);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(rect.m_max[axis]), 0xFFEFFFFFFFFFFFFFull);
    }
}

void expectCorners(const BRect& rect, TmGePoint2d min, TmGePoint2d max)
{
    EXPECT_EQ(rect.m_min.x, min.x);
    EXPECT_EQ(rect.m_min.y, min.y);
    EXPECT_EQ(rect.m_max.x, max.x);
    EXPECT_EQ(rect.m_max.y, max.y);
}

TEST(BRectTest, EmptyStateIsTheSentinelPairAndReadOnXAlone)
{
    expectEmptySentinels(BRect());
    EXPECT_EQ(BRect().toString(), L"(min: 1.79769e+308, 1.79769e+308 max:  -1.79769e+308, -1.79769e+308)");
    BRect rect({1, 2}, {3, 4});
    rect.empty();
    expectEmptySentinels(rect);

    BRect invertedY({0, 0}, {1, 1});
    invertedY.m_min.y = 5;
    EXPECT_FALSE(invertedY.isEmpty());
    BRect invertedX({0, 0}, {1, 1});
    invertedX.m_min.x = 5;
    EXPECT_TRUE(invertedX.isEmpty());
}

TEST(BRectTest, ConstructorsSortEachAxis)
{
    expectCorners(BRect({4, 1}, {1, 3}), {1, 1}, {4, 3});
    BRect rect;
    rect.set({0, 9}, {2, -1});
    expectCorners(rect, {0, -1}, {2, 9});
    expectCorners(BRect(TmGePoint2d(1, 2), 0.5), {0.5, 1.5}, {1.5, 2.5});
    expectCorners(BRect(TmGePoint2d(1, 2), -0.5), {0.5, 1.5}, {1.5, 2.5});
    EXPECT_EQ(BRect({1, 2}, {3.5, -4}).toString(), L"(min: 1, -4 max:  3.5, 2)");
}

TEST(BRectTest, UnionGrowsFromEmptyAndIgnoresEmptyOperands)
{
    const BRect square({0, 0}, {2, 2});

    BRect fromEmpty;
    fromEmpty |= square;
    EXPECT_EQ(fromEmpty, square);
    BRect withEmpty = square;
    withEmpty |= BRect();
    EXPECT_EQ(withEmpty, square);
    BRect bothEmpty;
    bothEmpty |= BRect();
    expectEmptySentinels(bothEmpty);

    BRect hull = square;
    hull |= BRect({1, -3}, {5, 1});
    expectCorners(hull, {0, -3}, {5, 2});

    BRect points;
    points |= TmGePoint2d(3, -1);
    expectCorners(points, {3, -1}, {3, -1});
    points |= TmGePoint2d(1, 4);
    expectCorners(points, {1, -1}, {3, 4});
    points |= TmGePoint2d(2, 10);
    expectCorners(points, {1, -1}, {3, 10});
}

TEST(BRectTest, IntersectionIsExactAndEmptyWhenApartOnEitherAxis)
{
    struct Case {
        const char* name;
        BRect a, b;
        bool empty;
        TmGePoint2d min, max;
    };
    const Case cases[] = {
        {"overlap", {{0, 0}, {4, 4}}, {{2, 1}, {6, 3}}, false, {2, 1}, {4, 3}},
        {"touching edge leaves a line", {{0, 0}, {4, 4}}, {{4, 1}, {6, 3}}, false, {4, 1}, {4, 3}},
        {"apart on x", {{0, 0}, {4, 4}}, {{5, 0}, {6, 4}}, true, {}, {}},
        {"apart on y only", {{0, 0}, {4, 4}}, {{0, 4.5}, {4, 6}}, true, {}, {}},
        {"apart by a hair", {{0, 0}, {1, 1}}, {{1 + 1e-12, 0}, {2, 1}}, true, {}, {}},
        {"empty operand", {{0, 0}, {4, 4}}, BRect(), true, {}, {}},
        {"empty receiver", BRect(), {{0, 0}, {4, 4}}, true, {}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        BRect result = c.a;
        result &= c.b;
        if (c.empty)
            expectEmptySentinels(result);
        else
            expectCorners(result, c.min, c.max);
    }
}

TEST(BRectTest, ContainmentAndIntersectionAreInclusiveWithoutTolerance)
{
    const BRect unit({0, 0}, {1, 1});
    const double hair = 1e-12;

    struct RectCase {
        const char* name;
        BRect other;
        bool intersects, contains;
    };
    const RectCase rects[] = {
        {"itself", unit, true, true},
        {"touching at an edge", {{1, 0.2}, {2, 0.8}}, true, false},
        {"touching at a corner", {{-1, -1}, {0, 0}}, true, false},
        {"apart by a hair", {{1 + hair, 0}, {2, 1}}, false, false},
        {"standing out by a hair", {{0, 0}, {1, 1 + hair}}, true, false},
        {"empty", BRect(), false, false},
    };
    for (const RectCase& c : rects) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(unit.intersects(c.other), c.intersects);
        EXPECT_EQ(unit.contains(c.other), c.contains);
        EXPECT_EQ(c.other.within(unit), c.contains);
    }
    EXPECT_FALSE(BRect().intersects(unit));
    EXPECT_FALSE(BRect().contains(BRect()));

    EXPECT_TRUE(unit.contains(TmGePoint2d(1, 0)));
    EXPECT_TRUE(unit.contains(TmGePoint2d(0.5, 0.5)));
    EXPECT_FALSE(unit.contains(TmGePoint2d(0.5, -hair)));
    EXPECT_FALSE(unit.contains(TmGePoint2d(1 + hair, 0.5)));
    EXPECT_FALSE(BRect().contains(TmGePoint2d(0, 0)));
}

TEST(BRectTest, MeasuresAndMovesKeepTheEmptyState)
{
    BRect rect({1, 2}, {4, 7});
    EXPECT_EQ(rect.width(), 3);
    EXPECT_EQ(rect.height(), 5);
    EXPECT_EQ(rect.area(), 15);
    EXPECT_EQ(rect.size().x, 3);
    EXPECT_EQ(rect.size().y, 5);
    EXPECT_EQ(BRect().width(), 0);
    EXPECT_EQ(BRect().height(), 0);
    EXPECT_EQ(BRect().area(), 0);

    rect.translate({-1, 1});
    expectCorners(rect, {0, 3}, {3, 8});
    rect.inflate({1, 0.5});
    expectCorners(rect, {-1, 2.5}, {4, 8.5});
    rect.inflate({0, -2.5});
    expectCorners(rect, {-1, 5}, {4, 6});
    rect.inflate({0, -1});
    expectEmptySentinels(rect);

    // Large enough to move even the sentinels if an empty rectangle were not left alone.
    BRect empty;
    empty.translate({1e300, 1e300});
    expectEmptySentinels(empty);
    empty.inflate({1e300, 1e300});
    expectEmptySentinels(empty);
}

TEST(BRectTest, EqualityIsExact)
{
    const BRect rect({0, 0}, {1, 1});
    EXPECT_EQ(rect, BRect({1, 1}, {0, 0}));
    EXPECT_NE(rect, BRect({0, 0}, {1, std::nextafter(1.0, 2.0)}));
    EXPECT_NE(rect, BRect());
    EXPECT_EQ(BRect(), BRect());
}

} // namespace
