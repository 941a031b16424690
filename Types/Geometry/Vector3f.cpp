#include <Types/Geometry/Vector3f.h>

#include <Types/Geometry/internal/FloatTuple.h>

#include <functional>

namespace Kx {

Vector3f::Vector3f(const TmGeVector3d& vector) noexcept { FloatTuple::assignRounded(*this, vector); }

Vector3f Vector3f::operator+(const Vector3f& other) const noexcept
{
    return FloatTuple::combined<Vector3f>(*this, other, std::plus<float>());
}

Vector3f Vector3f::operator-(const Vector3f& other) const noexcept
{
    return FloatTuple::combined<Vector3f>(*this, other, std::minus<float>());
}

Vector3f Vector3f::operator-() const noexcept { return FloatTuple::negated<Vector3f>(*this); }

Vector3f& Vector3f::operator+=(const Vector3f& other) noexcept
{
    FloatTuple::combine(*this, other, std::plus<float>());
    return *this;
}

Vector3f& Vector3f::operator-=(const Vector3f& other) noexcept
{
    FloatTuple::combine(*this, other, std::minus<float>());
    return *this;
}

bool Vector3f::operator<(const Vector3f& other) const noexcept { return FloatTuple::sumLess(*this, other); }
TmGeVector3d Vector3f::makeGelib() const noexcept { return FloatTuple::widened<TmGeVector3d>(*this); }

} // namespace Kx
