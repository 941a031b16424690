#pragma once

#include <datamodel/Entity.h>
#include <datamodel/MetaType.h>
#include <datamodel/MigrationHelper.h>

#include <base/XMLNode.h>

#include <atomic>
#include <concepts>
#include <map>
#include <memory>
#include <mutex>
#include <type_traits>

namespace Kx {

class BlobSerializerTrigger;
class DataModelCallback;
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
// A type may have a DataModelCallback: its entity hooks run around every save and load of an
// entity (onPreSave/onPostSave, onPreLoad/onPostLoad) and around whole documents (onPreAssetSave,
// onPostAssetLoad, onPreCloneCopy, onPostClonePaste, onPostMigrate).
class EntityMetaType : public MetaType {
public:
    EntityMetaType(std::string metaTypeId, std::string typeName, unsigned version);
    ~EntityMetaType() override;

    // A new entity with no references yet.
    [[nodiscard]] virtual Entity* create() = 0;

    [[nodiscard]] const MemberSet& memberSet();
    // The members the type had in `version`; the class declares them in declareMembers(version).
    [[nodiscard]] const MemberSet& memberSetForVersion(unsigned version);

    [[nodiscard]] DataModelCallback* dataModelCallback() const noexcept { return m_callback.load(std::memory_order_acquire); }
    void dataModelCallback(DataModelCallback* callback) noexcept { m_callback.store(callback, std::memory_order_release); }

    // In XML, appends the entity's element to the context's element and answers it (null in binary).
    XMLNode save(const Entity& entity, IWriteStreamBase* stream, const VisitorContext& context);
    // In XML, reads the context's element, which is the entity's own. Answers the version the
    // entity was stored with; an older one is migrated (at once, or through the context's
    // migration log). Throws Kx::Exception for damaged data or a version newer than this build knows.
    unsigned load(Entity& entity, const IReadStreamBase* stream, const VisitorContext& context);
    void getJSON(const Entity& entity, JSONGetStream* stream, const VisitorContext& context);
    // Sets the members named in the stream's current JSON object; members it does not name keep
    // their values.
    void setJSON(Entity& entity, JSONSetStream* stream, const VisitorContext& context);

    // The document hooks; each goes to the type's callback when it has one.
    void preAssetSave(Entity& entity, const VisitorContext& context);
    void postAssetLoad(Entity& entity, const VisitorContext& context);
    void preCloneCopy(Entity& entity, const VisitorContext& context);
    void postClonePaste(Entity& entity, const VisitorContext& context);
    EMigrationStatus postMigrate(Entity& entity, unsigned storedVersion, const VisitorContext& context);

protected:
    // Declares the members of `version` with the field addresses of `prototype`.
    virtual void initializeMemberSet(Entity& prototype, unsigned version, MemberSet* memberSet) = 0;
    // What a type without a callback does around whole documents: nothing, unless the class says
    // otherwise (TEntityMetaType lets blob serializer triggers take part in saving).
    virtual void onPreAssetSave(Entity& entity, const VisitorContext& context) {}
    virtual void onPostAssetLoad(Entity& entity, const VisitorContext& context) {}
    // Called for an entity stored with an older version, after the callback's onPostMigrate.
    virtual EMigrationStatus onPostMigrate(Entity& entity, unsigned storedVersion, const VisitorContext& context)
    {
        return eMigrationDone;
    }

private:
    [[nodiscard]] const MemberSet& membersOf(unsigned storedVersion);

    std::mutex m_memberSetsMutex;
    std::map<unsigned, std::unique_ptr<MemberSet>> m_memberSets;
    std::atomic<const MemberSet*> m_currentMemberSet{nullptr};
    std::atomic<DataModelCallback*> m_callback{nullptr};
};

// Whether T asks to be told of its migrations: EMigrationStatus T::onPostMigrate(unsigned, const VisitorContext&).
template <class T>
concept MigratingEntity = requires(T& entity, unsigned version, const VisitorContext& context) {
    { entity.onPostMigrate(version, context) } -> std::same_as<EMigrationStatus>;
};

// A blob serializer trigger without a callback of its own is asked by the data model to prepare
// its blob before a save and to take it back after a load (BlobSerializerTrigger.cpp).
void triggerPreAssetSave(BlobSerializerTrigger& trigger, const VisitorContext& context);
void triggerPostAssetLoad(BlobSerializerTrigger& trigger, const VisitorContext& context);

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
    void onPreAssetSave(Entity& entity, const VisitorContext& context) override
    {
        if constexpr (std::is_base_of_v<BlobSerializerTrigger, T>)
            triggerPreAssetSave(static_cast<T&>(entity), context);
    }
    void onPostAssetLoad(Entity& entity, const VisitorContext& context) override
    {
        if constexpr (std::is_base_of_v<BlobSerializerTrigger, T>)
            triggerPostAssetLoad(static_cast<T&>(entity), context);
    }
    EMigrationStatus onPostMigrate(Entity& entity, unsigned storedVersion, const VisitorContext& context) override
    {
        if constexpr (MigratingEntity<T>)
            return static_cast<T&>(entity).onPostMigrate(storedVersion, context);
        else
            return eMigrationDone;
    }
};

} // namespace Kx
