#include <geometry/TmGeBoundedPlane.h>

#include <geometry/TmGeMatrix3d.h>

#include <cmath>

TmGeBoundedPlane::TmGeBoundedPlane() noexcept = default;

TmGeBoundedPlane::TmGeBoundedPlane(const TmGePoint3d& origin, const TmGeVector3d& uVector,
                                   const TmGeVector3d& vVector) noexcept
    : m_origin(origin), m_u(uVector), m_v(vVector)
{}

TmGeBoundedPlane& TmGeBoundedPlane::set(const TmGePoint3d& origin, const TmGeVector3d& uVector,
                                        const TmGeVector3d& vVector) noexcept
{
    m_origin = origin;
    m_u = uVector;
    m_v = vVector;
    return *this;
}

TmGeVector3d TmGeBoundedPlane::normal(const TmGeTol& tol) const noexcept
{
    if (isDegenerate(tol))
        return TmGeVector3d::kIdentity;
    return m_u.crossProduct(m_v).normal(tol);
}

bool TmGeBoundedPlane::isDegenerate(const TmGeTol& tol) const noexcept
{
    return m_u.isZeroLength(tol) || m_v.isZeroLength(tol) || m_u.isParallelTo(m_v, tol);
}

TmGePlane TmGeBoundedPlane::plane() const noexcept
{
    // The constructor gives the XY plane for degenerate edges.
    return {m_origin, m_u, m_v};
}

TmGePoint3d TmGeBoundedPlane::evalPoint(double s, double t) const noexcept
{
    return m_origin + m_u * s + m_v * t;
}

void TmGeBoundedPlane::getCorners(TmGePoint3d corners[4]) const noexcept
{
    corners[0] = m_origin;
    corners[1] = m_origin + m_u;
    corners[2] = m_origin + m_u + m_v;
    corners[3] = m_origin + m_v;
}

double TmGeBoundedPlane::area() const noexcept
{
    return m_u.crossProduct(m_v).length();
}

bool TmGeBoundedPlane::isOn(const TmGePoint3d& point, const TmGeTol& tol) const noexcept
{
    if (isDegenerate(tol))
        return false;
    const TmGePlane carrier = plane();
    if (!carrier.isOn(point, tol))
        return false;
    // Coordinates (s, t) of the projected point in the edge basis, from the 2x2 Gram system.
    const TmGeVector3d r = carrier.closestPointTo(point) - m_origin;
    const double uu = m_u.dotProduct(m_u);
    const double uv = m_u.dotProduct(m_v);
    const double vv = m_v.dotProduct(m_v);
    const double ru = r.dotProduct(m_u);
    const double rv = r.dotProduct(m_v);
    const double det = uu * vv - uv * uv;
    const double s = (ru * vv - rv * uv) / det;
    const double t = (rv * uu - ru * uv) / det;
    // The tolerance is a distance; turn it into a fraction of each edge.
    const double ts = tol.equalPoint() / std::sqrt(uu);
    const double tt = tol.equalPoint() / std::sqrt(vv);
    return s >= -ts && s <= 1.0 + ts && t >= -tt && t <= 1.0 + tt;
}

TmGeBoundedPlane& TmGeBoundedPlane::transformBy(const TmGeMatrix3d& m) noexcept
{
    TmGePoint3d origin = m_origin;
    TmGePoint3d uEnd = m_origin + m_u;
    TmGePoint3d vEnd = m_origin + m_v;
    origin.transformBy(m);
    uEnd.transformBy(m);
    vEnd.transformBy(m);
    return set(origin, uEnd - origin, vEnd - origin);
}

bool TmGeBoundedPlane::isEqualTo(const TmGeBoundedPlane& other, const TmGeTol& tol) const noexcept
{
    return m_origin.isEqualTo(other.m_origin, tol) && m_u.isEqualTo(other.m_u, tol) && m_v.isEqualTo(other.m_v, tol);
}
