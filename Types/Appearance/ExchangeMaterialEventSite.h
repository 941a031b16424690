#pragma once

#include <base/BubbledEventSite.h>

namespace Kx {

class ExchangeMaterialEvent;

// A subscriber of ExchangeMaterialEventSource: overrides the handlers of the news it wants; the
// others do nothing.
class ExchangeMaterialEventSite : public BubbledEventSite {
public:
    // A site that does nothing, for callers that must hand one over without listening.
    [[nodiscard]] static ExchangeMaterialEventSite& get();

    ExchangeMaterialEventSite() = default;
    ~ExchangeMaterialEventSite() override;

    virtual void exchangeMaterialDownloaded(ExchangeMaterialEvent* event) {}
    virtual void exchangeMaterialPublished(ExchangeMaterialEvent* event) {}
};

} // namespace Kx
