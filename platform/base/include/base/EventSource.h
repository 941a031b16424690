#pragma once

#include <base/Event.h>
#include <base/OS.h>

#include <cstddef>
#include <functional>
#include <vector>

namespace Kx {

class EventFilter;
class EventSite;

// Announces events to the sites subscribed to it. A subscription is a site with a filter (null for
// every event); a site may hold several. Delivery works on a list of the sites taken when it
// starts, so handlers may subscribe and unsubscribe sites (themselves included) while an event is
// delivered: a site added during a delivery first hears the next event, and a site whose last
// subscription went during a delivery hears nothing more of it.
//
// A source and its sites belong to the UI thread: events are delivered there only and nothing
// here takes a lock. A source is tied to its sites, so it is neither copied nor moved.
class EventSource {
public:
    EventSource() = default;
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;
    // Takes itself out of the sites still subscribed.
    virtual ~EventSource();

    // False (and nothing changes) for a null site or a subscription the source already has.
    bool subscribe(EventSite* site, EventFilter* filter = nullptr);
    // Removes the one subscription of `site` with `filter`; false when there is none.
    bool unsubscribe(EventSite* site, EventFilter* filter = nullptr);
    // Removes every subscription of `site`; answers how many went.
    std::size_t unsubscribeAll(EventSite* site);

    // Appends to `sites` the sites with a subscription whose filter passes the event, each once,
    // in the order of the first such subscription.
    void sitesForEvent(const Event& event, std::vector<EventSite*>& sites) const;
    // The subscriptions `site` holds here.
    [[nodiscard]] std::size_t siteSubscriptions(const EventSite* site) const;
    [[nodiscard]] std::size_t subscriptionCount() const noexcept { return m_subscriptions.size(); }

    // A delivery marks the source as notifying while it runs; deliveries nest when a handler
    // fires the same source again.
    void incrementNotifying() noexcept { ++m_notifying; }
    void decrementNotifying() noexcept;
    [[nodiscard]] bool notifying() const noexcept { return m_notifying != 0; }
    // Whether a subscription was removed since the outermost running delivery began: only then
    // must a delivery check that each site of its list is still subscribed.
    [[nodiscard]] bool subscriptionRemoved() const noexcept { return m_subscriptionRemoved; }

protected:
    // Delivers `event` to the subscribed sites whose filters pass it, calling `handler` for each.
    // The caller decides the thread (the sources of the application deliver on the UI thread
    // only). A site is passed over when it lost its last subscription during this delivery, or
    // when the event is a BubbledEvent already accepted and the site does not take accepted events.
    // A handler that throws ends the delivery; the exception reaches the caller.
    void deliver(Event& event, const std::function<void(EventSite&)>& handler);

    // `deliver` for the sites of class Site, with one of Site's handlers; sites of other classes
    // subscribed to the source are passed over.
    template <class Site, class E>
    void deliverTo(E& event, void (Site::*handler)(E*))
    {
        deliver(event, [&event, handler](EventSite& site) {
            if (auto* typed = dynamic_cast<Site*>(&site))
                (typed->*handler)(&event);
        });
    }

    // What the application's sources do: deliver on the UI thread only. Fired from another thread
    // (or with no event) it returns at once and nobody is told; the subscriptions, which belong to
    // the UI thread, are not even read.
    template <class Site, class E>
    void deliverOnUIThread(E* event, void (Site::*handler)(E*))
    {
        if (event != nullptr && OS::platformIsUIThread())
            deliverTo(*event, handler);
    }

private:
    friend class EventSite;

    struct Subscription {
        EventSite* site;
        EventFilter* filter;
    };

    // A destroyed site's subscriptions go without a trace in the site.
    void removeSite(EventSite* site);
    void removeAt(std::size_t index);
    void forgetSourceInSite(EventSite* site);

    std::vector<Subscription> m_subscriptions;
    unsigned m_notifying = 0;
    bool m_subscriptionRemoved = false;
};

} // namespace Kx
