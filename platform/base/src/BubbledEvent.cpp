#include "base/BubbledEvent.h"

namespace Kx {

BubbledEvent::~BubbledEvent() = default;

} // namespace Kx
