#include <geometry/TmGeCircArc3d.h>

#include <geometry/TmGeMatrix3d.h>

#include "ArcCore.h"

#include <cmath>

namespace {

bool isFinite(const TmGePoint3d& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

} // namespace

TmGeCircArc3d::TmGeCircArc3d() noexcept = default;

TmGeCircArc3d::TmGeCircArc3d(const TmGePoint3d& center, const TmGeVector3d& normal, double radius) noexcept
{
    (void)set(center, normal, normal.perpVector(), radius, 0.0, kTmGeTwoPi);
}

TmGeCircArc3d::TmGeCircArc3d(const TmGePoint3d& center, const TmGeVector3d& normal, const TmGeVector3d& refVec,
                             double radius, double startAngle, double endAngle) noexcept
{
    (void)set(center, normal, refVec, radius, startAngle, endAngle);
}

TmGeCircArc3d::TmGeCircArc3d(const TmGePoint3d& start, const TmGePoint3d& middle, const TmGePoint3d& end) noexcept
{
    (void)set(start, middle, end);
}

Tmk::ErrorStatus TmGeCircArc3d::set(const TmGePoint3d& center, const TmGeVector3d& normal, const TmGeVector3d& refVec,
                                    double radius, double startAngle, double endAngle) noexcept
{
    const TmGeTol& tol = TmGeContext::gTol;
    if (!isFinite(center) || !std::isfinite(radius) || radius < 0.0 || !std::isfinite(normal.length())
        || !std::isfinite(refVec.length()) || normal.isZeroLength(tol))
        return Tmk::ErrorStatus::eInvalidInput;
    const TmGeVector3d n = TmGeInternal::unitOrSelf(normal);
    TmGeVector3d ref = refVec;
    const double along = ref.dotProduct(n);
    if (along != 0.0)
        ref -= n * along;
    if (ref.isZeroLength(tol))
        return Tmk::ErrorStatus::eInvalidInput;
    if (!TmGeInternal::normalizeArcAngles(startAngle, endAngle))
        return Tmk::ErrorStatus::eInvalidInput;
    m_center = center;
    m_normal = n;
    m_refVec = TmGeInternal::unitOrSelf(ref);
    m_radius = radius;
    m_startAng = startAngle;
    m_endAng = endAngle;
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeCircArc3d::set(const TmGePoint3d& start, const TmGePoint3d& middle, const TmGePoint3d& end,
                                    const TmGeTol& tol) noexcept
{
    const TmGeVector3d a = start - end;
    const TmGeVector3d b = middle - end;
    const TmGeVector3d axb = a.crossProduct(b);
    if (start.isEqualTo(middle, tol) || middle.isEqualTo(end, tol) || start.isEqualTo(end, tol)
        || axb.isZeroLength(tol) || (middle - start).isParallelTo(end - start, tol))
        return Tmk::ErrorStatus::eDegenerateGeometry;
    // Circumcentre of the triangle.
    const TmGeVector3d offset = (b * a.lengthSqrd() - a * b.lengthSqrd()).crossProduct(axb) / (2.0 * axb.lengthSqrd());
    const TmGePoint3d center = end + offset;
    // Seen from this normal the points run counter-clockwise: start, middle, end.
    const TmGeVector3d normal = (middle - start).crossProduct(end - start);
    const TmGeVector3d ref = start - center;
    const TmGeVector3d n = normal.normal(tol);
    const TmGeVector3d r = ref.normal(tol);
    const TmGeVector3d side = n.crossProduct(r);
    const TmGeVector3d toEnd = end - center;
    double sweep = std::atan2(toEnd.dotProduct(side), toEnd.dotProduct(r));
    if (sweep <= 0.0)
        sweep += kTmGeTwoPi;
    return set(center, n, r, ref.length(), 0.0, sweep);
}

Tmk::ErrorStatus TmGeCircArc3d::setRadius(double radius) noexcept
{
    return TmGeInternal::storeRadius(radius, m_radius);
}

Tmk::ErrorStatus TmGeCircArc3d::setAngles(double startAngle, double endAngle) noexcept
{
    return TmGeInternal::storeArcAngles(startAngle, endAngle, m_startAng, m_endAng);
}

double TmGeCircArc3d::paramOf(const TmGePoint3d& point) const noexcept
{
    const TmGeVector3d v = point - m_center;
    const TmGeVector3d side = sideVec();
    return TmGeInternal::paramAtAngle(std::atan2(v.dotProduct(side), v.dotProduct(m_refVec)), m_startAng);
}

bool TmGeCircArc3d::isOn(const TmGePoint3d& point, const TmGeTol& tol) const noexcept
{
    const TmGeVector3d v = point - m_center;
    const double height = v.dotProduct(m_normal);
    const double inPlane = (v - m_normal * height).length();
    if (std::fabs(height) > tol.equalPoint() || std::fabs(inPlane - m_radius) > tol.equalPoint())
        return false;
    return TmGeInternal::isWithinSweep(*this, point, tol);
}

Tmk::ErrorStatus TmGeCircArc3d::evaluate(double param, int numDeriv, TmGePoint3d& point,
                                         TmGeVector3d* derivs) const noexcept
{
    return TmGeInternal::evaluateCircle(m_center, m_refVec, sideVec(), m_radius, param, numDeriv, kMaxDerivative,
                                        point, derivs);
}

double TmGeCircArc3d::length(double fromParam, double toParam, double) const noexcept
{
    return m_radius * std::fabs(toParam - fromParam);
}

bool TmGeCircArc3d::isClosed(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_endAng - m_startAng - kTmGeTwoPi) <= tol.equalVector();
}

Tmk::ErrorStatus TmGeCircArc3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    if (!m.isUniScaledOrtho())
        return Tmk::ErrorStatus::eInvalidInput;
    // The images of the two in-plane axes define the new system; for a mirror the normal then
    // flips relative to M * normal, which keeps the sense of travel of every point.
    TmGeVector3d ref = m_refVec;
    TmGeVector3d side = sideVec();
    ref.transformBy(m);
    side.transformBy(m);
    const double scale = ref.length();
    TmGePoint3d center = m_center;
    center.transformBy(m);
    return set(center, ref.crossProduct(side), ref, m_radius * scale, m_startAng, m_endAng);
}

bool TmGeCircArc3d::isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& arc = static_cast<const TmGeCircArc3d&>(other);
    return m_center.isEqualTo(arc.m_center, tol) && m_normal.isEqualTo(arc.m_normal, tol)
        && m_refVec.isEqualTo(arc.m_refVec, tol) && std::fabs(m_radius - arc.m_radius) <= tol.equalPoint()
        && std::fabs(m_startAng - arc.m_startAng) <= tol.equalVector()
        && std::fabs(m_endAng - arc.m_endAng) <= tol.equalVector();
}

std::unique_ptr<TmGeCurve3d> TmGeCircArc3d::clone() const
{
    return std::make_unique<TmGeCircArc3d>(*this);
}
