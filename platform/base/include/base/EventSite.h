#pragma once

#include <vector>

namespace Kx {

class EventSource;

// A subscriber of event sources. A site knows the sources it is subscribed to, so that its
// destruction takes it out of every one of them: a source never holds a site that no longer
// exists, even when the site is destroyed in the middle of a delivery.
// Sites and their sources belong to the UI thread; nothing here takes a lock.
class EventSite {
public:
    EventSite() = default;
    // A copy is a new subscriber: it is subscribed nowhere.
    EventSite(const EventSite&) noexcept {}
    EventSite& operator=(const EventSite&) noexcept { return *this; }
    virtual ~EventSite();

    // The sources the site is subscribed to, each once, in the order of first subscription.
    [[nodiscard]] const std::vector<EventSource*>& subscribedSources() const noexcept { return m_sources; }

private:
    friend class EventSource;

    std::vector<EventSource*> m_sources;
};

} // namespace Kx
