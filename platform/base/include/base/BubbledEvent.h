#pragma once

#include <base/Event.h>

namespace Kx {

// An event that a site can take for itself: once accepted, it reaches only the sites that ask for
// accepted events too (BubbledEventSite::receiveAcceptedEvents), so the first site able to answer
// a request keeps the others from answering it again.
class BubbledEvent : public Event {
public:
    using Event::Event;
    BubbledEvent(const BubbledEvent&) = default;
    BubbledEvent& operator=(const BubbledEvent&) = default;
    ~BubbledEvent() override;

    [[nodiscard]] bool accepted() const noexcept { return m_accepted; }
    // Cannot be undone for this delivery: the sites already passed over stay passed over.
    void accept() noexcept { m_accepted = true; }

private:
    bool m_accepted = false;
};

} // namespace Kx
