#include "datamodel/CloningContext.h"

#include "datamodel/Document.h"
#include "datamodel/Segment.h"

namespace Kx {

CloningContext::CloningContext(SegmentMap segmentMap) : m_segmentMap(std::move(segmentMap)) {}

Segment* CloningContext::targetOf(const Segment* source) const
{
    const auto found = m_segmentMap.find(source);
    return found == m_segmentMap.end() ? nullptr : found->second;
}

Entity* CloningContext::cloneOf(EntityId sourceId) const
{
    const auto found = m_clones.find(sourceId);
    return found == m_clones.end() ? nullptr : found->second;
}

Entity* CloningContext::sourceOf(const Entity* copy) const
{
    const auto found = m_sources.find(copy);
    return found == m_sources.end() ? nullptr : found->second;
}

Document* CloningContext::sourceAsset() const noexcept
{
    return m_segmentMap.empty() ? nullptr : m_segmentMap.begin()->first->asset();
}

Document* CloningContext::targetAsset() const noexcept
{
    return m_segmentMap.empty() || m_segmentMap.begin()->second == nullptr ? nullptr
                                                                         : m_segmentMap.begin()->second->asset();
}

Entity* CloningContext::resolveEntity(EntityId id) const
{
    if (Entity* clone = cloneOf(id))
        return clone;
    Document* source = sourceAsset();
    Entity* original = source != nullptr ? source->resolveEntity(id) : nullptr;
    if (original != nullptr) {
        if (source == targetAsset())
            return original;
        const Segment* segment = original->segment();
        const std::string rootId = segment->rootIdOf(*original);
        const Segment* target = targetOf(segment);
        if (!rootId.empty() && target != nullptr) {
            if (Entity* root = target->root(rootId))
                return root;
        }
    }
    ++m_droppedReferences;
    return nullptr;
}

} // namespace Kx
