#include <Types/Geometry/Float3.h>

#include <Types/Geometry/internal/FloatTuple.h>

namespace Kx {

bool Float3::operator<(const Float3& other) const noexcept { return FloatTuple::sumLess(*this, other); }

} // namespace Kx
