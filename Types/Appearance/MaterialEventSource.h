#pragma once

#include <base/EventSource.h>

namespace Kx {

class EventFilter;
class EventSite;
class MaterialEvent;

// The material events of one document, held by its material registry (AmbrelAssetManager). Each
// fire calls the matching handler of the subscribed MaterialEventSites, in the order they
// subscribed, synchronously and on the UI thread only: fired from another thread it returns at
// once and nobody is told. A site may unsubscribe itself or others from inside a handler; a site
// that accepts the event keeps it from the sites that do not take accepted events.
class MaterialEventSource final : public EventSource {
public:
    MaterialEventSource() = default;
    ~MaterialEventSource() override;

    using EventSource::subscribe;
    using EventSource::unsubscribe;

    void fireReplaceMaterial(MaterialEvent* event);
    void fireWhereUsed(MaterialEvent* event);
    void fireSelectEntityWithMat(MaterialEvent* event);
    void fireGetCompsWithPMMatRef(MaterialEvent* event);
};

} // namespace Kx
