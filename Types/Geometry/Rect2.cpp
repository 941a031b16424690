#include <Types/Geometry/Rect2.h>

#include <Types/Geometry/WrappingInt.h>

#include <boost/format.hpp>

#include <algorithm>

namespace Kx {

using wrapping::add;
using wrapping::mul;
using wrapping::sub;

Rect2::Rect2(const Point2& topLeft, const Point2& bottomRight) noexcept
    : left(topLeft.x), top(topLeft.y), right(bottomRight.x), bottom(bottomRight.y)
{
}

Rect2::Rect2(const Point2& topLeft, const Size2& size) noexcept
    : left(topLeft.x), top(topLeft.y), right(add(topLeft.x, size.width)), bottom(add(topLeft.y, size.height))
{
}

void Rect2::rect(std::int32_t newLeft, std::int32_t newTop, std::int32_t newRight, std::int32_t newBottom) noexcept
{
    left = newLeft;
    top = newTop;
    right = newRight;
    bottom = newBottom;
}

void Rect2::rect(const Point2& topLeft, const Point2& bottomRight) noexcept
{
    rect(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y);
}

void Rect2::rect(const Point2& topLeft, const Size2& size) noexcept
{
    rect(topLeft.x, topLeft.y, add(topLeft.x, size.width), add(topLeft.y, size.height));
}

void Rect2::rect(const Rect2& other) noexcept { rect(other.left, other.top, other.right, other.bottom); }

std::int32_t Rect2::width() const noexcept { return sub(right, left); }
std::int32_t Rect2::height() const noexcept { return sub(bottom, top); }

void Rect2::empty() noexcept { rect(0, 0, 0, 0); }

void Rect2::translate(std::int32_t dx, std::int32_t dy) noexcept
{
    left = add(left, dx);
    right = add(right, dx);
    top = add(top, dy);
    bottom = add(bottom, dy);
}

Rect2& Rect2::operator+=(const Point2& delta) noexcept
{
    translate(delta.x, delta.y);
    return *this;
}

Rect2& Rect2::operator+=(const Size2& delta) noexcept
{
    translate(delta.width, delta.height);
    return *this;
}

Rect2& Rect2::operator-=(const Point2& delta) noexcept
{
    translate(wrapping::neg(delta.x), wrapping::neg(delta.y));
    return *this;
}

Rect2& Rect2::operator-=(const Size2& delta) noexcept
{
    translate(wrapping::neg(delta.width), wrapping::neg(delta.height));
    return *this;
}

Rect2 Rect2::operator+(const Point2& delta) const noexcept { return Rect2(*this) += delta; }
Rect2 Rect2::operator+(const Size2& delta) const noexcept { return Rect2(*this) += delta; }
Rect2 Rect2::operator-(const Point2& delta) const noexcept { return Rect2(*this) -= delta; }
Rect2 Rect2::operator-(const Size2& delta) const noexcept { return Rect2(*this) -= delta; }

void Rect2::inflate(std::int32_t dx, std::int32_t dy) noexcept { inflate(dx, dy, dx, dy); }

void Rect2::inflate(std::int32_t dLeft, std::int32_t dTop, std::int32_t dRight, std::int32_t dBottom) noexcept
{
    left = sub(left, dLeft);
    top = sub(top, dTop);
    right = add(right, dRight);
    bottom = add(bottom, dBottom);
}

void Rect2::inflate(const Border4& border) noexcept { inflate(border.left, border.top, border.right, border.bottom); }

Rect2& Rect2::operator+=(const Border4& border) noexcept
{
    inflate(border);
    return *this;
}

Rect2 Rect2::operator+(const Border4& border) const noexcept { return Rect2(*this) += border; }

void Rect2::deflate(std::int32_t dx, std::int32_t dy) noexcept { deflate(dx, dy, dx, dy); }

void Rect2::deflate(std::int32_t dLeft, std::int32_t dTop, std::int32_t dRight, std::int32_t dBottom) noexcept
{
    left = add(left, dLeft);
    top = add(top, dTop);
    right = sub(right, dRight);
    bottom = sub(bottom, dBottom);
    collapseCrossedEdges();
}

void Rect2::deflate(const Border4& border) noexcept { deflate(border.left, border.top, border.right, border.bottom); }

Rect2& Rect2::operator-=(const Border4& border) noexcept
{
    deflate(border);
    return *this;
}

Rect2 Rect2::operator-(const Border4& border) const noexcept { return Rect2(*this) -= border; }

void Rect2::collapseCrossedEdges() noexcept
{
    if (right < left) {
        left = right = add(right, sub(left, right) / 2);
    }
    // Not the mirror of the rule above (see deflate): the difference is negative here.
    if (bottom < top) {
        top = bottom = add(bottom, sub(bottom, top) / 2);
    }
}

void Rect2::ceiling(const Size2& limit) noexcept
{
    right = add(left, std::min(width(), limit.width));
    bottom = add(top, std::min(height(), limit.height));
}

void Rect2::floor(const Size2& minimum) noexcept
{
    right = add(left, std::max(width(), minimum.width));
    bottom = add(top, std::max(height(), minimum.height));
}

Rect2 Rect2::intersect(const Rect2& first, const Rect2& second) noexcept
{
    const Rect2 overlap(std::max(first.left, second.left), std::max(first.top, second.top),
        std::min(first.right, second.right), std::min(first.bottom, second.bottom));
    if (overlap.right < overlap.left || overlap.bottom < overlap.top) {
        return Rect2();
    }
    return overlap;
}

void Rect2::intersect(const Rect2& other) noexcept { rect(intersect(*this, other)); }

Rect2& Rect2::operator&=(const Rect2& other) noexcept
{
    intersect(other);
    return *this;
}

Rect2 Rect2::operator&(const Rect2& other) const noexcept { return intersect(*this, other); }

bool Rect2::intersects(const Rect2& other) const noexcept
{
    if (isEmpty()) {
        return false;
    }
    return std::max(left, other.left) <= std::min(right, other.right)
        && std::max(top, other.top) <= std::min(bottom, other.bottom);
}

bool Rect2::contains(const Point2& point) const noexcept
{
    if (isEmpty()) {
        return false;
    }
    return std::min(left, right) <= point.x && point.x <= std::max(left, right)
        && std::min(top, bottom) <= point.y && point.y <= std::max(top, bottom);
}

bool Rect2::contains(const Rect2& other) const noexcept
{
    return contains(other.topLeft()) && contains(other.bottomRight());
}

Rect2& Rect2::operator|=(const Rect2& other) noexcept
{
    if (other.isEmpty()) {
        return *this;
    }
    if (isEmpty()) {
        rect(other);
        return *this;
    }
    rect(std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
        std::max(bottom, other.bottom));
    return *this;
}

Rect2 Rect2::operator|(const Rect2& other) const noexcept { return Rect2(*this) |= other; }

Rect2& Rect2::operator|=(const Point2& point) noexcept
{
    if (isEmpty()) {
        rect(point.x, point.y, point.x, point.y);
        return *this;
    }
    rect(std::min(left, point.x), std::min(top, point.y), std::max(right, point.x), std::max(bottom, point.y));
    return *this;
}

Rect2 Rect2::operator|(const Point2& point) const noexcept { return Rect2(*this) |= point; }

Border4 Rect2::operator-(const Rect2& inner) const noexcept
{
    return Border4(sub(inner.top, top), sub(bottom, inner.bottom), sub(inner.left, left), sub(right, inner.right));
}

bool Rect2::operator<(const Rect2& other) const noexcept
{
    return mul(height(), width()) < mul(other.height(), other.width());
}

void Rect2::alignHorizontally(const Rect2& reference, EHorizontalAlignment alignment) noexcept
{
    std::int32_t shift = 0;
    switch (alignment) {
    case eAlignLeft:
        shift = sub(reference.left, left);
        break;
    case eAlignCenter:
        shift = sub(add(reference.left, sub(reference.width(), width()) / 2), left);
        break;
    case eAlignRight:
        shift = sub(reference.right, right);
        break;
    }
    translate(shift, 0);
}

void Rect2::alignVertically(const Rect2& reference, EVerticalAlignment alignment) noexcept
{
    std::int32_t shift = 0;
    switch (alignment) {
    case eAlignTop:
        shift = sub(reference.top, top);
        break;
    case eAlignMiddle:
        shift = sub(add(reference.top, sub(reference.height(), height()) / 2), top);
        break;
    case eAlignBottom:
        shift = sub(reference.bottom, bottom);
        break;
    }
    translate(0, shift);
}

void Rect2::splitHorizontally(std::int32_t at, Rect2& first, Rect2& second) const noexcept
{
    const std::int32_t cut = add(left, std::min(at, width()));
    first.rect(*this);
    second.rect(*this);
    first.right = cut;
    second.left = cut;
}

void Rect2::splitVertically(std::int32_t at, Rect2& first, Rect2& second) const noexcept
{
    const std::int32_t cut = add(top, std::min(at, height()));
    first.rect(*this);
    second.rect(*this);
    first.bottom = cut;
    second.top = cut;
}

std::wstring Rect2::toString() const
{
    return (boost::wformat(L"(%1%, %2%, %3%, %4%)") % left % top % right % bottom).str();
}

} // namespace Kx
