#include <Types/Geometry/Float2.h>

#include <Types/Geometry/internal/FloatTuple.h>

namespace Kx {

bool Float2::operator<(const Float2& other) const noexcept { return FloatTuple::sumLess(*this, other); }

} // namespace Kx
