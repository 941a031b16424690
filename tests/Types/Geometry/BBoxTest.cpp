#include <Types/Geometry/BBox.h>

#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGeTol.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

namespace {

using Kx::BBox;

constexpr double kMax = std::numeric_limits<double>::max();

// The empty state, bit for bit: the largest finite double in min, its negative in max.
void expectEmptySentinels(const BBox& box)
{
    EXPECT_TRUE(box.isEmpty());
    for (unsigned axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(box.m_min[axis]), 0x7FEFFFFFFFFFFFFFull) << "axis " << axis;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(box.m_max[axis]), 0xFFEFFFFFFFFFFFFFull) << "axis " << axis;
    }
}

// Within `near` per coordinate; exactly by default (TmGePoint3d's own == is tolerant).
void expectPoint(const TmGePoint3d& actual, const TmGePoint3d& expected, double near = 0)
{
    for (unsigned axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(actual[axis], expected[axis], near) << "axis " << axis;
}

void expectCorners(const BBox& box, const TmGePoint3d& min, const TmGePoint3d& max, double near = 0)
{
    expectPoint(box.m_min, min, near);
    expectPoint(box.m_max, max, near);
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
    // Empty by its x axis alone, a box meets nothing, though its other axes overlap.
    BBox invertedX({0, 0, 0}, {1, 1, 1});
    invertedX.m_min.x = 5;
    const BBox large({-10, -10, -10}, {10, 10, 10});
    EXPECT_TRUE(invertedX.isEmpty());
    EXPECT_FALSE(invertedX.intersects(large));
    EXPECT_FALSE(invertedX.contains(TmGePoint3d(3, 0.5, 0.5)));
    EXPECT_FALSE(large.contains(invertedX));
}

TEST(BBoxTest, CornersAreSortedAndListedInTheirFixedOrder)
{
    BBox box({0, 0, 9}, {-1, 1, 8});
    expectCorners(box, {-1, 0, 8}, {0, 1, 9});
    box.set({4, 2, 6}, {1, 5, 3});
    expectCorners(box, {1, 2, 3}, {4, 5, 6});
    EXPECT_EQ(box.toString(), L"(min: 1, 2, 3 max:  4, 5, 6)");

    // The fifth corner is the far one, not the one above the first.
    TmGePoint3d corners[8];
    box.cornerPositions(corners);
    const TmGePoint3d expected[8] = {
        {1, 2, 3}, {4, 2, 3}, {4, 5, 3}, {1, 5, 3}, {4, 5, 6}, {1, 2, 6}, {4, 2, 6}, {1, 5, 6}};
    for (int i = 0; i < 8; ++i) {
        SCOPED_TRACE(i);
        expectPoint(corners[i], expected[i]);
    }
}

TEST(BBoxTest, UnionGrowsFromEmptyAndIgnoresEmptyOperands)
{
    const BBox cube({0, 0, 0}, {2, 2, 2});
    BBox box;
    box |= BBox();
    expectEmptySentinels(box);
    box |= cube;
    box |= BBox();
    EXPECT_EQ(box, cube);
    box |= BBox({1, -3, 1}, {5, 1, 1});
    expectCorners(box, {0, -3, 0}, {5, 2, 2});
    // An empty receiver takes the other's fields, whatever it held.
    BBox inverted({0, 0, 0}, {9, 9, 9});
    inverted.m_min.x = 10;
    inverted |= cube;
    EXPECT_EQ(inverted, cube);

    BBox points;
    EXPECT_FALSE(points.isOnePoint());
    points |= TmGePoint3d(1, 2, 3);
    expectCorners(points, {1, 2, 3}, {1, 2, 3});
    EXPECT_TRUE(points.isOnePoint());
    points |= TmGePoint3d(0, 2, 7);
    expectCorners(points, {0, 2, 3}, {1, 2, 7});
    EXPECT_FALSE(BBox({1, 2, 3}, {1, 2, std::nextafter(3.0, 4.0)}).isOnePoint());
}

TEST(BBoxTest, IntersectionIsExactAndEmptyWhenApartOnAnyAxis)
{
    const double t = TmGeTol().equalPoint();
    const BBox cube({0, 0, 0}, {4, 4, 4});
    BBox overlap = cube;
    overlap &= BBox({2, 1, -1}, {6, 3, 2});
    expectCorners(overlap, {2, 1, 0}, {4, 3, 2});
    BBox flat = cube;
    flat &= BBox({1, 1, 4}, {2, 2, 5});
    expectCorners(flat, {1, 1, 4}, {2, 2, 4});

    for (const BBox& apart : {BBox({0, 0, 5}, {4, 4, 6}), BBox({0, 0, 4 + t / 2}, {4, 4, 6}), BBox()}) {
        SCOPED_TRACE(testing::PrintToString(apart.toString()));
        BBox result = cube;
        result &= apart;
        expectEmptySentinels(result);
    }

    // An empty receiver is left exactly as it is, not reset to the sentinels.
    BBox inverted;
    inverted.m_min.set(5, 0, 0);
    inverted.m_max.set(1, 1, 1);
    inverted &= cube;
    expectCorners(inverted, {5, 0, 0}, {1, 1, 1});
}

// The box tolerance on each axis and in both directions. `outBy` is how far the probe stands
// beyond a face at 0 (negative: inside); the tests are strict, so exactly the tolerance is out.
TEST(BBoxTest, ContainmentAndIntersectionAllowLessThanTheTolerance)
{
    const double t = TmGeTol().equalPoint();
    struct Case {
        const char* name;
        double outBy;
        bool inside;
    };
    const Case cases[] = {{"well inside", -0.5, true}, {"on the face", 0.0, true}, {"half the tolerance out", t / 2, true},
        {"exactly the tolerance out", t, false}, {"twice the tolerance out", 2 * t, false}};
    const BBox upper({0, 0, 0}, {1, 1, 1});
    const BBox lower({-1, -1, -1}, {0, 0, 0});
    for (const Case& c : cases) {
        for (unsigned axis = 0; axis < 3; ++axis) {
            SCOPED_TRACE(testing::Message() << c.name << ", axis " << axis);
            TmGePoint3d belowUpper(0.5, 0.5, 0.5), aboveLower(-0.5, -0.5, -0.5);
            belowUpper[axis] = -c.outBy;
            aboveLower[axis] = c.outBy;
            EXPECT_EQ(upper.contains(belowUpper), c.inside);
            EXPECT_EQ(lower.contains(aboveLower), c.inside);

            BBox innerOfUpper({0.25, 0.25, 0.25}, {0.75, 0.75, 0.75});
            BBox innerOfLower({-0.75, -0.75, -0.75}, {-0.25, -0.25, -0.25});
            innerOfUpper.m_min[axis] = -c.outBy;
            innerOfLower.m_max[axis] = c.outBy;
            EXPECT_EQ(upper.contains(innerOfUpper), c.inside);
            EXPECT_EQ(innerOfLower.within(lower), c.inside);

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
    EXPECT_FALSE(upper.intersects(BBox()));
}

// The tolerance was read from a default TmGeTol when the library started: a host changing the
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

TEST(BBoxTest, TransformedByBoundsTheTransformedCorners)
{
    // Turned by 45 degrees about z, the square [-1, 1]^2 reaches sqrt 2 along both axes; the
    // transformed min and max corners alone would give a box of zero width.
    const BBox box({-1, -1, 0}, {1, 1, 2});
    const double r = std::sqrt(2.0);
    expectCorners(box.transformedBy(TmGeMatrix3d::rotation(std::numbers::pi / 4, TmGeVector3d::kZAxis)), {-r, -r, 0},
        {r, r, 2}, 1e-12);
    // A quarter turn about x through (0, 0, 1) maps (x, y, z) to (x, 1 - z, 1 + y).
    const TmGeMatrix3d quarter = TmGeMatrix3d::rotation(std::numbers::pi / 2, TmGeVector3d::kXAxis, {0, 0, 1});
    expectCorners(BBox({0, 0, 0}, {1, 2, 3}).transformedBy(quarter), {0, -2, 1}, {1, 1, 3}, 1e-12);
    expectEmptySentinels(BBox().transformedBy(quarter));
}

TEST(BBoxTest, MeasuresAndMovesKeepTheEmptyState)
{
    BBox box({1, 2, 3}, {0, 0, 0});
    expectPoint(box.size(), {1, 2, 3});
    expectPoint(box.midPt(), {0.5, 1, 1.5});
    EXPECT_EQ(box.area(), 22);
    EXPECT_EQ(box.diameter2(), 14);
    EXPECT_DOUBLE_EQ(box.diameter(), std::sqrt(14.0));
    // min + max would overflow here.
    const TmGePoint3d far(0.75 * kMax, 0.75 * kMax, -0.75 * kMax);
    expectPoint(BBox(far, far).midPt(), far);

    box.translate({1, -1, 0});
    box.inflate({1, 0, 0.5});
    expectCorners(box, {0, -1, -0.5}, {3, 1, 3.5});
    box.scale(0.5);
    expectCorners(box, {0.75, -0.5, 0.5}, {2.25, 0.5, 2.5});
    box.scale(-2);
    expectCorners(box, {0, -1, -0.5}, {3, 1, 3.5});
    box.scale(0);
    expectCorners(box, {1.5, 0, 1.5}, {1.5, 0, 1.5});
    box.inflate({1, 1, -0.5});
    expectEmptySentinels(box);

    // The moves are large enough to shift even the sentinels if an empty box were not left alone.
    BBox empty;
    EXPECT_EQ(empty.area(), 0);
    EXPECT_EQ(empty.diameter(), 0);
    expectPoint(empty.size(), {0, 0, 0});
    expectPoint(empty.midPt(), {0, 0, 0});
    empty.translate({1e300, 1e300, 1e300});
    empty.inflate({1e300, 1e300, 1e300});
    empty.scale(0.5);
    expectEmptySentinels(empty);
    TmGePoint3d min, max;
    empty.getOriginalExtent(min, max);
    expectPoint(min, {kMax, kMax, kMax});
    expectPoint(max, {-kMax, -kMax, -kMax});
}

TEST(BBoxTest, EqualityIsExact)
{
    const BBox box({0, 0, 0}, {1, 1, 1});
    EXPECT_EQ(box, BBox({1, 1, 1}, {0, 0, 0}));
    EXPECT_NE(box, BBox({0, 0, 0}, {1, 1, std::nextafter(1.0, 2.0)}));
    EXPECT_EQ(BBox(), BBox());
    BBox sameMinX;
    sameMinX.m_max.x = kMax;
    EXPECT_NE(BBox(), sameMinX);
    BBox withNaN = box;
    withNaN.m_max.z = std::numeric_limits<double>::quiet_NaN();
    EXPECT_NE(withNaN, withNaN);
}

} // namespace
