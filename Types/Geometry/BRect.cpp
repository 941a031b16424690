#include <Types/Geometry/BRect.h>

#include <Types/Geometry/internal/AxisBounds.h>

#include <boost/format.hpp>

namespace Kx {

BRect::BRect(const TmGePoint2d& min, const TmGePoint2d& max) noexcept { set(min, max); }

BRect::BRect(const TmGePoint2d& centre, const double& halfSize) noexcept
    : m_min(centre.x - halfSize, centre.y - halfSize), m_max(centre.x + halfSize, centre.y + halfSize)
{
    normalize();
}

void BRect::set(const TmGePoint2d& min, const TmGePoint2d& max) noexcept
{
    m_min = min;
    m_max = max;
    normalize();
}

void BRect::empty() noexcept { AxisBounds::makeEmpty(*this); }
void BRect::normalize() noexcept { AxisBounds::normalize(*this); }

TmGePoint2d BRect::size() const noexcept { return AxisBounds::size(*this); }
double BRect::width() const noexcept { return size().x; }
double BRect::height() const noexcept { return size().y; }

double BRect::area() const noexcept
{
    const TmGePoint2d extent = size();
    return extent.x * extent.y;
}

bool BRect::operator==(const BRect& other) const noexcept { return AxisBounds::sameBounds(*this, other); }

BRect& BRect::operator|=(const BRect& other) noexcept
{
    AxisBounds::unite(*this, other);
    return *this;
}

BRect& BRect::operator|=(const TmGePoint2d& point) noexcept
{
    AxisBounds::unite(*this, point);
    return *this;
}

BRect& BRect::operator&=(const BRect& other) noexcept
{
    AxisBounds::clip(*this, other);
    return *this;
}

bool BRect::contains(const BRect& other) const noexcept
{
    if (isEmpty() || other.isEmpty())
        return false;
    return other.m_min.x >= m_min.x && other.m_min.y >= m_min.y && other.m_max.x <= m_max.x
        && other.m_max.y <= m_max.y;
}

bool BRect::contains(const TmGePoint2d& point) const noexcept
{
    if (isEmpty())
        return false;
    return point.x >= m_min.x && point.y >= m_min.y && point.x <= m_max.x && point.y <= m_max.y;
}

bool BRect::intersects(const BRect& other) const noexcept
{
    if (isEmpty())
        return false;
    return m_max.x >= other.m_min.x && m_max.y >= other.m_min.y && other.m_max.x >= m_min.x
        && other.m_max.y >= m_min.y;
}

bool BRect::within(const BRect& other) const noexcept { return other.contains(*this); }

void BRect::inflate(const TmGePoint2d& delta) noexcept { AxisBounds::inflate(*this, delta); }
void BRect::translate(const TmGePoint2d& delta) noexcept { AxisBounds::translate(*this, delta); }

std::wstring BRect::toString() const
{
    return (boost::wformat(L"(min: %1%, %2% max:  %3%, %4%)") % m_min.x % m_min.y % m_max.x % m_max.y).str();
}

} // namespace Kx
