#include <Types/Geometry/Point3f.h>

#include <Types/Geometry/internal/FloatTuple.h>

#include <base/Strings.h>

#include <boost/lexical_cast.hpp>

#include <functional>
#include <typeinfo>
#include <vector>

namespace Kx {

Point3f::Point3f(const TmGePoint3d& point) noexcept { FloatTuple::assignRounded(*this, point); }

Vector3f Point3f::operator-(const Point3f& other) const noexcept
{
    return FloatTuple::combined<Vector3f>(*this, other, std::minus<float>());
}

Point3f Point3f::operator+(const Vector3f& offset) const noexcept
{
    return FloatTuple::combined<Point3f>(*this, offset, std::plus<float>());
}

Point3f Point3f::operator-(const Vector3f& offset) const noexcept
{
    return FloatTuple::combined<Point3f>(*this, offset, std::minus<float>());
}

Point3f& Point3f::operator+=(const Vector3f& offset) noexcept
{
    FloatTuple::combine(*this, offset, std::plus<float>());
    return *this;
}

Point3f& Point3f::operator-=(const Vector3f& offset) noexcept
{
    FloatTuple::combine(*this, offset, std::minus<float>());
    return *this;
}

Vector3f Point3f::asVector() const noexcept { return FloatTuple::converted<Vector3f>(*this); }


// Written with < and > rather than !=, so that a NaN component counts as a tie and the next
// component decides.
bool Point3f::operator<(const Point3f& other) const noexcept
{
    if (m_x < other.m_x)
        return true;
    if (m_x > other.m_x)
        return false;
    if (m_y < other.m_y)
        return true;
    if (m_y > other.m_y)
        return false;
    return m_z < other.m_z;
}

TmGePoint3d Point3f::makeGelib() const noexcept { return FloatTuple::widened<TmGePoint3d>(*this); }

Point3f Point3f::fromString(const std::wstring& text)
{
    std::vector<std::wstring> items;
    if (!Strings::ungroupStrings(text, items) || items.size() != 3) {
        throw std::bad_cast();
    }
    return Point3f(boost::lexical_cast<float>(items[0]), boost::lexical_cast<float>(items[1]),
        boost::lexical_cast<float>(items[2]));
}

} // namespace Kx
