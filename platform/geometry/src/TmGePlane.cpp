#include <geometry/TmGePlane.h>

#include <geometry/TmGeLine3d.h>
#include <geometry/TmGeMatrix3d.h>

#include "ArcAngles.h"

#include <cmath>

namespace {

bool isFinite(const TmGePoint3d& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

} // namespace

TmGePlane::TmGePlane() noexcept = default;

TmGePlane::TmGePlane(const TmGePoint3d& point, const TmGeVector3d& normal) noexcept
{
    (void)set(point, normal);
}

TmGePlane::TmGePlane(double a, double b, double c, double d) noexcept
{
    (void)set(a, b, c, d);
}

TmGePlane::TmGePlane(const TmGePoint3d& p1, const TmGePoint3d& p2, const TmGePoint3d& p3) noexcept
{
    (void)set(p1, p2, p3);
}

TmGePlane::TmGePlane(const TmGePoint3d& origin, const TmGeVector3d& uAxis, const TmGeVector3d& vAxis) noexcept
{
    (void)set(origin, uAxis, vAxis);
}

Tmk::ErrorStatus TmGePlane::set(const TmGePoint3d& point, const TmGeVector3d& normal, const TmGeTol& tol) noexcept
{
    if (!isFinite(point) || !std::isfinite(normal.length()))
        return Tmk::ErrorStatus::eInvalidInput;
    if (normal.isZeroLength(tol))
        return Tmk::ErrorStatus::eDegenerateGeometry;
    m_point = point;
    m_normal = TmGeInternal::unitOrSelf(normal);
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGePlane::set(double a, double b, double c, double d, const TmGeTol& tol) noexcept
{
    const TmGeVector3d n(a, b, c);
    const double len2 = n.lengthSqrd();
    if (!std::isfinite(d) || !std::isfinite(len2))
        return Tmk::ErrorStatus::eInvalidInput;
    if (n.isZeroLength(tol))
        return Tmk::ErrorStatus::eDegenerateGeometry;
    // The foot of the perpendicular from the origin: n . p + d = 0 with p along n.
    return set(TmGePoint3d::kOrigin + n * (-d / len2), n, tol);
}

Tmk::ErrorStatus TmGePlane::set(const TmGePoint3d& p1, const TmGePoint3d& p2, const TmGePoint3d& p3,
                                const TmGeTol& tol) noexcept
{
    return set(p1, p2 - p1, p3 - p1, tol);
}

Tmk::ErrorStatus TmGePlane::set(const TmGePoint3d& origin, const TmGeVector3d& uAxis, const TmGeVector3d& vAxis,
                                const TmGeTol& tol) noexcept
{
    if (uAxis.isZeroLength(tol) || vAxis.isZeroLength(tol) || uAxis.isParallelTo(vAxis, tol))
        return Tmk::ErrorStatus::eDegenerateGeometry;
    return set(origin, uAxis.normal(tol).crossProduct(vAxis.normal(tol)), tol);
}

void TmGePlane::getCoefficients(double& a, double& b, double& c, double& d) const noexcept
{
    a = m_normal.x;
    b = m_normal.y;
    c = m_normal.z;
    d = -m_normal.dotProduct(m_point.asVector());
}

void TmGePlane::get(TmGePoint3d& origin, TmGeVector3d& uAxis, TmGeVector3d& vAxis) const noexcept
{
    origin = m_point;
    uAxis = m_normal.perpVector();
    vAxis = m_normal.crossProduct(uAxis);
}

double TmGePlane::signedDistanceTo(const TmGePoint3d& point) const noexcept
{
    return m_normal.dotProduct(point - m_point);
}

double TmGePlane::distanceTo(const TmGePoint3d& point) const noexcept
{
    return std::fabs(signedDistanceTo(point));
}

TmGePoint3d TmGePlane::closestPointTo(const TmGePoint3d& point) const noexcept
{
    return point - m_normal * signedDistanceTo(point);
}

bool TmGePlane::isOn(const TmGePoint3d& point, const TmGeTol& tol) const noexcept
{
    return distanceTo(point) <= tol.equalPoint();
}

bool TmGePlane::isParallelTo(const TmGePlane& plane, const TmGeTol& tol) const noexcept
{
    return m_normal.isParallelTo(plane.m_normal, tol);
}

bool TmGePlane::isParallelTo(const TmGeLine3d& line, const TmGeTol& tol) const noexcept
{
    return line.direction().isPerpendicularTo(m_normal, tol);
}

bool TmGePlane::isPerpendicularTo(const TmGePlane& plane, const TmGeTol& tol) const noexcept
{
    return m_normal.isPerpendicularTo(plane.m_normal, tol);
}

bool TmGePlane::isCoplanarTo(const TmGePlane& plane, const TmGeTol& tol) const noexcept
{
    return isParallelTo(plane, tol) && isOn(plane.m_point, tol) && plane.isOn(m_point, tol);
}

bool TmGePlane::intersectWith(const TmGeLine3d& line, TmGePoint3d& point, const TmGeTol& tol) const noexcept
{
    if (line.direction().isZeroLength(tol) || isParallelTo(line, tol))
        return false;
    const double denom = m_normal.dotProduct(line.direction());
    const double t = m_normal.dotProduct(m_point - line.pointOnLine()) / denom;
    point = line.evalPoint(t);
    return true;
}

bool TmGePlane::intersectWith(const TmGePlane& plane, TmGeLine3d& line, const TmGeTol& tol) const noexcept
{
    if (isParallelTo(plane, tol))
        return false;
    const TmGeVector3d& n1 = m_normal;
    const TmGeVector3d& n2 = plane.m_normal;
    const TmGeVector3d dir = n1.crossProduct(n2);
    const double d1 = n1.dotProduct(m_point.asVector());
    const double d2 = n2.dotProduct(plane.m_point.asVector());
    // The point of the line nearest the origin: a combination of both normals.
    const TmGeVector3d p = (n2.crossProduct(dir) * d1 + dir.crossProduct(n1) * d2) / dir.lengthSqrd();
    line.set(TmGePoint3d::kOrigin + p, dir);
    return true;
}

TmGePlane& TmGePlane::reverseNormal() noexcept
{
    m_normal.negate();
    return *this;
}

TmGePlane& TmGePlane::transformBy(const TmGeMatrix3d& m) noexcept
{
    const TmGeVector3d a0(m.entry[0][0], m.entry[1][0], m.entry[2][0]);
    const TmGeVector3d a1(m.entry[0][1], m.entry[1][1], m.entry[2][1]);
    const TmGeVector3d a2(m.entry[0][2], m.entry[1][2], m.entry[2][2]);
    const double det = a0.dotProduct(a1.crossProduct(a2));
    // The cofactor matrix [a1 x a2, a2 x a0, a0 x a1] is det * A^-T: the normal's image without
    // an inversion, with the sign of det restoring the orientation.
    TmGeVector3d n = a1.crossProduct(a2) * m_normal.x + a2.crossProduct(a0) * m_normal.y
        + a0.crossProduct(a1) * m_normal.z;
    if (det < 0.0)
        n.negate();
    TmGePoint3d p = m_point;
    p.transformBy(m);
    (void)set(p, n);
    return *this;
}

bool TmGePlane::isEqualTo(const TmGePlane& plane, const TmGeTol& tol) const noexcept
{
    return m_point.isEqualTo(plane.m_point, tol) && m_normal.isEqualTo(plane.m_normal, tol);
}
