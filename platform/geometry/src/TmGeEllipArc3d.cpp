#include <geometry/TmGeEllipArc3d.h>

#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeMatrix3d.h>

#include "ArcCore.h"

#include <cmath>
#include <tuple>

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
    TmGeVector3d major;
    TmGeVector3d minor;
    if (!isFinite(center)
        || !TmGeInternal::ellipseAxes(majorAxis, minorAxis, majorRadius, minorRadius, tol, major, minor)
        || !TmGeInternal::normalizeArcAngles(startAngle, endAngle))
        return Tmk::ErrorStatus::eInvalidInput;
    std::tie(m_center, m_majorAxis, m_minorAxis, m_majorRadius, m_minorRadius, m_startAng, m_endAng) =
        std::tie(center, major, minor, majorRadius, minorRadius, startAngle, endAngle);
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeEllipArc3d::setAngles(double startAngle, double endAngle) noexcept
{
    return TmGeInternal::storeArcAngles(startAngle, endAngle, m_startAng, m_endAng);
}

bool TmGeEllipArc3d::isCircular(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_majorRadius - m_minorRadius) <= tol.equalPoint();
}

Tmk::ErrorStatus TmGeEllipArc3d::evaluate(double param, int numDeriv, TmGePoint3d& point,
                                          TmGeVector3d* derivs) const noexcept
{
    return TmGeInternal::evaluateEllipse(*this, param, numDeriv, kMaxDerivative, point, derivs);
}

double TmGeEllipArc3d::length(double fromParam, double toParam, double tol) const noexcept
{
    return TmGeInternal::ellipseLength(m_majorRadius, m_minorRadius, fromParam, toParam, tol);
}

bool TmGeEllipArc3d::isClosed(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_endAng - m_startAng - kTwoPi) <= tol.equalVector();
}

Tmk::ErrorStatus TmGeEllipArc3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    if (m.isPerspective())
        return Tmk::ErrorStatus::eInvalidInput;
    return TmGeInternal::transformEllipse(*this, m);
}

bool TmGeEllipArc3d::isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol) const noexcept
{
    return other.type() == type()
        && TmGeInternal::ellipArcsEqual(*this, static_cast<const TmGeEllipArc3d&>(other), tol);
}

std::unique_ptr<TmGeCurve3d> TmGeEllipArc3d::clone() const
{
    return std::make_unique<TmGeEllipArc3d>(*this);
}
