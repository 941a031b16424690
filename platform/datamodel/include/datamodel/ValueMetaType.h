#pragma once

#include <datamodel/MemberMetaType.h>
#include <datamodel/MigrationHelper.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace Kx {

class DataModelCallback;
class MemberSet;

// Meta type of a value: a small copyable class with public fields that lives inside entities.
// The public operations are what the data model calls; each dispatches to an overridable hook
// (do…/on…). A type with a DataModelCallback gets its save, load and JSON traffic routed to the
// callback; a type without one is saved member by member through its member set.
class ValueMetaType : public MemberMetaType {
public:
    // The last argument is reserved by the data model and is the empty string for value types.
    ValueMetaType(const std::string& metaTypeId, const std::string& metaTypeName, unsigned version,
        const std::string& typeName, const std::string& reserved);
    ~ValueMetaType() override;

    [[nodiscard]] void* construct() { return doConstruct(); }
    void* construct(void* memory, const VisitorContext& context) { return doConstruct(memory, context); }
    void destruct(void* value) { doDestruct(value); }
    [[nodiscard]] const void* queryMTInterface(void* value) { return doQueryMTInterface(value); }
    [[nodiscard]] MigrationHelper* migrationHelper(void* value) { return doMigrationHelper(value); }
    [[nodiscard]] MigrationHelper* createMigrationHelper(void* value, const VisitorContext& context) { return doCreateMigrationHelper(value, context); }
    bool deleteMigrationHelper(void* value, const VisitorContext& context) { return doDeleteMigrationHelper(value, context); }
    [[nodiscard]] unsigned migratingVersion(void* value, const VisitorContext& context) { return doMigratingVersion(value, context); }
    void migratingVersion(void* value, unsigned version, const VisitorContext& context) { doMigratingVersion(value, version, context); }
    EMigrationStatus postMigrate(void* value, unsigned version, const VisitorContext& context) { return onPostMigrate(value, version, context); }
    void migrateMemberSet(void* value, unsigned version, MemberSet* memberSet, const VisitorContext& context)
    {
        onMigratingMemberSet(value, version, memberSet, context);
    }

    // The document hooks of the type's callback (nothing for a type without one). Saving and
    // loading a value runs its pre- and post- hooks itself; these are run by the document around
    // whole saves, loads and clones.
    void postAssetLoad(void* value, const VisitorContext& context) const;
    // Whether the type's callback has any of those hooks: a document skips the values of types
    // that have none, instead of calling the empty ones for every value it opens.
    [[nodiscard]] bool hearsDocumentHooks() const;
    void preCloneCopy(void* value, const VisitorContext& context) const;
    void postClonePaste(void* value, const VisitorContext& context) const;
    // Completes the migration of a value read with an older member set: onPostMigrate, then the
    // helper is deleted and the migrating version cleared.
    EMigrationStatus completeMigration(void* value, unsigned storedVersion, const VisitorContext& context);

