#pragma once

// What the six single-precision tuples (Float2, Float3, Point2f, Point3f, Vector2f, Vector3f) share,
// written once over their public fields m_x, m_y and, for the spatial ones, m_z: the tolerant
// comparison, the ordering by sum, the text form, componentwise arithmetic and the conversions to
// and from the geometry kernel's double-precision types. Included by their sources only.

#include <boost/format.hpp>

#include <cmath>
#include <string>

namespace Kx::FloatTuple {

// The spatial tuples are told apart by their third field.
template <class T>
concept Spatial = requires(const T& tuple) { tuple.m_z; };

// Absolute and the same for every type: the data model stores a new value only when it differs by
// more than this, so rounding noise from double geometry or from text never counts as a change.
inline constexpr double s_tolerance = 1e-6;

// The difference is taken in single precision and only its magnitude widened, so the boundary is
// the double 1e-6 and not the float nearest to it. An infinite or NaN component makes a NaN
// difference, which never matches: such a tuple is unequal even to itself.
[[nodiscard]] inline bool componentsMatch(float a, float b) noexcept
{
    return static_cast<double>(std::fabs(a - b)) < s_tolerance;
}

template <class T>
[[nodiscard]] bool equal(const T& a, const T& b) noexcept
{
    bool same = componentsMatch(a.m_x, b.m_x) && componentsMatch(a.m_y, b.m_y);
    if constexpr (Spatial<T>)
        same = same && componentsMatch(a.m_z, b.m_z);
    return same;
}

// y + x, then + z, in single precision and in that order: float addition does not associate, and
// stored sort orders were made with exactly this sum.
template <class T>
[[nodiscard]] float sum(const T& tuple) noexcept
{
    float total = tuple.m_y + tuple.m_x;
    if constexpr (Spatial<T>)
        total = total + tuple.m_z;
    return total;
}

template <class T>
[[nodiscard]] bool sumLess(const T& a, const T& b) noexcept
{
    return sum(a) < sum(b);
}

template <class T>
[[nodiscard]] std::wstring text(const T& tuple)
{
    if constexpr (Spatial<T>)
        return (boost::wformat(L"(x: %1%, y: %2%, z: %3%)") % tuple.m_x % tuple.m_y % tuple.m_z).str();
    else
        return (boost::wformat(L"(%1%, %2%)") % tuple.m_x % tuple.m_y).str();
}

// `op` applied to each pair of components, into a new tuple of type R.
template <class R, class A, class B, class Op>
[[nodiscard]] R combined(const A& a, const B& b, Op op) noexcept
{
    R result;
    result.m_x = op(a.m_x, b.m_x);
    result.m_y = op(a.m_y, b.m_y);
    if constexpr (Spatial<R>)
        result.m_z = op(a.m_z, b.m_z);
    return result;
}

// `op` applied to each pair of components, in place.
template <class A, class B, class Op>
void combine(A& a, const B& b, Op op) noexcept
{
    a.m_x = op(a.m_x, b.m_x);
    a.m_y = op(a.m_y, b.m_y);
    if constexpr (Spatial<A>)
        a.m_z = op(a.m_z, b.m_z);
}

template <class R, class A>
[[nodiscard]] R negated(const A& a) noexcept
{
    R result;
    result.m_x = -a.m_x;
    result.m_y = -a.m_y;
    if constexpr (Spatial<R>)
        result.m_z = -a.m_z;
    return result;
}

// The same components in another tuple type (a point as a vector).
template <class R, class A>
[[nodiscard]] R converted(const A& a) noexcept
{
    return combined<R>(a, a, [](float component, float) { return component; });
}

// Each double rounded to the nearest float (IEEE conversion: beyond the float range, infinity).
template <class T, class G>
void assignRounded(T& tuple, const G& geometry) noexcept
{
    tuple.m_x = static_cast<float>(geometry.x);
    tuple.m_y = static_cast<float>(geometry.y);
    if constexpr (Spatial<T>)
        tuple.m_z = static_cast<float>(geometry.z);
}

// The geometry kernel's type with each component widened exactly.
template <class G, class T>
[[nodiscard]] G widened(const T& tuple) noexcept
{
    if constexpr (Spatial<T>)
        return G(static_cast<double>(tuple.m_x), static_cast<double>(tuple.m_y), static_cast<double>(tuple.m_z));
    else
        return G(static_cast<double>(tuple.m_x), static_cast<double>(tuple.m_y));
}

} // namespace Kx::FloatTuple
