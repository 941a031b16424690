#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

namespace Kx {

class Entity;
class EntityMetaType;

using EntityId = std::uint64_t;

// Receives the changes of the entities it watches. The before-image is the entity's binary form
// as it was when the change opened, which is all an undo needs to restore it.
class IEntityChangeSink {
public:
    virtual ~IEntityChangeSink() = default;
    virtual void onEntityChanged(Entity& entity, std::vector<std::uint8_t> beforeImage, bool notify) = 0;
};

// An object of a document: a set of members described by its EntityMetaType. Entities are
// reference counted for StrongRef; the members are fields of the derived class.
class Entity {
public:
    explicit Entity(EntityMetaType& metaType) noexcept : m_metaType(&metaType) {}
    virtual ~Entity() = default;

    Entity(const Entity&) = delete;
    Entity& operator=(const Entity&) = delete;

    [[nodiscard]] EntityMetaType& entityMetaType() const noexcept { return *m_metaType; }
    [[nodiscard]] EntityId id() const noexcept { return m_id; }
    void id(EntityId id) noexcept { m_id = id; }

    // How many changes were published on this entity.
    [[nodiscard]] std::uint64_t changeCount() const noexcept { return m_changeCount.load(std::memory_order_relaxed); }
    [[nodiscard]] IEntityChangeSink* changeSink() const noexcept { return m_changeSink; }
    void changeSink(IEntityChangeSink* sink) noexcept { m_changeSink = sink; }

    void addRef() const noexcept { m_references.fetch_add(1, std::memory_order_relaxed); }
    // Answers true when the last reference went and the entity was deleted.
    bool release() const noexcept;
    [[nodiscard]] std::uint32_t referenceCount() const noexcept { return m_references.load(std::memory_order_relaxed); }

private:
    friend class EntityChange;

    EntityMetaType* m_metaType;
    IEntityChangeSink* m_changeSink = nullptr;
    EntityId m_id = 0;
    std::atomic<std::uint64_t> m_changeCount{0};
    mutable std::atomic<std::uint32_t> m_references{0};
};

} // namespace Kx
