#include "datamodel/Entity.h"

namespace Kx {

bool Entity::release() const noexcept
{
    if (m_references.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return false;
    delete this;
    return true;
}

} // namespace Kx
