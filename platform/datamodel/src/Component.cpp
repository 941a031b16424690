#include "datamodel/Comp/Component.h"

#include "datamodel/EntityMetaType.h"
#include "datamodel/IntrinsicMetaType.h"
#include "datamodel/MemberSet.h"
#include "datamodel/StrongRefMetaType.h"

#include <typeinfo>

namespace Kx::Comp {

Component::Component() : Entity(s_metaType()) {}

Component::Component(std::wstring name, StrongRef<Entity> definition)
    : Entity(s_metaType())
    , m_name(std::move(name))
    , m_definition(std::move(definition))
{
}

EntityMetaType& Component::s_metaType()
{
    static TEntityMetaType<Component> metaType("3CD40A3C-FAF4-4D3E-991F-B65BAA51613E", "Component", 0);
    return metaType;
}

void Component::declareMembers(unsigned, MemberSet* memberSet)
{
    memberSet->addNewMember("name", &m_name, typeid(std::wstring).name(), IntrinsicMetaType<std::wstring>::get());
    addMember(memberSet, "definition", m_definition);
}

std::wstring Component::onToString() const
{
    return Entity::onToString() + L" \"" + m_name + L"\"";
}

namespace {
const bool s_registered = ((void)Component::s_metaType(), true);
} // namespace

} // namespace Kx::Comp
