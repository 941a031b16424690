#include "base/Event.h"

namespace Kx {

// Out of line, so the event's virtual table (and its type for dynamic_cast across libraries) has
// one home.
Event::~Event() = default;

} // namespace Kx
