#pragma once

#include <Types/Geometry/FloatComponents.h>
#include <Types/Geometry/Vector2f.h>

#include <geometry/TmGePoint2d.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A position in the plane, kept in single precision: the compact copy of a TmGePoint2d that the
// data model stores. Points and vectors combine as in the geometry kernel: point - point is a
// vector, point +/- vector is a point. All arithmetic is componentwise in float.
class Point2f : public FloatXY<Point2f> {
public:
    Point2f() noexcept = default;
    Point2f(float x, float y) noexcept : FloatXY(x, y) {}
    // Each component rounded to the nearest float. Explicit, because precision is lost.
    explicit Point2f(const TmGePoint2d& point) noexcept;

    // The displacement from `other` to this point.
    [[nodiscard]] Vector2f operator-(const Point2f& other) const noexcept;
    [[nodiscard]] Point2f operator+(const Vector2f& offset) const noexcept;
    [[nodiscard]] Point2f operator-(const Vector2f& offset) const noexcept;
    Point2f& operator+=(const Vector2f& offset) noexcept;
    Point2f& operator-=(const Vector2f& offset) noexcept;
    // The displacement from the origin.
    [[nodiscard]] Vector2f asVector() const noexcept;

    // Ordered by the float sum y + x, not lexicographically; different points of equal sum are
    // unordered. Stored sort orders rely on it.
    [[nodiscard]] bool operator<(const Point2f& other) const noexcept;

    // Each component widened exactly to double.
    [[nodiscard]] TmGePoint2d makeGelib() const noexcept;

private:
    friend struct ValueTraits<Point2f>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Point2f>;
extern template class FloatXY<Point2f>;
} // namespace Kx
