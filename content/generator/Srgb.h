#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

// Colours are stored linear (as renderers compute with them) and shown to people in sRGB: every
// colour a person sees, a swatch or a hex code, is encoded with the sRGB transfer function
// (IEC 61966-2-1), so linear 0.5 shows as 188 of 255 and the measured 18 % grey as 118.
namespace Kx::Content {

// A linear channel in [0, 1] (clamped) encoded for display, in [0, 1].
[[nodiscard]] inline double srgbEncoded(double linear) noexcept
{
    const double clamped = std::clamp(linear, 0.0, 1.0);
    return clamped <= 0.0031308 ? 12.92 * clamped : 1.055 * std::pow(clamped, 1.0 / 2.4) - 0.055;
}

// The same as an 8-bit value, rounded to the nearest.
[[nodiscard]] inline std::uint8_t srgbByte(double linear) noexcept
{
    return static_cast<std::uint8_t>(std::lround(srgbEncoded(linear) * 255.0));
}

// An sRGB channel (0 … 255) back to linear light.
[[nodiscard]] inline double linearFromSrgbByte(int value) noexcept
{
    const double encoded = std::clamp(value, 0, 255) / 255.0;
    return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
}

} // namespace Kx::Content
