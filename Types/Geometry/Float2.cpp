#include <Types/Geometry/Float2.h>

#include <Types/Geometry/internal/FloatTuple.h>

namespace Kx {

void Float2::set(float newX, float newY) noexcept
{
    m_x = newX;
    m_y = newY;
}

bool Float2::operator==(const Float2& other) const noexcept { return FloatTuple::equal(*this, other); }
bool Float2::operator<(const Float2& other) const noexcept { return FloatTuple::sumLess(*this, other); }
std::wstring Float2::toString() const { return FloatTuple::text(*this); }

} // namespace Kx
