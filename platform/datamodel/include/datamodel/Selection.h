#pragma once

#include <datamodel/Entity.h>
#include <datamodel/StrongRef.h>

#include <string>
#include <vector>

namespace Kx {

class EntityMetaType;
class MemberSet;

// The entities a user picked, for a command to act on (material events hand selections to the
// sites that select the entities carrying a material). The selected entities are held by counted
// references, so a selection never points at a deleted entity; they are the pick of the moment
// and are not saved with the document, only the selection's name is.
class Selection final : public Entity {
public:
    Selection();
    explicit Selection(std::wstring name);
    [[nodiscard]] static EntityMetaType& s_metaType();
    void declareMembers(unsigned version, MemberSet* memberSet);

    [[nodiscard]] const std::wstring& name() const noexcept { return m_name; }
    void name(std::wstring name) { m_name = std::move(name); }

    // Adds `entity` unless it is null or already selected; answers whether it was added.
    bool add(Entity* entity);
    bool remove(const Entity* entity);
    [[nodiscard]] bool contains(const Entity* entity) const;
    void clear() noexcept { m_entities.clear(); }
    // In the order they were picked.
    [[nodiscard]] const std::vector<StrongRef<Entity>>& entities() const noexcept { return m_entities; }
    [[nodiscard]] std::size_t size() const noexcept { return m_entities.size(); }
    [[nodiscard]] bool empty() const noexcept { return m_entities.empty(); }

    [[nodiscard]] std::wstring onToString() const override;

private:
    std::wstring m_name;
    std::vector<StrongRef<Entity>> m_entities;
};

} // namespace Kx
