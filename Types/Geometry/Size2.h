#pragma once

#include <Types/Geometry/Border4.h>
#include <Types/Geometry/Point2.h>
#include <Types/Geometry/ValueType.h>

#include <cstdint>
#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// An extent on the screen. Components are 32-bit and all arithmetic wraps; a size may be negative.
class Size2 : public ValueType<Size2> {
public:
    Size2() noexcept = default;
    Size2(std::int32_t width, std::int32_t height) noexcept : width(width), height(height) {}
    explicit Size2(const Point2& point) noexcept : width(point.x), height(point.y) {}

    void size(std::int32_t width, std::int32_t height) noexcept;

    [[nodiscard]] Size2 operator+(const Size2& other) const noexcept;
    [[nodiscard]] Size2 operator-(const Size2& other) const noexcept;
    Size2& operator+=(const Size2& other) noexcept;
    Size2& operator-=(const Size2& other) noexcept;
    // A border widens by left + right and heightens by top + bottom.
    [[nodiscard]] Size2 operator+(const Border4& border) const noexcept;
    [[nodiscard]] Size2 operator-(const Border4& border) const noexcept;
    Size2& operator+=(const Border4& border) noexcept;
    Size2& operator-=(const Border4& border) noexcept;
    [[nodiscard]] Point2 operator+(const Point2& point) const noexcept;
    [[nodiscard]] Point2 operator-(const Point2& point) const noexcept;
    [[nodiscard]] Size2 operator-() const noexcept;

    [[nodiscard]] bool operator==(const Size2& other) const noexcept { return width == other.width && height == other.height; }
    [[nodiscard]] bool operator!=(const Size2& other) const noexcept { return !(*this == other); }
    // Ordered by area (wrapping 32-bit product), not lexicographically: callers pick the larger
    // of two extents with it. Different sizes of equal area are unordered.
    [[nodiscard]] bool operator<(const Size2& other) const noexcept;

    // Each square is taken in wrapping 32-bit arithmetic before it is widened, so extents beyond
    // 46340 give a wrapped, not a true, diagonal; saved layouts depend on the exact value.
    [[nodiscard]] double diagonal() const noexcept;

    // "(width, height)".
    [[nodiscard]] std::wstring toString() const;

    std::int32_t width = 0;
    std::int32_t height = 0;

private:
    friend struct ValueTraits<Size2>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Size2>;
} // namespace Kx
