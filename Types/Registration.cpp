#include "Types/Geometry/ValueMetaTypes.h"
#include "Types/GeLib/GeMetaTypes.h"

#include <array>

namespace Kx {

namespace {

template <class... T>
struct TypeList {};

// Every value type this library registers, in start-up order: the library's own value types, then
// the geometry kernel's. A new type is added here and nowhere else.
using RegisteredValueTypes = TypeList<Point2, Size2, Rect2, Border4, Float2, Float3, Point2f, Point3f, Vector2f,
    Vector3f, BRect, BBox, Color, GlobalizedString, TmGePoint2d,
    TmGePoint3d, TmGeVector2d, TmGeVector3d, TmGeMatrix2d, TmGeMatrix3d, TmGeLine3d, TmGeLineSeg3d, TmGePlane,
    TmGeBoundedPlane, TmGeCircArc2d, TmGeCircArc3d, TmGeEllipArc2d, TmGeEllipArc3d, TmGeNurbCurve2d, TmGeNurbCurve3d,
    TmGePolyline3d, TmGeCurve3dVec>;

template <class... T>
constexpr bool identifiersAreUnique(TypeList<T...>)
{
    constexpr std::array<std::string_view, sizeof...(T)> ids{ValueTraits<T>::id...};
    for (std::size_t i = 0; i < ids.size(); ++i)
        for (std::size_t j = i + 1; j < ids.size(); ++j)
            if (ids[i] == ids[j])
                return false;
    return true;
}
static_assert(identifiersAreUnique(RegisteredValueTypes{}), "two value types share a meta type identifier");

template <class... T>
bool registerAll(TypeList<T...>)
{
    (registerValueType<T>(), ...);
    return true;
}

template <class... T>
std::vector<std::string_view> namesOf(TypeList<T...>)
{
    return {ValueTraits<T>::name...};
}

// Runs when the library is loaded.
const bool s_registered = registerAll(RegisteredValueTypes{});

} // namespace

const std::vector<std::string_view>& registeredValueTypeNames()
{
    static const auto names = namesOf(RegisteredValueTypes{});
    return names;
}

template class ValueType<Point2>;
template class ValueType<Size2>;
template class ValueType<Rect2>;
template class ValueType<Border4>;
template class ValueType<Float2>;
template class ValueType<Float3>;
template class ValueType<Point2f>;
template class ValueType<Point3f>;
template class ValueType<Vector2f>;
template class ValueType<Vector3f>;
template class ValueType<BRect>;
template class ValueType<BBox>;
template class ValueType<Color>;
template class ValueType<GlobalizedString>;

} // namespace Kx
