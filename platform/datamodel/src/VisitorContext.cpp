#include "datamodel/VisitorContext.h"

#include "datamodel/MetaType.h"
#include "datamodel/Segment.h"

namespace Kx {

unsigned VisitorContext::storedVersionFromList(const MetaType& metaType) const
{
    const auto found = m_storedVersions->find(metaType.metaTypeId());
    return found != m_storedVersions->end() ? found->second : metaType.version();
}

Document* VisitorContext::asset() const noexcept
{
    return m_segment != nullptr ? m_segment->asset() : nullptr;
}

const IEntityResolver* VisitorContext::resolver() const noexcept
{
    if (m_resolver != nullptr)
        return m_resolver;
    return m_segment;
}

} // namespace Kx
