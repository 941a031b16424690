#include <Types/Geometry/Vector2f.h>

#include <Types/Geometry/internal/FloatTuple.h>

#include <functional>

namespace Kx {

Vector2f::Vector2f(const TmGeVector2d& vector) noexcept { FloatTuple::assignRounded(*this, vector); }

Vector2f Vector2f::operator+(const Vector2f& other) const noexcept
{
    return FloatTuple::combined<Vector2f>(*this, other, std::plus<float>());
}

Vector2f Vector2f::operator-(const Vector2f& other) const noexcept
{
    return FloatTuple::combined<Vector2f>(*this, other, std::minus<float>());
}

Vector2f Vector2f::operator-() const noexcept { return FloatTuple::negated<Vector2f>(*this); }

Vector2f& Vector2f::operator+=(const Vector2f& other) noexcept
{
    FloatTuple::combine(*this, other, std::plus<float>());
    return *this;
}

Vector2f& Vector2f::operator-=(const Vector2f& other) noexcept
{
    FloatTuple::combine(*this, other, std::minus<float>());
    return *this;
}

bool Vector2f::operator<(const Vector2f& other) const noexcept { return FloatTuple::sumLess(*this, other); }
TmGeVector2d Vector2f::makeGelib() const noexcept { return FloatTuple::widened<TmGeVector2d>(*this); }

} // namespace Kx
