#pragma once

#include <cstdint>
#include <vector>

namespace Kx {

class Entity;

enum EEntityChangeKind : unsigned {
    eEntityAdded = 0,
    eEntityModified = 1,
    eEntityErased = 2,
};

enum EEntityChangeScope : unsigned {
    eChangeUndoable = 1u << 0,
    eChangeNotifies = 1u << 1,
};

// Member index that stands for "the member is not known in advance".
inline constexpr unsigned kAnyMember = 65535;

// A scoped record of one change to an entity's members: opened before the change, published when
// it ends. While open it holds the entity's before-image (only when someone listens and the change
// is undoable), so the change can be undone. A change on a null entity records nothing.
// Additions and erasures are published by the entity's segment, which knows where the entity goes.
class EntityChange {
public:
    EntityChange(Entity* entity, unsigned kind, unsigned memberIndex, unsigned scope, unsigned detail, bool notify);
    ~EntityChange();

    EntityChange(const EntityChange&) = delete;
    EntityChange& operator=(const EntityChange&) = delete;

    [[nodiscard]] unsigned kind() const noexcept { return m_kind; }
    [[nodiscard]] unsigned memberIndex() const noexcept { return m_memberIndex; }

private:
    Entity* m_entity;
    std::vector<std::uint8_t> m_beforeImage;
    unsigned m_kind;
    unsigned m_memberIndex;
    unsigned m_scope;
    bool m_notify;
};

} // namespace Kx
