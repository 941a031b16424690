#pragma once

// What BRect and BBox share, written once over their public corners m_min and m_max (TmGePoint2d
// or TmGePoint3d, indexed by axis): the empty state, normalisation, exact comparison, union,
// clipping, translation and inflation. Where the two differ (tolerance, emptiness checks before an
// intersection) the classes decide and call these. Included by their sources only.

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>

namespace Kx {

// The tolerance of BBox containment and intersection, read once from a default-constructed
// TmGeTol (its first value, equalPoint) and never from TmGeContext::gTol, so a host that changes
// the kernel's tolerance does not change which boxes touch. Constant-initialised, so static
// initialisers of any library may use it.
extern const double g_boxTolerance;

namespace AxisBounds {

template <class Box>
using Corner = std::remove_cvref_t<decltype(std::declval<const Box&>().m_min)>;

template <class Box>
inline constexpr unsigned s_axes = requires(const Corner<Box>& corner) { corner.z; } ? 3u : 2u;

// The empty state: min at the largest finite double in every axis and max at its negative, so any
// point lies below min and above max, and growing from empty needs no special case.
inline constexpr double s_emptyMin = std::numeric_limits<double>::max();

template <class Box>
void makeEmpty(Box& box) noexcept
{
    for (unsigned axis = 0; axis < s_axes<Box>; ++axis) {
        box.m_min[axis] = s_emptyMin;
        box.m_max[axis] = -s_emptyMin;
    }
}

// Swaps min and max on every axis where they are the wrong way round (a NaN is left in place).
template <class Box>
void normalize(Box& box) noexcept
{
    for (unsigned axis = 0; axis < s_axes<Box>; ++axis) {
        if (box.m_min[axis] > box.m_max[axis])
            std::swap(box.m_min[axis], box.m_max[axis]);
    }
}

// An empty box never equals a non-empty one; otherwise every double must be equal, exactly (the
// corners' own == is tolerant, so it is not used).
template <class Box>
[[nodiscard]] bool sameBounds(const Box& a, const Box& b) noexcept
{
    if (a.isEmpty() != b.isEmpty())
        return false;
    for (unsigned axis = 0; axis < s_axes<Box>; ++axis) {
        if (a.m_min[axis] != b.m_min[axis] || a.m_max[axis] != b.m_max[axis])
            return false;
    }
    return true;
}

template <class Box>
void unite(Box& box, const Box& other) noexcept
{
    if (other.isEmpty())
        return;
    if (box.isEmpty()) {
        box.m_min = other.m_min;
        box.m_max = other.m_max;
        return;
    }
    for (unsigned axis = 0; axis < s_axes<Box>; ++axis) {
        box.m_min[axis] = std::min(box.m_min[axis], other.m_min[axis]);
        box.m_max[axis] = std::max(box.m_max[axis], other.m_max[axis]);
    }
}

// Each axis on its own, and both tests on every axis: from the empty state the first point is
// below min and above max, and becomes both.
template <class Box>
void unite(Box& box, const Corner<Box>& point) noexcept
{
    for (unsigned axis = 0; axis < s_axes<Box>; ++axis) {
        if (box.m_min[axis] > point[axis])
            box.m_min[axis] = point[axis];
        if (point[axis] > box.m_max[axis])
            box.m_max[axis] = point[axis];
    }
}

// Narrows every axis to the overlap with `other`; an axis left with min > max empties the box.
// No emptiness test before: an empty operand empties the result through its sentinels.
template <class Box>
void clip(Box& box, const Box& other) noexcept
{
    bool crossed = false;
    for (unsigned axis = 0; axis < s_axes<Box>; ++axis) {
        box.m_min[axis] = std::max(box.m_min[axis], other.m_min[axis]);
        box.m_max[axis] = std::min(box.m_max[axis], other.m_max[axis]);
        crossed = crossed || box.m_min[axis] > box.m_max[axis];
    }
    if (crossed)
        makeEmpty(box);
}

template <class Box>
void translate(Box& box, const Corner<Box>& delta) noexcept
{
    if (box.isEmpty())
        return;
    for (unsigned axis = 0; axis < s_axes<Box>; ++axis) {
        box.m_min[axis] += delta[axis];
        box.m_max[axis] += delta[axis];
    }
}

// Moves min down and max up by `delta`. A negative delta shrinks; shrinking past nothing empties
// the box rather than turning it inside out.
template <class Box>
void inflate(Box& box, const Corner<Box>& delta) noexcept
{
    if (box.isEmpty())
        return;
    bool crossed = false;
    for (unsigned axis = 0; axis < s_axes<Box>; ++axis) {
        box.m_min[axis] -= delta[axis];
        box.m_max[axis] += delta[axis];
        crossed = crossed || box.m_min[axis] > box.m_max[axis];
    }
    if (crossed)
        makeEmpty(box);
}

// max - min per axis; zero for an empty box.
template <class Box>
[[nodiscard]] Corner<Box> size(const Box& box) noexcept
{
    Corner<Box> extent;
    if (box.isEmpty())
        return extent;
    for (unsigned axis = 0; axis < s_axes<Box>; ++axis)
        extent[axis] = box.m_max[axis] - box.m_min[axis];
    return extent;
}

} // namespace AxisBounds

} // namespace Kx
