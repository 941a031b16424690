#pragma once

#include <Types/Geometry/ValueType.h>

#include <string>

namespace Kx {

// The components of the single-precision tuples and what every one of them has: accessors, the
// tolerant equality and the text form. FloatXY is the plane's (Float2, Point2f, Vector2f),
// FloatXYZ space's (Float3, Point3f, Vector3f). The components are public fields, the names the
// data model stores them under. Arithmetic and order stay with each type: they differ.
template <class Derived>
class FloatXY : public ValueType<Derived> {
public:
    [[nodiscard]] float x() const noexcept { return m_x; }
    [[nodiscard]] float y() const noexcept { return m_y; }
    void x(float value) noexcept { m_x = value; }
    void y(float value) noexcept { m_y = value; }
    void set(float x, float y) noexcept
    {
        m_x = x;
        m_y = y;
    }

    // Equal when every component differs by less than 1e-6, absolute. NaN and infinite components
    // never compare equal, not even to themselves.
    [[nodiscard]] bool operator==(const FloatXY& other) const noexcept;
    [[nodiscard]] bool operator!=(const FloatXY& other) const noexcept { return !(*this == other); }

    // "(x, y)" in the plane, "(x: x, y: y, z: z)" in space, each float with six significant digits,
    // e.g. "(0.1, -2.5e+07)".
    [[nodiscard]] std::wstring toString() const;

    float m_x = 0.0f;
    float m_y = 0.0f;

protected:
    FloatXY() noexcept = default;
    FloatXY(float x, float y) noexcept : m_x(x), m_y(y) {}
};

template <class Derived>
class FloatXYZ : public FloatXY<Derived> {
public:
    using FloatXY<Derived>::x;
    using FloatXY<Derived>::y;
    [[nodiscard]] float z() const noexcept { return m_z; }
    void z(float value) noexcept { m_z = value; }
    void set(float x, float y, float z) noexcept
    {
        FloatXY<Derived>::set(x, y);
        m_z = z;
    }

    float m_z = 0.0f;

protected:
    FloatXYZ() noexcept = default;
    FloatXYZ(float x, float y, float z) noexcept : FloatXY<Derived>(x, y), m_z(z) {}
};

} // namespace Kx
