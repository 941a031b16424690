#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

class Document;
class Entity;
class EntityMetaType;
class Segment;

using EntityId = std::uint64_t;

// The id no entity has: an empty reference is saved as it.
inline constexpr EntityId kNoEntityId = 0;

// Receives the changes of the entities it watches. The before-image is the entity's binary form
// as it was when the change opened, which is all an undo needs to restore it. Additions and
// erasures come from the entity's segment; `rootId` is the root the entity holds there (empty for
// none), so that an undo can put it back where it was.
class IEntityChangeSink {
public:
    virtual ~IEntityChangeSink() = default;
    virtual void onEntityChanged(Entity& entity, std::vector<std::uint8_t> beforeImage, bool notify) = 0;
    // Whether a change of `entity` starting now would keep a before-image: saving the entity for
    // one is skipped when the sink holds an image of it already.
    [[nodiscard]] virtual bool needsBeforeImage(const Entity&) const { return true; }
    virtual void onEntityAdded(Entity& entity, Segment& segment, const std::string& rootId) {}
    virtual void onEntityErased(Entity& entity, Segment& segment, const std::string& rootId) {}
};

// Finds entities by id: a segment, a document, or a cloning context that maps the ids of copied
// entities to their copies. References are saved as ids and found again through one of these.
class IEntityResolver {
public:
    virtual ~IEntityResolver() = default;
    // Null when no entity has that id.
    [[nodiscard]] virtual Entity* resolveEntity(EntityId id) const = 0;
};

// An object of a document: a set of members described by its EntityMetaType. Entities are
// reference counted for StrongRef; the members are fields of the derived class. An entity belongs
// to at most one segment, which gives it its id.
class Entity {
public:
    explicit Entity(EntityMetaType& metaType) noexcept : m_metaType(&metaType) {}
    virtual ~Entity() = default;

    Entity(const Entity&) = delete;
    Entity& operator=(const Entity&) = delete;

    [[nodiscard]] EntityMetaType& entityMetaType() const noexcept { return *m_metaType; }
    [[nodiscard]] EntityId id() const noexcept { return m_id; }
    void id(EntityId id) noexcept { m_id = id; }
    [[nodiscard]] Segment* segment() const noexcept { return m_segment; }
    // The document of the entity's segment; null for an entity in no segment.
    [[nodiscard]] Document* asset() const noexcept;

    // How many changes were published on this entity.
    [[nodiscard]] std::uint64_t changeCount() const noexcept { return m_changeCount.load(std::memory_order_relaxed); }
    [[nodiscard]] IEntityChangeSink* changeSink() const noexcept { return m_changeSink; }
    void changeSink(IEntityChangeSink* sink) noexcept { m_changeSink = sink; }

    void addRef() const noexcept { m_references.fetch_add(1, std::memory_order_relaxed); }
    // Answers true when the last reference went and the entity was deleted.
    bool release() const noexcept;
    [[nodiscard]] std::uint32_t referenceCount() const noexcept { return m_references.load(std::memory_order_relaxed); }

    // The entity seen as the interface `interfaceId`, or null. Every entity answers for the
    // identifier of its own meta type; classes that implement further interfaces add theirs.
    [[nodiscard]] virtual void* queryInterface(std::string_view interfaceId);
    // A short description for logs and dumps: the type name and the id.
    [[nodiscard]] virtual std::wstring onToString() const;

private:
    friend class EntityChange;
    friend class Segment;

    EntityMetaType* m_metaType;
    IEntityChangeSink* m_changeSink = nullptr;
    Segment* m_segment = nullptr;
    EntityId m_id = 0;
    std::atomic<std::uint64_t> m_changeCount{0};
    mutable std::atomic<std::uint32_t> m_references{0};
};

} // namespace Kx
