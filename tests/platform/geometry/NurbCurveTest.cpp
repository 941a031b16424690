#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeEllipArc3d.h>
#include <geometry/TmGeLineSeg3d.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGeNurbCurve2d.h>
#include <geometry/TmGeNurbCurve3d.h>
#include <geometry/TmGePolyline3d.h>

#include "GeometryTestUtil.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <numbers>
#include <random>
#include <thread>
#include <vector>

namespace {

using KxTest::near2;
using KxTest::near3;

constexpr double kPi = std::numbers::pi;

// ---- an independent reference: the Cox-de Boor recursion for the basis functions and their
// derivatives, summed over all control points (no knot span search, no de Boor triangle) ----

struct Reference {
    int p;
    std::vector<double> U;
    std::vector<TmGePoint3d> P;
    std::vector<double> W;

    // k-th derivative of N_{i,q} at u, on the half-open spans [U[j], U[j+1]).
    double basis(int i, int q, double u, int k) const
    {
        if (q == 0)
            return k == 0 && U[i] <= u && u < U[i + 1] ? 1.0 : 0.0;
        const double left = U[i + q] - U[i];
        const double right = U[i + q + 1] - U[i + 1];
        double value = 0.0;
        if (k == 0) {
            if (left > 0.0)
                value += (u - U[i]) / left * basis(i, q - 1, u, 0);
            if (right > 0.0)
                value += (U[i + q + 1] - u) / right * basis(i + 1, q - 1, u, 0);
        } else {
            if (left > 0.0)
                value += q / left * basis(i, q - 1, u, k - 1);
            if (right > 0.0)
                value -= q / right * basis(i + 1, q - 1, u, k - 1);
        }
        return value;
    }

    // Point and derivatives up to `order` (at most 2) of the rational curve by the quotient rule.
    std::array<TmGeVector3d, 3> eval(double u, int order = 2) const
    {
        std::array<TmGeVector3d, 3> a{};
        std::array<double, 3> w{};
        for (int i = 0; i < static_cast<int>(P.size()); ++i) {
            const double wi = W.empty() ? 1.0 : W[i];
            for (int k = 0; k <= order; ++k) {
                const double n = basis(i, p, u, k) * wi;
                a[k] += P[i].asVector() * n;
                w[k] += n;
            }
        }
        std::array<TmGeVector3d, 3> c{};
        c[0] = a[0] / w[0];
        c[1] = (a[1] - c[0] * w[1]) / w[0];
        c[2] = (a[2] - c[1] * (2.0 * w[1]) - c[0] * w[2]) / w[0];
        return c;
    }

