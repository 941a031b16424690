#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeCurve3dVec.h>
#include <geometry/TmGeLine3d.h>
#include <geometry/TmGeLineSeg3d.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePolyline3d.h>

#include "GeometryTestUtil.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace {

using KxTest::near3;

TEST(TmGeLine3dTest, ThroughTwoPointsEvaluatesToThemAtZeroAndOne)
{
    const TmGeLine3d line(TmGePoint3d(1, 2, 3), TmGePoint3d(4, 6, 3));
    EXPECT_TRUE(near3(line.evalPoint(0.0), TmGePoint3d(1, 2, 3), 0.0));
    EXPECT_TRUE(near3(line.evalPoint(1.0), TmGePoint3d(4, 6, 3), 0.0));
    EXPECT_NEAR(line.length(0.0, 1.0), 5.0, 1e-15);
    EXPECT_NEAR(line.length(2.0, -1.0), 15.0, 1e-14);
    EXPECT_TRUE(std::isinf(line.length()));
    TmGePoint3d start;
    EXPECT_FALSE(line.hasStartPoint(start));
    EXPECT_FALSE(line.isClosed());
}

TEST(TmGeLine3dTest, ProximityAndRelations)
{
    const TmGeLine3d xAxis(TmGePoint3d(0, 0, 0), TmGeVector3d(2, 0, 0));
    EXPECT_NEAR(xAxis.distanceTo(TmGePoint3d(5, 3, 4)), 5.0, 1e-15);
    EXPECT_NEAR(xAxis.paramOf(TmGePoint3d(5, 3, 4)), 2.5, 1e-15);
    const struct {
        const char* name;
        TmGeLine3d other;
        bool parallel;
        bool colinear;
        bool entityEqual;
        bool meets;
        TmGePoint3d at;
    } cases[] = {
        {"same line, other data", TmGeLine3d(TmGePoint3d(7, 0, 0), TmGeVector3d(-1, 0, 0)), true, true, false, false, {}},
        {"same data", TmGeLine3d(TmGePoint3d(0, 0, 0), TmGeVector3d(2, 0, 0)), true, true, true, false, {}},
        {"parallel, apart", TmGeLine3d(TmGePoint3d(0, 1, 0), TmGeVector3d(1, 0, 0)), true, false, false, false, {}},
        {"crossing", TmGeLine3d(TmGePoint3d(3, -1, 0), TmGePoint3d(3, 1, 0)), false, false, false, true, {3, 0, 0}},
        {"skew", TmGeLine3d(TmGePoint3d(3, -1, 1), TmGePoint3d(3, 1, 1)), false, false, false, false, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(xAxis.isParallelTo(c.other), c.parallel);
        EXPECT_EQ(xAxis.isColinearTo(c.other), c.colinear);
        EXPECT_EQ(xAxis == c.other, c.entityEqual);
        TmGePoint3d hit;
        EXPECT_EQ(xAxis.intersectWith(c.other, hit), c.meets);
        if (c.meets) {
            EXPECT_TRUE(near3(hit, c.at, 1e-15));
        }
    }
    // A segment with the same two points is another kind of entity.
    EXPECT_FALSE(xAxis == TmGeLineSeg3d(TmGePoint3d(0, 0, 0), TmGePoint3d(2, 0, 0)));
}

TEST(TmGeLineSeg3dTest, OwnIntervalRescalesTheParameter)
{
    TmGeLineSeg3d seg(TmGePoint3d(0, 0, 0), TmGePoint3d(10, 0, 0));
    ASSERT_EQ(seg.setInterval({2.0, 4.0}), Tmk::ErrorStatus::eOk);
    EXPECT_TRUE(near3(seg.evalPoint(3.0), TmGePoint3d(5, 0, 0), 1e-15));
    EXPECT_TRUE(near3(seg.evalPoint(4.0), TmGePoint3d(10, 0, 0), 0.0));
    EXPECT_TRUE(near3(seg.evalDerivative(2.7), TmGeVector3d(5, 0, 0), 1e-15));
    EXPECT_NEAR(seg.length(), 10.0, 1e-15);
    EXPECT_NEAR(seg.length(2.5, 3.0), 2.5, 1e-15);
    EXPECT_EQ(seg.setInterval({4.0, 4.0}), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_EQ(seg.setInterval({0.0, std::numeric_limits<double>::infinity()}), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_NEAR(seg.interval().lowerBound(), 2.0, 0.0);
    EXPECT_TRUE(near3(seg.closestPointTo(TmGePoint3d(-3, 4, 0)), TmGePoint3d(0, 0, 0), 0.0));
    EXPECT_NEAR(seg.distanceTo(TmGePoint3d(13, 4, 0)), 5.0, 1e-15);
}

TEST(TmGePolyline3dTest, VerticesSitAtIntegerParameters)
{
    const TmGePolyline3d poly({{0, 0, 0}, {3, 0, 0}, {3, 4, 0}, {3, 4, 12}});
    EXPECT_NEAR(poly.length(), 19.0, 1e-14);
    EXPECT_NEAR(poly.length(0.5, 2.5), 1.5 + 4.0 + 6.0, 1e-14);
    EXPECT_NEAR(poly.length(-5.0, 0.5), 1.5, 1e-14);
    EXPECT_TRUE(near3(poly.evalPoint(1.5), TmGePoint3d(3, 2, 0), 1e-15));
    EXPECT_TRUE(near3(poly.evalPoint(3.0), TmGePoint3d(3, 4, 12), 0.0));
    EXPECT_TRUE(near3(poly.evalPoint(99.0), TmGePoint3d(3, 4, 12), 0.0));
    EXPECT_TRUE(near3(poly.evalDerivative(1.0), TmGeVector3d(0, 4, 0), 0.0));
    EXPECT_TRUE(near3(poly.evalPointAtDistance(5.0), TmGePoint3d(3, 2, 0), 1e-15));
    EXPECT_NEAR(poly.paramAtDistance(13.0), 2.5, 1e-15);
    EXPECT_NEAR(poly.paramAtDistance(100.0), 3.0, 0.0);
    EXPECT_TRUE(near3(TmGePolyline3d().evalPoint(0.3), TmGePoint3d::kOrigin, 0.0));
    EXPECT_NEAR(TmGePolyline3d({{1, 1, 1}}).length(), 0.0, 0.0);
}

// A helix, which has no closed-form override, exercises the base class's quadrature.
class Helix : public TmGeCurve3d {
public:
    Helix(double radius, double pitch) : m_r(radius), m_c(pitch) {}
    Tmk::EEntityKind type() const noexcept override { return Tmk::EEntityKind::eNurbCurve3d; }
    TmGeInterval interval() const noexcept override { return {0.0, 10.0}; }
    Tmk::ErrorStatus evaluate(double t, int numDeriv, TmGePoint3d& point, TmGeVector3d* derivs) const noexcept override
    {
        point.set(m_r * std::cos(t), m_r * std::sin(t), m_c * t);
        if (numDeriv >= 1)
            derivs[0].set(-m_r * std::sin(t), m_r * std::cos(t), m_c);
        if (numDeriv >= 2)
            derivs[1].set(-m_r * std::cos(t), -m_r * std::sin(t), 0.0);
        return Tmk::ErrorStatus::eOk;
    }
    Tmk::ErrorStatus transformBy(const TmGeMatrix3d&) noexcept override { return Tmk::ErrorStatus::eInvalidInput; }
    bool isEqualTo(const TmGeCurve3d&, const TmGeTol&) const noexcept override { return false; }
    std::unique_ptr<TmGeCurve3d> clone() const override { return std::make_unique<Helix>(*this); }

private:
    double m_r;
    double m_c;
};

TEST(TmGeCurve3dTest, DefaultLengthByQuadrature)
{
    const Helix helix(2.0, 0.3);
    const double speed = std::hypot(2.0, 0.3);
    EXPECT_NEAR(helix.length(), 10.0 * speed, 1e-10);
    EXPECT_NEAR(helix.length(7.0, 1.5, 1e-12), 5.5 * speed, 1e-11);
    EXPECT_EQ(helix.length(3.0, 3.0), 0.0);
    EXPECT_FALSE(helix.isClosed());
}

TEST(TmGeCurve3dVecTest, OwnsDeepCopiesAndTransformsAllOrNothing)
{
    TmGeCurve3dVec curves;
    curves.append(TmGeLineSeg3d(TmGePoint3d(0, 0, 0), TmGePoint3d(1, 0, 0)));
    curves.append(std::make_unique<TmGeCircArc3d>(TmGePoint3d(1, 1, 0), TmGeVector3d::kZAxis, 1.0));
    curves.append(std::unique_ptr<TmGeCurve3d>());
    ASSERT_EQ(curves.size(), 2u);

    TmGeCurve3dVec copy = curves;
    ASSERT_TRUE(copy == curves);
    EXPECT_NE(copy.curves()[0], curves.curves()[0]);
    ASSERT_EQ(copy.transformBy(TmGeMatrix3d::translation({0, 0, 5})), Tmk::ErrorStatus::eOk);
    EXPECT_FALSE(copy == curves);
    EXPECT_NEAR(copy[1].evalPoint(0.0).z, 5.0, 0.0);

    TmGeMatrix3d stretch;
    stretch.entry[0][0] = 3.0; // a circle cannot follow, so nothing moves
    const TmGeCurve3dVec before = copy;
    EXPECT_EQ(copy.transformBy(stretch), Tmk::ErrorStatus::eInvalidInput);
    EXPECT_TRUE(copy == before);

    std::vector<TmGeCurve3d*> raw = copy.release();
    EXPECT_TRUE(copy.empty());
    TmGeCurve3dVec adopted;
    adopted.adopt(raw);
    EXPECT_TRUE(raw.empty());
    EXPECT_TRUE(adopted == before);
}

} // namespace
