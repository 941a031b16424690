#include "datamodel/Document.h"

#include "datamodel/BlobFolder.h"
#include "datamodel/Segment.h"
#include "datamodel/TransactionManager.h"

#include <base/Assert.h>
#include <core/Guid.h>

#include <algorithm>

namespace Kx {

Document::Document(EBlobFolderKind blobFolderKind)
    : m_identifier(newIdentifier())
    , m_blobFolder(std::make_unique<BlobFolder>(this, blobFolderKind == EBlobFolderKind::eMultiLevel))
    , m_transactions(std::make_unique<TransactionManager>(*this))
{
}

Document::~Document()
{
    // The undo history holds erased entities, the segments the others; each drops the references
    // its entities hold before letting them go, so no cycle of references outlives the document.
    m_transactions->clear();
    for (auto& segment : m_segments)
        segment->clear();
    m_segments.clear();
}

Segment* Document::createSegment(std::string name, bool transient)
{
    KX_ASSERT(!name.empty());
    KX_ASSERT(segment(name) == nullptr);
    if (name.empty() || segment(name) != nullptr)
        return nullptr;
    m_segments.push_back(std::unique_ptr<Segment>(new Segment(*this, std::move(name), transient)));
    return m_segments.back().get();
}

Segment* Document::segment(std::string_view name) const
{
    const auto found = std::find_if(m_segments.begin(), m_segments.end(),
        [&](const auto& segment) { return segment->name() == name; });
    return found == m_segments.end() ? nullptr : found->get();
}

bool Document::removeSegment(Segment& segment)
{
    const auto found = std::find_if(m_segments.begin(), m_segments.end(),
        [&](const auto& owned) { return owned.get() == &segment; });
    if (found == m_segments.end())
        return false;
    m_transactions->clear();
    (*found)->clear();
    m_segments.erase(found);
    return true;
}

IBlobFolder* Document::blobFolder() const noexcept
{
    return m_blobFolder.get();
}

Entity* Document::resolveEntity(EntityId id) const
{
    for (const auto& segment : m_segments) {
        if (Entity* entity = segment->find(id))
            return entity;
    }
    return nullptr;
}

std::size_t Document::entityCount() const
{
    std::size_t count = 0;
    for (const auto& segment : m_segments)
        count += segment->size();
    return count;
}

void Document::nextEntityId(EntityId next) noexcept
{
    m_nextEntityId = std::max(m_nextEntityId, next);
}

void Document::noteEntityId(EntityId id) noexcept
{
    if (id >= m_nextEntityId)
        m_nextEntityId = id + 1;
}

std::string Document::newIdentifier()
{
    return telvarin::platform::core::newGuid();
}

} // namespace Kx
