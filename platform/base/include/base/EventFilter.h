#pragma once

#include <base/Event.h>

namespace Kx {

class EventSite;

// Chooses the events one subscription receives. A site subscribed with several filters receives an
// event when any of them passes it; a subscription without a filter receives every event. Filters
// belong to the subscriber, which keeps them alive while they are subscribed.
class EventFilter {
public:
    virtual ~EventFilter();
    [[nodiscard]] virtual bool passes(const Event& event, const EventSite& site) const = 0;
};

// Passes the events of one timing: a site that only reacts after changes are made subscribes with
// a filter for Event::ePost.
class TimingEventFilter final : public EventFilter {
public:
    explicit TimingEventFilter(Event::ETiming timing) noexcept : m_timing(timing) {}
    [[nodiscard]] bool passes(const Event& event, const EventSite&) const override { return event.timing() == m_timing; }

private:
    Event::ETiming m_timing;
};

} // namespace Kx
