#include <geometry/TmGeCircArc2d.h>

#include <geometry/TmGeMatrix2d.h>

#include "ArcCore.h"

#include <cmath>

TmGeCircArc2d::TmGeCircArc2d() noexcept = default;

TmGeCircArc2d::TmGeCircArc2d(const TmGePoint2d& center, double radius) noexcept
{
    (void)set(center, radius, 0.0, kTmGeTwoPi);
}

TmGeCircArc2d::TmGeCircArc2d(const TmGePoint2d& center, double radius, double startAngle, double endAngle,
                             const TmGeVector2d& refVec, bool isClockwise) noexcept
{
    (void)set(center, radius, startAngle, endAngle, refVec, isClockwise);
}

TmGeCircArc2d::TmGeCircArc2d(const TmGePoint2d& start, const TmGePoint2d& middle, const TmGePoint2d& end) noexcept
{
    (void)set(start, middle, end);
}

Tmk::ErrorStatus TmGeCircArc2d::set(const TmGePoint2d& center, double radius, double startAngle, double endAngle,
                                    const TmGeVector2d& refVec, bool isClockwise) noexcept
{
    if (!std::isfinite(center.x) || !std::isfinite(center.y) || !std::isfinite(radius) || radius < 0.0
        || !std::isfinite(refVec.length()) || refVec.isZeroLength())
        return Tmk::ErrorStatus::eInvalidInput;
    if (!TmGeInternal::normalizeArcAngles(startAngle, endAngle))
        return Tmk::ErrorStatus::eInvalidInput;
    m_center = center;
    m_radius = radius;
    m_startAng = startAngle;
    m_endAng = endAngle;
    m_refVec = TmGeInternal::unitOrSelf(refVec);
    m_isClockwise = isClockwise;
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeCircArc2d::set(const TmGePoint2d& start, const TmGePoint2d& middle, const TmGePoint2d& end,
                                    const TmGeTol& tol) noexcept
{
    const TmGeVector2d a = start - end;
    const TmGeVector2d b = middle - end;
    const double cross = a.crossProduct(b);
    if (start.isEqualTo(middle, tol) || middle.isEqualTo(end, tol) || start.isEqualTo(end, tol)
        || (middle - start).isParallelTo(end - start, tol) || cross == 0.0)
        return Tmk::ErrorStatus::eDegenerateGeometry;
    // Circumcentre, the planar form of the 3d formula.
    const TmGeVector2d w = b * a.lengthSqrd() - a * b.lengthSqrd();
    const TmGeVector2d offset(w.y * cross, -w.x * cross);
    const TmGePoint2d center = end + offset / (2.0 * cross * cross);
    const bool clockwise = (middle - start).crossProduct(end - start) < 0.0;
    const TmGeVector2d ref = (start - center).normal(tol);
    const TmGeVector2d side = clockwise ? -ref.perpVector() : ref.perpVector();
    const TmGeVector2d toEnd = end - center;
    double sweep = std::atan2(toEnd.dotProduct(side), toEnd.dotProduct(ref));
    if (sweep <= 0.0)
        sweep += kTmGeTwoPi;
    return set(center, (start - center).length(), 0.0, sweep, ref, clockwise);
}

Tmk::ErrorStatus TmGeCircArc2d::setRadius(double radius) noexcept
{
    return TmGeInternal::storeRadius(radius, m_radius);
}

Tmk::ErrorStatus TmGeCircArc2d::setAngles(double startAngle, double endAngle) noexcept
{
    return TmGeInternal::storeArcAngles(startAngle, endAngle, m_startAng, m_endAng);
}

TmGeVector2d TmGeCircArc2d::sideVec() const noexcept
{
    return m_isClockwise ? -m_refVec.perpVector() : m_refVec.perpVector();
}

double TmGeCircArc2d::paramOf(const TmGePoint2d& point) const noexcept
{
    const TmGeVector2d v = point - m_center;
    return TmGeInternal::paramAtAngle(std::atan2(v.dotProduct(sideVec()), v.dotProduct(m_refVec)), m_startAng);
}

bool TmGeCircArc2d::isOn(const TmGePoint2d& point, const TmGeTol& tol) const noexcept
{
    if (std::fabs(point.distanceTo(m_center) - m_radius) > tol.equalPoint())
        return false;
    return TmGeInternal::isWithinSweep(*this, point, tol);
}

Tmk::ErrorStatus TmGeCircArc2d::evaluate(double param, int numDeriv, TmGePoint2d& point,
                                         TmGeVector2d* derivs) const noexcept
{
    return TmGeInternal::evaluateCircle(m_center, m_refVec, sideVec(), m_radius, param, numDeriv, kMaxDerivative,
                                        point, derivs);
}

double TmGeCircArc2d::length(double fromParam, double toParam, double) const noexcept
{
    return m_radius * std::fabs(toParam - fromParam);
}

bool TmGeCircArc2d::isClosed(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_endAng - m_startAng - kTmGeTwoPi) <= tol.equalVector();
}

Tmk::ErrorStatus TmGeCircArc2d::transformBy(const TmGeMatrix2d& m) noexcept
{
    if (!m.isUniScaledOrtho())
        return Tmk::ErrorStatus::eInvalidInput;
    TmGeVector2d ref = m_refVec;
    TmGeVector2d side = sideVec();
    ref.transformBy(m);
    side.transformBy(m);
    TmGePoint2d center = m_center;
    center.transformBy(m);
    return set(center, m_radius * ref.length(), m_startAng, m_endAng, ref, ref.crossProduct(side) < 0.0);
}

bool TmGeCircArc2d::isEqualTo(const TmGeCurve2d& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& arc = static_cast<const TmGeCircArc2d&>(other);
    return m_center.isEqualTo(arc.m_center, tol) && std::fabs(m_radius - arc.m_radius) <= tol.equalPoint()
        && std::fabs(m_startAng - arc.m_startAng) <= tol.equalVector()
        && std::fabs(m_endAng - arc.m_endAng) <= tol.equalVector() && m_refVec.isEqualTo(arc.m_refVec, tol)
        && m_isClockwise == arc.m_isClockwise;
}

std::unique_ptr<TmGeCurve2d> TmGeCircArc2d::clone() const
{
    return std::make_unique<TmGeCircArc2d>(*this);
}
