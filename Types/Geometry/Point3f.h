#pragma once

#include <Types/Geometry/FloatComponents.h>
#include <Types/Geometry/Vector3f.h>

#include <geometry/TmGePoint3d.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A position in space, kept in single precision: the compact copy of a TmGePoint3d that the data
// model stores. Points and vectors combine as in the geometry kernel: point - point is a vector,
// point +/- vector is a point. All arithmetic is componentwise in float.
class Point3f : public FloatXYZ<Point3f> {
public:
    Point3f() noexcept = default;
    Point3f(float x, float y, float z) noexcept : FloatXYZ(x, y, z) {}
    // Each component rounded to the nearest float. Explicit, because precision is lost.
    explicit Point3f(const TmGePoint3d& point) noexcept;

    // The displacement from `other` to this point.
    [[nodiscard]] Vector3f operator-(const Point3f& other) const noexcept;
    [[nodiscard]] Point3f operator+(const Vector3f& offset) const noexcept;
    [[nodiscard]] Point3f operator-(const Vector3f& offset) const noexcept;
    Point3f& operator+=(const Vector3f& offset) noexcept;
    Point3f& operator-=(const Vector3f& offset) noexcept;
    // The displacement from the origin.
    [[nodiscard]] Vector3f asVector() const noexcept;

    // Lexicographic (x, then y, then z) and exact, unlike == and unlike the other float tuples:
    // point sets and maps keyed by Point3f need a strict weak order that keeps points apart even
    // when they are closer than the tolerance of ==. It is therefore not consistent with ==.
    [[nodiscard]] bool operator<(const Point3f& other) const noexcept;

    // Each component widened exactly to double.
    [[nodiscard]] TmGePoint3d makeGelib() const noexcept;

    // Reads a grouped list of exactly three items, x, y, z, e.g. "(1.5, -2, 1e3)". Throws
    // std::bad_cast when the text is not a grouped list of three items, and boost::bad_lexical_cast
    // when an item is not a float (the lexical conversion's own rules, which accept its spellings
    // of infinity and NaN). The "(x: ..., ...)" text of toString is not read back.
    [[nodiscard]] static Point3f fromString(const std::wstring& text);

private:
    friend struct ValueTraits<Point3f>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Point3f>;
extern template class FloatXY<Point3f>;
} // namespace Kx
