#include "base/FaultInjection.h"

#include <atomic>
#include <map>
#include <mutex>

namespace Kx::FaultInjection {

namespace {

std::mutex s_mutex;
std::map<std::string, unsigned, std::less<>> s_points;
std::atomic<bool> s_anyArmed{false};

// Called with s_mutex held.
void refreshFlag()
{
    s_anyArmed.store(!s_points.empty(), std::memory_order_release);
}

} // namespace

void arm(std::string name, unsigned passesBeforeFault)
{
    std::lock_guard lock(s_mutex);
    s_points.insert_or_assign(std::move(name), passesBeforeFault);
    refreshFlag();
}

void disarm(const std::string& name)
{
    std::lock_guard lock(s_mutex);
    s_points.erase(name);
    refreshFlag();
}

void disarmAll()
{
    std::lock_guard lock(s_mutex);
    s_points.clear();
    refreshFlag();
}

bool shouldFail(std::string_view name)
{
    if (!s_anyArmed.load(std::memory_order_acquire)) {
        return false;
    }
    std::lock_guard lock(s_mutex);
    const auto it = s_points.find(name);
    if (it == s_points.end()) {
        return false;
    }
    if (it->second > 0) {
        --it->second;
        return false;
    }
    s_points.erase(it);
    refreshFlag();
    return true;
}

ScopedFault::ScopedFault(std::string name, unsigned passesBeforeFault)
    : m_name(std::move(name))
{
    arm(m_name, passesBeforeFault);
}

ScopedFault::~ScopedFault()
{
    disarm(m_name);
}

} // namespace Kx::FaultInjection
