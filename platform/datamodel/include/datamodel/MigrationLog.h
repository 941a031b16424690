#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Kx {

class Entity;
class Segment;
class ValueMetaType;
class VisitorContext;

// The migrations a document load defers until all of the document is read (a migrated value may
// refer to entities read after it): the values and entities stored with older versions, in the
// order they were read.
class MigrationLog {
public:
    void addValue(ValueMetaType& metaType, void* value, unsigned storedVersion, const VisitorContext& context);
    void addEntity(Entity& entity, unsigned storedVersion);

    [[nodiscard]] bool empty() const noexcept { return m_values.empty() && m_entities.empty(); }
    // Every type migrated so far, by identifier, with the oldest version it was stored with.
    [[nodiscard]] const std::map<std::string, unsigned>& migratedTypes() const noexcept { return m_types; }
    [[nodiscard]] bool migrated(const std::string& metaTypeId) const { return m_types.count(metaTypeId) != 0; }

    // Completes the migration of every value, then of every entity, in the order they were read,
    // and empties the lists (the types stay listed). `context` is the load's context.
    void complete(const VisitorContext& context);

private:
    struct ValueEntry {
        ValueMetaType* metaType;
        void* value;
        unsigned storedVersion;
        Entity* entity;
        Segment* segment;
    };
    struct EntityEntry {
        Entity* entity;
        unsigned storedVersion;
    };

    void noteType(const std::string& metaTypeId, unsigned storedVersion);

    std::vector<ValueEntry> m_values;
    std::vector<EntityEntry> m_entities;
    std::map<std::string, unsigned> m_types;
};

} // namespace Kx
