#pragma once

#include <datamodel/Entity.h>

#include <cstddef>
#include <map>
#include <string>

namespace Kx {

class CloningStream;
class Document;
class Segment;

// Which segment receives the copies of the entities of which segment (source to target).
using SegmentMap = std::map<const Segment*, Segment*>;

// The state of one copy and paste: the segment map, and the copies made so far by the ids of
// their sources. While the copies are read back it finds references again (the resolver of the
// paste): a reference to an entity that was copied goes to its copy; a reference to one that was
// not stays as it is inside the same document; across documents it goes to the root of the same
// root id in the target of its segment (a segment's registry, say), and else it is dropped
// (counted in droppedReferences).
class CloningContext final : public IEntityResolver {
public:
    explicit CloningContext(SegmentMap segmentMap);

    [[nodiscard]] const SegmentMap& segmentMap() const noexcept { return m_segmentMap; }
    // Null when the map names no target for `source`.
    [[nodiscard]] Segment* targetOf(const Segment* source) const;
    // The copy made of the entity that had `sourceId`; null when it was not copied.
    [[nodiscard]] Entity* cloneOf(EntityId sourceId) const;
    [[nodiscard]] const std::map<EntityId, Entity*>& clones() const noexcept { return m_clones; }
    // The entity `copy` was made from; null for an entity that is not a copy of this paste.
    [[nodiscard]] Entity* sourceOf(const Entity* copy) const;
    [[nodiscard]] std::size_t droppedReferences() const noexcept { return m_droppedReferences; }
    // The stream the copy runs through; null before a CloningStream took the context.
    [[nodiscard]] CloningStream* stream() const noexcept { return m_stream; }
    [[nodiscard]] Document* sourceAsset() const noexcept;
    [[nodiscard]] Document* targetAsset() const noexcept;

    // `id` is a source id, as the copies were written with.
    [[nodiscard]] Entity* resolveEntity(EntityId id) const override;

private:
    friend class CloningStream;

    SegmentMap m_segmentMap;
    std::map<EntityId, Entity*> m_clones;
    std::map<const Entity*, Entity*> m_sources;
    CloningStream* m_stream = nullptr;
    mutable std::size_t m_droppedReferences = 0;
};

} // namespace Kx
