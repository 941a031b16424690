#include "datamodel/Entity.h"

#include "datamodel/EntityMetaType.h"
#include "datamodel/Segment.h"

#include <base/Strings.h>

namespace Kx {

Document* Entity::asset() const noexcept
{
    return m_segment != nullptr ? m_segment->asset() : nullptr;
}

bool Entity::release() const noexcept
{
    if (m_references.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return false;
    delete this;
    return true;
}

void* Entity::queryInterface(std::string_view interfaceId)
{
    return interfaceId == m_metaType->metaTypeId() ? this : nullptr;
}

std::wstring Entity::onToString() const
{
    return ToIString(m_metaType->typeName()) + L" #" + std::to_wstring(m_id);
}

} // namespace Kx
