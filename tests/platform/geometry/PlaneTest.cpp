#include <geometry/TmGeBoundedPlane.h>
#include <geometry/TmGeLine3d.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePlane.h>

#include "GeometryTestUtil.h"

#include <cmath>
#include <numbers>

namespace {

using KxTest::near3;

TEST(TmGePlaneTest, CoefficientsClosedForms)
{
    const double s3 = 1.0 / std::sqrt(3.0);
    const struct {
        const char* name;
        TmGePlane plane;
        double a, b, c, d;
    } cases[] = {
        {"z = 2", TmGePlane(TmGePoint3d(5, -1, 2), TmGeVector3d(0, 0, 7)), 0, 0, 1, -2},
        {"normal down", TmGePlane(TmGePoint3d(0, 0, 2), TmGeVector3d(0, 0, -1)), 0, 0, -1, 2},
        {"x + y + z = 3", TmGePlane(TmGePoint3d(1, 1, 1), TmGeVector3d(1, 1, 1)), s3, s3, s3, -3 * s3},
        {"from coefficients, scaled", TmGePlane(0.0, 0.0, 4.0, -8.0), 0, 0, 1, -2},
        {"through three points", TmGePlane(TmGePoint3d(1, 0, 0), TmGePoint3d(0, 1, 0), TmGePoint3d(0, 0, 1)), s3, s3, s3,
         -s3},
        {"from two in-plane axes", TmGePlane(TmGePoint3d(0, 3, 0), TmGeVector3d(0, 0, 2), TmGeVector3d(5, 0, 0)), 0, 1, 0,
         -3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        double a = 0;
        double b = 0;
        double cc = 0;
        double d = 0;
        c.plane.getCoefficients(a, b, cc, d);
        EXPECT_NEAR(a, c.a, 1e-15);
        EXPECT_NEAR(b, c.b, 1e-15);
        EXPECT_NEAR(cc, c.c, 1e-15);
        EXPECT_NEAR(d, c.d, 1e-15);
        EXPECT_TRUE(c.plane.isOn(c.plane.pointOnPlane()));
        EXPECT_NEAR(c.plane.normal().length(), 1.0, 1e-15);
    }
}

TEST(TmGePlaneTest, DegenerateInputIsRefused)
{
    TmGePlane plane(TmGePoint3d(1, 2, 3), TmGeVector3d(1, 0, 0));
    const TmGePlane before = plane;
    EXPECT_EQ(plane.set(TmGePoint3d(0, 0, 0), TmGeVector3d(0, 0, 0)), Tmk::ErrorStatus::eDegenerateGeometry);
    EXPECT_EQ(plane.set(0, 0, 0, 1), Tmk::ErrorStatus::eDegenerateGeometry);
    EXPECT_EQ(plane.set(TmGePoint3d(0, 0, 0), TmGePoint3d(1, 1, 1), TmGePoint3d(2, 2, 2)),
              Tmk::ErrorStatus::eDegenerateGeometry);
    EXPECT_EQ(plane.set(TmGePoint3d(NAN, 0, 0), TmGeVector3d(0, 0, 1)), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_TRUE(plane.isEqualTo(before));
    // The constructors fall back to the XY plane.
    EXPECT_TRUE(TmGePlane(TmGePoint3d(1, 1, 1), TmGeVector3d(0, 0, 0)).isEqualTo(TmGePlane::kXYPlane));
}

TEST(TmGePlaneTest, CoplanarityIsAboutPointSets)
{
    const TmGePlane base(TmGePoint3d(0, 0, 1), TmGeVector3d(0, 0, 1));
    const struct {
        const char* name;
        TmGePlane other;
        bool coplanar;
        bool equal;
    } cases[] = {
        {"same plane, other point", TmGePlane(TmGePoint3d(7, -3, 1), TmGeVector3d(0, 0, 2)), true, false},
        {"reversed normal", TmGePlane(TmGePoint3d(0, 0, 1), TmGeVector3d(0, 0, -1)), true, false},
        {"identical", TmGePlane(TmGePoint3d(0, 0, 1), TmGeVector3d(0, 0, 1)), true, true},
        {"parallel, offset", TmGePlane(TmGePoint3d(0, 0, 1.001), TmGeVector3d(0, 0, 1)), false, false},
        {"tilted through the same point", TmGePlane(TmGePoint3d(0, 0, 1), TmGeVector3d(0, 0.01, 1)), false, false},
        {"from coefficients", TmGePlane(0, 0, -3, 3), true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(base.isCoplanarTo(c.other), c.coplanar);
        EXPECT_EQ(c.other.isCoplanarTo(base), c.coplanar);
        EXPECT_EQ(base == c.other, c.equal);
    }
}

TEST(TmGePlaneTest, OwnAxesAreARightHandedOrthonormalSystem)
{
    KxTest::Random random(3);
    for (int i = 0; i < 100; ++i) {
        const TmGePlane plane(random.point3(10), i == 0 ? TmGeVector3d::kZAxis : random.vector3(3));
        TmGePoint3d origin;
        TmGeVector3d u;
        TmGeVector3d v;
        plane.get(origin, u, v);
        EXPECT_TRUE(near3(origin, plane.pointOnPlane(), 0.0));
        EXPECT_NEAR(u.length(), 1.0, 1e-14);
        EXPECT_NEAR(v.length(), 1.0, 1e-14);
        EXPECT_NEAR(u.dotProduct(plane.normal()), 0.0, 1e-14);
        EXPECT_TRUE(near3(u.crossProduct(v), plane.normal(), 1e-14));
        if (i == 0) {
            EXPECT_TRUE(near3(v, TmGeVector3d::kYAxis, 0.0));
        }
    }
}

TEST(TmGePlaneTest, IntersectionsAndProjection)
{
    const TmGePlane plane(1, 1, 1, -3); // x + y + z = 3
    TmGePoint3d hit;
    ASSERT_TRUE(plane.intersectWith(TmGeLine3d(TmGePoint3d(0, 0, 0), TmGePoint3d(1, 1, 1)), hit));
    EXPECT_TRUE(near3(hit, TmGePoint3d(1, 1, 1), 1e-15));
    EXPECT_FALSE(plane.intersectWith(TmGeLine3d(TmGePoint3d(0, 0, 0), TmGeVector3d(1, -1, 0)), hit));

    TmGeLine3d line;
    ASSERT_TRUE(plane.intersectWith(TmGePlane(TmGePoint3d(0, 0, 0), TmGeVector3d(0, 0, 1)), line));
    EXPECT_TRUE(plane.isOn(line.evalPoint(-4.0)) && plane.isOn(line.evalPoint(7.0)));
    EXPECT_NEAR(line.evalPoint(2.5).z, 0.0, 1e-14);
    EXPECT_FALSE(plane.intersectWith(TmGePlane(1, 1, 1, 5), line));

    const TmGePoint3d p(4, 5, 6);
    EXPECT_NEAR(plane.signedDistanceTo(p), 12.0 / std::sqrt(3.0), 1e-14);
    EXPECT_TRUE(plane.isOn(plane.closestPointTo(p)));
    EXPECT_TRUE(near3(p.orthoProject(plane), plane.closestPointTo(p), 0.0));
}

TEST(TmGePlaneTest, TransformKeepsThePositiveSide)
{
    KxTest::Random random(11);
    const TmGeMatrix3d shear = [] {
        TmGeMatrix3d m;
        m.entry[0][1] = 2.0;
        m.entry[2][2] = 0.5;
        return m;
    }();
    TmGeMatrix3d mirror;
    mirror.setToMirroring(TmGePlane(TmGePoint3d(1, 0, 0), TmGeVector3d(1, 2, 0)));
    const TmGeMatrix3d matrices[] = {TmGeMatrix3d::rotation(0.7, {1, 2, 3}, {4, 5, 6}), shear, mirror,
                                     TmGeMatrix3d::scaling(-2.0, {1, 1, 1})};
    for (const TmGeMatrix3d& m : matrices) {
        TmGePlane plane(random.point3(5), random.vector3(2));
        const TmGePoint3d above = plane.pointOnPlane() + plane.normal() * 0.5 + plane.normal().perpVector();
        TmGePlane moved = plane;
        moved.transformBy(m);
        // Points of the plane stay on it, and a point above it stays above it.
        TmGePoint3d u;
        TmGeVector3d ax;
        TmGeVector3d ay;
        plane.get(u, ax, ay);
        EXPECT_TRUE(moved.isOn(m * (u + ax * 3.0 - ay), TmGeTol(1e-12, 1e-12)));
        EXPECT_GT(moved.signedDistanceTo(m * above), 0.0);
    }
}

TEST(TmGeBoundedPlaneTest, ParallelogramMembership)
{
    const TmGeBoundedPlane face(TmGePoint3d(1, 1, 1), TmGeVector3d(2, 0, 0), TmGeVector3d(1, 1, 0));
    EXPECT_NEAR(face.area(), 2.0, 1e-15);
    EXPECT_TRUE(near3(face.normal(), TmGeVector3d::kZAxis, 1e-15));
    const struct {
        const char* name;
        TmGePoint3d p;
        bool on;
    } cases[] = {
        {"inside", {2.5, 1.5, 1}, true},
        {"corner", {4, 2, 1}, true},
        {"inside the box but outside the slant", {1.2, 1.9, 1}, false},
        {"above", {2.5, 1.5, 1.1}, false},
        {"beyond the far edge", {4.5, 2.0001, 1}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(face.isOn(c.p), c.on);
    }
    EXPECT_TRUE(TmGeBoundedPlane(TmGePoint3d(), TmGeVector3d(1, 0, 0), TmGeVector3d(-2, 0, 0)).isDegenerate());
    TmGeBoundedPlane moved = face;
    moved.transformBy(TmGeMatrix3d::rotation(std::numbers::pi / 2, TmGeVector3d::kXAxis));
    EXPECT_TRUE(near3(moved.normal(), TmGeVector3d(0, -1, 0), 1e-15));
    EXPECT_NEAR(moved.area(), 2.0, 1e-14);
}

} // namespace
