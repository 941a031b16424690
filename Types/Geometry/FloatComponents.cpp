#include <Types/Geometry/FloatComponents.h>

#include <Types/Geometry/Float2.h>
#include <Types/Geometry/Float3.h>
#include <Types/Geometry/Point2f.h>
#include <Types/Geometry/Point3f.h>
#include <Types/Geometry/Vector2f.h>
#include <Types/Geometry/Vector3f.h>
#include <Types/Geometry/internal/FloatTuple.h>

namespace Kx {

template <class Derived>
bool FloatXY<Derived>::operator==(const FloatXY& other) const noexcept
{
    return FloatTuple::equal(static_cast<const Derived&>(*this), static_cast<const Derived&>(other));
}

template <class Derived>
std::wstring FloatXY<Derived>::toString() const
{
    return FloatTuple::text(static_cast<const Derived&>(*this));
}

template class FloatXY<Float2>;
template class FloatXY<Point2f>;
template class FloatXY<Vector2f>;
template class FloatXY<Float3>;
template class FloatXY<Point3f>;
template class FloatXY<Vector3f>;

} // namespace Kx
