#include "datamodel/Selection.h"

#include "datamodel/EntityMetaType.h"
#include "datamodel/IntrinsicMetaType.h"
#include "datamodel/MemberSet.h"

#include <algorithm>
#include <typeinfo>

namespace Kx {

Selection::Selection() : Entity(s_metaType()) {}

Selection::Selection(std::wstring name) : Entity(s_metaType()), m_name(std::move(name)) {}

EntityMetaType& Selection::s_metaType()
{
    static TEntityMetaType<Selection> metaType("63EA1BA3-3E28-4B98-AEA4-66BAA0CD2633", "Selection", 0);
    return metaType;
}

void Selection::declareMembers(unsigned, MemberSet* memberSet)
{
    memberSet->addNewMember("name", &m_name, typeid(std::wstring).name(), IntrinsicMetaType<std::wstring>::get());
}

bool Selection::add(Entity* entity)
{
    if (entity == nullptr || contains(entity))
        return false;
    m_entities.emplace_back(entity);
    return true;
}

bool Selection::remove(const Entity* entity)
{
    return std::erase_if(m_entities, [entity](const StrongRef<Entity>& held) { return held.get() == entity; }) != 0;
}

bool Selection::contains(const Entity* entity) const
{
    return entity != nullptr
        && std::any_of(m_entities.begin(), m_entities.end(), [entity](const StrongRef<Entity>& held) { return held.get() == entity; });
}

std::wstring Selection::onToString() const
{
    return Entity::onToString() + L" \"" + m_name + L"\", " + std::to_wstring(m_entities.size()) + L" selected";
}

namespace {
// Known to the registry from the start, as every entity type a document may hold.
const bool s_registered = ((void)Selection::s_metaType(), true);
} // namespace

} // namespace Kx
