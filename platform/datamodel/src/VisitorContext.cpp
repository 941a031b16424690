#include "datamodel/VisitorContext.h"

#include "datamodel/MetaType.h"

namespace Kx {

unsigned VisitorContext::storedVersionOf(const MetaType& metaType) const
{
    if (m_storedVersions != nullptr) {
        const auto found = m_storedVersions->find(metaType.metaTypeId());
        if (found != m_storedVersions->end())
            return found->second;
    }
    return metaType.version();
}

} // namespace Kx
