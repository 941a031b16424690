#include <geometry/TmGeLine3d.h>

#include <geometry/TmGeMatrix3d.h>

#include <cmath>

TmGeLine3d::TmGeLine3d() noexcept : m_direction(TmGeVector3d::kXAxis) {}

TmGeLine3d::TmGeLine3d(const TmGePoint3d& point, const TmGeVector3d& direction) noexcept
    : m_point(point), m_direction(direction)
{}

TmGeLine3d::TmGeLine3d(const TmGePoint3d& p1, const TmGePoint3d& p2) noexcept : m_point(p1), m_direction(p2 - p1) {}

TmGeLine3d& TmGeLine3d::set(const TmGePoint3d& point, const TmGeVector3d& direction) noexcept
{
    m_point = point;
    m_direction = direction;
    return *this;
}

TmGeLine3d& TmGeLine3d::set(const TmGePoint3d& p1, const TmGePoint3d& p2) noexcept
{
    return set(p1, p2 - p1);
}

Tmk::ErrorStatus TmGeLine3d::evaluate(double param, int numDeriv, TmGePoint3d& point,
                                      TmGeVector3d* derivs) const noexcept
{
    if (numDeriv < 0 || numDeriv > kMaxDerivative || (numDeriv > 0 && derivs == nullptr))
        return Tmk::ErrorStatus::eInvalidInput;
    point = m_point + m_direction * param;
    if (numDeriv >= 1)
        derivs[0] = m_direction;
    if (numDeriv >= 2)
        derivs[1] = TmGeVector3d::kIdentity;
    return Tmk::ErrorStatus::eOk;
}

double TmGeLine3d::length(double fromParam, double toParam, double) const noexcept
{
    return m_direction.length() * std::fabs(toParam - fromParam);
}

double TmGeLine3d::paramOf(const TmGePoint3d& point) const noexcept
{
    const double len2 = m_direction.lengthSqrd();
    if (!(len2 > 0.0))
        return 0.0;
    return (point - m_point).dotProduct(m_direction) / len2;
}

TmGePoint3d TmGeLine3d::closestPointTo(const TmGePoint3d& point) const noexcept
{
    return m_point + m_direction * paramOf(point);
}

double TmGeLine3d::distanceTo(const TmGePoint3d& point) const noexcept
{
    return point.distanceTo(closestPointTo(point));
}

bool TmGeLine3d::isOn(const TmGePoint3d& point, const TmGeTol& tol) const noexcept
{
    return distanceTo(point) <= tol.equalPoint();
}

bool TmGeLine3d::isParallelTo(const TmGeLine3d& line, const TmGeTol& tol) const noexcept
{
    return m_direction.isParallelTo(line.m_direction, tol);
}

bool TmGeLine3d::isPerpendicularTo(const TmGeLine3d& line, const TmGeTol& tol) const noexcept
{
    return m_direction.isPerpendicularTo(line.m_direction, tol);
}

bool TmGeLine3d::isColinearTo(const TmGeLine3d& line, const TmGeTol& tol) const noexcept
{
    return isParallelTo(line, tol) && isOn(line.m_point, tol) && line.isOn(m_point, tol);
}

bool TmGeLine3d::intersectWith(const TmGeLine3d& line, TmGePoint3d& point, const TmGeTol& tol) const noexcept
{
    if (m_direction.isZeroLength(tol) || line.m_direction.isZeroLength(tol) || isParallelTo(line, tol))
        return false;
    // Closest points of two skew lines: solve the 2x2 normal equations for both parameters.
    const TmGeVector3d& d1 = m_direction;
    const TmGeVector3d& d2 = line.m_direction;
    const TmGeVector3d r = m_point - line.m_point;
    const double a = d1.dotProduct(d1);
    const double b = d1.dotProduct(d2);
    const double c = d2.dotProduct(d2);
    const double d = d1.dotProduct(r);
    const double e = d2.dotProduct(r);
    const double denom = a * c - b * b;
    if (!(denom > 0.0))
        return false;
    const double s = (b * e - c * d) / denom;
    const double t = (a * e - b * d) / denom;
    const TmGePoint3d p1 = m_point + d1 * s;
    const TmGePoint3d p2 = line.m_point + d2 * t;
    if (!p1.isEqualTo(p2, tol))
        return false;
    point = p1 + (p2 - p1) * 0.5;
    return true;
}

Tmk::ErrorStatus TmGeLine3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    // Through the images of two points, so that a perspective matrix maps the line exactly.
    TmGePoint3d p1 = m_point;
    TmGePoint3d p2 = m_point + m_direction;
    p1.transformBy(m);
    p2.transformBy(m);
    set(p1, p2);
    return Tmk::ErrorStatus::eOk;
}

bool TmGeLine3d::isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& line = static_cast<const TmGeLine3d&>(other);
    return m_point.isEqualTo(line.m_point, tol) && m_direction.isEqualTo(line.m_direction, tol);
}

std::unique_ptr<TmGeCurve3d> TmGeLine3d::clone() const
{
    return std::make_unique<TmGeLine3d>(*this);
}
