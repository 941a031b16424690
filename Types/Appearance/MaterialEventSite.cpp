#include "Types/Appearance/MaterialEventSite.h"

namespace Kx {

MaterialEventSite::~MaterialEventSite() = default;

} // namespace Kx
