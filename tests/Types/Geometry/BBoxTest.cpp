#include <Types/Geometry/BBox.h>

#include <base/Strings.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGeTol.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <ostream>

namespace Kx {
static void PrintTo(const BBox& value, std::ostream* os) { *os << ToUTF8(value.toString()); }
} // namespace Kx

namespace {

using Kx::BBox;

constexpr double kMax = std::numeric_limits<double>::max();

// The empty state, bit for bit: the largest finite double in min, its negative in max.
void expectEmptySentinels(const BBox& box)
{
    EXPECT_TRUE(box.isEmpty());
    for (unsigned axis = 0; axis < 3; ++axis) {
        SCOPED_TRACE(axis);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(box.m_min[axis]), 0x7FEFFFFFFFFFFFFFull);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(box.m_max[axis]), 0xFFEFFFFFFFFFFFFFull);
    }
}

// Exact, field by field: TmGePoint3d's own == is tolerant.
void expectPoint(const TmGePoint3d& actual, const TmGePoint3d& expected)
{
    EXPECT_EQ(actual.x, expected.x);
    EXPECT_EQ(actual.y, expected.y);
    EXPECT_EQ(actual.z, expected.z);
}

void expectCorners(const BBox& box, const TmGePoint3d& min, const TmGePoint3d& max)
{
    expectPoint(box.m_min, min);
    expectPoint(box.m_max, max);
}

TEST(BBoxTest, EmptyStateIsTheSentinelPairAndReadOnXAlone)
{
    expectEmptySentinels(BBox());
    EXPECT_EQ(BBox().toString(),
        L"(min: 1.79769e+308, 1.79769e+308, 1.79769e+308 max:  -1.79769e+308, -1.79769e+308, -1.79769e+308)");
    BBox box({0, 0, 0}, {1, 1, 1});
    box.empty();
    expectEmptySentinels(box);

    BBox invertedY({0, 0, 0}, {1, 1, 1});
    invertedY.m_min.y = 5;
    EXPECT_FALSE(invertedY.isEmpty());
    BBox invertedX({0, 0, 0}, {1, 1, 1});
    invertedX.m_min.x = 5;
    EXPECT_TRUE(invertedX.isEmpty());
}

TEST(BBoxTest, CornersAreSortedPerAxisAndPrinted)
{
    const BBox box({4, 2, 6}, {1, 5, 3});
    expectCorners(box, {1, 2, 3}, {4, 5, 6});
    BBox reset;
    reset.set({0, 0, 9}, {-1, 1, 8});
    expectCorners(reset, {-1, 0, 8}, {0, 1, 9});
    EXPECT_EQ(BBox({1, 2, 3}, {4.5, 5, 6}).toString(), L"(min: 1, 2, 3 max:  4.5, 5, 6)");

    TmGePoint3d min, max;
    box.getOriginalExtent(min, max);
    expectCorners(BBox(min, max), {1, 2, 3}, {4, 5, 6});
    BBox().getOriginalExtent(min, max);
    expectPoint(min, {kMax, kMax, kMax});
    expectPoint(max, {-kMax, -kMax, -kMax});
}

TEST(BBoxTest, UnionGrowsFromEmptyAndIgnoresEmptyOperands)
{
    const BBox cube({0, 0, 0}, {2, 2, 2});

    BBox fromEmpty;
    fromEmpty |= cube;
    EXPECT_EQ(fromEmpty, cube);
    BBox withEmpty = cube;
    withEmpty |= BBox();
    EXPECT_EQ(withEmpty, cube);
    BBox bothEmpty;
    bothEmpty |= BBox();
    expectEmptySentinels(bothEmpty);

    BBox hull = cube;
    hull |= BBox({1, -3, 1}, {5, 1, 1});
    expectCorners(hull, {0, -3, 0}, {5, 2, 2});

    BBox points;
    EXPECT_FALSE(points.isOnePoint());
    points |= TmGePoint3d(1, 2, 3);
    expectCorners(points, {1, 2, 3}, {1, 2, 3});
    EXPECT_TRUE(points.isOnePoint());
    points |= TmGePoint3d(1, 2, 3);
    EXPECT_TRUE(points.isOnePoint());
    points |= TmGePoint3d(0, 2, 7);
    expectCorners(points, {0, 2, 3}, {1, 2, 7});
    EXPECT_FALSE(points.isOnePoint());
    EXPECT_FALSE(BBox({1, 2, 3}, {1, 2, std::nextafter(3.0, 4.0)}).isOnePoint());
}

