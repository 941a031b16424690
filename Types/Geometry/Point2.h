#pragma once

#include <Types/Geometry/ValueType.h>

#include <cstdint>
#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

class Size2;

// A position on the screen (y grows downwards). Components are 32-bit and all arithmetic wraps.
class Point2 : public ValueType<Point2> {
public:
    Point2() noexcept = default;
    Point2(std::int32_t x, std::int32_t y) noexcept : x(x), y(y) {}
    explicit Point2(const Size2& size) noexcept;

    void point(std::int32_t x, std::int32_t y) noexcept;
    void offset(std::int32_t dx, std::int32_t dy) noexcept;
    void offset(const Point2& delta) noexcept;
    void offset(const Size2& delta) noexcept;

    [[nodiscard]] Point2 operator+(const Point2& other) const noexcept;
    [[nodiscard]] Point2 operator+(const Size2& size) const noexcept;
    Point2& operator+=(const Point2& other) noexcept;
    Point2& operator+=(const Size2& size) noexcept;
    [[nodiscard]] Point2 operator-(const Size2& size) const noexcept;
    // The distance from `other` to this point.
    [[nodiscard]] Size2 operator-(const Point2& other) const noexcept;
    Point2& operator-=(const Point2& other) noexcept;
    Point2& operator-=(const Size2& size) noexcept;
    [[nodiscard]] Point2 operator-() const noexcept;

    [[nodiscard]] bool operator==(const Point2& other) const noexcept { return x == other.x && y == other.y; }
    [[nodiscard]] bool operator!=(const Point2& other) const noexcept { return !(*this == other); }
    // Ordered by the sum of the components, not lexicographically: layout code sorts points by
    // their distance from the origin along the diagonal. Points with equal sums are unordered.
    [[nodiscard]] bool operator<(const Point2& other) const noexcept;

    // "(x, y)", e.g. "(3, -4)".
    [[nodiscard]] std::wstring toString() const;
    // Reads the grouped form that toString writes. Throws std::bad_cast when the text does not
    // split into exactly two items, boost::bad_lexical_cast when an item is not a 32-bit decimal
    // integer (optional sign, digits only, no blanks inside the item).
    [[nodiscard]] static Point2 fromString(const std::wstring& text);

    std::int32_t x = 0;
    std::int32_t y = 0;

private:
    friend struct ValueTraits<Point2>;
};

} // namespace Kx

// Point2 and Size2 convert into each other; including either header makes both complete.
#include <Types/Geometry/Size2.h>

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Point2>;
} // namespace Kx
