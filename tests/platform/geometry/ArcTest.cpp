#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeEllipArc2d.h>
#include <geometry/TmGeEllipArc3d.h>
#include <geometry/TmGeMatrix2d.h>
#include <geometry/TmGeMatrix3d.h>

#include "GeometryTestUtil.h"

#include <cmath>
#include <numbers>

namespace {

using KxTest::near2;
using KxTest::near3;

constexpr double kPi = std::numbers::pi;

// Perimeter of a full ellipse by the Gauss-Kummer series in h = ((a - b) / (a + b))^2.
double ellipsePerimeter(double a, double b)
{
    const double h = std::pow((a - b) / (a + b), 2);
    double sum = 0.0;
    double binom = 1.0; // binomial(1/2, n)
    double hn = 1.0;
    for (int n = 0; n < 400; ++n) {
        sum += binom * binom * hn;
        binom *= (0.5 - n) / (n + 1);
        hn *= h;
    }
    return kPi * (a + b) * sum;
}

// Composite Simpson in long double with a fine fixed grid: independent of the kernel's adaptive rule.
double ellipseArcLength(double a, double b, double from, double to)
{
    const int n = 200000;
    const long double h = (static_cast<long double>(to) - from) / n;
    const auto f = [a, b](long double t) { return std::hypot(a * std::sin(t), b * std::cos(t)); };
    long double sum = f(from) + f(to);
    for (int i = 1; i < n; ++i)
        sum += (i % 2 ? 4.0L : 2.0L) * f(from + i * h);
    return static_cast<double>(sum * h / 3.0L);
}

TEST(TmGeCircArc3dTest, LengthIsRadiusTimesSweep)
{
    KxTest::Random random(42);
    for (int i = 0; i < 50; ++i) {
        const double r = random.uniform(0.01, 100.0);
        const TmGeCircArc3d circle(random.point3(10), random.vector3(1), r);
        EXPECT_NEAR(circle.length(), 2.0 * kPi * r, 1e-13 * r);
        EXPECT_TRUE(circle.isClosed());
        TmGePoint3d start;
        TmGePoint3d end;
        ASSERT_TRUE(circle.hasStartPoint(start) && circle.hasEndPoint(end));
        EXPECT_TRUE(near3(start, end, 1e-12 * r));
        // Every evaluated point is on the circle and in its plane, the tangent perpendicular.
        const double t = random.uniform(0, 2 * kPi);
        TmGePoint3d p;
        TmGeVector3d d[2];
        ASSERT_EQ(circle.evaluate(t, 2, p, d), Tmk::ErrorStatus::eOk);
        EXPECT_NEAR(p.distanceTo(circle.center()), r, 1e-13 * r);
        EXPECT_NEAR((p - circle.center()).dotProduct(circle.normal()), 0.0, 1e-12 * r);
        EXPECT_NEAR(d[0].length(), r, 1e-13 * r);
        EXPECT_NEAR(d[0].dotProduct(p - circle.center()), 0.0, 1e-11 * r * r);
        EXPECT_TRUE(near3(d[1], circle.center() - p, 1e-12 * r));
    }
    const TmGeCircArc3d arc(TmGePoint3d(), TmGeVector3d::kZAxis, TmGeVector3d::kXAxis, 3.0, 0.5, 2.0);
    EXPECT_NEAR(arc.length(), 4.5, 1e-15);
    EXPECT_FALSE(arc.isClosed());
}

TEST(TmGeCircArc3dTest, AnglesAreNormalised)
{
    const struct {
        const char* name;
        double start;
        double end;
        double expectStart;
        double expectEnd;
    } cases[] = {
        {"plain", 0.5, 2.0, 0.5, 2.0},
        {"end below start wraps once", 1.5 * kPi, 0.5 * kPi, 1.5 * kPi, 2.5 * kPi},
        {"end far below start", 1.0, 1.0 - 5.5 * kPi, 1.0, 1.0 + 0.5 * kPi},
        {"more than a turn is one turn", -1.0, -1.0 + 7.0, -1.0, -1.0 + 2 * kPi},
        {"full turn kept", 0.0, 2 * kPi, 0.0, 2 * kPi},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TmGeCircArc3d arc(TmGePoint3d(), TmGeVector3d::kZAxis, TmGeVector3d::kXAxis, 1.0, c.start, c.end);
        EXPECT_NEAR(arc.startAng(), c.expectStart, 1e-14);
        EXPECT_NEAR(arc.endAng(), c.expectEnd, 1e-14);
    }
    TmGeCircArc3d arc;
    EXPECT_EQ(arc.setAngles(0.0, NAN), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_EQ(arc.set(TmGePoint3d(), TmGeVector3d::kZAxis, TmGeVector3d::kZAxis, 1.0, 0.0, 1.0),
              Tmk::ErrorStatus::eInvalidInput);
    EXPECT_EQ(arc.setRadius(-1.0), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_TRUE(arc.isEqualTo(TmGeCircArc3d()));
}

TEST(TmGeCircArc3dTest, ThroughThreePoints)
{
    KxTest::Random random(8);
    for (int i = 0; i < 100; ++i) {
        const TmGePoint3d a = random.point3(10);
        const TmGePoint3d b = random.point3(10);
        const TmGePoint3d c = random.point3(10);
        TmGeCircArc3d arc;
        ASSERT_EQ(arc.set(a, b, c), Tmk::ErrorStatus::eOk);
        const double tol = 1e-10 * std::max(1.0, arc.radius());
        EXPECT_TRUE(near3(arc.startPoint(), a, tol));
        EXPECT_TRUE(near3(arc.endPoint(), c, tol));
        EXPECT_TRUE(arc.isOn(b, TmGeTol(tol, 1e-10)));
        const double mid = arc.paramOf(b);
        EXPECT_GT(mid, arc.startAng());
        EXPECT_LT(mid, arc.endAng());
    }
    TmGeCircArc3d arc;
    EXPECT_EQ(arc.set(TmGePoint3d(0, 0, 0), TmGePoint3d(1, 1, 1), TmGePoint3d(3, 3, 3)),
              Tmk::ErrorStatus::eDegenerateGeometry);
}

TEST(TmGeCircArc3dTest, TransformsFollowPointsOrAreRefused)
{
    const TmGeCircArc3d arc(TmGePoint3d(1, 2, 3), TmGeVector3d(1, 1, 0), TmGeVector3d(0, 0, 1), 2.0, 0.2, 2.5);
    TmGeMatrix3d mirror;
    mirror.setToMirroring(TmGePlane(TmGePoint3d(), TmGeVector3d(1, 0, 0)));
    const TmGeMatrix3d matrices[] = {TmGeMatrix3d::rotation(1.0, {1, 2, 3}, {3, 2, 1}),
                                     TmGeMatrix3d::scaling(3.0, {1, 1, 1}) * TmGeMatrix3d::translation({5, 0, 0}),
                                     mirror};
    for (const TmGeMatrix3d& m : matrices) {
        TmGeCircArc3d moved = arc;
        ASSERT_EQ(moved.transformBy(m), Tmk::ErrorStatus::eOk);
        for (double t = arc.startAng(); t <= arc.endAng(); t += 0.3)
            EXPECT_TRUE(near3(moved.evalPoint(t), m * arc.evalPoint(t), 1e-12));
    }
    TmGeMatrix3d stretch;
    stretch.entry[1][1] = 2.0;
    TmGeCircArc3d moved = arc;
    EXPECT_EQ(moved.transformBy(stretch), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_TRUE(moved.isEqualTo(arc));
}

TEST(TmGeCircArc2dTest, SenseAndThreePoints)
{
    const TmGeCircArc2d ccw(TmGePoint2d(1, 1), 2.0, 0.0, kPi / 2);
    const TmGeCircArc2d cw(TmGePoint2d(1, 1), 2.0, 0.0, kPi / 2, TmGeVector2d::kXAxis, true);
    EXPECT_TRUE(near2(ccw.endPoint(), TmGePoint2d(1, 3), 1e-15));
    EXPECT_TRUE(near2(cw.endPoint(), TmGePoint2d(1, -1), 1e-15));
    EXPECT_NEAR(cw.length(), kPi, 1e-15);
    EXPECT_NEAR(TmGeCircArc2d(TmGePoint2d(), 3.0).length(), 6 * kPi, 1e-14);

    const struct {
        const char* name;
        TmGePoint2d a, b, c;
        bool clockwise;
    } cases[] = {
        {"counter-clockwise half", {1, 0}, {0, 1}, {-1, 0}, false},
        {"clockwise half", {1, 0}, {0, -1}, {-1, 0}, true},
        {"clockwise, three quarters", {0, 1}, {1, 0}, {-1, 0}, true},
        {"off-centre", {4, 2}, {2, 4}, {0, 2}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TmGeCircArc2d arc;
        ASSERT_EQ(arc.set(c.a, c.b, c.c), Tmk::ErrorStatus::eOk);
        EXPECT_EQ(arc.isClockWise(), c.clockwise);
        EXPECT_TRUE(near2(arc.startPoint(), c.a, 1e-14));
        EXPECT_TRUE(near2(arc.endPoint(), c.c, 1e-14));
        EXPECT_TRUE(arc.isOn(c.b));
        const double mid = arc.paramOf(c.b);
        EXPECT_TRUE(mid > arc.startAng() && mid < arc.endAng());
    }

    TmGeCircArc2d mirrored = ccw;
    TmGeMatrix2d mirror;
    mirror.setToMirroring(TmGePoint2d(0, 0), TmGeVector2d(0, 1));
    ASSERT_EQ(mirrored.transformBy(mirror), Tmk::ErrorStatus::eOk);
    EXPECT_TRUE(mirrored.isClockWise());
    EXPECT_TRUE(near2(mirrored.evalPoint(1.0), mirror * ccw.evalPoint(1.0), 1e-15));
}

TEST(TmGeEllipArcTest, FullLengthAgainstSeries)
{
    const double ratios[] = {1.0, 0.9, 0.5, 0.2, 0.05};
    for (double ratio : ratios) {
        SCOPED_TRACE(ratio);
        const double a = 3.0;
        const double b = a * ratio;
        const TmGeEllipArc3d ellipse(TmGePoint3d(1, 2, 3), TmGeVector3d(0, 1, 0), TmGeVector3d(0, 0, 1), a, b);
        EXPECT_NEAR(ellipse.length(), ellipsePerimeter(a, b), 1e-9);
        const TmGeEllipArc2d flat(TmGePoint2d(1, 2), TmGeVector2d(1, 1), TmGeVector2d(1, -1), a, b);
        EXPECT_NEAR(flat.length(), ellipsePerimeter(a, b), 1e-9);
        EXPECT_TRUE(flat.isClockWise());
    }
}

TEST(TmGeEllipArcTest, PartialLengthAgainstFineSimpson)
{
    KxTest::Random random(17);
    for (int i = 0; i < 10; ++i) {
        const double a = random.uniform(0.5, 5.0);
        const double b = random.uniform(0.05, 5.0);
        const double from = random.uniform(-3.0, 3.0);
        const double to = from + random.uniform(0.1, 6.0);
        const TmGeEllipArc3d arc(TmGePoint3d(), TmGeVector3d::kXAxis, TmGeVector3d::kYAxis, a, b, from, to);
        EXPECT_NEAR(arc.length(), ellipseArcLength(a, b, from, to), 1e-9) << a << " " << b;
    }
}

TEST(TmGeEllipArcTest, AffineImagesStayEllipses)
{
    const TmGeEllipArc3d arc(TmGePoint3d(1, 0, 2), TmGeVector3d(1, 1, 0), TmGeVector3d(-1, 1, 0), 3.0, 1.0, 0.3, 4.0);
    TmGeMatrix3d shear;
    shear.entry[0][1] = 1.5;
    shear.entry[2][0] = 0.5;
    shear.entry[1][3] = 2.0;
    TmGeEllipArc3d moved = arc;
    ASSERT_EQ(moved.transformBy(shear), Tmk::ErrorStatus::eOk);
    EXPECT_NEAR(moved.majorAxis().dotProduct(moved.minorAxis()), 0.0, 1e-14);
    EXPECT_GE(moved.majorRadius(), moved.minorRadius());
    for (double t = arc.startAng(); t <= arc.endAng(); t += 0.25)
        EXPECT_TRUE(near3(moved.evalPoint(moved.startAng() + (t - arc.startAng())), shear * arc.evalPoint(t), 1e-12));

    TmGeMatrix3d perspective;
    perspective.entry[3][0] = 0.1;
    EXPECT_EQ(moved.transformBy(perspective), Tmk::ErrorStatus::eInvalidInput);

    TmGeEllipArc3d bad;
    EXPECT_EQ(bad.set(TmGePoint3d(), TmGeVector3d(1, 0, 0), TmGeVector3d(1, 1, 0), 2, 1, 0, 1),
              Tmk::ErrorStatus::eInvalidInput);
    EXPECT_EQ(bad.set(TmGePoint3d(), TmGeVector3d(1, 0, 0), TmGeVector3d(0, 1, 0), -2, 1, 0, 1),
              Tmk::ErrorStatus::eInvalidInput);
    EXPECT_TRUE(bad.isEqualTo(TmGeEllipArc3d()));

    const TmGeCircArc3d circle(TmGePoint3d(0, 0, 1), TmGeVector3d(0, 1, 0), 2.0);
    const TmGeEllipArc3d asEllipse(circle);
    EXPECT_TRUE(asEllipse.isCircular());
    EXPECT_TRUE(near3(asEllipse.evalPoint(1.1), circle.evalPoint(1.1), 1e-15));
}

} // namespace
