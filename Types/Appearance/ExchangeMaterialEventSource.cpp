#include "Types/Appearance/ExchangeMaterialEventSource.h"

#include "Types/Appearance/ExchangeMaterialEvent.h"
#include "Types/Appearance/ExchangeMaterialEventSite.h"

namespace Kx {

ExchangeMaterialEventSource& ExchangeMaterialEventSource::get()
{
    static ExchangeMaterialEventSource s_source;
    return s_source;
}

bool ExchangeMaterialEventSource::subscribe(ExchangeMaterialEventSite* site)
{
    return EventSource::subscribe(site);
}

bool ExchangeMaterialEventSource::unsubscribe(ExchangeMaterialEventSite* site)
{
    return EventSource::unsubscribe(site);
}

void ExchangeMaterialEventSource::fireExchangeMaterialDownloaded(ExchangeMaterialEvent* event)
{
    deliverOnUIThread(event, &ExchangeMaterialEventSite::exchangeMaterialDownloaded);
}

void ExchangeMaterialEventSource::fireExchangeMaterialPublished(ExchangeMaterialEvent* event)
{
    deliverOnUIThread(event, &ExchangeMaterialEventSite::exchangeMaterialPublished);
}

} // namespace Kx
