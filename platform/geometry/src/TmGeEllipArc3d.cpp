#include <geometry/TmGeEllipArc3d.h>

#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeMatrix3d.h>

#include "ArcAngles.h"
#include "Quadrature.h"

#include <cmath>
#include <utility>

using TmGeInternal::kTwoPi;

namespace {

bool isFinite(const TmGePoint3d& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

} // namespace

TmGeEllipArc3d::TmGeEllipArc3d() noexcept = default;

TmGeEllipArc3d::TmGeEllipArc3d(const TmGePoint3d& center, const TmGeVector3d& majorAxis, const TmGeVector3d& minorAxis,
                               double majorRadius, double minorRadius, double startAngle, double endAngle) noexcept
{
    (void)set(center, majorAxis, minorAxis, majorRadius, minorRadius, startAngle, endAngle);
}

TmGeEllipArc3d::TmGeEllipArc3d(const TmGeCircArc3d& arc) noexcept
{
    (void)set(arc.center(), arc.refVec(), arc.normal().crossProduct(arc.refVec()), arc.radius(), arc.radius(),
              arc.startAng(), arc.endAng());
}

Tmk::ErrorStatus TmGeEllipArc3d::set(const TmGePoint3d& center, const TmGeVector3d& majorAxis,
                                     const TmGeVector3d& minorAxis, double majorRadius, double minorRadius,
                                     double startAngle, double endAngle, const TmGeTol& tol) noexcept
{
    if (!isFinite(center) || !std::isfinite(majorRadius) || !std::isfinite(minorRadius) || majorRadius < 0.0
        || minorRadius < 0.0 || !std::isfinite(majorAxis.length()) || !std::isfinite(minorAxis.length())
        || majorAxis.isZeroLength(tol) || minorAxis.isZeroLength(tol))
        return Tmk::ErrorStatus::eInvalidInput;
    const TmGeVector3d major = TmGeInternal::unitOrSelf(majorAxis);
    TmGeVector3d minor = TmGeInternal::unitOrSelf(minorAxis);
    const double along = major.dotProduct(minor);
    if (std::fabs(along) > tol.equalVector())
        return Tmk::ErrorStatus::eInvalidInput;
    if (along != 0.0)
        minor = TmGeInternal::unitOrSelf(minor - major * along);
    if (!TmGeInternal::normalizeArcAngles(startAngle, endAngle))
        return Tmk::ErrorStatus::eInvalidInput;
    m_center = center;
    m_majorAxis = major;
    m_minorAxis = minor;
    m_majorRadius = majorRadius;
    m_minorRadius = minorRadius;
    m_startAng = startAngle;
    m_endAng = endAngle;
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeEllipArc3d::setAngles(double startAngle, double endAngle) noexcept
{
    if (!TmGeInternal::normalizeArcAngles(startAngle, endAngle))
        return Tmk::ErrorStatus::eInvalidInput;
    m_startAng = startAngle;
    m_endAng = endAngle;
    return Tmk::ErrorStatus::eOk;
}

bool TmGeEllipArc3d::isCircular(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_majorRadius - m_minorRadius) <= tol.equalPoint();
}

Tmk::ErrorStatus TmGeEllipArc3d::evaluate(double param, int numDeriv, TmGePoint3d& point,
                                          TmGeVector3d* derivs) const noexcept
{
    if (numDeriv < 0 || numDeriv > kMaxDerivative || (numDeriv > 0 && derivs == nullptr))
        return Tmk::ErrorStatus::eInvalidInput;
    const double c = std::cos(param);
    const double s = std::sin(param);
    const TmGeVector3d radial = m_majorAxis * (m_majorRadius * c) + m_minorAxis * (m_minorRadius * s);
    point = m_center + radial;
    if (numDeriv >= 1)
        derivs[0] = m_minorAxis * (m_minorRadius * c) - m_majorAxis * (m_majorRadius * s);
    if (numDeriv >= 2)
        derivs[1] = -radial;
    return Tmk::ErrorStatus::eOk;
}

double TmGeEllipArc3d::length(double fromParam, double toParam, double tol) const noexcept
{
    if (m_majorRadius == m_minorRadius)
        return m_majorRadius * std::fabs(toParam - fromParam);
    if (fromParam > toParam)
        std::swap(fromParam, toParam);
    const double a = m_majorRadius;
    const double b = m_minorRadius;
    const auto speed = [a, b](double t) { return std::hypot(a * std::sin(t), b * std::cos(t)); };
    return TmGeInternal::integrate(speed, fromParam, toParam, tol);
}

bool TmGeEllipArc3d::isClosed(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_endAng - m_startAng - kTwoPi) <= tol.equalVector();
}

Tmk::ErrorStatus TmGeEllipArc3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    if (m.isPerspective())
        return Tmk::ErrorStatus::eInvalidInput;
    // The images of the two semi-axes are conjugate semi-diameters A and B of the new ellipse;
    // its principal axes are A cos t0 + B sin t0 and its quarter-turn partner, where t0 makes
    // them perpendicular.
    TmGeVector3d a = m_majorAxis * m_majorRadius;
    TmGeVector3d b = m_minorAxis * m_minorRadius;
    a.transformBy(m);
    b.transformBy(m);
    const double t0 = 0.5 * std::atan2(2.0 * a.dotProduct(b), a.lengthSqrd() - b.lengthSqrd());
    const double c = std::cos(t0);
    const double s = std::sin(t0);
    const TmGeVector3d major = a * c + b * s;
    const TmGeVector3d minor = b * c - a * s;
    TmGePoint3d center = m_center;
    center.transformBy(m);
    // Perpendicular by construction up to rounding, so set() checks that loosely; a flattened
    // ellipse (zero minor axis) is refused there.
    const TmGeTol loose(TmGeContext::gTol.equalPoint(), 1e-9);
    return set(center, major, minor, major.length(), minor.length(), m_startAng - t0, m_endAng - t0, loose);
}

bool TmGeEllipArc3d::isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& arc = static_cast<const TmGeEllipArc3d&>(other);
    return m_center.isEqualTo(arc.m_center, tol) && m_majorAxis.isEqualTo(arc.m_majorAxis, tol)
        && m_minorAxis.isEqualTo(arc.m_minorAxis, tol) && std::fabs(m_majorRadius - arc.m_majorRadius) <= tol.equalPoint()
        && std::fabs(m_minorRadius - arc.m_minorRadius) <= tol.equalPoint()
        && std::fabs(m_startAng - arc.m_startAng) <= tol.equalVector()
        && std::fabs(m_endAng - arc.m_endAng) <= tol.equalVector();
}

std::unique_ptr<TmGeCurve3d> TmGeEllipArc3d::clone() const
{
    return std::make_unique<TmGeEllipArc3d>(*this);
}
