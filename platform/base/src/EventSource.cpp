#include "base/EventSource.h"

#include "base/BubbledEvent.h"
#include "base/BubbledEventSite.h"
#include "base/EventFilter.h"
#include "base/EventSite.h"

#include <algorithm>

namespace Kx {

namespace {

// Ends the notifying mark however the delivery ends, a throwing handler included: a source left
// marked would make every later unsubscription look as if it happened during a delivery.
class NotifyingScope {
public:
    explicit NotifyingScope(EventSource& source) : m_source(source) { m_source.incrementNotifying(); }
    ~NotifyingScope() { m_source.decrementNotifying(); }
    NotifyingScope(const NotifyingScope&) = delete;
    NotifyingScope& operator=(const NotifyingScope&) = delete;

private:
    EventSource& m_source;
};

} // namespace

EventSource::~EventSource()
{
    for (const Subscription& subscription : m_subscriptions)
        forgetSourceInSite(subscription.site);
}

bool EventSource::subscribe(EventSite* site, EventFilter* filter)
{
    if (site == nullptr)
        return false;
    const bool known = std::any_of(m_subscriptions.begin(), m_subscriptions.end(),
        [&](const Subscription& held) { return held.site == site && held.filter == filter; });
    if (known)
        return false;
    if (siteSubscriptions(site) == 0)
        site->m_sources.push_back(this);
    m_subscriptions.push_back({site, filter});
    return true;
}

bool EventSource::unsubscribe(EventSite* site, EventFilter* filter)
{
    const auto found = std::find_if(m_subscriptions.begin(), m_subscriptions.end(),
        [&](const Subscription& held) { return held.site == site && held.filter == filter; });
    if (found == m_subscriptions.end())
        return false;
    removeAt(static_cast<std::size_t>(found - m_subscriptions.begin()));
    if (siteSubscriptions(site) == 0)
        forgetSourceInSite(site);
    return true;
}

std::size_t EventSource::unsubscribeAll(EventSite* site)
{
    std::size_t removed = 0;
    for (std::size_t index = m_subscriptions.size(); index-- > 0;) {
        if (m_subscriptions[index].site == site) {
            removeAt(index);
            ++removed;
        }
    }
    if (removed != 0)
        forgetSourceInSite(site);
    return removed;
}

void EventSource::sitesForEvent(const Event& event, std::vector<EventSite*>& sites) const
{
    const std::size_t first = sites.size();
    for (const Subscription& subscription : m_subscriptions) {
        if (subscription.filter != nullptr && !subscription.filter->passes(event, *subscription.site))
            continue;
        // A site with several passing subscriptions hears the event once.
        if (std::find(sites.begin() + static_cast<std::ptrdiff_t>(first), sites.end(), subscription.site) == sites.end())
            sites.push_back(subscription.site);
    }
}

std::size_t EventSource::siteSubscriptions(const EventSite* site) const
{
    return static_cast<std::size_t>(std::count_if(m_subscriptions.begin(), m_subscriptions.end(),
        [site](const Subscription& held) { return held.site == site; }));
}

void EventSource::decrementNotifying() noexcept
{
    if (m_notifying != 0 && --m_notifying == 0)
        m_subscriptionRemoved = false;
}

void EventSource::deliver(Event& event, const std::function<void(EventSite&)>& handler)
{
    std::vector<EventSite*> sites;
    sitesForEvent(event, sites);
    const NotifyingScope notifying(*this);
    const auto* bubbled = dynamic_cast<const BubbledEvent*>(&event);
    for (EventSite* site : sites) {
        // Asked before the site is touched: a site that lost its last subscription may be gone.
        if (subscriptionRemoved() && siteSubscriptions(site) == 0)
            continue;
        if (bubbled != nullptr && bubbled->accepted()) {
            const auto* bubbledSite = dynamic_cast<const BubbledEventSite*>(site);
            if (bubbledSite == nullptr || !bubbledSite->receiveAcceptedEvents())
                continue;
        }
        handler(*site);
    }
}

void EventSource::removeSite(EventSite* site)
{
    for (std::size_t index = m_subscriptions.size(); index-- > 0;) {
        if (m_subscriptions[index].site == site)
            removeAt(index);
    }
}

void EventSource::removeAt(std::size_t index)
{
    m_subscriptions.erase(m_subscriptions.begin() + static_cast<std::ptrdiff_t>(index));
    if (m_notifying != 0)
        m_subscriptionRemoved = true;
}

void EventSource::forgetSourceInSite(EventSite* site)
{
    std::erase(site->m_sources, this);
}

} // namespace Kx
