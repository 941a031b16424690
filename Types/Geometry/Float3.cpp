#include <Types/Geometry/Float3.h>

#include <Types/Geometry/internal/FloatTuple.h>

namespace Kx {

void Float3::set(float newX, float newY, float newZ) noexcept
{
    m_x = newX;
    m_y = newY;
    m_z = newZ;
}

bool Float3::operator==(const Float3& other) const noexcept { return FloatTuple::equal(*this, other); }
bool Float3::operator<(const Float3& other) const noexcept { return FloatTuple::sumLess(*this, other); }
std::wstring Float3::toString() const { return FloatTuple::text(*this); }

} // namespace Kx
