#include "datamodel/MetaTypeRegistry.h"

#include "datamodel/MetaType.h"

#include <base/Assert.h>

#include <algorithm>

namespace Kx {

MetaTypeRegistry& MetaTypeRegistry::get()
{
    // Never destroyed: meta types of other libraries unregister from their own static destructors,
    // which may run after this library's.
    static auto* registry = new MetaTypeRegistry();
    return *registry;
}

bool MetaTypeRegistry::registerType(MetaType* metaType)
{
    std::lock_guard lock(m_mutex);
    const bool identifierIsFree = m_byId.find(metaType->metaTypeId()) == m_byId.end();
    KX_ASSERT(identifierIsFree);
    if (!identifierIsFree)
        return false;
    m_byId.emplace(metaType->metaTypeId(), metaType);
    m_inOrder.push_back(metaType);
    return true;
}

void MetaTypeRegistry::unregisterType(MetaType* metaType)
{
    std::lock_guard lock(m_mutex);
    const auto found = m_byId.find(metaType->metaTypeId());
    if (found == m_byId.end() || found->second != metaType)
        return;
    m_byId.erase(found);
    m_inOrder.erase(std::remove(m_inOrder.begin(), m_inOrder.end(), metaType), m_inOrder.end());
}

MetaType* MetaTypeRegistry::find(std::string_view metaTypeId) const
{
    std::lock_guard lock(m_mutex);
    const auto found = m_byId.find(std::string(metaTypeId));
    return found == m_byId.end() ? nullptr : found->second;
}

MetaType* MetaTypeRegistry::findByTypeName(std::string_view typeName) const
{
    std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_inOrder.begin(), m_inOrder.end(),
        [&](const MetaType* metaType) { return metaType->typeName() == typeName; });
    return found == m_inOrder.end() ? nullptr : *found;
}

std::vector<MetaType*> MetaTypeRegistry::all() const
{
    std::lock_guard lock(m_mutex);
    return m_inOrder;
}

} // namespace Kx
