#pragma once

#include <datamodel/MetaType.h>

#include <base/XMLNode.h>

#include <cstdint>
#include <string>
#include <unordered_map>

namespace Kx {

class CloningContext;
class Document;
class Entity;
class IEntityResolver;
class MigrationLog;
class Segment;
struct Member;

// Versions of the meta types a stream was written with, by meta type identifier.
using StoredVersions = std::unordered_map<std::string, unsigned>;

// What the data model is doing while it visits a value. Combinable flags: an undo restores an
// entity with eVisitLoad | eVisitUndo, a paste reads its copies with eVisitLoad | eVisitClone.
enum EVisitorMode : std::uint32_t {
    eVisitNone = 0,
    eVisitSave = 1u << 0,
    eVisitLoad = 1u << 1,
    eVisitUndo = 1u << 2,
    eVisitRedo = 1u << 3,
    eVisitAbort = 1u << 4,
    eVisitClone = 1u << 5,
    eVisitMigrate = 1u << 6,
    eVisitJSON = 1u << 7,
    // The document being loaded is a copy of another one (opened as a copy, or inserted).
    eVisitCopiedAsset = 1u << 8,
};

// Passed down every visit of a member: the mode, the entity that owns the member, the member
// itself and, in XML streams, the element that holds the member; for visits inside a document,
// the segment, how references are found, and the cloning or migration under way. A visit of a
// nested member gets a derived context (forMember, with…), so a context never changes under the
// code that received it.
class VisitorContext {
public:
    VisitorContext() = default;
    explicit VisitorContext(std::uint32_t mode, Entity* entity = nullptr) : m_mode(mode), m_entity(entity) {}

    [[nodiscard]] std::uint32_t mode() const noexcept { return m_mode; }
    [[nodiscard]] bool is(EVisitorMode flag) const noexcept { return (m_mode & flag) != 0; }
    [[nodiscard]] bool isUndoRedoOrAbort() const noexcept { return (m_mode & (eVisitUndo | eVisitRedo | eVisitAbort)) != 0; }
    [[nodiscard]] bool isLoadingCopiedAsset() const noexcept { return is(eVisitLoad) && is(eVisitCopiedAsset); }
    [[nodiscard]] Entity* entity() const noexcept { return m_entity; }
    [[nodiscard]] const Member* member() const noexcept { return m_member; }
    [[nodiscard]] const XMLNode& xmlNode() const noexcept { return m_xmlNode; }
    // While a member set is read from XML: the attributes of its element, looked up in the order
    // the members were written. Null otherwise.
    [[nodiscard]] XMLAttributeCursor* xmlAttributes() const noexcept { return m_xmlAttributes; }
    // The version a type was stored with: from the stream's manifest when loading, else the current one.
    [[nodiscard]] unsigned storedVersionOf(const MetaType& metaType) const
    {
        return m_storedVersions == nullptr ? metaType.version() : storedVersionFromList(metaType);
    }
    [[nodiscard]] const StoredVersions* storedVersions() const noexcept { return m_storedVersions; }
    // The segment visited; null outside documents.
    [[nodiscard]] Segment* segment() const noexcept { return m_segment; }
    // The document of the segment visited; null outside documents.
    [[nodiscard]] Document* asset() const noexcept;
    // How saved references are found again: the resolver given, else the segment visited (which
    // asks its document); null when neither is known, and then references load empty.
    [[nodiscard]] const IEntityResolver* resolver() const noexcept;
    [[nodiscard]] CloningContext* cloningContext() const noexcept { return m_cloningContext; }
    // Where a load defers the migration of values and entities stored with older versions until
    // the whole document is read; null means "migrate each one as soon as it is read".
    [[nodiscard]] MigrationLog* migrationLog() const noexcept { return m_migrationLog; }

    [[nodiscard]] VisitorContext forMember(const Member* member, XMLNode node) const
    {
        VisitorContext nested = *this;
        nested.m_member = member;
        nested.m_xmlNode = node;
        nested.m_xmlAttributes = nullptr;
        return nested;
    }
    // A visitor walking the members of one owner moves its own nested context from member to
    // member, instead of copying the whole context for each.
    void moveToMember(const Member* member, XMLNode node) noexcept
    {
        m_member = member;
        m_xmlNode = node;
        m_xmlAttributes = nullptr;
    }
    [[nodiscard]] VisitorContext forMember(const Member* member, XMLAttributeCursor* attributes) const
    {
        VisitorContext nested = forMember(member, m_xmlNode);
        nested.m_xmlAttributes = attributes;
        return nested;
    }
    [[nodiscard]] VisitorContext withEntity(Entity* entity, XMLNode node) const
    {
        VisitorContext nested = *this;
        nested.m_entity = entity;
        nested.m_member = nullptr;
        nested.m_xmlNode = node;
        nested.m_xmlAttributes = nullptr;
        return nested;
    }
    [[nodiscard]] VisitorContext withStoredVersions(const StoredVersions* versions) const
    {
        VisitorContext nested = *this;
        nested.m_storedVersions = versions;
        return nested;
    }
    [[nodiscard]] VisitorContext withMode(std::uint32_t mode) const
    {
        VisitorContext nested = *this;
        nested.m_mode = mode;
        return nested;
    }
    [[nodiscard]] VisitorContext withSegment(Segment* segment) const
    {
        VisitorContext nested = *this;
        nested.m_segment = segment;
        return nested;
    }
    [[nodiscard]] VisitorContext withResolver(const IEntityResolver* resolver) const
    {
        VisitorContext nested = *this;
        nested.m_resolver = resolver;
        return nested;
    }
    [[nodiscard]] VisitorContext withCloningContext(CloningContext* cloningContext) const
    {
        VisitorContext nested = *this;
        nested.m_cloningContext = cloningContext;
        return nested;
    }
    [[nodiscard]] VisitorContext withMigrationLog(MigrationLog* log) const
    {
        VisitorContext nested = *this;
        nested.m_migrationLog = log;
        return nested;
    }

private:
    [[nodiscard]] unsigned storedVersionFromList(const MetaType& metaType) const;

    std::uint32_t m_mode = eVisitNone;
    Entity* m_entity = nullptr;
    const Member* m_member = nullptr;
    XMLNode m_xmlNode;
    XMLAttributeCursor* m_xmlAttributes = nullptr;
    const StoredVersions* m_storedVersions = nullptr;
    Segment* m_segment = nullptr;
    const IEntityResolver* m_resolver = nullptr;
    CloningContext* m_cloningContext = nullptr;
    MigrationLog* m_migrationLog = nullptr;
};

} // namespace Kx
