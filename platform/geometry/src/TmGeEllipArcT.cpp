#include <geometry/TmGeEllipArc2d.h>
#include <geometry/TmGeEllipArc3d.h>

#include "ArcCore.h"
#include "NurbsCore.h"
#include "Quadrature.h"

#include <cmath>
#include <tuple>
#include <utility>

namespace {

// The axes an elliptical arc stores: both unit, the minor one made exactly perpendicular to the
// major one. False for radii or axes that describe no ellipse, or axes further from
// perpendicular than tol.equalVector().
template <class Vector>
bool ellipseAxes(const Vector& majorAxis, const Vector& minorAxis, double majorRadius, double minorRadius,
                 const TmGeTol& tol, Vector& major, Vector& minor) noexcept
{
    if (!std::isfinite(majorRadius) || !std::isfinite(minorRadius) || majorRadius < 0.0 || minorRadius < 0.0
        || !std::isfinite(majorAxis.length()) || !std::isfinite(minorAxis.length()) || majorAxis.isZeroLength(tol)
        || minorAxis.isZeroLength(tol))
        return false;
    major = TmGeInternal::unitOrSelf(majorAxis);
    minor = TmGeInternal::unitOrSelf(minorAxis);
    const double along = major.dotProduct(minor);
    if (std::fabs(along) > tol.equalVector())
        return false;
    if (along != 0.0)
        minor = TmGeInternal::unitOrSelf(minor - major * along);
    return true;
}

} // namespace

template <class Traits>
TmGeEllipArcT<Traits>::TmGeEllipArcT(const Point& center, const Vector& majorAxis, const Vector& minorAxis,
                                     double majorRadius, double minorRadius, double startAngle,
                                     double endAngle) noexcept
{
    (void)set(center, majorAxis, minorAxis, majorRadius, minorRadius, startAngle, endAngle);
}

template <class Traits>
Tmk::ErrorStatus TmGeEllipArcT<Traits>::set(const Point& center, const Vector& majorAxis, const Vector& minorAxis,
                                            double majorRadius, double minorRadius, double startAngle,
                                            double endAngle, const TmGeTol& tol) noexcept
{
    Vector major;
    Vector minor;
    if (!TmGeInternal::isFinitePoint<Point, Traits::kDim>(center)
        || !ellipseAxes(majorAxis, minorAxis, majorRadius, minorRadius, tol, major, minor)
        || !TmGeInternal::normalizeArcAngles(startAngle, endAngle))
        return Tmk::ErrorStatus::eInvalidInput;
    std::tie(m_center, m_majorAxis, m_minorAxis, m_majorRadius, m_minorRadius, m_startAng, m_endAng) =
        std::tie(center, major, minor, majorRadius, minorRadius, startAngle, endAngle);
    return Tmk::ErrorStatus::eOk;
}

template <class Traits>
Tmk::ErrorStatus TmGeEllipArcT<Traits>::setAngles(double startAngle, double endAngle) noexcept
{
    return TmGeInternal::storeArcAngles(startAngle, endAngle, m_startAng, m_endAng);
}

template <class Traits>
bool TmGeEllipArcT<Traits>::isCircular(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_majorRadius - m_minorRadius) <= tol.equalPoint();
}

template <class Traits>
Tmk::ErrorStatus TmGeEllipArcT<Traits>::evaluate(double param, int numDeriv, Point& point,
                                                 Vector* derivs) const noexcept
{
    const double a = m_majorRadius;
    const double b = m_minorRadius;
    return TmGeInternal::evaluateConicArc(
        m_center, [&](double c, double s) { return m_majorAxis * (a * c) + m_minorAxis * (b * s); },
        [&](double c, double s) { return m_minorAxis * (b * c) - m_majorAxis * (a * s); }, param, numDeriv,
        Curve::kMaxDerivative, point, derivs);
}

template <class Traits>
double TmGeEllipArcT<Traits>::length(double fromParam, double toParam, double tol) const noexcept
{
    const double a = m_majorRadius;
    const double b = m_minorRadius;
    if (a == b)
        return a * std::fabs(toParam - fromParam);
    if (fromParam > toParam)
        std::swap(fromParam, toParam);
    const auto speed = [a, b](double t) { return std::hypot(a * std::sin(t), b * std::cos(t)); };
    return TmGeInternal::integrate(speed, fromParam, toParam, tol);
}

template <class Traits>
bool TmGeEllipArcT<Traits>::isClosed(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_endAng - m_startAng - kTmGeTwoPi) <= tol.equalVector();
}

template <class Traits>
bool TmGeEllipArcT<Traits>::isEqualTo(const Curve& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& arc = static_cast<const TmGeEllipArcT&>(other);
    return m_center.isEqualTo(arc.m_center, tol) && m_majorAxis.isEqualTo(arc.m_majorAxis, tol)
        && m_minorAxis.isEqualTo(arc.m_minorAxis, tol)
        && std::fabs(m_majorRadius - arc.m_majorRadius) <= tol.equalPoint()
        && std::fabs(m_minorRadius - arc.m_minorRadius) <= tol.equalPoint()
        && std::fabs(m_startAng - arc.m_startAng) <= tol.equalVector()
        && std::fabs(m_endAng - arc.m_endAng) <= tol.equalVector();
}

template class TmGeEllipArcT<TmGeEllipArc2dTraits>;
template class TmGeEllipArcT<TmGeEllipArc3dTraits>;
