#pragma once

#include <Types/Geometry/ValueType.h>
#include <Types/Geometry/Vector3f.h>

#include <geometry/TmGePoint3d.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A position in space, kept in single precision: the compact copy of a TmGePoint3d that the data
// model stores. Points and vectors combine as in the geometry kernel: point - point is a vector,
// point +/- vector is a point. All arithmetic is componentwise in float.
class Point3f : public ValueType<Point3f> {
public:
    Point3f() noexcept = default;
    Point3f(float x, float y, float z) noexcept : m_x(x), m_y(y), m_z(z) {}
    // Each component rounded to the nearest float. Explicit, because precision is lost.
    explicit Point3f(const TmGePoint3d& point) noexcept;

    [[nodiscard]] float x() const noexcept { return m_x; }
    [[nodiscard]] float y() const noexcept { return m_y; }
    [[nodiscard]] float z() const noexcept { return m_z; }
    void x(float value) noexcept { m_x = value; }
    void y(float value) noexcept { m_y = value; }
    void z(float value) noexcept { m_z = value; }
    void set(float x, float y, float z) noexcept;

    // The displacement from `other` to this point.
    [[nodiscard]] Vector3f operator-(const Point3f& other) const noexcept;
    [[nodiscard]] Point3f operator+(const Vector3f& offset) const noexcept;
    [[nodiscard]] Point3f operator-(const Vector3f& offset) const noexcept;
    Point3f& operator+=(const Vector3f& offset) noexcept;
    Point3f& operator-=(const Vector3f& offset) noexcept;
    // The displacement from the origin.
    [[nodiscard]] Vector3f asVector() const noexcept;

    // Equal when every component differs by less than 1e-6, absolute. NaN and infinite components
    // never compare equal, not even to themselves.
    [[nodiscard]] bool operator==(const Point3f& other) const noexcept;
    [[nodiscard]] bool operator!=(const Point3f& other) const noexcept { return !(*this == other); }
    // Lexicographic (x, then y, then z) and exact, unlike == and unlike the other float tuples:
    // point sets and maps keyed by Point3f need a strict weak order that keeps points apart even
    // when they are closer than the tolerance of ==. It is therefore not consistent with ==.
    [[nodiscard]] bool operator<(const Point3f& other) const noexcept;

    // Each component widened exactly to double.
    [[nodiscard]] TmGePoint3d makeGelib() const noexcept;

    // "(x: x, y: y, z: z)", each float with six significant digits.
    [[nodiscard]] std::wstring toString() const;
    // Reads a grouped list of exactly three items, x, y, z, e.g. "(1.5, -2, 1e3)". Throws
    // std::bad_cast when the text is not a grouped list of three items, and boost::bad_lexical_cast
    // when an item is not a float (the lexical conversion's own rules, which accept its spellings
    // of infinity and NaN). The "(x: ..., ...)" text of toString is not read back.
    [[nodiscard]] static Point3f fromString(const std::wstring& text);

    float m_x = 0.0f;
    float m_y = 0.0f;
    float m_z = 0.0f;

private:
    friend struct ValueTraits<Point3f>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Point3f>;
} // namespace Kx
