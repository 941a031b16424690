#pragma once

#include <Types/Geometry/ValueType.h>

#include <geometry/TmGeVector2d.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A displacement in the plane, kept in single precision: the compact copy of a TmGeVector2d that
// the data model stores. All arithmetic is componentwise in float.
class Vector2f : public ValueType<Vector2f> {
public:
    Vector2f() noexcept = default;
    Vector2f(float x, float y) noexcept : m_x(x), m_y(y) {}
    // Each component rounded to the nearest float. Explicit, because precision is lost.
    explicit Vector2f(const TmGeVector2d& vector) noexcept;

    [[nodiscard]] float x() const noexcept { return m_x; }
    [[nodiscard]] float y() const noexcept { return m_y; }
    void x(float value) noexcept { m_x = value; }
    void y(float value) noexcept { m_y = value; }
    void set(float x, float y) noexcept;

    [[nodiscard]] Vector2f operator+(const Vector2f& other) const noexcept;
    [[nodiscard]] Vector2f operator-(const Vector2f& other) const noexcept;
    [[nodiscard]] Vector2f operator-() const noexcept;
    Vector2f& operator+=(const Vector2f& other) noexcept;
    Vector2f& operator-=(const Vector2f& other) noexcept;

    // Equal when every component differs by less than 1e-6, absolute. NaN and infinite components
    // never compare equal, not even to themselves.
    [[nodiscard]] bool operator==(const Vector2f& other) const noexcept;
    [[nodiscard]] bool operator!=(const Vector2f& other) const noexcept { return !(*this == other); }
    // Ordered by the float sum y + x, not by length nor lexicographically; different vectors of
    // equal sum are unordered. Stored sort orders rely on it.
    [[nodiscard]] bool operator<(const Vector2f& other) const noexcept;

    // Each component widened exactly to double.
    [[nodiscard]] TmGeVector2d makeGelib() const noexcept;

    // "(x, y)", each float with six significant digits.
    [[nodiscard]] std::wstring toString() const;

    float m_x = 0.0f;
    float m_y = 0.0f;

private:
    friend struct ValueTraits<Vector2f>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Vector2f>;
} // namespace Kx