TEST(BBoxTest, IntersectionIsExactAndEmptyWhenApartOnAnyAxis)
{
    const double t = TmGeTol().equalPoint();
    struct Case {
        const char* name;
        BBox other;
        bool empty;
        TmGePoint3d min, max;
    };
    const BBox cube({0, 0, 0}, {4, 4, 4});
    const Case cases[] = {
        {"overlap", {{2, 1, -1}, {6, 3, 2}}, false, {2, 1, 0}, {4, 3, 2}},
        {"touching face leaves a flat box", {{1, 1, 4}, {2, 2, 5}}, false, {1, 1, 4}, {2, 2, 4}},
        {"apart on z only", {{0, 0, 5}, {4, 4, 6}}, true, {}, {}},
        {"apart by less than the tolerance", {{0, 0, 4 + t / 2}, {4, 4, 6}}, true, {}, {}},
        {"empty operand", BBox(), true, {}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        BBox result = cube;
        result &= c.other;
        if (c.empty)
            expectEmptySentinels(result);
        else
            expectCorners(result, c.min, c.max);
    }

    // An empty receiver is left exactly as it is, not reset to the sentinels.
    BBox inverted;
    inverted.m_min.set(5, 0, 0);
    inverted.m_max.set(1, 1, 1);
    inverted &= cube;
    expectCorners(inverted, {5, 0, 0}, {1, 1, 1});
}

// The box tolerance on each axis and in both directions. `outBy` is how far the probe stands
// beyond a face (negative: inside); the tests are strict, so exactly the tolerance is out.
TEST(BBoxTest, ContainmentAndIntersectionAllowLessThanTheTolerance)
{
    const double t = TmGeTol().equalPoint();
    struct Case {
        const char* name;
        double outBy;
        bool inside;
    };
    const Case cases[] = {
        {"well inside", -0.5, true},
        {"on the face", 0.0, true},
        {"half the tolerance out", t / 2, true},
        {"exactly the tolerance out", t, false},
        {"twice the tolerance out", 2 * t, false},
    };
    // Faces at 0: the min faces of `upper`, the max faces of `lower`.
    const BBox upper({0, 0, 0}, {1, 1, 1});
    const BBox lower({-1, -1, -1}, {0, 0, 0});
    for (const Case& c : cases) {
        for (unsigned axis = 0; axis < 3; ++axis) {
            SCOPED_TRACE(testing::Message() << c.name << ", axis " << axis);
            TmGePoint3d belowUpper(0.5, 0.5, 0.5);
            belowUpper[axis] = -c.outBy;
            TmGePoint3d aboveLower(-0.5, -0.5, -0.5);
            aboveLower[axis] = c.outBy;
            EXPECT_EQ(upper.contains(belowUpper), c.inside);
            EXPECT_EQ(lower.contains(aboveLower), c.inside);

            BBox innerOfUpper({0.25, 0.25, 0.25}, {0.75, 0.75, 0.75});
            innerOfUpper.m_min[axis] = -c.outBy;
            BBox innerOfLower({-0.75, -0.75, -0.75}, {-0.25, -0.25, -0.25});
            innerOfLower.m_max[axis] = c.outBy;
            EXPECT_EQ(upper.contains(innerOfUpper), c.inside);
            EXPECT_EQ(innerOfUpper.within(upper), c.inside);
            EXPECT_EQ(lower.contains(innerOfLower), c.inside);

            // `lower` and a box whose min face stands `outBy` beyond lower's max face.
            BBox neighbour({-0.5, -0.5, -0.5}, {0.5, 0.5, 0.5});
            neighbour.m_min[axis] = c.outBy;
            neighbour.m_max[axis] = c.outBy + 1;
            EXPECT_EQ(lower.intersects(neighbour), c.inside);
            EXPECT_EQ(neighbour.intersects(lower), c.inside);
        }
    }

    EXPECT_FALSE(BBox().contains(TmGePoint3d(0, 0, 0)));
    EXPECT_FALSE(BBox().contains(upper));
    EXPECT_FALSE(upper.contains(BBox()));
    EXPECT_FALSE(BBox().intersects(upper));
    EXPECT_FALSE(upper.intersects(BBox()));
}

// The tolerance was taken from a default TmGeTol when the library started: a host changing the
// kernel's global tolerance does not widen it.
TEST(BBoxTest, ToleranceDoesNotFollowTheKernelsGlobalTolerance)
{
    struct GlobalToleranceGuard {
        TmGeTol saved = TmGeContext::gTol;
        ~GlobalToleranceGuard() { TmGeContext::gTol = saved; }
    } guard;
    TmGeContext::gTol.setEqualPoint(1e-3);

    const BBox unit({0, 0, 0}, {1, 1, 1});
    EXPECT_FALSE(unit.contains(TmGePoint3d(1 + 1e-6, 0.5, 0.5)));
    EXPECT_FALSE(unit.intersects(BBox({1 + 1e-6, 0, 0}, {2, 1, 1})));
}

TEST(BBoxTest, CornerPositionsInTheirFixedOrder)
{
    TmGePoint3d corners[8];
    BBox({1, 2, 3}, {4, 5, 6}).cornerPositions(corners);
    const TmGePoint3d expected[8] = {
        {1, 2, 3}, {4, 2, 3}, {4, 5, 3}, {1, 5, 3}, {4, 5, 6}, {1, 2, 6}, {4, 2, 6}, {1, 5, 6}};
    for (int i = 0; i < 8; ++i) {
        SCOPED_TRACE(i);
        expectPoint(corners[i], expected[i]);
    }
}

TEST(BBoxTest, TransformedByBoundsTheTransformedCorners)
{
    // Turned by 45 degrees about z, the square [-1, 1]^2 reaches sqrt 2 along both axes; the
    // transformed min and max corners alone would give a box of zero width.
    const BBox box({-1, -1, 0}, {1, 1, 2});
    const BBox turned = box.transformedBy(TmGeMatrix3d::rotation(std::numbers::pi / 4, TmGeVector3d::kZAxis));
    const double r = std::sqrt(2.0);
    const TmGePoint3d expectedMin(-r, -r, 0), expectedMax(r, r, 2);
    for (unsigned axis = 0; axis < 3; ++axis) {
        SCOPED_TRACE(axis);
        EXPECT_NEAR(turned.m_min[axis], expectedMin[axis], 1e-12);
        EXPECT_NEAR(turned.m_max[axis], expectedMax[axis], 1e-12);
    }

    // A quarter turn about x through (0, 0, 1) maps (x, y, z) to (x, 1 - z, 1 + y).
    const BBox block({0, 0, 0}, {1, 2, 3});
    const BBox quarter
        = block.transformedBy(TmGeMatrix3d::rotation(std::numbers::pi / 2, TmGeVector3d::kXAxis, {0, 0, 1}));
    const TmGePoint3d quarterMin(0, -2, 1), quarterMax(1, 1, 3);
    for (unsigned axis = 0; axis < 3; ++axis) {
        SCOPED_TRACE(axis);
        EXPECT_NEAR(quarter.m_min[axis], quarterMin[axis], 1e-12);
        EXPECT_NEAR(quarter.m_max[axis], quarterMax[axis], 1e-12);
    }

    expectCorners(box.transformedBy(TmGeMatrix3d::translation({1, 2, 3})), {0, 1, 3}, {2, 3, 5});
    expectEmptySentinels(BBox().transformedBy(TmGeMatrix3d::translation({1, 2, 3})));
}

TEST(BBoxTest, Measures)
{
    const BBox box({1, 2, 3}, {0, 0, 0});
    expectPoint(box.size(), {1, 2, 3});
    expectPoint(box.midPt(), {0.5, 1, 1.5});
    EXPECT_EQ(box.area(), 22);
    EXPECT_EQ(box.diameter2(), 14);
    EXPECT_DOUBLE_EQ(box.diameter(), std::sqrt(14.0));

    const BBox empty;
    expectPoint(empty.size(), {0, 0, 0});
    expectPoint(empty.midPt(), {0, 0, 0});
    EXPECT_EQ(empty.area(), 0);
    EXPECT_EQ(empty.diameter(), 0);
    EXPECT_EQ(empty.diameter2(), 0);

    // min + max would overflow here.
    const TmGePoint3d far(0.75 * kMax, 0.75 * kMax, -0.75 * kMax);
    expectPoint(BBox(far, far).midPt(), far);
}

TEST(BBoxTest, MovesKeepTheEmptyState)
{
    BBox box({0, 0, 0}, {2, 4, 6});
    box.translate({1, -1, 0});
    expectCorners(box, {1, -1, 0}, {3, 3, 6});
    box.inflate({1, 0, 0.5});
    expectCorners(box, {0, -1, -0.5}, {4, 3, 6.5});
    box.scale(0.5);
    expectCorners(box, {1, 0, 1.25}, {3, 2, 4.75});
    box.scale(-2);
    expectCorners(box, {0, -1, -0.5}, {4, 3, 6.5});
    box.scale(0);
    expectCorners(box, {2, 1, 3}, {2, 1, 3});
    box.inflate({1, 1, 1});
    box.inflate({0, 0, -1.5});
    expectEmptySentinels(box);

    // Large enough to move even the sentinels if an empty box were not left alone.
    BBox empty;
    empty.translate({1e300, 1e300, 1e300});
    expectEmptySentinels(empty);
    empty.inflate({1e300, 1e300, 1e300});
    expectEmptySentinels(empty);
    empty.scale(0.5);
    expectEmptySentinels(empty);
}

TEST(BBoxTest, EqualityIsExact)
{
    const BBox box({0, 0, 0}, {1, 1, 1});
    EXPECT_EQ(box, BBox({1, 1, 1}, {0, 0, 0}));
    EXPECT_NE(box, BBox({0, 0, 0}, {1, 1, std::nextafter(1.0, 2.0)}));
    EXPECT_EQ(BBox(), BBox());

    BBox sameMinX;
    sameMinX.m_max.x = kMax;
    EXPECT_FALSE(sameMinX.isEmpty());
    EXPECT_NE(BBox(), sameMinX);

    BBox withNaN = box;
    withNaN.m_max.z = std::numeric_limits<double>::quiet_NaN();
    EXPECT_NE(withNaN, withNaN);
}

} // namespace
