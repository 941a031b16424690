#pragma once

#include <base/EventSource.h>

namespace Kx {

class ExchangeMaterialEvent;
class ExchangeMaterialEventSite;

// Announces the news of the online material library to the whole application. Events are
// delivered on the UI thread only: fired from another thread, a fire returns at once and nobody
// hears it, so the download helper brings its completions to the UI thread (UIThreadQueue) first.
class ExchangeMaterialEventSource final : public EventSource {
public:
    [[nodiscard]] static ExchangeMaterialEventSource& get();

    bool subscribe(ExchangeMaterialEventSite* site);
    bool unsubscribe(ExchangeMaterialEventSite* site);

    void fireExchangeMaterialDownloaded(ExchangeMaterialEvent* event);
    void fireExchangeMaterialPublished(ExchangeMaterialEvent* event);

private:
    ExchangeMaterialEventSource() = default;
};

} // namespace Kx
