#pragma once

#include <geometry/TmGeInterval.h>

#include <cmath>

namespace TmGeInternal {

// Brings an arc's angles to start <= end <= start + 2pi; false for a non-finite angle.
inline bool normalizeArcAngles(double& start, double& end) noexcept
{
    if (!std::isfinite(start) || !std::isfinite(end))
        return false;
    if (end < start)
        end += std::ceil((start - end) / kTmGeTwoPi) * kTmGeTwoPi;
    if (end - start > kTmGeTwoPi)
        end = start + kTmGeTwoPi;
    return true;
}

// A vector that is already unit to rounding is kept bit for bit, so that reading back a stored
// arc or plane does not drift by an ulp on every load.
template <class V>
V unitOrSelf(const V& v) noexcept
{
    const double len = v.length();
    if (std::fabs(len - 1.0) <= 4.0e-16 || !(len > 0.0))
        return v;
    return v / len;
}

} // namespace TmGeInternal
