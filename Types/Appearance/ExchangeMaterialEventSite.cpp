#include "Types/Appearance/ExchangeMaterialEventSite.h"

namespace Kx {

ExchangeMaterialEventSite& ExchangeMaterialEventSite::get()
{
    static ExchangeMaterialEventSite s_site;
    return s_site;
}

ExchangeMaterialEventSite::~ExchangeMaterialEventSite() = default;

} // namespace Kx
