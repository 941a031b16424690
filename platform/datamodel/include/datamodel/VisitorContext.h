#pragma once

#include <base/XMLNode.h>

#include <cstdint>
#include <string>
#include <unordered_map>

namespace Kx {

class Entity;
class MetaType;
struct Member;

// Versions of the meta types a stream was written with, by meta type identifier.
using StoredVersions = std::unordered_map<std::string, unsigned>;

// What the data model is doing while it visits a value. Combinable flags.
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
};

// Passed down every visit of a member: the mode, the entity that owns the member, the member
// itself and, in XML streams, the element that holds the member. A visit of a nested member gets
// a derived context (forMember), so a context never changes under the code that received it.
class VisitorContext {
public:
    VisitorContext() = default;
    explicit VisitorContext(std::uint32_t mode, Entity* entity = nullptr) : m_mode(mode), m_entity(entity) {}

    [[nodiscard]] std::uint32_t mode() const noexcept { return m_mode; }
    [[nodiscard]] bool is(EVisitorMode flag) const noexcept { return (m_mode & flag) != 0; }
    [[nodiscard]] Entity* entity() const noexcept { return m_entity; }
    [[nodiscard]] const Member* member() const noexcept { return m_member; }
    [[nodiscard]] const XMLNode& xmlNode() const noexcept { return m_xmlNode; }
    // The version a type was stored with: from the stream's manifest when loading, else the current one.
    [[nodiscard]] unsigned storedVersionOf(const MetaType& metaType) const;
    [[nodiscard]] const StoredVersions* storedVersions() const noexcept { return m_storedVersions; }

    [[nodiscard]] VisitorContext forMember(const Member* member, XMLNode node) const
    {
        VisitorContext nested = *this;
        nested.m_member = member;
        nested.m_xmlNode = node;
        return nested;
    }
    [[nodiscard]] VisitorContext withEntity(Entity* entity, XMLNode node) const
    {
        VisitorContext nested = *this;
        nested.m_entity = entity;
        nested.m_member = nullptr;
        nested.m_xmlNode = node;
        return nested;
    }
    [[nodiscard]] VisitorContext withStoredVersions(const StoredVersions* versions) const
    {
        VisitorContext nested = *this;
        nested.m_storedVersions = versions;
        return nested;
    }

private:
    std::uint32_t m_mode = eVisitNone;
    Entity* m_entity = nullptr;
    const Member* m_member = nullptr;
    XMLNode m_xmlNode;
    const StoredVersions* m_storedVersions = nullptr;
};

} // namespace Kx
