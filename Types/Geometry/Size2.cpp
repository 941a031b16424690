#include <Types/Geometry/Size2.h>

#include <Types/Geometry/WrappingInt.h>

#include <boost/format.hpp>

#include <cmath>

namespace Kx {

void Size2::size(std::int32_t newWidth, std::int32_t newHeight) noexcept
{
    width = newWidth;
    height = newHeight;
}

Size2 Size2::operator+(const Size2& other) const noexcept
{
    return Size2(wrapping::add(width, other.width), wrapping::add(height, other.height));
}

Size2 Size2::operator-(const Size2& other) const noexcept
{
    return Size2(wrapping::sub(width, other.width), wrapping::sub(height, other.height));
}

Size2& Size2::operator+=(const Size2& other) noexcept { return *this = *this + other; }
Size2& Size2::operator-=(const Size2& other) noexcept { return *this = *this - other; }

Size2 Size2::operator+(const Border4& border) const noexcept
{
    return Size2(wrapping::add(width, wrapping::add(border.left, border.right)),
        wrapping::add(height, wrapping::add(border.top, border.bottom)));
}

Size2 Size2::operator-(const Border4& border) const noexcept
{
    return Size2(wrapping::sub(width, wrapping::add(border.left, border.right)),
        wrapping::sub(height, wrapping::add(border.top, border.bottom)));
}

Size2& Size2::operator+=(const Border4& border) noexcept { return *this = *this + border; }
Size2& Size2::operator-=(const Border4& border) noexcept { return *this = *this - border; }

Point2 Size2::operator+(const Point2& point) const noexcept
{
    return Point2(wrapping::add(width, point.x), wrapping::add(height, point.y));
}

Point2 Size2::operator-(const Point2& point) const noexcept
{
    return Point2(wrapping::sub(width, point.x), wrapping::sub(height, point.y));
}

Size2 Size2::operator-() const noexcept { return Size2(wrapping::neg(width), wrapping::neg(height)); }

bool Size2::operator<(const Size2& other) const noexcept
{
    return wrapping::mul(width, height) < wrapping::mul(other.width, other.height);
}

double Size2::diagonal() const noexcept
{
    const double widthSquared = wrapping::mul(width, width);
    const double heightSquared = wrapping::mul(height, height);
    return std::sqrt(widthSquared + heightSquared);
}

std::wstring Size2::toString() const { return (boost::wformat(L"(%1%, %2%)") % width % height).str(); }

} // namespace Kx
