#pragma once

#include <Types/Geometry/ValueType.h>

#include <geometry/TmGePoint2d.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// An axis-aligned bound in the plane, in double precision, built point by point or rectangle by
// rectangle from geometry. Unlike BBox it compares without any tolerance: edges that touch meet,
// a gap of any size separates.
//
// The empty state has min at the largest finite double and max at its negative on both axes, so
// growing from empty needs no special case. Emptiness is read on the x axis alone (min x > max x).
// Operations on an empty rectangle leave it empty; queries answer false or zero for it.
class BRect : public ValueType<BRect> {
public:
    BRect() noexcept { empty(); }
    // The corners may come in any order: each axis is sorted.
    BRect(const TmGePoint2d& min, const TmGePoint2d& max) noexcept;
    // The square of side 2 |halfSize| around `centre`.
    BRect(const TmGePoint2d& centre, const double& halfSize) noexcept;

    // As the two-corner constructor.
    void set(const TmGePoint2d& min, const TmGePoint2d& max) noexcept;
    // Makes this the empty rectangle.
    void empty() noexcept;

    [[nodiscard]] const TmGePoint2d& minPt() const noexcept { return m_min; }
    [[nodiscard]] const TmGePoint2d& maxPt() const noexcept { return m_max; }
    // Width and height as a point; zero for the empty rectangle (as are width, height and area).
    [[nodiscard]] TmGePoint2d size() const noexcept;
    [[nodiscard]] double width() const noexcept;
    [[nodiscard]] double height() const noexcept;
    [[nodiscard]] double area() const noexcept;

    [[nodiscard]] bool isEmpty() const noexcept { return m_min.x > m_max.x; }

    // An empty rectangle never equals a non-empty one; otherwise all four doubles must be equal,
    // exactly.
    [[nodiscard]] bool operator==(const BRect& other) const noexcept;
    [[nodiscard]] bool operator!=(const BRect& other) const noexcept { return !(*this == other); }

    // The smallest rectangle holding both; an empty operand adds nothing.
    BRect& operator|=(const BRect& other) noexcept;
    BRect& operator|=(const TmGePoint2d& point) noexcept;
    // The overlap, or the empty rectangle when the two are apart on either axis or either is empty.
    // Rectangles that touch give a rectangle of zero width or height.
    BRect& operator&=(const BRect& other) noexcept;

    // Inclusive: a point or rectangle on the edge is inside. False when either is empty.
    [[nodiscard]] bool contains(const BRect& other) const noexcept;
    [[nodiscard]] bool contains(const TmGePoint2d& point) const noexcept;
    // Inclusive: rectangles that touch at an edge or a corner intersect. False when this rectangle
    // is empty; the other is not tested, as its sentinels already keep it apart from any rectangle
    // short of the largest double.
    [[nodiscard]] bool intersects(const BRect& other) const noexcept;
    // `other` contains this rectangle.
    [[nodiscard]] bool within(const BRect& other) const noexcept;

    // Moves min down and max up by `delta` per axis. A negative delta shrinks; shrinking past
    // nothing gives the empty rectangle.
    void inflate(const TmGePoint2d& delta) noexcept;
    void translate(const TmGePoint2d& delta) noexcept;

    // "(min: x, y max:  x, y)", doubles with six significant digits; note the two blanks.
    [[nodiscard]] std::wstring toString() const;

    TmGePoint2d m_min;
    TmGePoint2d m_max;

private:
    void normalize() noexcept;

    friend struct ValueTraits<BRect>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<BRect>;
} // namespace Kx
