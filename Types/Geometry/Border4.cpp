#include <Types/Geometry/Border4.h>

#include <Types/Geometry/WrappingInt.h>

#include <boost/format.hpp>

namespace Kx {

Border4 Border4::operator+(const Border4& other) const noexcept
{
    return Border4(wrapping::add(top, other.top), wrapping::add(bottom, other.bottom),
        wrapping::add(left, other.left), wrapping::add(right, other.right));
}

Border4 Border4::operator-(const Border4& other) const noexcept
{
    return Border4(wrapping::sub(top, other.top), wrapping::sub(bottom, other.bottom),
        wrapping::sub(left, other.left), wrapping::sub(right, other.right));
}

Border4& Border4::operator+=(const Border4& other) noexcept { return *this = *this + other; }
Border4& Border4::operator-=(const Border4& other) noexcept { return *this = *this - other; }

Border4 Border4::operator-() const noexcept
{
    return Border4(wrapping::neg(top), wrapping::neg(bottom), wrapping::neg(left), wrapping::neg(right));
}

std::wstring Border4::toString() const
{
    return (boost::wformat(L"(%1%, %2%, %3%, %4%)") % top % bottom % left % right).str();
}

} // namespace Kx
