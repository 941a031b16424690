#pragma once

#include <Types/Geometry/ValueType.h>
#include <Types/Geometry/Vector2f.h>

#include <geometry/TmGePoint2d.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A position in the plane, kept in single precision: the compact copy of a TmGePoint2d that the
// data model stores. Points and vectors combine as in the geometry kernel: point - point is a
// vector, point +/- vector is a point. All arithmetic is componentwise in float.
class Point2f : public ValueType<Point2f> {
public:
    Point2f() noexcept = default;
    Point2f(float x, float y) noexcept : m_x(x), m_y(y) {}
    // Each component rounded to the nearest float. Explicit, because precision is lost.
    explicit Point2f(const TmGePoint2d& point) noexcept;

    [[nodiscard]] float x() const noexcept { return m_x; }
    [[nodiscard]] float y() const noexcept { return m_y; }
    void x(float value) noexcept { m_x = value; }
    void y(float value) noexcept { m_y = value; }
    void set(float x, float y) noexcept;

    // The displacement from `other` to this point.
    [[nodiscard]] Vector2f operator-(const Point2f& other) const noexcept;
    [[nodiscard]] Point2f operator+(const Vector2f& offset) const noexcept;
    [[nodiscard]] Point2f operator-(const Vector2f& offset) const noexcept;
    Point2f& operator+=(const Vector2f& offset) noexcept;
    Point2f& operator-=(const Vector2f& offset) noexcept;
    // The displacement from the origin.
    [[nodiscard]] Vector2f asVector() const noexcept;

    // Equal when every component differs by less than 1e-6, absolute. NaN and infinite components
    // never compare equal, not even to themselves.
    [[nodiscard]] bool operator==(const Point2f& other) const noexcept;
    [[nodiscard]] bool operator!=(const Point2f& other) const noexcept { return !(*this == other); }
    // Ordered by the float sum y + x, not lexicographically; different points of equal sum are
    // unordered. Stored sort orders rely on it.
    [[nodiscard]] bool operator<(const Point2f& other) const noexcept;

    // Each component widened exactly to double.
    [[nodiscard]] TmGePoint2d makeGelib() const noexcept;

    // "(x, y)", each float with six significant digits.
    [[nodiscard]] std::wstring toString() const;

    float m_x = 0.0f;
    float m_y = 0.0f;

private:
    friend struct ValueTraits<Point2f>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Point2f>;
} // namespace Kx
