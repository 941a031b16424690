#include "datamodel/Segment.h"

#include "datamodel/Document.h"
#include "datamodel/EntityMetaType.h"
#include "datamodel/TransactionManager.h"
#include "internal/MemberVisitor.h"

#include <base/Assert.h>

#include <unordered_map>

namespace Kx {

Segment::Segment(Document& document, std::string name, bool transient)
    : m_document(&document)
    , m_name(std::move(name))
    , m_transient(transient)
{
}

Segment::~Segment()
{
    clear();
}

EntityId Segment::add(Entity& entity)
{
    KX_ASSERT(entity.segment() == nullptr);
    if (entity.segment() != nullptr)
        return kNoEntityId;
    const EntityId id = m_document->allocateEntityId();
    (void)attach(entity, id, std::string());
    if (IEntityChangeSink* sink = entity.changeSink())
        sink->onEntityAdded(entity, *this, std::string());
    return id;
}

bool Segment::addRoot(const std::string& rootId, Entity& entity)
{
    KX_ASSERT(!rootId.empty());
    KX_ASSERT(root(rootId) == nullptr);
    KX_ASSERT(entity.segment() == nullptr);
    if (rootId.empty() || root(rootId) != nullptr || entity.segment() != nullptr)
        return false;
    (void)attach(entity, m_document->allocateEntityId(), rootId);
    if (IEntityChangeSink* sink = entity.changeSink())
        sink->onEntityAdded(entity, *this, rootId);
    return true;
}

bool Segment::erase(Entity& entity)
{
    if (entity.segment() != this)
        return false;
    // Held here until the transactions have taken their own reference.
    const StrongRef<Entity> keep(&entity);
    const std::string rootId = rootIdOf(entity);
    IEntityChangeSink* sink = entity.changeSink();
    detach(entity);
    if (sink != nullptr)
        sink->onEntityErased(entity, *this, rootId);
    return true;
}

Entity* Segment::find(EntityId id) const
{
    const auto found = m_entities.find(id);
    return found == m_entities.end() ? nullptr : found->second.get();
}

Entity* Segment::root(std::string_view rootId) const
{
    const auto found = m_roots.find(rootId);
    return found == m_roots.end() ? nullptr : find(found->second);
}

std::string Segment::rootIdOf(const Entity& entity) const
{
    if (entity.segment() != this)
        return {};
    const auto found = m_rootIdOf.find(entity.id());
    return found == m_rootIdOf.end() ? std::string() : found->second;
}

std::vector<Entity*> Segment::inHookOrder() const
{
    std::vector<Entity*> ordered;
    ordered.reserve(m_entities.size());
    for (const auto& [rootId, id] : m_roots)
        ordered.push_back(find(id));
    for (const auto& [id, entity] : m_entities) {
        if (m_rootIdOf.empty() || !m_rootIdOf.contains(id))
            ordered.push_back(entity.get());
    }
    return ordered;
}

Entity* Segment::resolveEntity(EntityId id) const
{
    if (Entity* entity = find(id))
        return entity;
    return m_document->resolveEntity(id);
}

bool Segment::attach(Entity& entity, EntityId id, const std::string& rootId)
{
    if (id == kNoEntityId || (!rootId.empty() && m_roots.count(rootId) != 0))
        return false;
    // Entities come in id order when a segment is read or grows: then the place is the end.
    const auto place = m_entities.empty() || m_entities.rbegin()->first < id ? m_entities.end() : m_entities.lower_bound(id);
    if (place != m_entities.end() && place->first == id)
        return false;
    m_entities.emplace_hint(place, id, StrongRef<Entity>(&entity));
    if (!rootId.empty()) {
        m_roots.emplace(rootId, id);
        m_rootIdOf.emplace(id, rootId);
    }
    entity.m_segment = this;
    entity.m_id = id;
    entity.changeSink(&m_document->transactions());
    m_document->noteEntityId(id);
    return true;
}

void Segment::detach(Entity& entity)
{
    if (const auto root = m_rootIdOf.find(entity.id()); root != m_rootIdOf.end()) {
        m_roots.erase(root->second);
        m_rootIdOf.erase(root);
    }
    entity.m_segment = nullptr;
    entity.changeSink(nullptr);
    m_entities.erase(entity.id());
}

void Segment::clear()
{
    // Entities that refer to each other would keep each other alive: every reference goes before
    // any entity does. Types without reference members are skipped (asked once per type).
    std::unordered_map<const EntityMetaType*, bool> holdsReferences;
    for (const auto& [id, entity] : m_entities) {
        const EntityMetaType* type = &entity->entityMetaType();
        auto [known, inserted] = holdsReferences.try_emplace(type, false);
        if (inserted)
            known->second = MemberVisitor::holdsReferences(entity->entityMetaType().memberSet());
        if (known->second)
            MemberVisitor::clearReferences(entity.get(), entity->entityMetaType().memberSet());
        entity->m_segment = nullptr;
        entity->changeSink(nullptr);
    }
    m_roots.clear();
    m_rootIdOf.clear();
    m_entities.clear();
}

} // namespace Kx
