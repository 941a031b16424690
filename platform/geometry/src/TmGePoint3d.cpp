#include <geometry/TmGePoint3d.h>

#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePlane.h>

#include <cmath>

double TmGePoint3d::distanceTo(const TmGePoint3d& p) const noexcept
{
    return std::hypot(x - p.x, y - p.y, z - p.z);
}

bool TmGePoint3d::isEqualTo(const TmGePoint3d& p, const TmGeTol& tol) const noexcept
{
    return distanceTo(p) <= tol.equalPoint();
}

TmGePoint3d TmGePoint3d::orthoProject(const TmGePlane& plane) const noexcept
{
    return plane.closestPointTo(*this);
}

TmGePoint3d& TmGePoint3d::rotateBy(double angle, const TmGeVector3d& axis, const TmGePoint3d& center) noexcept
{
    return transformBy(TmGeMatrix3d::rotation(angle, axis, center));
}

TmGePoint3d& TmGePoint3d::scaleBy(double factor, const TmGePoint3d& center) noexcept
{
    return *this = center + (*this - center) * factor;
}

TmGePoint3d& TmGePoint3d::mirror(const TmGePlane& plane) noexcept
{
    return *this -= plane.normal() * (2.0 * plane.signedDistanceTo(*this));
}

TmGePoint3d& TmGePoint3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    const auto& e = m.entry;
    const double px = e[0][0] * x + e[0][1] * y + e[0][2] * z + e[0][3];
    const double py = e[1][0] * x + e[1][1] * y + e[1][2] * z + e[1][3];
    const double pz = e[2][0] * x + e[2][1] * y + e[2][2] * z + e[2][3];
    const double w = e[3][0] * x + e[3][1] * y + e[3][2] * z + e[3][3];
    // A point mapped to infinity (w == 0) has no finite image; it keeps the affine image.
    if (w != 1.0 && w != 0.0)
        return set(px / w, py / w, pz / w);
    return set(px, py, pz);
}
