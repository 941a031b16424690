#include "Types/Geometry/ValueMetaTypes.h"

#include <array>

namespace Kx {

namespace {

template <class... T>
struct TypeList {};

// Every value type this library registers, in start-up order. A new type is added here and
// nowhere else; the registry-wide tests iterate the same list.
using RegisteredValueTypes = TypeList<Point2, Size2, Rect2, Border4, Color, GlobalizedString>;

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
template class ValueType<Color>;
template class ValueType<GlobalizedString>;

} // namespace Kx
