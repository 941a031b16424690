#pragma once

#include <base/EventSite.h>

namespace Kx {

// A site of bubbled events. By default it is passed over once another site has accepted the
// event; a site that must see every event (a log, a counter of users) asks for accepted ones too.
class BubbledEventSite : public EventSite {
public:
    BubbledEventSite() = default;
    explicit BubbledEventSite(bool receiveAccepted) noexcept : m_receiveAccepted(receiveAccepted) {}

    [[nodiscard]] virtual bool receiveAcceptedEvents() const { return m_receiveAccepted; }
    void receiveAcceptedEvents(bool receive) noexcept { m_receiveAccepted = receive; }

private:
    bool m_receiveAccepted = false;
};

} // namespace Kx