    // MemberMetaType
    [[nodiscard]] std::size_t sizeInBytes(const VisitorContext& context) const final;
    // onPreSave, doSave, doPostSave.
    void save(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const final;
    // onPreLoad, doLoad, doPostLoad. A value stored with an older version gets that version as its
    // migrating version and its migration helper for the load; its migration is completed at once,
    // or later through the context's migration log when there is one.
    void load(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const final;
    [[nodiscard]] std::wstring toString(const void* value, const VisitorContext& context) const final;
    [[nodiscard]] bool includedInJSON(const void* value, const VisitorContext& context) const final;
    void getJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const final;
    void setJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const final;
    [[nodiscard]] bool readJSON(void* value, const JSONRef& json) const final;
    [[nodiscard]] bool equals(const void* first, const void* second) const final;
    void copy(void* target, const void* source) const final;
    [[nodiscard]] bool storedAsXmlAttribute() const noexcept final { return false; }
    [[nodiscard]] const ValueMetaType* asValueMetaType() const noexcept final { return this; }
    void clearReferences(void* value) const final;
    [[nodiscard]] bool holdsReferences() const final;

    // The callback is attached when the member set is built; the dispatching operations build it
    // first, so a value that was never constructed through its meta type still reaches its callback.
    [[nodiscard]] DataModelCallback* dataModelCallback() const noexcept { return m_callback.load(std::memory_order_acquire); }
    void dataModelCallback(DataModelCallback* callback) noexcept { m_callback.store(callback, std::memory_order_release); }

    // The member set of a stored version; ~0u (all bits set) names the current version. The set
    // may still be empty: it is built by the first construction of a value.
    [[nodiscard]] MemberSet* memberSet(unsigned version);
    // The current member set, built now if no value was constructed yet (building it is the only
    // state a meta type ever changes after start-up, and it happens once, under the set's lock).
    [[nodiscard]] const MemberSet& currentMemberSet() const;
    // The member set of a stored version, migrated from the type's declaration if needed.
    [[nodiscard]] const MemberSet& memberSetForVersion(unsigned version, const VisitorContext& context) const;

protected:
    // The whole save and load of a meta type whose hooks are all known where it is compiled (the
    // generated value types): one call per value runs the same hooks on `callback`, the empty ones
    // compiled away, instead of dispatching pre, do, on and post one by one. Used while `callback`
    // is the one attached; a migrating load still takes the general path.
    struct DirectCodec {
        const DataModelCallback* callback;
        void (*save)(DataModelCallback* callback, const void* value, IWriteStreamBase* stream, const VisitorContext& context);
        void (*load)(DataModelCallback* callback, void* value, unsigned version, const IReadStreamBase* stream,
            const VisitorContext& context);
        // Whether `callback` has its own postAssetLoad, preCloneCopy or postClonePaste.
        bool documentHooks = true;
    };
    void directCodec(DirectCodec codec) noexcept { m_directCodec = codec; }
    // onPreSave, doSave, doPostSave, each dispatched: what save does without a direct codec.
    void saveThroughHooks(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const;
    // onPreLoad, doLoad, doPostLoad, each dispatched.
    void loadThroughHooks(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const;
    // The callback attached to this meta type, the member set built first if it was not yet.
    [[nodiscard]] DataModelCallback* readyCallback() const
    {
        if (DataModelCallback* callback = dataModelCallback())
            return callback;
        (void)currentMemberSet();
        return dataModelCallback();
    }

    [[nodiscard]] virtual std::size_t doSizeInBytes(const VisitorContext& context) const = 0;
    [[nodiscard]] virtual void* doConstruct() = 0;
    virtual void* doConstruct(void* memory, const VisitorContext& context) = 0;
    virtual void doLoad(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const;
    virtual void doSave(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const;
    virtual void doVisitables(void* value, const VisitorContext& context) const;
    [[nodiscard]] virtual std::wstring doToString(const void* value, const VisitorContext& context) const;
    virtual void doPostLoad(void* value, const VisitorContext& context) const;
    virtual void doPostSave(void* value, const VisitorContext& context) const;
    virtual EMigrationStatus doPostMigrate(void* value, unsigned version, const VisitorContext& context) const;
    virtual void doDestruct(void* value) = 0;
    [[nodiscard]] virtual bool doImplementJSON() const;
    [[nodiscard]] virtual bool doIncludeJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const;
    virtual void doStartGetJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const;
    virtual void doGetJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const;
    virtual void doEndGetJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const;
    virtual void doStartSetJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const;
    virtual void doSetJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const;
    virtual void doEndSetJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const;
    virtual void onPreLoad(void* value, const VisitorContext& context) const;
    virtual void onLoad(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const;
    virtual void onPostLoad(void* value, const VisitorContext& context) const;
    virtual void onPreSave(const void* value, const VisitorContext& context) const;
    virtual void onSave(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const;
    virtual void onPostSave(const void* value, const VisitorContext& context) const;
    // The data model's member-by-member encoding, for a type whose callback only adds hooks and
    // leaves the bytes to its members (call them from onSave/onLoad).
    void saveMembers(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const;
    void loadMembers(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const;
    virtual EMigrationStatus onPostMigrate(void* value, unsigned version, const VisitorContext& context);
    virtual void initializeMemberSet(unsigned version, MemberSet* memberSet);
    [[nodiscard]] virtual const void* doQueryMTInterface(void* value) = 0;
    virtual void onMigratingMemberSet(void* value, unsigned version, MemberSet* memberSet, const VisitorContext& context) = 0;
    [[nodiscard]] virtual MigrationHelper* doMigrationHelper(void* value) = 0;
    [[nodiscard]] virtual MigrationHelper* doCreateMigrationHelper(void* value, const VisitorContext& context) = 0;
    virtual bool doDeleteMigrationHelper(void* value, const VisitorContext& context) = 0;
    virtual void doMigratingVersion(void* value, unsigned version, const VisitorContext& context) = 0;
    [[nodiscard]] virtual unsigned doMigratingVersion(void* value, const VisitorContext& context) = 0;

    // Value semantics the data model needs beyond the hooks above: comparison (a JSON set records
    // a change only for a different value) and assignment.
    [[nodiscard]] virtual bool doEquals(const void* first, const void* second) const = 0;
    virtual void doCopy(void* target, const void* source) const = 0;
    // Reads all of the value from JSON or nothing; the default reads member by member.
    [[nodiscard]] virtual bool doReadJSON(void* value, const JSONRef& json) const;

private:
    // The callback that writes and reads the type's JSON: none when the type has no callback, or
    // one that leaves JSON to the members (implementsJSON false), which then go member by member.
    [[nodiscard]] DataModelCallback* jsonCallback() const;

    std::atomic<DataModelCallback*> m_callback{nullptr};
    DirectCodec m_directCodec{nullptr, nullptr, nullptr};
    std::unique_ptr<MemberSet> m_currentMemberSet;
    std::mutex m_olderMemberSetsMutex;
    std::map<unsigned, std::unique_ptr<MemberSet>> m_olderMemberSets;
};

} // namespace Kx
