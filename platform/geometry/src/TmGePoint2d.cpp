#include <geometry/TmGePoint2d.h>

#include <geometry/TmGeMatrix2d.h>

#include <cmath>

double TmGePoint2d::distanceTo(const TmGePoint2d& p) const noexcept
{
    return std::hypot(x - p.x, y - p.y);
}

bool TmGePoint2d::isEqualTo(const TmGePoint2d& p, const TmGeTol& tol) const noexcept
{
    return distanceTo(p) <= tol.equalPoint();
}

TmGePoint2d& TmGePoint2d::rotateBy(double angle, const TmGePoint2d& center) noexcept
{
    return transformBy(TmGeMatrix2d::rotation(angle, center));
}

TmGePoint2d& TmGePoint2d::scaleBy(double factor, const TmGePoint2d& center) noexcept
{
    return *this = center + (*this - center) * factor;
}

TmGePoint2d& TmGePoint2d::transformBy(const TmGeMatrix2d& m) noexcept
{
    const auto& e = m.entry;
    const double px = e[0][0] * x + e[0][1] * y + e[0][2];
    const double py = e[1][0] * x + e[1][1] * y + e[1][2];
    const double w = e[2][0] * x + e[2][1] * y + e[2][2];
    if (w != 1.0 && w != 0.0)
        return set(px / w, py / w);
    return set(px, py);
}
