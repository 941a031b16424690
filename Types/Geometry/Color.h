#pragma once

#include <Types/Geometry/ValueType.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A colour with four single-precision channels, nominally in [0, 1]. Channels are never clamped:
// out-of-range values survive storage and arithmetic, and isValid() tells them apart.
class Color : public ValueType<Color> {
public:
    // Opaque black.
    Color() noexcept = default;
    Color(float red, float green, float blue, float alpha) noexcept
        : m_red(red), m_green(green), m_blue(blue), m_alpha(alpha)
    {
    }

    [[nodiscard]] float red() const noexcept { return m_red; }
    [[nodiscard]] float green() const noexcept { return m_green; }
    [[nodiscard]] float blue() const noexcept { return m_blue; }
    [[nodiscard]] float alpha() const noexcept { return m_alpha; }
    void red(float value) noexcept { m_red = value; }
    void green(float value) noexcept { m_green = value; }
    void blue(float value) noexcept { m_blue = value; }
    void alpha(float value) noexcept { m_alpha = value; }

    // The channel times 255, truncated towards zero (0.999 gives 254). Outside the range of int the
    // result saturates, and NaN gives 0.
    [[nodiscard]] int redAsInt() const noexcept;
    [[nodiscard]] int greenAsInt() const noexcept;
    [[nodiscard]] int blueAsInt() const noexcept;
    [[nodiscard]] int alphaAsInt() const noexcept;

    // Every channel in [0, 1]; a NaN channel makes the colour invalid.
    [[nodiscard]] bool isValid() const noexcept;

    // Channels closer than 0.0001 are equal. The tolerance is coarse on purpose: colours make round
    // trips through 8-bit and text forms, and must still compare equal afterwards.
    [[nodiscard]] bool operator==(const Color& other) const noexcept;
    [[nodiscard]] bool operator!=(const Color& other) const noexcept { return !(*this == other); }
    // Ordered by the float sum of the channels (a brightness-like key), not lexicographically.
    [[nodiscard]] bool operator<(const Color& other) const noexcept;

    // Scales red, green and blue; alpha is kept, so darkening never makes a colour transparent.
    [[nodiscard]] Color operator*(double factor) const noexcept;

    // "(Red: r, Green: g, Blue: b, Alpha: a)" with the float channels.
    [[nodiscard]] std::wstring toString() const;
    // "#RRGGBB" or "#RRGGBBAA" from the AsInt values, upper-case hexadecimal.
    [[nodiscard]] std::wstring toHex(bool withAlpha) const;
    // Reads the channels from successive pairs of hexadecimal digits anywhere in the text, in the
    // order red, green, blue, alpha: a leading '#' and separators between pairs (":", " ", ...) are
    // skipped. Three pairs give an opaque colour (alpha 1); pairs after the fourth are ignored.
    // Throws std::invalid_argument when the text holds fewer than three pairs (for example "#FFF").
    [[nodiscard]] static Color fromHex(const std::string& text);

    // Every channel, alpha included, uniformly random in [0, 1]; each thread has its own generator.
    [[nodiscard]] static Color random();

    float m_red = 0.0f;
    float m_green = 0.0f;
    float m_blue = 0.0f;
    float m_alpha = 1.0f;

private:
    friend struct ValueTraits<Color>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Color>;
} // namespace Kx
