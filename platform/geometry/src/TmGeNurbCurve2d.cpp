#include <geometry/TmGeNurbCurve2d.h>

#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeEllipArc2d.h>
#include <geometry/TmGeMatrix2d.h>

#include "NurbsCurveImpl.h"

#include <cmath>
#include <utility>

namespace {

constexpr int kDim = 2;

using Point = TmGePoint2d;
using Vector = TmGeVector2d;

} // namespace

TmGeNurbCurve2d::TmGeNurbCurve2d() noexcept = default;

TmGeNurbCurve2d::TmGeNurbCurve2d(int degree, std::vector<double> knots, std::vector<TmGePoint2d> controlPoints,
                                 std::vector<double> weights, bool isPeriodic)
{
    (void)set(degree, std::move(knots), std::move(controlPoints), std::move(weights), isPeriodic);
}

TmGeNurbCurve2d::TmGeNurbCurve2d(const TmGeCircArc2d& arc)
{
    const TmGeVector2d side = arc.isClockWise() ? -arc.refVec().perpVector() : arc.refVec().perpVector();
    *this = TmGeInternal::conicArc<TmGeNurbCurve2d>(arc.center(), arc.refVec() * arc.radius(), side * arc.radius(),
                                                    arc.startAng(), arc.endAng());
}

TmGeNurbCurve2d::TmGeNurbCurve2d(const TmGeEllipArc2d& arc)
{
    *this = TmGeInternal::conicArc<TmGeNurbCurve2d>(arc.center(), arc.majorAxis() * arc.majorRadius(),
                                                    arc.minorAxis() * arc.minorRadius(), arc.startAng(), arc.endAng());
}

Tmk::ErrorStatus TmGeNurbCurve2d::validate(int degree, const std::vector<double>& knots,
                                           const std::vector<TmGePoint2d>& controlPoints,
                                           const std::vector<double>& weights, bool isPeriodic,
                                           const TmGeTol& tol) noexcept
{
    return TmGeInternal::validateNurbs<Point, kDim>(degree, knots, controlPoints, weights, isPeriodic, tol);
}

Tmk::ErrorStatus TmGeNurbCurve2d::set(int degree, std::vector<double> knots, std::vector<TmGePoint2d> controlPoints,
                                      std::vector<double> weights, bool isPeriodic)
{
    const Tmk::ErrorStatus status = validate(degree, knots, controlPoints, weights, isPeriodic);
    if (status == Tmk::ErrorStatus::eOk)
        TmGeInternal::storeNurbs<Point>({m_degree, m_isPeriodic, m_knots, m_controlPoints, m_weights}, degree,
                                        std::move(knots), std::move(controlPoints), std::move(weights), isPeriodic);
    return status;
}

Tmk::ErrorStatus TmGeNurbCurve2d::setControlPointAt(int index, const TmGePoint2d& point) noexcept
{
    if (index < 0 || index >= numControlPoints() || !TmGeInternal::isFinitePoint<Point, kDim>(point))
        return Tmk::ErrorStatus::eInvalidInput;
    TmGeInternal::setWrapped(m_controlPoints, static_cast<std::size_t>(index), point, m_degree, m_isPeriodic);
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeNurbCurve2d::setWeightAt(int index, double weight)
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

double TmGeNurbCurve2d::weightAt(int index) const noexcept
{
    if (index < 0 || static_cast<std::size_t>(index) >= m_weights.size())
        return 1.0;
    return m_weights[static_cast<std::size_t>(index)];
}

TmGeInterval TmGeNurbCurve2d::interval() const noexcept
{
    if (isEmpty())
        return {0.0, 0.0};
    return {m_knots[static_cast<std::size_t>(m_degree)], m_knots[m_controlPoints.size()]};
}

Tmk::ErrorStatus TmGeNurbCurve2d::evaluate(double param, int numDeriv, TmGePoint2d& point,
                                           TmGeVector2d* derivs) const noexcept
{
    const TmGeInternal::NurbsConstFields<Point> fields{m_degree, m_isPeriodic, m_knots, m_controlPoints, m_weights};
    return TmGeInternal::evaluateCurve<Point, Vector, kDim>(fields, kMaxDerivative, param, numDeriv, point, derivs);
}

double TmGeNurbCurve2d::length(double fromParam, double toParam, double tol) const noexcept
{
    return TmGeInternal::nurbsLength<Point, kDim>(m_degree, m_knots, m_controlPoints, m_weights, m_isPeriodic,
                                                  fromParam, toParam, tol);
}

Tmk::ErrorStatus TmGeNurbCurve2d::transformBy(const TmGeMatrix2d& m) noexcept
{
    if (m.entry[2][0] == 0.0 && m.entry[2][1] == 0.0 && m.entry[2][2] == 1.0) {
        for (TmGePoint2d& point : m_controlPoints)
            point.transformBy(m);
        return Tmk::ErrorStatus::eOk;
    }
    return TmGeInternal::transformHomogeneous<Point, kDim>(m, m_controlPoints, m_weights);
}

bool TmGeNurbCurve2d::isEqualTo(const TmGeCurve2d& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& curve = static_cast<const TmGeNurbCurve2d&>(other);
    return TmGeInternal::nurbsEqual<Point>({m_degree, m_isPeriodic, m_knots, m_controlPoints, m_weights},
                                           {curve.m_degree, curve.m_isPeriodic, curve.m_knots, curve.m_controlPoints,
                                            curve.m_weights},
                                           tol);
}

std::unique_ptr<TmGeCurve2d> TmGeNurbCurve2d::clone() const
{
    return std::make_unique<TmGeNurbCurve2d>(*this);
}
