#pragma once

namespace Kx {

// Something an EventSource announces to its subscribed sites. Concrete events carry their own
// data; the framework only knows when, relative to what it announces, the event is sent.
class Event {
public:
    // Sent before the announced change is made (a site may still prepare for it, or claim it by
    // accepting a bubbled event), or after it was made (or, for a query, when the answer is wanted).
    enum ETiming { ePre, ePost };

    explicit Event(ETiming timing) noexcept : m_timing(timing) {}
    Event(const Event&) = default;
    Event& operator=(const Event&) = default;
    virtual ~Event();

    [[nodiscard]] ETiming timing() const noexcept { return m_timing; }

private:
    ETiming m_timing;
};

} // namespace Kx
