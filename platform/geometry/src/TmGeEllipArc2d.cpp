#include <geometry/TmGeEllipArc2d.h>

#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeMatrix2d.h>

#include "ArcCore.h"

#include <cmath>
#include <tuple>

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
    TmGeVector2d major;
    TmGeVector2d minor;
    if (!std::isfinite(center.x) || !std::isfinite(center.y)
        || !TmGeInternal::ellipseAxes(majorAxis, minorAxis, majorRadius, minorRadius, tol, major, minor)
        || !TmGeInternal::normalizeArcAngles(startAngle, endAngle))
        return Tmk::ErrorStatus::eInvalidInput;
    std::tie(m_center, m_majorAxis, m_minorAxis, m_majorRadius, m_minorRadius, m_startAng, m_endAng) =
        std::tie(center, major, minor, majorRadius, minorRadius, startAngle, endAngle);
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeEllipArc2d::setAngles(double startAngle, double endAngle) noexcept
{
    return TmGeInternal::storeArcAngles(startAngle, endAngle, m_startAng, m_endAng);
}

bool TmGeEllipArc2d::isCircular(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_majorRadius - m_minorRadius) <= tol.equalPoint();
}

Tmk::ErrorStatus TmGeEllipArc2d::evaluate(double param, int numDeriv, TmGePoint2d& point,
                                          TmGeVector2d* derivs) const noexcept
{
    return TmGeInternal::evaluateEllipse(*this, param, numDeriv, kMaxDerivative, point, derivs);
}

double TmGeEllipArc2d::length(double fromParam, double toParam, double tol) const noexcept
{
    return TmGeInternal::ellipseLength(m_majorRadius, m_minorRadius, fromParam, toParam, tol);
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
    return TmGeInternal::transformEllipse(*this, m);
}

bool TmGeEllipArc2d::isEqualTo(const TmGeCurve2d& other, const TmGeTol& tol) const noexcept
{
    return other.type() == type()
        && TmGeInternal::ellipArcsEqual(*this, static_cast<const TmGeEllipArc2d&>(other), tol);
}

std::unique_ptr<TmGeCurve2d> TmGeEllipArc2d::clone() const
{
    return std::make_unique<TmGeEllipArc2d>(*this);
}
