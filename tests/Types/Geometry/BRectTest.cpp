// BRect shares its empty state, sorting, union and clipping with BBox (one template, tested in
// BBoxTest). What is its own is tested here: no tolerance anywhere, no emptiness test before an
// intersection, the centred constructor and the plane measures.

#include <Types/Geometry/BRect.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

namespace {

using Kx::BRect;

// The empty state, bit for bit: the largest finite double in min, its negative in max.
void expectEmptySentinels(const BRect& rect)
{
    EXPECT_TRUE(rect.isEmpty());
    for (unsigned axis = 0; axis < 2; ++axis) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(rect.m_min[axis]), 0x7FEFFFFFFFFFFFFFull) << "axis " << axis;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(rect.m_max[axis]), 0xFFEFFFFFFFFFFFFFull) << "axis " << axis;
    }
}

TEST(BRectTest, CentredSquareMeasuresAndTextForm)
{
    expectEmptySentinels(BRect());
    for (double halfSize : {0.5, -0.5}) {
        SCOPED_TRACE(halfSize);
        const BRect square(TmGePoint2d(1, 2), halfSize);
        EXPECT_EQ(square.toString(), L"(min: 0.5, 1.5 max:  1.5, 2.5)");
    }
    BRect rect({4, 7}, {1, 2});
    EXPECT_EQ(rect.toString(), L"(min: 1, 2 max:  4, 7)");
    EXPECT_EQ(rect.width(), 3);
    EXPECT_EQ(rect.height(), 5);
    EXPECT_EQ(rect.area(), 15);
    EXPECT_EQ(BRect().area(), 0);
    rect.inflate({1, -2.5});
    EXPECT_EQ(rect.toString(), L"(min: 0, 4.5 max:  5, 4.5)");
    rect.translate({1, 1});
    EXPECT_EQ(rect.toString(), L"(min: 1, 5.5 max:  6, 5.5)");
}

TEST(BRectTest, IntersectionEmptiesAnInvertedReceiver)
{
    // Unlike BBox, whose empty receiver is kept as it is, this one ends in the sentinels.
    BRect inverted({0, 0}, {4, 4});
    inverted.m_min.x = 5;
    inverted &= BRect({0, 0}, {4, 4});
    expectEmptySentinels(inverted);

    BRect apartOnY({0, 0}, {4, 4});
    apartOnY &= BRect({0, 4.5}, {4, 6});
    expectEmptySentinels(apartOnY);
}

TEST(BRectTest, ContainmentAndIntersectionAreInclusiveWithoutTolerance)
{
    const BRect unit({0, 0}, {1, 1});
    const double hair = 1e-12;
    BRect invertedX({0, 0}, {1, 1});
    invertedX.m_min.x = 5;
    struct Case {
        const char* name;
        BRect a, b;
        bool intersects, contains;
    };
    const Case cases[] = {
        {"itself", unit, unit, true, true},
        {"touching at an edge", unit, {{1, 0.2}, {2, 0.8}}, true, false},
        {"touching at a corner", unit, {{-1, -1}, {0, 0}}, true, false},
        {"apart by a hair", unit, {{1 + hair, 0}, {2, 1}}, false, false},
        {"standing out by a hair", unit, {{0, 0}, {1, 1 + hair}}, true, false},
        {"empty", unit, BRect(), false, false},
        // Empty by its x axis alone, it meets nothing, though its y range overlaps.
        {"inverted in x", invertedX, {{-10, -10}, {10, 10}}, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.a.intersects(c.b), c.intersects);
        EXPECT_EQ(c.a.contains(c.b), c.contains);
        EXPECT_EQ(c.b.within(c.a), c.contains);
    }
    EXPECT_FALSE(BRect({-10, -10}, {10, 10}).contains(invertedX));
    EXPECT_TRUE(unit.contains(TmGePoint2d(1, 0)));
    EXPECT_FALSE(unit.contains(TmGePoint2d(0.5, -hair)));
    EXPECT_FALSE(unit.contains(TmGePoint2d(1 + hair, 0.5)));
    EXPECT_FALSE(invertedX.contains(TmGePoint2d(3, 0.5)));
}

} // namespace
