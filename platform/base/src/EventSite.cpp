#include "base/EventSite.h"

#include "base/EventSource.h"

namespace Kx {

EventSite::~EventSite()
{
    // Taking a site out of a source also edits the site's list: walk a list of our own.
    const std::vector<EventSource*> sources = std::move(m_sources);
    for (EventSource* source : sources)
        source->removeSite(this);
}

} // namespace Kx
