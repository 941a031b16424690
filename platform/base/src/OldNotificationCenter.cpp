#include "base/OldNotificationCenter.h"

#include "base/AppLogMgr.h"

namespace Kx {

namespace {
// A long session must not keep every notice it ever showed.
constexpr std::size_t s_keptNotices = 64;
} // namespace

OldNotificationCenter& OldNotificationCenter::get()
{
    static OldNotificationCenter s_center;
    return s_center;
}

void OldNotificationCenter::sendNotification(const std::wstring& type, const std::wstring& id,
    const std::wstring& title, const std::wstring& text)
{
    Notification notice{type, id, title, text};
    AppLogMgr::appLogEx(ELogLevel::eInfo, L"Notification " + id + L": " + title + L": " + text);
    Listener listener;
    {
        std::lock_guard lock(m_mutex);
        m_sent.push_back(notice);
        if (m_sent.size() > s_keptNotices)
            m_sent.erase(m_sent.begin());
        listener = m_listener;
    }
    // Called outside the lock: a listener may send a notice of its own.
    if (listener)
        listener(notice);
}

OldNotificationCenter::Listener OldNotificationCenter::setListener(Listener listener)
{
    std::lock_guard lock(m_mutex);
    std::swap(listener, m_listener);
    return listener;
}

std::vector<Notification> OldNotificationCenter::sent() const
{
    std::lock_guard lock(m_mutex);
    return m_sent;
}

void OldNotificationCenter::clear()
{
    std::lock_guard lock(m_mutex);
    m_sent.clear();
}

} // namespace Kx
