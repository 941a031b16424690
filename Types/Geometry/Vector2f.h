#pragma once

#include <Types/Geometry/FloatComponents.h>

#include <geometry/TmGeVector2d.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A displacement in the plane, kept in single precision: the compact copy of a TmGeVector2d that
// the data model stores. All arithmetic is componentwise in float.
class Vector2f : public FloatXY<Vector2f> {
public:
    Vector2f() noexcept = default;
    Vector2f(float x, float y) noexcept : FloatXY(x, y) {}
    // Each component rounded to the nearest float. Explicit, because precision is lost.
    explicit Vector2f(const TmGeVector2d& vector) noexcept;

    [[nodiscard]] Vector2f operator+(const Vector2f& other) const noexcept;
    [[nodiscard]] Vector2f operator-(const Vector2f& other) const noexcept;
    [[nodiscard]] Vector2f operator-() const noexcept;
    Vector2f& operator+=(const Vector2f& other) noexcept;
    Vector2f& operator-=(const Vector2f& other) noexcept;

    // Ordered by the float sum y + x, not by length nor lexicographically; different vectors of
    // equal sum are unordered. Stored sort orders rely on it.
    [[nodiscard]] bool operator<(const Vector2f& other) const noexcept;

    // Each component widened exactly to double.
    [[nodiscard]] TmGeVector2d makeGelib() const noexcept;

private:
    friend struct ValueTraits<Vector2f>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Vector2f>;
extern template class FloatXY<Vector2f>;
} // namespace Kx
