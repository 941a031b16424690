#pragma once

// Points and vectors of one dimension are the same list of doubles to every encoding: the JSON and
// text conversions see them only through these, so a vector is always written and read exactly
// like the point with the same coordinates.

#include <array>
#include <cstddef>

namespace Kx::Types::GeCoordinates {

template <class T>
inline constexpr std::size_t s_dimension = requires(const T& value) { value.z; } ? 3 : 2;

template <class T>
using Array = std::array<double, s_dimension<T>>;

template <class T>
[[nodiscard]] constexpr Array<T> toArray(const T& value) noexcept
{
    Array<T> coordinates{};
    for (unsigned i = 0; i < coordinates.size(); ++i) {
        coordinates[i] = value[i];
    }
    return coordinates;
}

template <class T>
[[nodiscard]] constexpr T fromArray(const Array<T>& coordinates) noexcept
{
    T value;
    for (unsigned i = 0; i < coordinates.size(); ++i) {
        value[i] = coordinates[i];
    }
    return value;
}

} // namespace Kx::Types::GeCoordinates
