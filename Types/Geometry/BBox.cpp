#include <Types/Geometry/BBox.h>

#include <Types/Geometry/internal/AxisBounds.h>

#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGeTol.h>

#include <boost/format.hpp>

#include <cmath>

namespace Kx {

// Constant initialisation: TmGeTol's default constructor is constexpr, so the value is in place
// before any static initialiser runs, whatever the order in which libraries start.
constinit const double g_boxTolerance = TmGeTol().equalPoint();

namespace {

constexpr unsigned s_axes = AxisBounds::s_axes<BBox>;

// The box tolerance is applied axis by axis and strictly: a distance of exactly the tolerance is
// out. Written as negated comparisons so that a NaN coordinate fails the test.

// `a` does not fall below `b` by the tolerance or more.
bool notBelow(const TmGePoint3d& a, const TmGePoint3d& b) noexcept
{
    for (unsigned axis = 0; axis < s_axes; ++axis) {
        if (!(a[axis] - b[axis] > -g_boxTolerance))
            return false;
    }
    return true;
}

// `a` does not stand out above `b` by the tolerance or more.
bool notAbove(const TmGePoint3d& a, const TmGePoint3d& b) noexcept
{
    for (unsigned axis = 0; axis < s_axes; ++axis) {
        if (!(a[axis] - b[axis] < g_boxTolerance))
            return false;
    }
    return true;
}

} // namespace

BBox::BBox(const TmGePoint3d& min, const TmGePoint3d& max) noexcept { set(min, max); }

void BBox::set(const TmGePoint3d& min, const TmGePoint3d& max) noexcept
{
    m_min = min;
    m_max = max;
    normalize();
}

void BBox::empty() noexcept { AxisBounds::makeEmpty(*this); }
void BBox::normalize() noexcept { AxisBounds::normalize(*this); }

TmGePoint3d BBox::midPt() const noexcept
{
    TmGePoint3d centre;
    if (isEmpty())
        return centre;
    // Halved before adding: min + max overflows for boxes near the largest double.
    for (unsigned axis = 0; axis < s_axes; ++axis)
        centre[axis] = 0.5 * m_min[axis] + 0.5 * m_max[axis];
    return centre;
}

TmGePoint3d BBox::size() const noexcept { return AxisBounds::size(*this); }

double BBox::area() const noexcept
{
    const TmGePoint3d extent = size();
    return 2.0 * (extent.x * extent.y + extent.y * extent.z + extent.z * extent.x);
}

double BBox::diameter() const noexcept { return std::sqrt(diameter2()); }
double BBox::diameter2() const noexcept { return size().asVector().lengthSqrd(); }

bool BBox::isOnePoint() const noexcept
{
    return m_min.x == m_max.x && m_min.y == m_max.y && m_min.z == m_max.z;
}

bool BBox::operator==(const BBox& other) const noexcept { return AxisBounds::sameBounds(*this, other); }

BBox& BBox::operator|=(const BBox& other) noexcept
{
    AxisBounds::unite(*this, other);
    return *this;
}

BBox& BBox::operator|=(const TmGePoint3d& point) noexcept
{
    AxisBounds::unite(*this, point);
    return *this;
}

BBox& BBox::operator&=(const BBox& other) noexcept
{
    if (isEmpty())
        return *this;
    if (other.isEmpty()) {
        empty();
        return *this;
    }
    AxisBounds::clip(*this, other);
    return *this;
}

bool BBox::contains(const BBox& other) const noexcept
{
    if (isEmpty() || other.isEmpty())
        return false;
    return notBelow(other.m_min, m_min) && notAbove(other.m_max, m_max);
}

bool BBox::contains(const TmGePoint3d& point) const noexcept
{
    if (isEmpty())
        return false;
    return notBelow(point, m_min) && notAbove(point, m_max);
}

bool BBox::intersects(const BBox& other) const noexcept
{
    if (isEmpty())
        return false;
    return notBelow(m_max, other.m_min) && notAbove(m_min, other.m_max);
}

bool BBox::within(const BBox& other) const noexcept { return other.contains(*this); }

void BBox::cornerPositions(TmGePoint3d* out) const noexcept
{
    out[0].set(m_min.x, m_min.y, m_min.z);
    out[1].set(m_max.x, m_min.y, m_min.z);
    out[2].set(m_max.x, m_max.y, m_min.z);
    out[3].set(m_min.x, m_max.y, m_min.z);
    out[4].set(m_max.x, m_max.y, m_max.z);
    out[5].set(m_min.x, m_min.y, m_max.z);
    out[6].set(m_max.x, m_min.y, m_max.z);
    out[7].set(m_min.x, m_max.y, m_max.z);
}

void BBox::inflate(const TmGePoint3d& delta) noexcept { AxisBounds::inflate(*this, delta); }

void BBox::scale(double factor) noexcept
{
    if (isEmpty())
        return;
    const TmGePoint3d centre = midPt();
    for (unsigned axis = 0; axis < s_axes; ++axis) {
        m_min[axis] = centre[axis] + (m_min[axis] - centre[axis]) * factor;
        m_max[axis] = centre[axis] + (m_max[axis] - centre[axis]) * factor;
    }
    normalize();
}

void BBox::translate(const TmGePoint3d& delta) noexcept { AxisBounds::translate(*this, delta); }

BBox BBox::transformedBy(const TmGeMatrix3d& matrix) const noexcept
{
    BBox result;
    if (isEmpty())
        return result;
    TmGePoint3d corners[8];
    cornerPositions(corners);
    for (const TmGePoint3d& corner : corners)
        result |= matrix * corner;
    return result;
}

void BBox::getOriginalExtent(TmGePoint3d& min, TmGePoint3d& max) const noexcept
{
    min = m_min;
    max = m_max;
}

std::wstring BBox::toString() const
{
    return (boost::wformat(L"(min: %1%, %2%, %3% max:  %4%, %5%, %6%)") % m_min.x % m_min.y % m_min.z % m_max.x
        % m_max.y % m_max.z)
        .str();
}

} // namespace Kx
