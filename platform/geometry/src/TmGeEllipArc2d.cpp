#include <geometry/TmGeEllipArc2d.h>

#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeMatrix2d.h>

#include "ArcAngles.h"
#include "Quadrature.h"

#include <cmath>
#include <utility>

using TmGeInternal::kTwoPi;

TmGeEllipArc2d::TmGeEllipArc2d() noexcept = default;

TmGeEllipArc2d::TmGeEllipArc2d(const TmGePoint2d& center, const TmGeVector2d& majorAxis, const TmGeVector2d& minorAxis,
                               double majorRadius, double minorRadius, double startAngle, double endAngle) noexcept
{
    (void)set(center, majorAxis, minorAxis, majorRadius, minorRadius, startAngle, endAngle);
}

TmGeEllipArc2d::TmGeEllipArc2d(const TmGeCircArc2d& arc) noexcept
{
    const TmGeVector2d side = arc.isClockWise() ? -arc.refVec().perpVector() : arc.refVec().perpVector();
    (void)set(arc.center(), arc.refVec(), side, arc.radius(), arc.radius(), arc.startAng(), arc.endAng());
}

Tmk::ErrorStatus TmGeEllipArc2d::set(const TmGePoint2d& center, const TmGeVector2d& majorAxis,
                                     const TmGeVector2d& minorAxis, double majorRadius, double minorRadius,
                                     double startAngle, double endAngle, const TmGeTol& tol) noexcept
{
    if (!std::isfinite(center.x) || !std::isfinite(center.y) || !std::isfinite(majorRadius)
        || !std::isfinite(minorRadius) || majorRadius < 0.0 || minorRadius < 0.0 || !std::isfinite(majorAxis.length())
        || !std::isfinite(minorAxis.length()) || majorAxis.isZeroLength(tol) || minorAxis.isZeroLength(tol))
        return Tmk::ErrorStatus::eInvalidInput;
    const TmGeVector2d major = TmGeInternal::unitOrSelf(majorAxis);
    TmGeVector2d minor = TmGeInternal::unitOrSelf(minorAxis);
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

Tmk::ErrorStatus TmGeEllipArc2d::setAngles(double startAngle, double endAngle) noexcept
{
    if (!TmGeInternal::normalizeArcAngles(startAngle, endAngle))
        return Tmk::ErrorStatus::eInvalidInput;
    m_startAng = startAngle;
    m_endAng = endAngle;
    return Tmk::ErrorStatus::eOk;
}

bool TmGeEllipArc2d::isCircular(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_majorRadius - m_minorRadius) <= tol.equalPoint();
}

Tmk::ErrorStatus TmGeEllipArc2d::evaluate(double param, int numDeriv, TmGePoint2d& point,
                                          TmGeVector2d* derivs) const noexcept
{
    if (numDeriv < 0 || numDeriv > kMaxDerivative || (numDeriv > 0 && derivs == nullptr))
        return Tmk::ErrorStatus::eInvalidInput;
    const double c = std::cos(param);
    const double s = std::sin(param);
    const TmGeVector2d radial = m_majorAxis * (m_majorRadius * c) + m_minorAxis * (m_minorRadius * s);
    point = m_center + radial;
    if (numDeriv >= 1)
        derivs[0] = m_minorAxis * (m_minorRadius * c) - m_majorAxis * (m_majorRadius * s);
    if (numDeriv >= 2)
        derivs[1] = -radial;
    return Tmk::ErrorStatus::eOk;
}

double TmGeEllipArc2d::length(double fromParam, double toParam, double tol) const noexcept
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

bool TmGeEllipArc2d::isClosed(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_endAng - m_startAng - kTwoPi) <= tol.equalVector();
}

Tmk::ErrorStatus TmGeEllipArc2d::transformBy(const TmGeMatrix2d& m) noexcept
{
    const double t = TmGeContext::gTol.equalVector();
    if (std::fabs(m.entry[2][0]) > t || std::fabs(m.entry[2][1]) > t || std::fabs(m.entry[2][2] - 1.0) > t)
        return Tmk::ErrorStatus::eInvalidInput;
    // See TmGeEllipArc3d::transformBy: principal axes from the conjugate semi-diameters.
    TmGeVector2d a = m_majorAxis * m_majorRadius;
    TmGeVector2d b = m_minorAxis * m_minorRadius;
    a.transformBy(m);
    b.transformBy(m);
    const double t0 = 0.5 * std::atan2(2.0 * a.dotProduct(b), a.lengthSqrd() - b.lengthSqrd());
    const double c = std::cos(t0);
    const double s = std::sin(t0);
    const TmGeVector2d major = a * c + b * s;
    const TmGeVector2d minor = b * c - a * s;
    TmGePoint2d center = m_center;
    center.transformBy(m);
    const TmGeTol loose(TmGeContext::gTol.equalPoint(), 1e-9);
    return set(center, major, minor, major.length(), minor.length(), m_startAng - t0, m_endAng - t0, loose);
}

bool TmGeEllipArc2d::isEqualTo(const TmGeCurve2d& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& arc = static_cast<const TmGeEllipArc2d&>(other);
    return m_center.isEqualTo(arc.m_center, tol) && m_majorAxis.isEqualTo(arc.m_majorAxis, tol)
        && m_minorAxis.isEqualTo(arc.m_minorAxis, tol) && std::fabs(m_majorRadius - arc.m_majorRadius) <= tol.equalPoint()
        && std::fabs(m_minorRadius - arc.m_minorRadius) <= tol.equalPoint()
        && std::fabs(m_startAng - arc.m_startAng) <= tol.equalVector()
        && std::fabs(m_endAng - arc.m_endAng) <= tol.equalVector();
}

std::unique_ptr<TmGeCurve2d> TmGeEllipArc2d::clone() const
{
    return std::make_unique<TmGeEllipArc2d>(*this);
}
