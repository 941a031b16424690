#pragma once

#include <datamodel/Entity.h>

#include <compare>
#include <string>
#include <vector>

namespace Kx {

// Where an object sits in a document's structure: the ids of the entities passed on the way from a
// root down to it (an occurrence of a component in an assembly, a body inside that occurrence).
// The same entity reached along two paths is two objects, which is why events name paths rather
// than entities. Printed as the ids joined by '/', "" for the empty path.
class ObjectPath {
public:
    ObjectPath() = default;
    explicit ObjectPath(std::vector<EntityId> ids) : m_ids(std::move(ids)) {}

    [[nodiscard]] const std::vector<EntityId>& ids() const noexcept { return m_ids; }
    [[nodiscard]] bool empty() const noexcept { return m_ids.empty(); }
    [[nodiscard]] std::size_t depth() const noexcept { return m_ids.size(); }
    // The first and the last id; kNoEntityId for the empty path.
    [[nodiscard]] EntityId root() const noexcept { return m_ids.empty() ? kNoEntityId : m_ids.front(); }
    [[nodiscard]] EntityId leaf() const noexcept { return m_ids.empty() ? kNoEntityId : m_ids.back(); }

    // The path one step further down; appending kNoEntityId, which names nothing, changes nothing.
    ObjectPath& append(EntityId id);
    // The path without its last step (empty stays empty).
    [[nodiscard]] ObjectPath parent() const;
    // Whether this path runs through `other` (a path starts with itself).
    [[nodiscard]] bool startsWith(const ObjectPath& other) const;

    // The entity at the end of the path, or null when the path is empty or any step names no
    // entity `resolver` knows: a path into a closed or changed structure must not find a stranger.
    [[nodiscard]] Entity* resolve(const IEntityResolver& resolver) const;

    [[nodiscard]] std::wstring toString() const;
    // The exact inverse of toString(); false (and `path` unchanged) for any other text.
    [[nodiscard]] static bool fromString(const std::wstring& text, ObjectPath& path);

    friend bool operator==(const ObjectPath&, const ObjectPath&) = default;
    friend std::strong_ordering operator<=>(const ObjectPath&, const ObjectPath&) = default;

private:
    std::vector<EntityId> m_ids;
};

} // namespace Kx
