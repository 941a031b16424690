#pragma once

#include <Types/Geometry/Border4.h>
#include <Types/Geometry/Point2.h>
#include <Types/Geometry/Size2.h>
#include <Types/Geometry/ValueType.h>

#include <cstdint>
#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A fixed underlying type: callers pass stored integers, and values other than 0, 1, 2 are defined
// (they leave the rectangle in place).
enum EHorizontalAlignment : int { eAlignLeft = 0, eAlignCenter = 1, eAlignRight = 2 };
enum EVerticalAlignment : int { eAlignTop = 0, eAlignMiddle = 1, eAlignBottom = 2 };

// An axis-aligned rectangle given by its four edges in screen coordinates: y grows downwards, so a
// normal rectangle has left <= right and top <= bottom. Nothing keeps it normal; all arithmetic
// wraps in 32 bits. The all-zero rectangle is the empty one.
class Rect2 : public ValueType<Rect2> {
public:
    Rect2() noexcept = default;
    Rect2(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) noexcept
        : left(left), top(top), right(right), bottom(bottom)
    {
    }
    Rect2(const Point2& topLeft, const Point2& bottomRight) noexcept;
    Rect2(const Point2& topLeft, const Size2& size) noexcept;

    void rect(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) noexcept;
    void rect(const Point2& topLeft, const Point2& bottomRight) noexcept;
    void rect(const Point2& topLeft, const Size2& size) noexcept;
    // Copies the four edges only.
    void rect(const Rect2& other) noexcept;

    [[nodiscard]] std::int32_t width() const noexcept;
    [[nodiscard]] std::int32_t height() const noexcept;
    [[nodiscard]] Size2 size() const noexcept { return Size2(width(), height()); }
    [[nodiscard]] Point2 topLeft() const noexcept { return Point2(left, top); }
    [[nodiscard]] Point2 topRight() const noexcept { return Point2(right, top); }
    [[nodiscard]] Point2 bottomLeft() const noexcept { return Point2(left, bottom); }
    [[nodiscard]] Point2 bottomRight() const noexcept { return Point2(right, bottom); }

    // True when either extent is zero. An inverted rectangle (left > right) is not empty.
    [[nodiscard]] bool isEmpty() const noexcept { return left == right || top == bottom; }
    // Makes this the all-zero rectangle.
    void empty() noexcept;

    void translate(std::int32_t dx, std::int32_t dy) noexcept;
    void translate(const Point2& delta) noexcept { translate(delta.x, delta.y); }
    void translate(const Size2& delta) noexcept { translate(delta.width, delta.height); }
    Rect2& operator+=(const Point2& delta) noexcept;
    Rect2& operator+=(const Size2& delta) noexcept;
    Rect2& operator-=(const Point2& delta) noexcept;
    Rect2& operator-=(const Size2& delta) noexcept;
    [[nodiscard]] Rect2 operator+(const Point2& delta) const noexcept;
    [[nodiscard]] Rect2 operator+(const Size2& delta) const noexcept;
    [[nodiscard]] Rect2 operator-(const Point2& delta) const noexcept;
    [[nodiscard]] Rect2 operator-(const Size2& delta) const noexcept;

    // Inflation moves edges outwards: left and top decrease, right and bottom increase.
    void inflate(std::int32_t dx, std::int32_t dy) noexcept;
    void inflate(const Size2& delta) noexcept { inflate(delta.width, delta.height); }
    void inflate(std::int32_t dLeft, std::int32_t dTop, std::int32_t dRight, std::int32_t dBottom) noexcept;
    void inflate(const Border4& border) noexcept;
    Rect2& operator+=(const Border4& border) noexcept;
    [[nodiscard]] Rect2 operator+(const Border4& border) const noexcept;

    // Deflation moves edges inwards; edges that cross are collapsed onto each other. Horizontally
    // they meet at their midpoint, vertically at bottom + (bottom - top) / 2, half the overlap
    // below the old bottom. Stored layouts were computed with this asymmetry, so it stays.
    void deflate(std::int32_t dx, std::int32_t dy) noexcept;
    void deflate(const Size2& delta) noexcept { deflate(delta.width, delta.height); }
    void deflate(std::int32_t dLeft, std::int32_t dTop, std::int32_t dRight, std::int32_t dBottom) noexcept;
    void deflate(const Border4& border) noexcept;
    Rect2& operator-=(const Border4& border) noexcept;
    [[nodiscard]] Rect2 operator-(const Border4& border) const noexcept;

    // Caps the size at `limit`, keeping the top-left corner.
    void ceiling(const Size2& limit) noexcept;
    // Raises the size to at least `minimum`, keeping the top-left corner.
    void floor(const Size2& minimum) noexcept;

    // The overlap; the all-zero rectangle when there is none. Rectangles that merely touch give a
    // rectangle of zero width or height. Neither input is checked for emptiness.
    void intersect(const Rect2& other) noexcept;
    [[nodiscard]] static Rect2 intersect(const Rect2& first, const Rect2& second) noexcept;
    Rect2& operator&=(const Rect2& other) noexcept;
    [[nodiscard]] Rect2 operator&(const Rect2& other) const noexcept;

    // False when this rectangle is empty; touching edges intersect. `other` may be empty.
    [[nodiscard]] bool intersects(const Rect2& other) const noexcept;
    // Inclusive edges; an inverted rectangle contains the points of its span. False when empty.
    [[nodiscard]] bool contains(const Point2& point) const noexcept;
    // Both opposite corners of `other` lie inside.
    [[nodiscard]] bool contains(const Rect2& other) const noexcept;

    // An empty operand contributes nothing; an empty receiver is replaced by the other rectangle.
    Rect2& operator|=(const Rect2& other) noexcept;
    [[nodiscard]] Rect2 operator|(const Rect2& other) const noexcept;
    // A rectangle of zero width or height is replaced by the zero-size rectangle at the point, so
    // points alone never grow a hull: callers start hulls from a rectangle of non-zero extent.
    Rect2& operator|=(const Point2& point) noexcept;
    [[nodiscard]] Rect2 operator|(const Point2& point) const noexcept;

    // The margins between this (outer) rectangle and `inner`.
    [[nodiscard]] Border4 operator-(const Rect2& inner) const noexcept;

    // Ordered by area (wrapping 32-bit product), not by position: callers pick the larger of two
    // rectangles with it. Different rectangles of equal area are unordered.
    [[nodiscard]] bool operator<(const Rect2& other) const noexcept;
    [[nodiscard]] bool operator==(const Rect2& other) const noexcept
    {
        return left == other.left && top == other.top && right == other.right && bottom == other.bottom;
    }
    [[nodiscard]] bool operator!=(const Rect2& other) const noexcept { return !(*this == other); }

    // Moves the rectangle sideways (width kept) to line up with `reference`; any value other than
    // the three enumerators leaves it in place. Centring truncates towards zero.
    void alignHorizontally(const Rect2& reference, EHorizontalAlignment alignment) noexcept;
    void alignVertically(const Rect2& reference, EVerticalAlignment alignment) noexcept;

    // Cuts at `at` units from the left (top) edge into `first` and `second`. `at` is capped at the
    // width (height) but not clamped below, so a negative cut falls outside the rectangle.
    void splitHorizontally(std::int32_t at, Rect2& first, Rect2& second) const noexcept;
    void splitVertically(std::int32_t at, Rect2& first, Rect2& second) const noexcept;

    // "(left, top, right, bottom)".
    [[nodiscard]] std::wstring toString() const;

    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;

private:
    void collapseCrossedEdges() noexcept;

    friend struct ValueTraits<Rect2>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Rect2>;
} // namespace Kx
