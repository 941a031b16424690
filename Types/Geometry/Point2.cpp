#include <Types/Geometry/Point2.h>

#include <Types/Geometry/WrappingInt.h>
#include <base/Strings.h>

#include <boost/format.hpp>
#include <boost/lexical_cast.hpp>

#include <typeinfo>
#include <vector>

namespace Kx {

namespace {

// boost::lexical_cast alone would take digit grouping of the global locale; the text form admits
// an optional sign and decimal digits only, so the shape is checked first and the range by the cast.
std::int32_t parseInt32(const std::wstring& item)
{
    std::size_t digits = item.size();
    if (!item.empty() && (item.front() == L'-' || item.front() == L'+')) {
        --digits;
    }
    bool onlyDigits = digits > 0;
    for (std::size_t i = item.size() - digits; i < item.size() && onlyDigits; ++i) {
        onlyDigits = item[i] >= L'0' && item[i] <= L'9';
    }
    if (!onlyDigits) {
        throw boost::bad_lexical_cast(typeid(std::wstring), typeid(std::int32_t));
    }
    return boost::lexical_cast<std::int32_t>(item);
}

} // namespace

Point2::Point2(const Size2& size) noexcept : x(size.width), y(size.height) {}

void Point2::point(std::int32_t newX, std::int32_t newY) noexcept
{
    x = newX;
    y = newY;
}

void Point2::offset(std::int32_t dx, std::int32_t dy) noexcept
{
    x = wrapping::add(x, dx);
    y = wrapping::add(y, dy);
}

void Point2::offset(const Point2& delta) noexcept { offset(delta.x, delta.y); }
void Point2::offset(const Size2& delta) noexcept { offset(delta.width, delta.height); }

Point2 Point2::operator+(const Point2& other) const noexcept
{
    Point2 result(*this);
    result += other;
    return result;
}

Point2 Point2::operator+(const Size2& size) const noexcept
{
    Point2 result(*this);
    result += size;
    return result;
}

Point2& Point2::operator+=(const Point2& other) noexcept
{
    offset(other.x, other.y);
    return *this;
}

Point2& Point2::operator+=(const Size2& size) noexcept
{
    offset(size.width, size.height);
    return *this;
}

Point2 Point2::operator-(const Size2& size) const noexcept
{
    Point2 result(*this);
    result -= size;
    return result;
}

Size2 Point2::operator-(const Point2& other) const noexcept
{
    return Size2(wrapping::sub(x, other.x), wrapping::sub(y, other.y));
}

Point2& Point2::operator-=(const Point2& other) noexcept
{
    x = wrapping::sub(x, other.x);
    y = wrapping::sub(y, other.y);
    return *this;
}

Point2& Point2::operator-=(const Size2& size) noexcept
{
    x = wrapping::sub(x, size.width);
    y = wrapping::sub(y, size.height);
    return *this;
}

Point2 Point2::operator-() const noexcept { return Point2(wrapping::neg(x), wrapping::neg(y)); }

bool Point2::operator<(const Point2& other) const noexcept
{
    return wrapping::add(x, y) < wrapping::add(other.x, other.y);
}

std::wstring Point2::toString() const { return (boost::wformat(L"(%1%, %2%)") % x % y).str(); }

Point2 Point2::fromString(const std::wstring& text)
{
    std::vector<std::wstring> items;
    if (!Strings::ungroupStrings(text, items) || items.size() != 2) {
        throw std::bad_cast();
    }
    return Point2(parseInt32(items[0]), parseInt32(items[1]));
}

} // namespace Kx
