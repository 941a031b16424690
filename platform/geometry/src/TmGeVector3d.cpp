#include <geometry/TmGeVector3d.h>

#include <geometry/TmGeMatrix3d.h>

#include <cmath>
#include <numbers>

double TmGeVector3d::length() const noexcept
{
    return std::hypot(x, y, z);
}

double TmGeVector3d::angleTo(const TmGeVector3d& v) const noexcept
{
    return std::atan2(crossProduct(v).length(), dotProduct(v));
}

double TmGeVector3d::angleTo(const TmGeVector3d& v, const TmGeVector3d& reference) const noexcept
{
    const TmGeVector3d c = crossProduct(v);
    double a = std::atan2(c.length(), dotProduct(v));
    if (c.dotProduct(reference) < 0.0)
        a = 2.0 * std::numbers::pi - a;
    return a >= 2.0 * std::numbers::pi ? 0.0 : a;
}

TmGeVector3d TmGeVector3d::perpVector() const noexcept
{
    // The arbitrary-axis rule of drawing exchange formats: near the z axis cross with y, else
    // with z. A z normal thus gets the x axis, and the threshold keeps the cross product well
    // conditioned.
    constexpr double kNearZ = 1.0 / 64.0;
    const double len = length();
    if (!(len > 0.0))
        return kXAxis;
    const TmGeVector3d unit = *this / len;
    const TmGeVector3d axis = (std::fabs(unit.x) < kNearZ && std::fabs(unit.y) < kNearZ) ? kYAxis : kZAxis;
    const TmGeVector3d p = axis.crossProduct(unit);
    return p / p.length();
}

TmGeVector3d TmGeVector3d::normal(const TmGeTol& tol) const noexcept
{
    const double len = length();
    if (!(len > tol.equalVector()))
        return *this;
    return {x / len, y / len, z / len};
}

TmGeVector3d& TmGeVector3d::normalize(const TmGeTol& tol) noexcept
{
    *this = normal(tol);
    return *this;
}

bool TmGeVector3d::isZeroLength(const TmGeTol& tol) const noexcept
{
    return length() <= tol.equalVector();
}

bool TmGeVector3d::isUnitLength(const TmGeTol& tol) const noexcept
{
    return std::fabs(length() - 1.0) <= tol.equalVector();
}

bool TmGeVector3d::isParallelTo(const TmGeVector3d& v, const TmGeTol& tol) const noexcept
{
    if (isZeroLength(tol) || v.isZeroLength(tol))
        return false;
    return normal(tol).crossProduct(v.normal(tol)).length() <= tol.equalVector();
}

bool TmGeVector3d::isCodirectionalTo(const TmGeVector3d& v, const TmGeTol& tol) const noexcept
{
    if (isZeroLength(tol) || v.isZeroLength(tol))
        return false;
    return (normal(tol) - v.normal(tol)).length() <= tol.equalVector();
}

bool TmGeVector3d::isPerpendicularTo(const TmGeVector3d& v, const TmGeTol& tol) const noexcept
{
    if (isZeroLength(tol) || v.isZeroLength(tol))
        return false;
    return std::fabs(normal(tol).dotProduct(v.normal(tol))) <= tol.equalVector();
}

bool TmGeVector3d::isEqualTo(const TmGeVector3d& v, const TmGeTol& tol) const noexcept
{
    return (*this - v).length() <= tol.equalVector();
}

TmGeVector3d& TmGeVector3d::rotateBy(double angle, const TmGeVector3d& axis) noexcept
{
    return transformBy(TmGeMatrix3d::rotation(angle, axis));
}

TmGeVector3d& TmGeVector3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    const auto& e = m.entry;
    return set(e[0][0] * x + e[0][1] * y + e[0][2] * z,
               e[1][0] * x + e[1][1] * y + e[1][2] * z,
               e[2][0] * x + e[2][1] * y + e[2][2] * z);
}
