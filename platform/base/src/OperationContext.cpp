#include "base/OperationContext.h"

#include <map>
#include <mutex>

namespace Kx {

namespace {

std::mutex s_mutex;
// Kind -> number of active operations of that kind.
std::map<int, int> s_active;

} // namespace

bool OperationContext::isOperationActive(int kind)
{
    std::lock_guard lock(s_mutex);
    const auto found = s_active.find(kind);
    return found != s_active.end() && found->second > 0;
}

OperationContext::Scope::Scope(int kind)
    : m_kind(kind)
{
    std::lock_guard lock(s_mutex);
    ++s_active[m_kind];
}

OperationContext::Scope::~Scope()
{
    std::lock_guard lock(s_mutex);
    if (--s_active[m_kind] == 0) {
        s_active.erase(m_kind);
    }
}

} // namespace Kx
