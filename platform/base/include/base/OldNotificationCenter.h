#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace Kx {

// A notice for the user: its kind ("Finished", "Warning"...), an identifier that lets the host
// replace an older notice of the same kind of news, and the texts shown.
struct Notification {
    std::wstring type;
    std::wstring id;
    std::wstring title;
    std::wstring text;
};

// Where the application tells the user about things no dialog asked for. The host listens (the
// console prints each notice on one line); without a listener a notice goes to the log only. The
// notices sent are also kept, newest last, so a host that starts listening late can show them.
class OldNotificationCenter {
public:
    using Listener = std::function<void(const Notification&)>;

    [[nodiscard]] static OldNotificationCenter& get();

    void sendNotification(const std::wstring& type, const std::wstring& id, const std::wstring& title,
        const std::wstring& text);
    // Replaces the listener; a null one stops listening. Answers the previous listener.
    Listener setListener(Listener listener);
    [[nodiscard]] std::vector<Notification> sent() const;
    void clear();

private:
    OldNotificationCenter() = default;

    mutable std::mutex m_mutex;
    Listener m_listener;
    std::vector<Notification> m_sent;
};

} // namespace Kx
