#include <Types/Geometry/Point2f.h>

#include <Types/Geometry/internal/FloatTuple.h>

#include <functional>

namespace Kx {

Point2f::Point2f(const TmGePoint2d& point) noexcept { FloatTuple::assignRounded(*this, point); }

Vector2f Point2f::operator-(const Point2f& other) const noexcept
{
    return FloatTuple::combined<Vector2f>(*this, other, std::minus<float>());
}

Point2f Point2f::operator+(const Vector2f& offset) const noexcept
{
    return FloatTuple::combined<Point2f>(*this, offset, std::plus<float>());
}

Point2f Point2f::operator-(const Vector2f& offset) const noexcept
{
    return FloatTuple::combined<Point2f>(*this, offset, std::minus<float>());
}

Point2f& Point2f::operator+=(const Vector2f& offset) noexcept
{
    FloatTuple::combine(*this, offset, std::plus<float>());
    return *this;
}

Point2f& Point2f::operator-=(const Vector2f& offset) noexcept
{
    FloatTuple::combine(*this, offset, std::minus<float>());
    return *this;
}

Vector2f Point2f::asVector() const noexcept { return FloatTuple::converted<Vector2f>(*this); }

bool Point2f::operator<(const Point2f& other) const noexcept { return FloatTuple::sumLess(*this, other); }
TmGePoint2d Point2f::makeGelib() const noexcept { return FloatTuple::widened<TmGePoint2d>(*this); }

} // namespace Kx
