#include "base/EventFilter.h"

namespace Kx {

EventFilter::~EventFilter() = default;

} // namespace Kx
