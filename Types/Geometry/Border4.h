#pragma once

#include <Types/Geometry/ValueType.h>

#include <cstdint>
#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// Four margins. The fields are deliberately ordered top, bottom, left, right, unlike the edges of
// Rect2: encodings and the text form follow this order, so the two types never share a layout.
class Border4 : public ValueType<Border4> {
public:
    Border4() noexcept = default;
    Border4(std::int32_t top, std::int32_t bottom, std::int32_t left, std::int32_t right) noexcept
        : top(top), bottom(bottom), left(left), right(right)
    {
    }

    [[nodiscard]] Border4 operator+(const Border4& other) const noexcept;
    [[nodiscard]] Border4 operator-(const Border4& other) const noexcept;
    Border4& operator+=(const Border4& other) noexcept;
    Border4& operator-=(const Border4& other) noexcept;
    [[nodiscard]] Border4 operator-() const noexcept;

    [[nodiscard]] bool operator==(const Border4& other) const noexcept
    {
        return top == other.top && bottom == other.bottom && left == other.left && right == other.right;
    }
    [[nodiscard]] bool operator!=(const Border4& other) const noexcept { return !(*this == other); }

    // "(top, bottom, left, right)".
    [[nodiscard]] std::wstring toString() const;

    std::int32_t top = 0;
    std::int32_t bottom = 0;
    std::int32_t left = 0;
    std::int32_t right = 0;

private:
    friend struct ValueTraits<Border4>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Border4>;
} // namespace Kx
