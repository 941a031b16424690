#include <geometry/TmGeVector2d.h>

#include <geometry/TmGeMatrix2d.h>

#include <cmath>
#include <numbers>

double TmGeVector2d::length() const noexcept
{
    return std::hypot(x, y);
}

double TmGeVector2d::angle() const noexcept
{
    const double a = std::atan2(y, x);
    return a < 0.0 ? a + 2.0 * std::numbers::pi : a;
}

double TmGeVector2d::angleTo(const TmGeVector2d& v) const noexcept
{
    // atan2 of cross and dot keeps full accuracy near 0 and pi, unlike acos of the dot.
    return std::atan2(std::fabs(crossProduct(v)), dotProduct(v));
}

TmGeVector2d TmGeVector2d::normal(const TmGeTol& tol) const noexcept
{
    const double len = length();
    if (!(len > tol.equalVector()))
        return *this;
    return {x / len, y / len};
}

TmGeVector2d& TmGeVector2d::normalize(const TmGeTol& tol) noexcept
{
    *this = normal(tol);
    return *this;
}

bool TmGeVector2d::isZeroLength(const TmGeTol& tol) const noexcept
{
    return length() <= tol.equalVector();
}

bool TmGeVector2d::isUnitLength(const TmGeTol& tol) const noexcept
{
    return std::fabs(length() - 1.0) <= tol.equalVector();
}

bool TmGeVector2d::isParallelTo(const TmGeVector2d& v, const TmGeTol& tol) const noexcept
{
    if (isZeroLength(tol) || v.isZeroLength(tol))
        return false;
    return std::fabs(normal(tol).crossProduct(v.normal(tol))) <= tol.equalVector();
}

bool TmGeVector2d::isCodirectionalTo(const TmGeVector2d& v, const TmGeTol& tol) const noexcept
{
    if (isZeroLength(tol) || v.isZeroLength(tol))
        return false;
    return (normal(tol) - v.normal(tol)).length() <= tol.equalVector();
}

bool TmGeVector2d::isPerpendicularTo(const TmGeVector2d& v, const TmGeTol& tol) const noexcept
{
    if (isZeroLength(tol) || v.isZeroLength(tol))
        return false;
    return std::fabs(normal(tol).dotProduct(v.normal(tol))) <= tol.equalVector();
}

bool TmGeVector2d::isEqualTo(const TmGeVector2d& v, const TmGeTol& tol) const noexcept
{
    return (*this - v).length() <= tol.equalVector();
}

TmGeVector2d& TmGeVector2d::rotateBy(double angle) noexcept
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return set(c * x - s * y, s * x + c * y);
}

TmGeVector2d& TmGeVector2d::transformBy(const TmGeMatrix2d& m) noexcept
{
    return set(m.entry[0][0] * x + m.entry[0][1] * y, m.entry[1][0] * x + m.entry[1][1] * y);
}
