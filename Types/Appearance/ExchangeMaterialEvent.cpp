#include "Types/Appearance/ExchangeMaterialEvent.h"

namespace Kx {

ExchangeMaterialEvent::~ExchangeMaterialEvent() = default;

} // namespace Kx
