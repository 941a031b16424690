#pragma once

#include <Types/Geometry/FloatComponents.h>

#include <geometry/TmGeVector3d.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A displacement in space, kept in single precision: the compact copy of a TmGeVector3d that the
// data model stores. All arithmetic is componentwise in float.
class Vector3f : public FloatXYZ<Vector3f> {
public:
    Vector3f() noexcept = default;
    Vector3f(float x, float y, float z) noexcept : FloatXYZ(x, y, z) {}
    // Each component rounded to the nearest float. Explicit, because precision is lost.
    explicit Vector3f(const TmGeVector3d& vector) noexcept;

    [[nodiscard]] Vector3f operator+(const Vector3f& other) const noexcept;
    [[nodiscard]] Vector3f operator-(const Vector3f& other) const noexcept;
    [[nodiscard]] Vector3f operator-() const noexcept;
    Vector3f& operator+=(const Vector3f& other) noexcept;
    Vector3f& operator-=(const Vector3f& other) noexcept;

    // Ordered by the float sum (y + x) + z, in that order, not by length nor lexicographically;
    // different vectors of equal sum are unordered. Stored sort orders rely on it.
    [[nodiscard]] bool operator<(const Vector3f& other) const noexcept;

    // Each component widened exactly to double.
    [[nodiscard]] TmGeVector3d makeGelib() const noexcept;

private:
    friend struct ValueTraits<Vector3f>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Vector3f>;
extern template class FloatXY<Vector3f>;
} // namespace Kx
