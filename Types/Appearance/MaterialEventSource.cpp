#include "Types/Appearance/MaterialEventSource.h"

#include "Types/Appearance/MaterialEvent.h"
#include "Types/Appearance/MaterialEventSite.h"

namespace Kx {

MaterialEventSource::~MaterialEventSource() = default;

void MaterialEventSource::fireReplaceMaterial(MaterialEvent* event)
{
    deliverOnUIThread(event, &MaterialEventSite::onReplaceMaterial);
}

void MaterialEventSource::fireWhereUsed(MaterialEvent* event)
{
    deliverOnUIThread(event, &MaterialEventSite::onWhereUsed);
}

void MaterialEventSource::fireSelectEntityWithMat(MaterialEvent* event)
{
    deliverOnUIThread(event, &MaterialEventSite::onSelectEntityWithMat);
}

void MaterialEventSource::fireGetCompsWithPMMatRef(MaterialEvent* event)
{
    deliverOnUIThread(event, &MaterialEventSite::onGetCompsWithPMMatRef);
}

} // namespace Kx