    double length(double from, double to) const
    {
        // Composite Simpson inside each knot span, where the speed is smooth.
        std::vector<double> cuts{from};
        for (double k : U)
            if (k > cuts.back() && k < to)
                cuts.push_back(k);
        cuts.push_back(to);
        double total = 0.0;
        for (std::size_t s = 0; s + 1 < cuts.size(); ++s) {
            const int n = 400;
            const double h = (cuts[s + 1] - cuts[s]) / n;
            const auto speed = [&](double t) { return eval(t, 1)[1].length(); };
            // The spans are half open: sample the right end from just inside.
            double sum = speed(cuts[s]) + speed(std::nextafter(cuts[s + 1], cuts[s]));
            for (int i = 1; i < n; ++i)
                sum += (i % 2 ? 4.0 : 2.0) * speed(cuts[s] + i * h);
            total += sum * h / 3.0;
        }
        return total;
    }
};

// Of the given degree, or of a random one from 1 to 5 for degree 0.
Reference randomCurve(KxTest::Random& random, bool rational, bool clamped, int degree = 0)
{
    Reference ref;
    ref.p = degree > 0 ? degree : random.integer(1, 5);
    const int n = ref.p + 1 + random.integer(0, 7);
    for (int i = 0; i < n; ++i)
        ref.P.push_back(random.point3(10.0));
    if (rational)
        for (int i = 0; i < n; ++i)
            ref.W.push_back(random.uniform(0.2, 3.0));
    // Interior knots with random multiplicities up to p; ends clamped or not. A draw whose
    // interval is empty (one repeated knot covering both ends) is drawn again.
    const int total = n + ref.p + 1;
    double value = random.uniform(-2.0, 2.0);
    while (static_cast<int>(ref.U.size()) < total || !(ref.U[ref.p] < ref.U[n])) {
        if (static_cast<int>(ref.U.size()) == total)
            ref.U.clear();
        int repeat = 1;
        const int index = static_cast<int>(ref.U.size());
        if (clamped && (index == 0 || index + ref.p + 1 == total))
            repeat = ref.p + 1;
        else if (random.integer(0, 3) == 0)
            repeat = random.integer(1, ref.p);
        for (int r = 0; r < repeat && static_cast<int>(ref.U.size()) < total; ++r)
            ref.U.push_back(value);
        value += random.uniform(0.1, 2.0);
    }
    return ref;
}

TEST(TmGeNurbCurve3dTest, DeBoorMatchesCoxDeBoorOnRandomCurves)
{
    KxTest::Random random(123456);
    for (int trial = 0; trial < 120; ++trial) {
        const Reference ref = randomCurve(random, trial % 2 == 0, trial % 3 != 0);
        TmGeNurbCurve3d curve;
        ASSERT_EQ(curve.set(ref.p, ref.U, ref.P, ref.W), Tmk::ErrorStatus::eOk) << "trial " << trial;
        const double lo = ref.U[ref.p];
        const double hi = ref.U[ref.P.size()];
        EXPECT_EQ(curve.interval().lowerBound(), lo);
        std::vector<double> params;
        for (int i = 0; i < 25; ++i)
            params.push_back(random.uniform(lo, hi));
        for (double k : ref.U)
            if (k >= lo && k < hi)
                params.push_back(k); // span boundaries: the span search must pick the right side
        for (double u : params) {
            SCOPED_TRACE(testing::Message() << "trial " << trial << " degree " << ref.p << " u " << u);
            const auto expected = ref.eval(u);
            TmGePoint3d point;
            TmGeVector3d d[2];
            ASSERT_EQ(curve.evaluate(u, 2, point, d), Tmk::ErrorStatus::eOk);
            const double scale = 1.0 + expected[1].length() + expected[2].length();
            EXPECT_TRUE(near3(point, TmGePoint3d::kOrigin + expected[0], 1e-10));
            EXPECT_TRUE(near3(d[0], expected[1], 1e-9 * scale));
            EXPECT_TRUE(near3(d[1], expected[2], 1e-8 * scale));
        }
    }
}

TEST(TmGeNurbCurve3dTest, LengthMatchesReferenceQuadrature)
{
    KxTest::Random random(777);
    for (int trial = 0; trial < 12; ++trial) {
        const Reference ref = randomCurve(random, trial % 2 == 1, true);
        const TmGeNurbCurve3d curve(ref.p, ref.U, ref.P, ref.W);
        ASSERT_FALSE(curve.isEmpty());
        const double lo = ref.U[ref.p];
        const double hi = ref.U[ref.P.size()];
        const double expected = ref.length(lo, hi);
        SCOPED_TRACE(testing::Message() << "trial " << trial << " degree " << ref.p);
        EXPECT_NEAR(curve.length(), expected, 1e-7 * expected);
        const double mid = lo + 0.37 * (hi - lo);
        EXPECT_NEAR(curve.length(mid, lo), ref.length(lo, mid), 1e-7 * expected);
        // Outside its interval a non-periodic curve does not move.
        EXPECT_NEAR(curve.length(lo - 5.0, hi + 5.0), curve.length(), 1e-9 * expected);
    }
}

TEST(TmGeNurbCurve3dTest, QuarterCircleIsExact)
{
    const double r = 2.5;
    const TmGePoint3d c(1, -2, 3);
    const double w = std::sqrt(0.5);
    const TmGeNurbCurve3d quarter(2, {0, 0, 0, 1, 1, 1}, {c + TmGeVector3d(r, 0, 0), c + TmGeVector3d(r, r, 0),
                                                          c + TmGeVector3d(0, r, 0)},
                                  {1.0, w, 1.0});
    ASSERT_TRUE(quarter.isRational());
    for (int i = 0; i <= 200; ++i) {
        const double u = i / 200.0;
        const TmGePoint3d p = quarter.evalPoint(u);
        EXPECT_NEAR(p.distanceTo(c), r, 1e-14 * r) << u;
        EXPECT_NEAR(p.z, c.z, 1e-14);
    }
    EXPECT_NEAR(quarter.length(), kPi * r / 2, 1e-10);
    // Symmetric weights put the parameter 1/2 at the 45 degree point.
    EXPECT_TRUE(near3(quarter.evalPoint(0.5), c + TmGeVector3d(r * w, r * w, 0), 1e-14));
}

TEST(TmGeNurbCurve3dTest, ConversionsAreExact)
{
    KxTest::Random random(31);
    for (int i = 0; i < 30; ++i) {
        const double sweep = i == 0 ? 2 * kPi : random.uniform(0.05, 2 * kPi);
        const double start = random.uniform(-4, 4);
        const TmGeCircArc3d arc(random.point3(5), random.vector3(1), random.vector3(1), random.uniform(0.1, 9), start,
                                start + sweep);
        const TmGeNurbCurve3d spline(arc);
        ASSERT_FALSE(spline.isEmpty());
        EXPECT_EQ(spline.degree(), 2);
        EXPECT_TRUE(near3(spline.evalPoint(spline.interval().lowerBound()), arc.startPoint(), 1e-12));
        EXPECT_TRUE(near3(spline.evalPoint(spline.interval().upperBound()), arc.endPoint(), 1e-12));
        for (int k = 0; k < 20; ++k) {
            const TmGePoint3d p = spline.evalPoint(random.uniform(start, start + sweep));
            EXPECT_TRUE(arc.isOn(p, TmGeTol(1e-11, 1e-11)));
        }
        EXPECT_NEAR(spline.length(), arc.length(), 1e-9 * arc.length());
    }

    const TmGeEllipArc3d ellipse(TmGePoint3d(1, 1, 1), TmGeVector3d(0, 0, 1), TmGeVector3d(1, 0, 0), 4.0, 1.5, 0.2, 5.0);
    const TmGeNurbCurve3d ellipseSpline(ellipse);
    EXPECT_NEAR(ellipseSpline.length(), ellipse.length(), 1e-8);
    for (double u = 0.2; u <= 5.0; u += 0.1) {
        const TmGeVector3d v = ellipseSpline.evalPoint(u) - ellipse.center();
        EXPECT_NEAR(std::pow(v.z / 4.0, 2) + std::pow(v.x / 1.5, 2), 1.0, 1e-13);
    }

    TmGeLineSeg3d seg(TmGePoint3d(0, 0, 0), TmGePoint3d(4, 0, 3));
    ASSERT_EQ(seg.setInterval({1.0, 3.0}), Tmk::ErrorStatus::eOk);
    const TmGeNurbCurve3d segSpline(seg);
    EXPECT_TRUE(near3(segSpline.evalPoint(1.7), seg.evalPoint(1.7), 1e-15));

    const TmGePolyline3d poly({{0, 0, 0}, {1, 0, 0}, {1, 2, 0}, {4, 6, 0}});
    const TmGeNurbCurve3d polySpline(poly);
    for (double u = 0.0; u <= 3.0; u += 0.125)
        EXPECT_TRUE(near3(polySpline.evalPoint(u), poly.evalPoint(u), 1e-15));
    EXPECT_NEAR(polySpline.length(), 8.0, 1e-12);

    const TmGeCircArc2d arc2(TmGePoint2d(1, 1), 2.0, 0.5, 4.0, TmGeVector2d(0, 1), true);
    const TmGeNurbCurve2d spline2(arc2);
    EXPECT_TRUE(near2(spline2.evalPoint(spline2.interval().upperBound()), arc2.endPoint(), 1e-13));
    EXPECT_NEAR(spline2.evalPoint(2.2).distanceTo(arc2.center()), 2.0, 1e-13);
    EXPECT_NEAR(spline2.length(), arc2.length(), 1e-9);
}

TEST(TmGeNurbCurve3dTest, PeriodicCurvesWrapAndCloseSmoothly)
{
    // A uniform cubic over four distinct points, the first three repeated at the end.
    const std::vector<TmGePoint3d> ring{{1, 0, 0}, {0, 2, 1}, {-1, 0, 0}, {0, -2, -1}, {1, 0, 0}, {0, 2, 1}, {-1, 0, 0}};
    std::vector<double> knots;
    for (int i = 0; i < 11; ++i)
        knots.push_back(i);
    TmGeNurbCurve3d curve;
    ASSERT_EQ(curve.set(3, knots, ring, {}, true), Tmk::ErrorStatus::eOk);
    EXPECT_TRUE(curve.isPeriodic());
    EXPECT_TRUE(curve.isClosed());
    TmGePoint3d atStart;
    TmGePoint3d atEnd;
    TmGeVector3d dStart[2];
    TmGeVector3d dEnd[2];
    ASSERT_EQ(curve.evaluate(3.0, 2, atStart, dStart), Tmk::ErrorStatus::eOk);
    ASSERT_EQ(curve.evaluate(7.0 - 1e-12, 2, atEnd, dEnd), Tmk::ErrorStatus::eOk);
    EXPECT_TRUE(near3(atStart, atEnd, 1e-11));
    EXPECT_TRUE(near3(dStart[0], dEnd[0], 1e-10));
    EXPECT_TRUE(near3(dStart[1], dEnd[1], 1e-9));
    EXPECT_TRUE(near3(curve.evalPoint(3.5 + 4.0 * 3), curve.evalPoint(3.5), 1e-14));
    EXPECT_TRUE(near3(curve.evalPoint(3.5 - 4.0), curve.evalPoint(3.5), 1e-14));

    // Moving a wrapped control point moves its twin, so the curve stays periodic.
    ASSERT_EQ(curve.setControlPointAt(5, TmGePoint3d(0, 3, 1)), Tmk::ErrorStatus::eOk);
    EXPECT_TRUE(near3(curve.controlPoints()[1], TmGePoint3d(0, 3, 1), 0.0));
    EXPECT_EQ(TmGeNurbCurve3d::validate(3, curve.knots(), curve.controlPoints(), {}, true), Tmk::ErrorStatus::eOk);

    // The same data without the repetition are not periodic.
    std::vector<TmGePoint3d> open = ring;
    open[6] = TmGePoint3d(5, 5, 5);
    EXPECT_EQ(TmGeNurbCurve3d::validate(3, knots, open, {}, true), Tmk::ErrorStatus::eInvalidInput);
    std::vector<double> uneven = knots;
    uneven[9] = 9.5;
    EXPECT_EQ(TmGeNurbCurve3d::validate(3, uneven, ring, {}, true), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_EQ(TmGeNurbCurve3d::validate(3, uneven, ring, {}, false), Tmk::ErrorStatus::eOk);
}

TEST(TmGeNurbCurve3dTest, BadInputIsRejectedCleanly)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<TmGePoint3d> four{{0, 0, 0}, {1, 1, 0}, {2, -1, 0}, {3, 0, 0}};
    const std::vector<double> clamped{0, 0, 0, 0.5, 1, 1, 1};
    const struct {
        const char* name;
        int degree;
        std::vector<double> knots;
        std::vector<TmGePoint3d> points;
        std::vector<double> weights;
        Tmk::ErrorStatus expected;
    } cases[] = {
        {"valid", 2, clamped, four, {}, Tmk::ErrorStatus::eOk},
        {"degree zero", 0, {0, 1, 2, 3, 4}, four, {}, Tmk::ErrorStatus::eInvalidDegree},
        {"negative degree", -3, clamped, four, {}, Tmk::ErrorStatus::eInvalidDegree},
        {"degree too high for the points", 4, {0, 0, 0, 0, 0, 1, 1, 1, 1}, four, {}, Tmk::ErrorStatus::eInvalidDegree},
        {"degree above the limit", 40, clamped, four, {}, Tmk::ErrorStatus::eInvalidDegree},
        {"one knot missing", 2, {0, 0, 0, 1, 1, 1}, four, {}, Tmk::ErrorStatus::eInvalidKnots},
        {"one knot too many", 2, {0, 0, 0, 0.5, 0.7, 1, 1, 1}, four, {}, Tmk::ErrorStatus::eInvalidKnots},
        {"decreasing knots", 2, {0, 0, 0, 0.5, 0.4, 1, 1}, four, {}, Tmk::ErrorStatus::eInvalidKnots},
        {"NaN knot", 2, {0, 0, 0, nan, 1, 1, 1}, four, {}, Tmk::ErrorStatus::eInvalidKnots},
        {"infinite knot", 2, {0, 0, 0, 0.5, 1, 1, INFINITY}, four, {}, Tmk::ErrorStatus::eInvalidKnots},
        {"empty interval", 2, {0, 0, 0, 0, 0, 0, 0}, four, {}, Tmk::ErrorStatus::eInvalidKnots},
        {"interior knot repeated degree + 1 times", 1, {0, 0, 0.5, 0.5, 1, 1}, four, {}, Tmk::ErrorStatus::eInvalidKnots},
        {"end knot repeated degree + 2 times", 1, {0, 0, 0, 0.5, 1, 1}, four, {}, Tmk::ErrorStatus::eInvalidKnots},
        {"weight count", 2, clamped, four, {1, 1, 1}, Tmk::ErrorStatus::eInvalidWeights},
        {"zero weight", 2, clamped, four, {1, 0, 1, 1}, Tmk::ErrorStatus::eInvalidWeights},
        {"negative weight", 2, clamped, four, {1, -2, 1, 1}, Tmk::ErrorStatus::eInvalidWeights},
        {"NaN weight", 2, clamped, four, {1, nan, 1, 1}, Tmk::ErrorStatus::eInvalidWeights},
        {"NaN point", 2, clamped, {{0, 0, 0}, {1, nan, 0}, {2, -1, 0}, {3, 0, 0}}, {}, Tmk::ErrorStatus::eInvalidInput},
        {"knots without points", 2, clamped, {}, {}, Tmk::ErrorStatus::eInvalidDegree},
        {"empty curve", 3, {}, {}, {}, Tmk::ErrorStatus::eOk},
    };
    const TmGeNurbCurve3d original(1, {0, 0, 1, 1}, {{5, 5, 5}, {6, 6, 6}});
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TmGeNurbCurve3d curve = original;
        EXPECT_EQ(curve.set(c.degree, c.knots, c.points, c.weights), c.expected);
        if (c.expected != Tmk::ErrorStatus::eOk) {
            EXPECT_TRUE(curve.isEqualTo(original));
            const TmGeNurbCurve3d constructed(c.degree, c.knots, c.points, c.weights);
            EXPECT_TRUE(constructed.isEmpty());
            EXPECT_TRUE(near3(constructed.evalPoint(0.5), TmGePoint3d::kOrigin, 0.0));
            EXPECT_EQ(constructed.length(), 0.0);
        }
    }
    TmGeNurbCurve3d curve = original;
    EXPECT_EQ(curve.setWeightAt(1, 0.0), Tmk::ErrorStatus::eInvalidWeights);
    EXPECT_EQ(curve.setControlPointAt(2, TmGePoint3d()), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_FALSE(curve.isRational());
    TmGePoint3d p;
    TmGeVector3d d[3];
    EXPECT_EQ(curve.evaluate(0.5, 3, p, d), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_TRUE(near3(curve.evalPoint(nan), TmGePoint3d(5, 5, 5), 0.0));
    EXPECT_TRUE(near3(curve.evalPoint(-1e300), TmGePoint3d(5, 5, 5), 0.0));
}

TEST(TmGeNurbCurve3dTest, TransformsMoveTheCurveExactly)
{
    const TmGeNurbCurve3d curve(3, {0, 0, 0, 0, 0.4, 1, 1, 1, 1}, {{0, 0, 0}, {1, 2, 0}, {2, -1, 1}, {3, 1, 0}, {4, 0, 2}},
                                {1.0, 0.5, 2.0, 1.0, 1.5});
    TmGeMatrix3d perspective = TmGeMatrix3d::rotation(0.3, {1, 0, 1});
    perspective.entry[3][0] = 0.05;
    perspective.entry[3][2] = -0.02;
    const TmGeMatrix3d matrices[] = {TmGeMatrix3d::rotation(1.0, {0, 1, 1}, {2, 0, 0}), perspective};
    for (const TmGeMatrix3d& m : matrices) {
        TmGeNurbCurve3d moved = curve;
        ASSERT_EQ(moved.transformBy(m), Tmk::ErrorStatus::eOk);
        for (double u = 0.0; u <= 1.0; u += 0.05)
            EXPECT_TRUE(near3(moved.evalPoint(u), m * curve.evalPoint(u), 1e-12)) << u;
    }
    TmGeMatrix3d flip;
    flip.entry[3][3] = -1.0; // every homogeneous weight turns negative
    TmGeNurbCurve3d moved = curve;
    EXPECT_EQ(moved.transformBy(flip), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_TRUE(moved.isEqualTo(curve));
}

// ---- the point paths (evalPoint, evalPoints, evaluate without derivatives) read the span table
// and the span hint; evaluate with a derivative reads neither, only the curve's data. They must
// agree to the bit, not within a tolerance: a point must not depend on how it was asked for. ----

template <class PointT>
::testing::AssertionResult sameBits(const PointT& a, const PointT& b)
{
    for (unsigned c = 0; c < sizeof(PointT) / sizeof(double); ++c)
        if (std::bit_cast<std::uint64_t>(a[c]) != std::bit_cast<std::uint64_t>(b[c]))
            return ::testing::AssertionFailure() << "coordinate " << c << ": " << a[c] << " vs " << b[c] << " differ by "
                                                 << a[c] - b[c];
    return ::testing::AssertionSuccess();
}

template <class Curve>
auto dataPathPoint(const Curve& curve, double u)
{
    decltype(curve.evalPoint(u)) point;
    decltype(curve.evalDerivative(u)) derivative;
    EXPECT_EQ(curve.evaluate(u, 1, point, &derivative), Tmk::ErrorStatus::eOk);
    return point;
}

const TmGeCurve3d& asBase(const TmGeNurbCurve3d& curve)
{
    return curve;
}

const TmGeCurve2d& asBase(const TmGeNurbCurve2d& curve)
{
    return curve;
}

// In the order given, so the span hint follows the parameters from span to span.
template <class Curve>
void expectPointPathsGiveTheDataPathBits(const Curve& curve, const std::vector<double>& params)
{
    using Point = decltype(curve.evalPoint(0.0));
    std::vector<Point> batch(params.size());
    ASSERT_EQ(curve.evalPoints(params, batch), Tmk::ErrorStatus::eOk);
    for (std::size_t i = 0; i < params.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "u " << params[i]);
        const Point expected = dataPathPoint(curve, params[i]);
        EXPECT_TRUE(sameBits(curve.evalPoint(params[i]), expected));
        EXPECT_TRUE(sameBits(batch[i], expected));
        Point viaBase;
        ASSERT_EQ(asBase(curve).evaluate(params[i], 0, viaBase, nullptr), Tmk::ErrorStatus::eOk);
        EXPECT_TRUE(sameBits(viaBase, expected));
    }
}

// Parameters that move inside a span, land exactly on knots and just below them, jump between far
// spans and back, and leave the interval.
std::vector<double> sweepAndJumps(KxTest::Random& random, const Reference& ref)
{
    const double lo = ref.U[ref.p];
    const double hi = ref.U[ref.P.size()];
    std::vector<double> params;
    for (int i = 0; i <= 40; ++i)
        params.push_back(lo + (hi - lo) * i / 40);
    for (double k : ref.U) {
        params.push_back(k);
        params.push_back(std::nextafter(k, -1e300));
        params.push_back(random.uniform(lo, hi));
    }
    params.push_back(hi);
    params.push_back(lo - 1.0);
    params.push_back(hi + 1.0);
    return params;
}

// A uniform cubic over four distinct points, the first three repeated at the end.
TmGeNurbCurve3d periodicRing()
{
    const std::vector<TmGePoint3d> ring{{1, 0, 0}, {0, 2, 1}, {-1, 0, 0}, {0, -2, -1}, {1, 0, 0}, {0, 2, 1}, {-1, 0, 0}};
    std::vector<double> knots;
    for (int i = 0; i < 11; ++i)
        knots.push_back(i);
    return {3, knots, ring, {1.0, 0.5, 2.0, 1.5, 1.0, 0.5, 2.0}, true};
}

TEST(TmGeNurbCurve3dTest, PointPathsGiveTheDataPathBits)
{
    KxTest::Random random(4242);
    for (int trial = 0; trial < 60; ++trial) {
        const Reference ref = randomCurve(random, trial % 2 == 0, trial % 3 != 0);
        SCOPED_TRACE(testing::Message() << "trial " << trial << " degree " << ref.p);
        const std::vector<double> params = sweepAndJumps(random, ref);
        const TmGeNurbCurve3d curve(ref.p, ref.U, ref.P, ref.W);
        ASSERT_FALSE(curve.isEmpty());
        expectPointPathsGiveTheDataPathBits(curve, params);
        std::vector<TmGePoint2d> flat;
        for (const TmGePoint3d& point : ref.P)
            flat.emplace_back(point.x, point.z);
        expectPointPathsGiveTheDataPathBits(TmGeNurbCurve2d(ref.p, ref.U, flat, ref.W), params);
    }
    // Wrapped parameters, the end of the interval wrapping to its start.
    const TmGeNurbCurve3d ring = periodicRing();
    ASSERT_TRUE(ring.isPeriodic());
    expectPointPathsGiveTheDataPathBits(ring, {3.0, 3.5, 6.999, 7.0, 7.5, 11.0, 2.5, -0.75, 3.0 + 4e6, 5.0});

    const TmGeNurbCurve3d curve(1, {0, 0, 1, 1}, {{0, 0, 0}, {1, 1, 1}});
    std::vector<TmGePoint3d> tooFew(1);
    EXPECT_EQ(curve.evalPoints(std::vector<double>{0.0, 1.0}, tooFew), Tmk::ErrorStatus::eInvalidInput);
    std::vector<TmGePoint3d> none(2, TmGePoint3d(1, 2, 3));
    ASSERT_EQ(TmGeNurbCurve3d().evalPoints(std::vector<double>{0.0, 1.0}, none), Tmk::ErrorStatus::eOk);
    EXPECT_TRUE(sameBits(none[1], TmGePoint3d::kOrigin));
}

// Every member that changes the data must bring the span table along.
TEST(TmGeNurbCurve3dTest, EditsReachThePointPaths)
{
    KxTest::Random random(31);
    for (int degree : {1, 3, 4}) {
        const Reference ref = randomCurve(random, false, true, degree);
        const std::vector<double> params = sweepAndJumps(random, ref);
        TmGeNurbCurve3d curve(ref.p, ref.U, ref.P);
        TmGeMatrix3d perspective = TmGeMatrix3d::rotation(0.3, {1, 0, 1});
        perspective.entry[3][0] = 0.01;
        const int last = curve.numControlPoints() - 1;
        const struct {
            const char* name;
            std::function<Tmk::ErrorStatus()> edit;
        } edits[] = {
            {"a control point moves", [&] { return curve.setControlPointAt(last / 2, random.point3(10.0)); }},
            {"a weight makes the curve rational", [&] { return curve.setWeightAt(0, 2.5); }},
            {"the last weight", [&] { return curve.setWeightAt(last, 0.3); }},
            {"an affine matrix", [&] { return curve.transformBy(TmGeMatrix3d::rotation(1.0, {0, 1, 1}, {2, 0, 0})); }},
            {"a perspective", [&] { return curve.transformBy(perspective); }},
            {"new data", [&] { return curve.set(ref.p, ref.U, ref.P, std::vector<double>(ref.P.size(), 0.5)); }},
        };
        for (const auto& edit : edits) {
            SCOPED_TRACE(testing::Message() << "degree " << degree << ": " << edit.name);
            std::vector<TmGePoint3d> before;
            for (double u : params)
                before.push_back(dataPathPoint(curve, u));
            ASSERT_EQ(edit.edit(), Tmk::ErrorStatus::eOk);
            bool moved = false;
            for (std::size_t i = 0; i < params.size(); ++i)
                moved = moved || !sameBits(dataPathPoint(curve, params[i]), before[i]);
            ASSERT_TRUE(moved) << "an edit that leaves the curve alone cannot catch a stale table";
            expectPointPathsGiveTheDataPathBits(curve, params);
        }
    }
    // On a periodic curve an edit also changes the wrapped twin.
    TmGeNurbCurve3d ring = periodicRing();
    const std::vector<double> params{3.0, 3.4, 4.2, 5.1, 6.3, 6.9, 7.0};
    expectPointPathsGiveTheDataPathBits(ring, params);
    ASSERT_EQ(ring.setControlPointAt(5, TmGePoint3d(0, 3, 1)), Tmk::ErrorStatus::eOk);
    expectPointPathsGiveTheDataPathBits(ring, params);
    ASSERT_EQ(ring.setWeightAt(0, 4.0), Tmk::ErrorStatus::eOk);
    expectPointPathsGiveTheDataPathBits(ring, params);
}

TEST(TmGeNurbCurve3dTest, ThreadsSharingACurveGetTheDataPathBits)
{
    KxTest::Random random(77);
    for (int degree : {3, 5}) {
        SCOPED_TRACE(testing::Message() << "degree " << degree);
        const Reference ref = randomCurve(random, true, true, degree);
        const TmGeNurbCurve3d curve(ref.p, ref.U, ref.P, ref.W);
        const std::vector<double> params = sweepAndJumps(random, ref);
        std::vector<TmGePoint3d> expected;
        for (double u : params)
            expected.push_back(dataPathPoint(curve, u));
        std::vector<std::vector<TmGePoint3d>> seen(4, std::vector<TmGePoint3d>(params.size()));
        std::vector<std::thread> threads;
        for (std::size_t t = 0; t < seen.size(); ++t)
            threads.emplace_back([&, t] {
                // Each thread walks the parameters in its own order, so the shared hint keeps
                // moving under the others; half of them in batches.
                std::vector<std::size_t> order(params.size());
                for (std::size_t i = 0; i < order.size(); ++i)
                    order[i] = i;
                std::shuffle(order.begin(), order.end(), std::mt19937(static_cast<unsigned>(t)));
                std::vector<double> shuffled;
                for (std::size_t i : order)
                    shuffled.push_back(params[i]);
                std::vector<TmGePoint3d> batch(params.size());
                for (int round = 0; round < 50; ++round) {
                    if (t % 2 == 0) {
                        for (std::size_t i : order)
                            seen[t][i] = curve.evalPoint(params[i]);
                    } else {
                        (void)curve.evalPoints(shuffled, batch);
                        for (std::size_t j = 0; j < order.size(); ++j)
                            seen[t][order[j]] = batch[j];
                    }
                }
            });
        for (std::thread& thread : threads)
            thread.join();
        for (std::size_t t = 0; t < seen.size(); ++t)
            for (std::size_t i = 0; i < params.size(); ++i)
                EXPECT_TRUE(sameBits(seen[t][i], expected[i])) << "thread " << t << " u " << params[i];
    }
}

TEST(TmGeNurbCurve3dTest, TessellationStaysWithinTheChordTolerance)
{
    KxTest::Random random(9001);
    for (int trial = 0; trial < 40; ++trial) {
        const Reference ref = randomCurve(random, trial % 2 == 0, trial % 3 != 0);
        const TmGeNurbCurve3d curve(ref.p, ref.U, ref.P, ref.W);
        const double lo = ref.U[ref.p];
        const double hi = ref.U[ref.P.size()];
        for (double tol : {0.5, 1e-3}) {
            SCOPED_TRACE(testing::Message() << "trial " << trial << " tolerance " << tol);
            std::vector<double> params;
            std::vector<TmGePoint3d> points;
            ASSERT_EQ(curve.tessellate(tol, params, points), Tmk::ErrorStatus::eOk);
            ASSERT_EQ(params.size(), points.size());
            ASSERT_GE(params.size(), 2u);
            EXPECT_EQ(params.front(), lo);
            EXPECT_EQ(params.back(), hi);
            for (double k : ref.U) {
                if (k > lo && k < hi) {
                    EXPECT_TRUE(std::binary_search(params.begin(), params.end(), k)) << "knot " << k;
                }
            }
            for (std::size_t i = 0; i + 1 < params.size(); ++i) {
                ASSERT_LT(params[i], params[i + 1]);
                const TmGeLineSeg3d chord(points[i], points[i + 1]);
                for (int j = 1; j < 32; ++j) {
                    const TmGePoint3d onCurve = curve.evalPoint(params[i] + (params[i + 1] - params[i]) * j / 32);
                    ASSERT_LE(onCurve.distanceTo(chord.closestPointTo(onCurve)), tol) << "between " << params[i];
                }
            }
        }
    }
    const TmGeNurbCurve3d line(1, {0, 0, 1, 1}, {{0, 0, 0}, {3, 0, 0}});
    std::vector<double> params;
    std::vector<TmGePoint3d> points;
    ASSERT_EQ(line.tessellate(1e-9, params, points), Tmk::ErrorStatus::eOk);
    EXPECT_EQ(points.size(), 3u) << "a straight span needs only its degree + 1 pieces";
    for (double bad : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
        EXPECT_EQ(line.tessellate(bad, params, points), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_EQ(TmGeNurbCurve3d().tessellate(0.1, params, points), Tmk::ErrorStatus::eOk);
    EXPECT_TRUE(points.empty());
}

} // namespace
