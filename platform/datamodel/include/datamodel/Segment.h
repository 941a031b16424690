#pragma once

#include <datamodel/Entity.h>
#include <datamodel/StrongRef.h>

#include <cstddef>
#include <map>
#include <memory_resource>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Kx {

class Document;

// A named part of a document holding entities. The segment owns one reference on each of its
// entities and gives them ids (unique in the whole document, so references can cross segments).
// Some entities are roots: found by a root id (a text the owning subsystem chooses, e.g. its
// registry's name) rather than by entity id. A transient segment belongs to the document while it
// is open but is never saved.
// Adding and erasing entities is published to the document's transactions, so it can be undone.
class Segment final : public IEntityResolver {
public:
    // Its nodes come from the segment's own pool: a document of many entities makes and drops
    // them in bulk, as it opens and closes.
    using EntityMap = std::pmr::map<EntityId, StrongRef<Entity>>;

    ~Segment() override;
    Segment(const Segment&) = delete;
    Segment& operator=(const Segment&) = delete;

    [[nodiscard]] const std::string& name() const noexcept { return m_name; }
    [[nodiscard]] bool isTransient() const noexcept { return m_transient; }
    [[nodiscard]] Document* asset() const noexcept { return m_document; }

    // Takes the entity into the segment and answers its new id; kNoEntityId (and a report) when it
    // already belongs to a segment.
    EntityId add(Entity& entity);
    template <class T>
    StrongRef<T> add(const StrongRefCreator<T>& created)
    {
        (void)add(*created.get());
        return created;
    }
    // Adds the entity as the root `rootId`; false (and nothing added) when the segment has that root
    // already, the id is empty, or the entity belongs to a segment.
    bool addRoot(const std::string& rootId, Entity& entity);
    // Takes the entity out of the segment (its root with it); false when it is not in this segment.
    // The entity lives on while references or an undo step hold it.
    bool erase(Entity& entity);

    [[nodiscard]] Entity* find(EntityId id) const;
    // Null when the segment has no such root.
    [[nodiscard]] Entity* root(std::string_view rootId) const;
    // The root id the entity holds here; empty when it is not a root.
    [[nodiscard]] std::string rootIdOf(const Entity& entity) const;
    [[nodiscard]] const std::map<std::string, EntityId, std::less<>>& roots() const noexcept { return m_roots; }
    // In id order, which is also the order of creation and of saving.
    [[nodiscard]] const EntityMap& entities() const noexcept { return m_entities; }
    [[nodiscard]] std::size_t size() const noexcept { return m_entities.size(); }
    [[nodiscard]] bool empty() const noexcept { return m_entities.empty(); }
    // Roots first (in root id order), then the other entities in id order: the order in which the
    // document runs its hooks, so a registry kept as a root is ready before the entities using it.
    [[nodiscard]] std::vector<Entity*> inHookOrder() const;

    // This segment's entities first, then the document's other segments.
    [[nodiscard]] Entity* resolveEntity(EntityId id) const override;

private:
    friend class Document;
    friend class TransactionManager;
    friend class SegmentReader;

    Segment(Document& document, std::string name, bool transient);

    // Puts an entity back under an id it had (undo of an erase, loading): no transaction hears it.
    // False when the id is taken or the root is.
    bool attach(Entity& entity, EntityId id, const std::string& rootId);
    // Takes an entity out without telling the transactions (undo of an addition).
    void detach(Entity& entity);
    // Drops every reference the entities hold and then the entities; the document is closing.
    void clear();

    Document* m_document;
    std::string m_name;
    bool m_transient;
    std::pmr::unsynchronized_pool_resource m_entityNodes;
    EntityMap m_entities{&m_entityNodes};
    std::map<std::string, EntityId, std::less<>> m_roots;
    // The same roots by entity: saving, opening and pasting ask an entity's root id per entity.
    std::unordered_map<EntityId, std::string> m_rootIdOf;
};

} // namespace Kx
