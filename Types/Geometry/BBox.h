#pragma once

#include <Types/Geometry/ValueType.h>

#include <geometry/TmGePoint3d.h>

#include <string>

class TmGeMatrix3d;

namespace Kx {

template <class T>
struct ValueTraits;

// An axis-aligned bound in space, in double precision, built point by point or box by box from
// geometry. Containment and intersection allow the library's box tolerance (the default
// TmGeTol's equalPoint), so boxes of geometry that meets within modelling accuracy touch. Equality
// is exact.
//
// The empty state has min at the largest finite double and max at its negative on every axis, so
// growing from empty needs no special case. Emptiness is read on the x axis alone (min x > max x).
// Operations on an empty box leave it empty; queries answer false or zero for it.
class BBox : public ValueType<BBox> {
public:
    BBox() noexcept { empty(); }
    // The corners may come in any order: each axis is sorted.
    BBox(const TmGePoint3d& min, const TmGePoint3d& max) noexcept;

    // As the two-corner constructor.
    void set(const TmGePoint3d& min, const TmGePoint3d& max) noexcept;
    // Makes this the empty box.
    void empty() noexcept;

    [[nodiscard]] const TmGePoint3d& minPt() const noexcept { return m_min; }
    [[nodiscard]] const TmGePoint3d& maxPt() const noexcept { return m_max; }
    // The centre; the origin for the empty box. Computed without overflow for any finite box.
    [[nodiscard]] TmGePoint3d midPt() const noexcept;
    // The extent per axis as a point; zero for the empty box.
    [[nodiscard]] TmGePoint3d size() const noexcept;
    // The surface area, 2 (dx dy + dy dz + dz dx): a flat box counts both of its faces. Zero for
    // the empty box.
    [[nodiscard]] double area() const noexcept;
    // The length of the diagonal, and its square; zero for the empty box.
    [[nodiscard]] double diameter() const noexcept;
    [[nodiscard]] double diameter2() const noexcept;

    [[nodiscard]] bool isEmpty() const noexcept { return m_min.x > m_max.x; }
    // min equals max exactly on every axis, as after growing the empty box by one point.
    [[nodiscard]] bool isOnePoint() const noexcept;

    // An empty box never equals a non-empty one; otherwise all six doubles must be equal, exactly
    // (a NaN makes boxes unequal).
    [[nodiscard]] bool operator==(const BBox& other) const noexcept;
    [[nodiscard]] bool operator!=(const BBox& other) const noexcept { return !(*this == other); }

    // The smallest box holding both; an empty operand adds nothing.
    BBox& operator|=(const BBox& other) noexcept;
    BBox& operator|=(const TmGePoint3d& point) noexcept;
    // The overlap. An empty box stays as it is; an empty operand, or boxes apart on any axis, give
    // the empty box. Exact: no tolerance widens the overlap.
    BBox& operator&=(const BBox& other) noexcept;

    // `other` lies inside, its faces allowed to stand out by less than the box tolerance. False
    // when either box is empty.
    [[nodiscard]] bool contains(const BBox& other) const noexcept;
    // The point lies inside or closer than the box tolerance to a face. False for the empty box.
    [[nodiscard]] bool contains(const TmGePoint3d& point) const noexcept;
    // The boxes overlap, touch, or are apart by less than the box tolerance on every axis. False
    // when this box is empty; the other is not tested, as its sentinels already keep it apart.
    [[nodiscard]] bool intersects(const BBox& other) const noexcept;
    // `other` contains this box, with the same tolerance.
    [[nodiscard]] bool within(const BBox& other) const noexcept;

    // The eight corners into out[0..7], in this order: (min x, min y, min z), (max x, min y,
    // min z), (max x, max y, min z), (min x, max y, min z), (max x, max y, max z), (min x, min y,
    // max z), (max x, min y, max z), (min x, max y, max z). The fifth is the far corner, not the
    // one above the first: callers index into this order, keep it. The empty box writes its
    // sentinel corners.
    void cornerPositions(TmGePoint3d* out) const noexcept;

    // Moves min down and max up by `delta` per axis. A negative delta shrinks; shrinking past
    // nothing gives the empty box.
    void inflate(const TmGePoint3d& delta) noexcept;
    // Scales the box about its centre; a negative factor acts as its magnitude (the box is
    // symmetric about its centre) and zero leaves the centre as a single point.
    void scale(double factor) noexcept;
    void translate(const TmGePoint3d& delta) noexcept;
    // The box of the eight transformed corners: it holds the transformed box, and for a rotation
    // it is larger than the box itself. The empty box gives the empty box.
    [[nodiscard]] BBox transformedBy(const TmGeMatrix3d& matrix) const noexcept;
    // The two corners exactly as stored; for the empty box, the sentinels. Passing those back to
    // set() does not give the empty box: set() sorts them into the box of all space.
    void getOriginalExtent(TmGePoint3d& min, TmGePoint3d& max) const noexcept;

    // "(min: x, y, z max:  x, y, z)", doubles with six significant digits; note the two blanks.
    [[nodiscard]] std::wstring toString() const;

    TmGePoint3d m_min;
    TmGePoint3d m_max;

private:
    void normalize() noexcept;

    friend struct ValueTraits<BBox>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<BBox>;
} // namespace Kx
