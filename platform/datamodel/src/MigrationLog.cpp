#include "datamodel/MigrationLog.h"

#include "datamodel/Entity.h"
#include "datamodel/EntityMetaType.h"
#include "datamodel/ValueMetaType.h"
#include "datamodel/VisitorContext.h"

#include <algorithm>

namespace Kx {

void MigrationLog::addValue(ValueMetaType& metaType, void* value, unsigned storedVersion, const VisitorContext& context)
{
    m_values.push_back(ValueEntry{&metaType, value, storedVersion, context.entity(), context.segment()});
    noteType(metaType.metaTypeId(), storedVersion);
}

void MigrationLog::addEntity(Entity& entity, unsigned storedVersion)
{
    m_entities.push_back(EntityEntry{&entity, storedVersion});
    noteType(entity.entityMetaType().metaTypeId(), storedVersion);
}

void MigrationLog::noteType(const std::string& metaTypeId, unsigned storedVersion)
{
    const auto [found, inserted] = m_types.emplace(metaTypeId, storedVersion);
    if (!inserted)
        found->second = std::min(found->second, storedVersion);
}

void MigrationLog::complete(const VisitorContext& context)
{
    // Taken out first: a migration hook may load further data with this log in its context.
    const std::vector<ValueEntry> values = std::move(m_values);
    const std::vector<EntityEntry> entities = std::move(m_entities);
    m_values.clear();
    m_entities.clear();
    for (const ValueEntry& entry : values) {
        const VisitorContext valueContext = context.withSegment(entry.segment).withEntity(entry.entity, XMLNode());
        (void)entry.metaType->completeMigration(entry.value, entry.storedVersion, valueContext);
    }
    for (const EntityEntry& entry : entities) {
        const VisitorContext entityContext = context.withSegment(entry.entity->segment());
        (void)entry.entity->entityMetaType().postMigrate(*entry.entity, entry.storedVersion, entityContext);
    }
}

} // namespace Kx
