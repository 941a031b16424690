#include <geometry/TmGeMatrix2d.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePlane.h>

#include "GeometryTestUtil.h"

#include <cmath>
#include <cstring>
#include <numbers>
#include <vector>

namespace {

using KxTest::near3;

constexpr double kPi = std::numbers::pi;

// A random matrix with singular values in [1, 10] by construction: rotations around a scaled
// diagonal, plus a translation, so M * M^-1 = I must hold to a few ulps times the condition.
TmGeMatrix3d wellConditioned(KxTest::Random& random, bool projective)
{
    TmGeMatrix3d scale;
    for (int i = 0; i < 3; ++i)
        scale.entry[i][i] = random.uniform(1.0, 10.0) * (random.integer(0, 1) ? 1.0 : -1.0);
    TmGeMatrix3d m = TmGeMatrix3d::rotation(random.uniform(-kPi, kPi), random.unit3()) * scale
        * TmGeMatrix3d::rotation(random.uniform(-kPi, kPi), random.unit3());
    m.preMultBy(TmGeMatrix3d::translation(random.vector3(100.0)));
    if (projective) {
        m.entry[3][0] = random.uniform(-0.01, 0.01);
        m.entry[3][1] = random.uniform(-0.01, 0.01);
        m.entry[3][2] = random.uniform(-0.01, 0.01);
    }
    return m;
}

TEST(TmGeMatrix3dTest, InverseOfWellConditionedMatrices)
{
    KxTest::Random random(20240601);
    const TmGeTol tight(1e-9, 1e-11);
    for (int i = 0; i < 200; ++i) {
        const TmGeMatrix3d m = wellConditioned(random, i % 2 == 1);
        SCOPED_TRACE(i);
        ASSERT_FALSE(m.isSingular());
        const TmGeMatrix3d inv = m.inverse();
        EXPECT_TRUE((m * inv).isIdentity(tight));
        EXPECT_TRUE((inv * m).isIdentity(tight));
        EXPECT_NEAR(m.det() * inv.det(), 1.0, 1e-12);
    }
}

TEST(TmGeMatrix3dTest, SingularMatricesAreReported)
{
    TmGeMatrix3d projection;
    projection.setToProjection(TmGePlane(TmGePoint3d(0, 0, 2), TmGeVector3d(1, 1, 0)));
    TmGeMatrix3d rankTwo;
    rankTwo.entry[2][0] = 1.0;
    rankTwo.entry[2][1] = 2.0;
    rankTwo.entry[2][2] = 0.0;
    TmGeMatrix3d tinyButRegular = TmGeMatrix3d::scaling(1e-8);
    TmGeMatrix3d notANumber;
    notANumber.entry[1][2] = std::nan("");
    const struct {
        const char* name;
        TmGeMatrix3d m;
        bool singular;
    } cases[] = {
        {"projection", projection, true},
        {"dependent rows", rankTwo, true},
        {"zero", TmGeMatrix3d::scaling(0.0), true},
        {"NaN entry", notANumber, true},
        {"uniformly tiny scale is regular", tinyButRegular, false},
        {"identity", TmGeMatrix3d::kIdentity, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.m.isSingular(), c.singular);
        TmGeMatrix3d out = TmGeMatrix3d::translation({9, 9, 9});
        const Tmk::ErrorStatus status = c.m.inverse(out);
        if (c.singular) {
            EXPECT_EQ(status, Tmk::ErrorStatus::eSingularMatrix);
            EXPECT_TRUE(out.isEqualTo(TmGeMatrix3d::translation({9, 9, 9})));
            const TmGeMatrix3d unchanged = c.m.inverse();
            EXPECT_EQ(std::memcmp(&unchanged.entry, &c.m.entry, sizeof c.m.entry), 0);
        } else {
            EXPECT_EQ(status, Tmk::ErrorStatus::eOk);
        }
    }
}

TEST(TmGeMatrix3dTest, RotationClosedForms)
{
    const struct {
        const char* name;
        double angle;
        TmGeVector3d axis;
        TmGePoint3d center;
        TmGePoint3d from;
        TmGePoint3d to;
    } cases[] = {
        {"x axis about z by pi/2 gives y", kPi / 2, {0, 0, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}},
        {"y axis about x by pi/2 gives z", kPi / 2, {1, 0, 0}, {0, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {"axis length does not matter", kPi / 2, {0, 0, 10}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}},
        {"about an axis through a point", kPi, {0, 0, 1}, {1, 1, 0}, {2, 1, 5}, {0, 1, 5}},
        {"point on the axis stays", 1.234, {1, 1, 1}, {1, 2, 3}, {2, 3, 4}, {2, 3, 4}},
        {"third of a turn about the diagonal cycles the axes", 2 * kPi / 3, {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}},
        {"zero axis is the identity", 1.0, {0, 0, 0}, {5, 5, 5}, {1, 2, 3}, {1, 2, 3}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TmGeMatrix3d m;
        m.setToRotation(c.angle, c.axis, c.center);
        EXPECT_TRUE(near3(m * c.from, c.to, 1e-14));
        EXPECT_NEAR(m.det(), 1.0, 1e-14);
        EXPECT_TRUE(m.isUniScaledOrtho());
    }
}

TEST(TmGeMatrix3dTest, ProductOrderAndPushes)
{
    const TmGeMatrix3d t = TmGeMatrix3d::translation({1, 0, 0});
    const TmGeMatrix3d r = TmGeMatrix3d::rotation(kPi / 2, TmGeVector3d::kZAxis);
    // (t * r)(p) = t(r(p)): rotate first.
    EXPECT_TRUE(near3((t * r) * TmGePoint3d(1, 0, 0), TmGePoint3d(1, 1, 0), 1e-15));
    EXPECT_TRUE(near3((r * t) * TmGePoint3d(1, 0, 0), TmGePoint3d(0, 2, 0), 1e-15));
    TmGeMatrix3d pre = r;
    pre.preMultBy(t);
    EXPECT_TRUE(pre.isEqualTo(t * r));
    TmGeMatrix3d post = r;
    post.postMultBy(t);
    EXPECT_TRUE(post.isEqualTo(r * t));
    TmGeMatrix3d self = r;
    self.setToProduct(self, self);
    EXPECT_TRUE(self.isEqualTo(TmGeMatrix3d::rotation(kPi, TmGeVector3d::kZAxis)));
}

TEST(TmGeMatrix3dTest, CoordinateSystemsLocalToWorldAndBack)
{
    KxTest::Random random(99);
    for (int i = 0; i < 50; ++i) {
        const TmGePoint3d origin = random.point3(50.0);
        const TmGeVector3d x = random.unit3();
        const TmGeVector3d y = x.perpVector().rotateBy(random.uniform(0, 2 * kPi), x);
        const TmGeVector3d z = x.crossProduct(y);
        TmGeMatrix3d localToWorld;
        localToWorld.setCoordSystem(origin, x, y, z);
        const TmGePoint3d local = random.point3(10.0);
        const TmGePoint3d world = origin + x * local.x + y * local.y + z * local.z;
        EXPECT_TRUE(near3(localToWorld * local, world, 1e-12));

        TmGeMatrix3d aligned;
        ASSERT_EQ(aligned.setToAlignCoordSys(TmGePoint3d::kOrigin, TmGeVector3d::kXAxis, TmGeVector3d::kYAxis,
                                             TmGeVector3d::kZAxis, origin, x, y, z),
                  Tmk::ErrorStatus::eOk);
        EXPECT_TRUE(aligned.isEqualTo(localToWorld, TmGeTol(1e-12, 1e-12)));

        TmGeMatrix3d worldToLocal;
        ASSERT_EQ(worldToLocal.setToAlignCoordSys(origin, x, y, z, TmGePoint3d::kOrigin, TmGeVector3d::kXAxis,
                                                  TmGeVector3d::kYAxis, TmGeVector3d::kZAxis),
                  Tmk::ErrorStatus::eOk);
        EXPECT_TRUE(near3(worldToLocal * world, local, 1e-11));

        TmGePoint3d o;
        TmGeVector3d gx;
        TmGeVector3d gy;
        TmGeVector3d gz;
        localToWorld.getCoordSystem(o, gx, gy, gz);
        EXPECT_TRUE(near3(o, origin, 0.0));
        EXPECT_TRUE(near3(gy, y, 0.0));
    }
    TmGeMatrix3d m = TmGeMatrix3d::translation({1, 2, 3});
    EXPECT_EQ(m.setToAlignCoordSys(TmGePoint3d::kOrigin, TmGeVector3d::kXAxis, TmGeVector3d::kXAxis,
                                   TmGeVector3d::kZAxis, TmGePoint3d::kOrigin, TmGeVector3d::kXAxis,
                                   TmGeVector3d::kYAxis, TmGeVector3d::kZAxis),
              Tmk::ErrorStatus::eSingularMatrix);
    EXPECT_TRUE(m.isIdentity());
}

TEST(TmGeMatrix3dTest, MirrorsAndPlaneSystems)
{
    const TmGePlane plane(TmGePoint3d(0, 0, 1), TmGeVector3d(0, 1, 1));
    TmGeMatrix3d mirror;
    mirror.setToMirroring(plane);
    EXPECT_NEAR(mirror.det(), -1.0, 1e-14);
    EXPECT_TRUE((mirror * mirror).isIdentity());
    const TmGePoint3d p(3, 1, 1);
    const TmGePoint3d image = mirror * p;
    EXPECT_NEAR(plane.signedDistanceTo(image), -plane.signedDistanceTo(p), 1e-14);
    EXPECT_TRUE(near3(plane.closestPointTo(image), plane.closestPointTo(p), 1e-14));

    TmGeMatrix3d toPlane;
    toPlane.setToWorldToPlane(plane);
    TmGeMatrix3d fromPlane;
    fromPlane.setToPlaneToWorld(plane);
    EXPECT_TRUE((toPlane * fromPlane).isIdentity(TmGeTol(1e-14, 1e-14)));
    EXPECT_NEAR((toPlane * p).z, plane.signedDistanceTo(p), 1e-14);
}

TEST(TmGeMatrix3dTest, EqualityTolerancesPerEntryKind)
{
    const TmGeTol tol(1e-3, 1e-9);
    TmGeMatrix3d a;
    TmGeMatrix3d b;
    b.entry[0][3] = 5e-4; // translation: a point tolerance applies
    EXPECT_TRUE(a.isEqualTo(b, tol));
    b.entry[0][0] += 5e-4; // linear part: the vector tolerance applies
    EXPECT_FALSE(a.isEqualTo(b, tol));
    EXPECT_TRUE(TmGeMatrix3d::kIdentity.isIdentity());
    EXPECT_EQ(a(1, 2), a.entry[1][2]);
    a(1, 2) = 4.0;
    EXPECT_EQ(a.entry[1][2], 4.0);
}

TEST(TmGeMatrix2dTest, ClosedFormsAndInverse)
{
    const TmGeMatrix2d r = TmGeMatrix2d::rotation(kPi / 2, TmGePoint2d(1, 1));
    EXPECT_TRUE(KxTest::near2(r * TmGePoint2d(2, 1), TmGePoint2d(1, 2), 1e-15));
    TmGeMatrix2d mirror;
    mirror.setToMirroring(TmGePoint2d(0, 1), TmGeVector2d(1, 1));
    EXPECT_TRUE(KxTest::near2(mirror * TmGePoint2d(0, 0), TmGePoint2d(-1, 1), 1e-15));
    EXPECT_NEAR(mirror.det(), -1.0, 1e-15);

    KxTest::Random random(5);
    for (int i = 0; i < 100; ++i) {
        TmGeMatrix2d m = TmGeMatrix2d::rotation(random.uniform(-3, 3), random.point2(10));
        m.entry[0][0] *= random.uniform(1, 10);
        m.entry[1][0] *= random.uniform(1, 10);
        m.entry[0][1] += random.uniform(-1, 1);
        if (m.isSingular())
            continue;
        EXPECT_TRUE((m * m.inverse()).isIdentity(TmGeTol(1e-10, 1e-10)));
    }
    TmGeMatrix2d aligned;
    ASSERT_EQ(aligned.setToAlignCoordSys(TmGePoint2d(1, 1), TmGeVector2d(0, 1), TmGeVector2d(-1, 0), TmGePoint2d::kOrigin,
                                         TmGeVector2d::kXAxis, TmGeVector2d::kYAxis),
              Tmk::ErrorStatus::eOk);
    EXPECT_TRUE(KxTest::near2(aligned * TmGePoint2d(1, 3), TmGePoint2d(2, 0), 1e-15));
}

} // namespace

// The batch transform is the one-by-one transform, for affine and perspective matrices alike.
TEST(TmGeMatrix3dBatch, TransformPointsMatchesTransformByPointByPoint)
{
    TmGeMatrix3d perspective = TmGeMatrix3d::rotation(0.4, TmGeVector3d(0, 1, 1));
    perspective.entry[3][2] = 0.25;
    for (const TmGeMatrix3d& matrix : {TmGeMatrix3d::translation(TmGeVector3d(1, 2, 3)) * TmGeMatrix3d::rotation(1.0, TmGeVector3d(1, 0, 0)), perspective}) {
        std::vector<TmGePoint3d> batch{{1, 2, 3}, {-4, 0.5, 9}, {0, 0, 0}};
        std::vector<TmGePoint3d> single = batch;
        matrix.transformPoints(batch);
        for (std::size_t i = 0; i < batch.size(); ++i) {
            single[i].transformBy(matrix);
            EXPECT_EQ(batch[i].x, single[i].x);
            EXPECT_EQ(batch[i].y, single[i].y);
            EXPECT_EQ(batch[i].z, single[i].z);
        }
    }
}
