#pragma once

#include <datamodel/Entity.h>
#include <datamodel/MetaType.h>

#include <map>
#include <memory>
#include <mutex>

namespace Kx {

class Entity;
class IReadStreamBase;
class IWriteStreamBase;
class JSONGetStream;
class JSONSetStream;
class MemberSet;
class VisitorContext;

// Meta type of an entity class: makes entities and knows their members, per stored version.
// The encodings of an entity's body:
//   binary  u32 stored version, u32 byte count of the members, the members in declaration order;
//   XML     an element named after the type with attribute "_version", scalars as attributes,
//           values as child elements named after their member;
//   JSON    an object with one entry per member.
class EntityMetaType : public MetaType {
public:
    EntityMetaType(std::string metaTypeId, std::string typeName, unsigned version);
    ~EntityMetaType() override;

    // A new entity with no references yet.
    [[nodiscard]] virtual Entity* create() = 0;

    [[nodiscard]] const MemberSet& memberSet();
    [[nodiscard]] const MemberSet& memberSetForVersion(unsigned version);

    // In XML, appends the entity's element to the context's element.
    void save(const Entity& entity, IWriteStreamBase* stream, const VisitorContext& context);
    // In XML, reads the context's element, which is the entity's own. Throws Kx::Exception for
    // damaged data or a version newer than this build knows.
    void load(Entity& entity, const IReadStreamBase* stream, const VisitorContext& context);
    void getJSON(const Entity& entity, JSONGetStream* stream, const VisitorContext& context);
    // Sets the members named in the stream's current JSON object; members it does not name keep
    // their values.
    void setJSON(Entity& entity, JSONSetStream* stream, const VisitorContext& context);

protected:
    // Declares the members of `version` with the field addresses of `prototype`.
    virtual void initializeMemberSet(Entity& prototype, unsigned version, MemberSet* memberSet) = 0;

private:
    std::mutex m_memberSetsMutex;
    std::map<unsigned, std::unique_ptr<MemberSet>> m_memberSets;
};

// The meta type of entity class T. T declares `void declareMembers(unsigned version, MemberSet*)`
// and constructs its Entity base with `T::s_metaType()`.
template <class T>
class TEntityMetaType final : public EntityMetaType {
public:
    using EntityMetaType::EntityMetaType;

    [[nodiscard]] Entity* create() override { return new T(); }

protected:
    void initializeMemberSet(Entity& prototype, unsigned version, MemberSet* memberSet) override
    {
        static_cast<T&>(prototype).declareMembers(version, memberSet);
    }
};

} // namespace Kx
