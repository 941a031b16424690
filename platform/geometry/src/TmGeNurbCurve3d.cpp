#include <geometry/TmGeNurbCurve3d.h>

#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeEllipArc3d.h>
#include <geometry/TmGeLineSeg3d.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePolyline3d.h>

#include "NurbsCurveImpl.h"

#include <cmath>
#include <utility>

namespace {

constexpr int kDim = 3;

using Point = TmGePoint3d;
using Vector = TmGeVector3d;

} // namespace

TmGeNurbCurve3d::TmGeNurbCurve3d() noexcept = default;

TmGeNurbCurve3d::TmGeNurbCurve3d(int degree, std::vector<double> knots, std::vector<TmGePoint3d> controlPoints,
                                 std::vector<double> weights, bool isPeriodic)
{
    (void)set(degree, std::move(knots), std::move(controlPoints), std::move(weights), isPeriodic);
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGeLineSeg3d& segment)
{
    const TmGeInterval range = segment.interval();
    (void)set(1, {range.lowerBound(), range.lowerBound(), range.upperBound(), range.upperBound()},
              {segment.startPoint(), segment.endPoint()});
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGePolyline3d& polyline)
{
    const int n = polyline.numPoints();
    if (n < 2)
        return;
    std::vector<double> knots{0.0};
    for (int i = 0; i < n; ++i)
        knots.push_back(i);
    knots.push_back(n - 1);
    (void)set(1, std::move(knots), polyline.points());
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGeCircArc3d& arc)
{
    const TmGeVector3d side = arc.normal().crossProduct(arc.refVec());
    *this = TmGeInternal::conicArc<TmGeNurbCurve3d>(arc.center(), arc.refVec() * arc.radius(), side * arc.radius(),
                                                    arc.startAng(), arc.endAng());
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGeEllipArc3d& arc)
{
    *this = TmGeInternal::conicArc<TmGeNurbCurve3d>(arc.center(), arc.majorAxis() * arc.majorRadius(),
                                                    arc.minorAxis() * arc.minorRadius(), arc.startAng(), arc.endAng());
}

Tmk::ErrorStatus TmGeNurbCurve3d::validate(int degree, const std::vector<double>& knots,
                                           const std::vector<TmGePoint3d>& controlPoints,
                                           const std::vector<double>& weights, bool isPeriodic,
                                           const TmGeTol& tol) noexcept
{
    return TmGeInternal::validateNurbs<Point, kDim>(degree, knots, controlPoints, weights, isPeriodic, tol);
}

Tmk::ErrorStatus TmGeNurbCurve3d::set(int degree, std::vector<double> knots, std::vector<TmGePoint3d> controlPoints,
                                      std::vector<double> weights, bool isPeriodic)
{
    const Tmk::ErrorStatus status = validate(degree, knots, controlPoints, weights, isPeriodic);
    if (status == Tmk::ErrorStatus::eOk)
        TmGeInternal::storeNurbs<Point>({m_degree, m_isPeriodic, m_knots, m_controlPoints, m_weights}, degree,
                                        std::move(knots), std::move(controlPoints), std::move(weights), isPeriodic);
    return status;
}

Tmk::ErrorStatus TmGeNurbCurve3d::setControlPointAt(int index, const TmGePoint3d& point) noexcept
{
    if (index < 0 || index >= numControlPoints() || !TmGeInternal::isFinitePoint<Point, kDim>(point))
        return Tmk::ErrorStatus::eInvalidInput;
    TmGeInternal::setWrapped(m_controlPoints, static_cast<std::size_t>(index), point, m_degree, m_isPeriodic);
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeNurbCurve3d::setWeightAt(int index, double weight)
{
    if (index < 0 || index >= numControlPoints())
        return Tmk::ErrorStatus::eInvalidInput;
    if (!std::isfinite(weight) || !(weight > 0.0))
        return Tmk::ErrorStatus::eInvalidWeights;
    if (m_weights.empty())
        m_weights.assign(m_controlPoints.size(), 1.0);
    TmGeInternal::setWrapped(m_weights, static_cast<std::size_t>(index), weight, m_degree, m_isPeriodic);
    return Tmk::ErrorStatus::eOk;
}

double TmGeNurbCurve3d::weightAt(int index) const noexcept
{
    if (index < 0 || static_cast<std::size_t>(index) >= m_weights.size())
        return 1.0;
    return m_weights[static_cast<std::size_t>(index)];
}

TmGeInterval TmGeNurbCurve3d::interval() const noexcept
{
    if (isEmpty())
        return {0.0, 0.0};
    return {m_knots[static_cast<std::size_t>(m_degree)], m_knots[m_controlPoints.size()]};
}

Tmk::ErrorStatus TmGeNurbCurve3d::evaluate(double param, int numDeriv, TmGePoint3d& point,
                                           TmGeVector3d* derivs) const noexcept
{
    const TmGeInternal::NurbsConstFields<Point> fields{m_degree, m_isPeriodic, m_knots, m_controlPoints, m_weights};
    return TmGeInternal::evaluateCurve<Point, Vector, kDim>(fields, kMaxDerivative, param, numDeriv, point, derivs);
}

double TmGeNurbCurve3d::length(double fromParam, double toParam, double tol) const noexcept
{
    return TmGeInternal::nurbsLength<Point, kDim>(m_degree, m_knots, m_controlPoints, m_weights, m_isPeriodic,
                                                  fromParam, toParam, tol);
}

Tmk::ErrorStatus TmGeNurbCurve3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    if (!m.isPerspective()) {
        for (TmGePoint3d& point : m_controlPoints)
            point.transformBy(m);
        return Tmk::ErrorStatus::eOk;
    }
    return TmGeInternal::transformHomogeneous<Point, kDim>(m, m_controlPoints, m_weights);
}

bool TmGeNurbCurve3d::isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& curve = static_cast<const TmGeNurbCurve3d&>(other);
    return TmGeInternal::nurbsEqual<Point>({m_degree, m_isPeriodic, m_knots, m_controlPoints, m_weights},
                                           {curve.m_degree, curve.m_isPeriodic, curve.m_knots, curve.m_controlPoints,
                                            curve.m_weights},
                                           tol);
}

std::unique_ptr<TmGeCurve3d> TmGeNurbCurve3d::clone() const
{
    return std::make_unique<TmGeNurbCurve3d>(*this);
}
