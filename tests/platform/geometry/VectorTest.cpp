#include <geometry/TmGePoint2d.h>
#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeTol.h>
#include <geometry/TmGeVector2d.h>
#include <geometry/TmGeVector3d.h>

#include "GeometryTestUtil.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace {

using KxTest::near3;

constexpr double kPi = std::numbers::pi;

TEST(TmGeVector3dTest, DirectionPredicates)
{
    const TmGeTol tol(1e-9, 1e-9);
    struct Case {
        const char* name;
        TmGeVector3d a;
        TmGeVector3d b;
        bool parallel;
        bool codirectional;
        bool perpendicular;
    };
    const Case cases[] = {
        {"same direction, other length", {1, 2, 3}, {2, 4, 6}, true, true, false},
        {"opposite", {1, 2, 3}, {-0.5, -1, -1.5}, true, false, false},
        {"perpendicular", {1, 0, 0}, {0, 0, 7}, false, false, true},
        {"just beyond tolerance", {1, 0, 0}, {1, 1e-8, 0}, false, false, false},
        {"within tolerance", {1, 0, 0}, {1, 1e-10, 0}, true, true, false},
        {"zero vector has no direction", {0, 0, 0}, {1, 0, 0}, false, false, false},
        {"oblique", {1, 1, 0}, {1, 0, 0}, false, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.a.isParallelTo(c.b, tol), c.parallel);
        EXPECT_EQ(c.b.isParallelTo(c.a, tol), c.parallel);
        EXPECT_EQ(c.a.isCodirectionalTo(c.b, tol), c.codirectional);
        EXPECT_EQ(c.a.isPerpendicularTo(c.b, tol), c.perpendicular);
    }
}

TEST(TmGeVector3dTest, EqualityUsesTheGivenToleranceAndTheGlobalOneForOperators)
{
    const TmGePoint3d p(1, 2, 3);
    EXPECT_TRUE(p.isEqualTo(TmGePoint3d(1, 2, 3 + 0.9e-3), TmGeTol(1e-3, 1e-12)));
    EXPECT_FALSE(p.isEqualTo(TmGePoint3d(1, 2, 3 + 1.1e-3), TmGeTol(1e-3, 1e-12)));
    // The point tolerance does not govern vectors.
    EXPECT_FALSE(TmGeVector3d(1, 2, 3).isEqualTo(TmGeVector3d(1, 2, 3.0005), TmGeTol(1e-3, 1e-6)));

    const TmGeTol saved = TmGeContext::gTol;
    EXPECT_FALSE(p == TmGePoint3d(1, 2, 3.0001));
    TmGeContext::gTol.setEqualPoint(1e-3);
    EXPECT_TRUE(p == TmGePoint3d(1, 2, 3.0001));
    TmGeContext::gTol = saved;
}

TEST(TmGeVector3dTest, ToleranceSettersRejectNonsense)
{
    TmGeTol tol;
    EXPECT_EQ(tol.equalPoint(), TmGeTol::kDefaultEqualPoint);
    tol.setEqualPoint(-1e-4);
    EXPECT_EQ(tol.equalPoint(), 1e-4);
    tol.setEqualVector(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(tol.equalVector(), TmGeTol::kDefaultEqualVector);
}

TEST(TmGeVector3dTest, PerpVectorIsUnitPerpendicularAndStable)
{
    KxTest::Random random(7);
    for (int i = 0; i < 200; ++i) {
        const TmGeVector3d v = i < 3 ? TmGeVector3d(i == 0, i == 1, i == 2) * 3.0 : random.vector3(5.0);
        const TmGeVector3d p = v.perpVector();
        EXPECT_NEAR(p.length(), 1.0, 1e-14);
        EXPECT_NEAR(p.dotProduct(v), 0.0, 1e-13 * v.length());
        EXPECT_TRUE(near3(p, v.perpVector(), 0.0));
    }
    // Planes and circles derive their axes from it: the z axis gets the x axis.
    EXPECT_TRUE(near3(TmGeVector3d::kZAxis.perpVector(), TmGeVector3d::kXAxis, 0.0));
}

TEST(TmGeVector3dTest, SignedAngleAboutAReference)
{
    struct Case {
        const char* name;
        TmGeVector3d a;
        TmGeVector3d b;
        TmGeVector3d reference;
        double expected;
    };
    const Case cases[] = {
        {"quarter turn counter-clockwise", {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, kPi / 2},
        {"quarter turn seen from below", {1, 0, 0}, {0, 1, 0}, {0, 0, -1}, 3 * kPi / 2},
        {"half turn", {1, 0, 0}, {-2, 0, 0}, {0, 0, 1}, kPi},
        {"same direction", {0, 3, 0}, {0, 1, 0}, {0, 0, 1}, 0.0},
        {"oblique", {1, 0, 0}, {1, 1, 0}, {0, 0, 1}, kPi / 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_NEAR(c.a.angleTo(c.b, c.reference), c.expected, 1e-14);
        EXPECT_NEAR(c.a.angleTo(c.b), std::min(c.expected, 2 * kPi - c.expected), 1e-14);
    }
}

TEST(TmGeVector3dTest, NormalLeavesDirectionlessVectorsAlone)
{
    EXPECT_TRUE(near3(TmGeVector3d(0, 0, 5).normal(), TmGeVector3d(0, 0, 1), 0.0));
    const TmGeVector3d tiny(1e-12, 0, 0);
    EXPECT_TRUE(near3(tiny.normal(), tiny, 0.0));
    EXPECT_TRUE(near3(TmGeVector3d(3, 4, 0).normal(), TmGeVector3d(0.6, 0.8, 0), 1e-16));
}

TEST(TmGeVector3dTest, RotationFollowsTheRightHandRule)
{
    TmGeVector3d v = TmGeVector3d::kXAxis;
    v.rotateBy(kPi / 2, TmGeVector3d::kZAxis);
    EXPECT_TRUE(near3(v, TmGeVector3d::kYAxis, 1e-15));
    TmGePoint3d p(2, 0, 0);
    p.rotateBy(kPi, TmGeVector3d::kZAxis, TmGePoint3d(1, 0, 0));
    EXPECT_TRUE(near3(p, TmGePoint3d(0, 0, 0), 1e-15));
}

TEST(TmGeVector2dTest, AnglesAndPerpendiculars)
{
    EXPECT_NEAR(TmGeVector2d(0, -1).angle(), 3 * kPi / 2, 1e-15);
    EXPECT_NEAR(TmGeVector2d(1, 1).angleTo(TmGeVector2d(-1, 1)), kPi / 2, 1e-15);
    EXPECT_TRUE(KxTest::near2(TmGeVector2d(2, 1).perpVector(), TmGeVector2d(-1, 2), 0.0));
    EXPECT_GT(TmGeVector2d(1, 0).crossProduct(TmGeVector2d(0, 1)), 0.0);
    TmGePoint2d p(1, 0);
    p.rotateBy(kPi / 2, TmGePoint2d(1, 1));
    EXPECT_TRUE(KxTest::near2(p, TmGePoint2d(2, 1), 1e-15));
}

} // namespace
