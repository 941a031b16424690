#pragma once

#include <datamodel/Entity.h>
#include <datamodel/StrongRef.h>

#include <string>

namespace Kx {

class EntityMetaType;
class MemberSet;

namespace Comp {

// A named part of a design that refers to what it is made from: its definition (another entity of
// the document, e.g. the body or sub-assembly it places). Both are saved with the document; the
// definition as a reference, so a copy pasted elsewhere refers to the copy of its definition.
class Component final : public Entity {
public:
    Component();
    explicit Component(std::wstring name, StrongRef<Entity> definition = {});
    [[nodiscard]] static EntityMetaType& s_metaType();
    void declareMembers(unsigned version, MemberSet* memberSet);

    [[nodiscard]] const std::wstring& name() const noexcept { return m_name; }
    void name(std::wstring name) { m_name = std::move(name); }
    [[nodiscard]] const StrongRef<Entity>& definition() const noexcept { return m_definition; }
    void definition(StrongRef<Entity> definition) { m_definition = std::move(definition); }
    [[nodiscard]] bool references(const Entity* entity) const noexcept
    {
        return entity != nullptr && m_definition.get() == entity;
    }

    [[nodiscard]] std::wstring onToString() const override;

private:
    std::wstring m_name;
    StrongRef<Entity> m_definition;
};

} // namespace Comp
} // namespace Kx
