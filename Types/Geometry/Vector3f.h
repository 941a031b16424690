#pragma once

#include <Types/Geometry/ValueType.h>

#include <geometry/TmGeVector3d.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A displacement in space, kept in single precision: the compact copy of a TmGeVector3d that the
// data model stores. All arithmetic is componentwise in float.
class Vector3f : public ValueType<Vector3f> {
public:
    Vector3f() noexcept = default;
    Vector3f(float x, float y, float z) noexcept : m_x(x), m_y(y), m_z(z) {}
    // Each component rounded to the nearest float. Explicit, because precision is lost.
    explicit Vector3f(const TmGeVector3d& vector) noexcept;

    [[nodiscard]] float x() const noexcept { return m_x; }
    [[nodiscard]] float y() const noexcept { return m_y; }
    [[nodiscard]] float z() const noexcept { return m_z; }
    void x(float value) noexcept { m_x = value; }
    void y(float value) noexcept { m_y = value; }
    void z(float value) noexcept { m_z = value; }
    void set(float x, float y, float z) noexcept;

    [[nodiscard]] Vector3f operator+(const Vector3f& other) const noexcept;
    [[nodiscard]] Vector3f operator-(const Vector3f& other) const noexcept;
    [[nodiscard]] Vector3f operator-() const noexcept;
    Vector3f& operator+=(const Vector3f& other) noexcept;
    Vector3f& operator-=(const Vector3f& other) noexcept;

    // Equal when every component differs by less than 1e-6, absolute. NaN and infinite components
    // never compare equal, not even to themselves.
    [[nodiscard]] bool operator==(const Vector3f& other) const noexcept;
    [[nodiscard]] bool operator!=(const Vector3f& other) const noexcept { return !(*this == other); }
    // Ordered by the float sum (y + x) + z, in that order, not by length nor lexicographically;
    // different vectors of equal sum are unordered. Stored sort orders rely on it.
    [[nodiscard]] bool operator<(const Vector3f& other) const noexcept;

    // Each component widened exactly to double.
    [[nodiscard]] TmGeVector3d makeGelib() const noexcept;

    // "(x: x, y: y, z: z)", each float with six significant digits.
    [[nodiscard]] std::wstring toString() const;

    float m_x = 0.0f;
    float m_y = 0.0f;
    float m_z = 0.0f;

private:
    friend struct ValueTraits<Vector3f>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Vector3f>;
} // namespace Kx
