#include "datamodel/ValueMetaType.h"

#include "datamodel/DataModelCallback.h"
#include "datamodel/EntityChange.h"
#include "datamodel/JSONStreams.h"
#include "datamodel/MemberSet.h"
#include "datamodel/MigrationLog.h"
#include "datamodel/VisitorContext.h"
#include "internal/MemberVisitor.h"

#include <memory>

namespace Kx {

namespace {

// A scratch value of a meta type, destroyed on every path out.
struct ScratchValue {
    ScratchValue(ValueMetaType& metaType, const void* from) : metaType(metaType), value(metaType.construct())
    {
        metaType.copy(value, from);
    }
    ~ScratchValue() { metaType.destruct(value); }
    ScratchValue(const ScratchValue&) = delete;
    ScratchValue& operator=(const ScratchValue&) = delete;

    ValueMetaType& metaType;
    void* value;
};

} // namespace

ValueMetaType::ValueMetaType(const std::string& metaTypeId, const std::string& metaTypeName, unsigned version,
    const std::string& typeName, const std::string& /*reserved*/)
    : MemberMetaType(metaTypeId, metaTypeName, version, typeName)
    , m_currentMemberSet(std::make_unique<MemberSet>(version))
{
}

ValueMetaType::~ValueMetaType() = default;

MemberSet* ValueMetaType::memberSet(unsigned version)
{
    if (version == ~0u || version == this->version())
        return m_currentMemberSet.get();
    std::lock_guard lock(m_olderMemberSetsMutex);
    auto& memberSet = m_olderMemberSets[version];
    if (!memberSet)
        memberSet = std::make_unique<MemberSet>(version);
    return memberSet.get();
}

const MemberSet& ValueMetaType::currentMemberSet() const
{
    if (!m_currentMemberSet->isComplete()) {
        // Constructing a value builds the member set, exactly as the data model's first use would.
        auto* self = const_cast<ValueMetaType*>(this);
        self->destruct(self->construct());
    }
    return *m_currentMemberSet;
}

const MemberSet& ValueMetaType::memberSetForVersion(unsigned version, const VisitorContext& context) const
{
    auto* self = const_cast<ValueMetaType*>(this);
    MemberSet* memberSet = self->memberSet(version);
    if (memberSet == m_currentMemberSet.get())
        return currentMemberSet();
    if (!memberSet->isComplete()) {
        MemberSet::Mutex::scoped_lock lock(memberSet->mutex(), /*write=*/true);
        if (!memberSet->isInitialized()) {
            void* prototype = self->construct();
            self->onMigratingMemberSet(prototype, version, memberSet, context);
            self->destruct(prototype);
        }
        memberSet->markComplete();
    }
    return *memberSet;
}

std::size_t ValueMetaType::sizeInBytes(const VisitorContext& context) const
{
    return doSizeInBytes(context);
}

void ValueMetaType::save(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const
{
    DataModelCallback* callback = dataModelCallback();
    if (callback != nullptr && callback == m_directCodec.callback) {
        m_directCodec.save(callback, value, stream, context);
        return;
    }
    saveThroughHooks(value, stream, context);
}

void ValueMetaType::saveThroughHooks(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const
{
    onPreSave(value, context);
    doSave(value, stream, context);
    doPostSave(const_cast<void*>(value), context);
}

void ValueMetaType::load(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const
{
    auto* self = const_cast<ValueMetaType*>(this);
    const bool migrating = version < this->version();
    if (!migrating) {
        DataModelCallback* callback = dataModelCallback();
        if (callback != nullptr && callback == m_directCodec.callback)
            m_directCodec.load(callback, value, version, stream, context);
        else
            loadThroughHooks(value, version, stream, context);
        return;
    }
    self->migratingVersion(value, version, context);
    (void)self->createMigrationHelper(value, context);
    loadThroughHooks(value, version, stream, context);
    // The value may refer to entities that are not read yet: a document completes migrations only
    // once all of it is in memory.
    if (MigrationLog* log = context.migrationLog())
        log->addValue(*self, value, version, context);
    else
        (void)self->completeMigration(value, version, context);
}

void ValueMetaType::loadThroughHooks(void* value, unsigned version, const IReadStreamBase* stream,
    const VisitorContext& context) const
{
    onPreLoad(value, context);
    doLoad(value, version, stream, context);
    doPostLoad(value, context);
}

EMigrationStatus ValueMetaType::completeMigration(void* value, unsigned storedVersion, const VisitorContext& context)
{
    const VisitorContext migrating = context.withMode(context.mode() | eVisitMigrate);
    const EMigrationStatus status = postMigrate(value, storedVersion, migrating);
    (void)deleteMigrationHelper(value, migrating);
    migratingVersion(value, 0, migrating);
    return status;
}

void ValueMetaType::postAssetLoad(void* value, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback())
        callback->onPostAssetLoad(value, context);
}

bool ValueMetaType::hearsDocumentHooks() const
{
    const DataModelCallback* callback = readyCallback();
    return callback != nullptr && (callback != m_directCodec.callback || m_directCodec.documentHooks);
}

void ValueMetaType::preCloneCopy(void* value, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback())
        callback->onPreCloneCopy(value, context);
}

void ValueMetaType::postClonePaste(void* value, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback())
        callback->onPostClonePaste(value, context);
}

bool ValueMetaType::holdsReferences() const
{
    const MemberSet& members = currentMemberSet();
    return dataModelCallback() == nullptr && MemberVisitor::holdsReferences(members);
}

void ValueMetaType::clearReferences(void* value) const
{
    // A value with a callback keeps its fields to itself; the others are walked member by member.
    const MemberSet& members = currentMemberSet();
    if (dataModelCallback() == nullptr)
        MemberVisitor::clearReferences(value, members);
}

std::wstring ValueMetaType::toString(const void* value, const VisitorContext& context) const
{
    return doToString(value, context);
}

bool ValueMetaType::includedInJSON(const void* value, const VisitorContext& context) const
{
    return doIncludeJSON(value, nullptr, context);
}

void ValueMetaType::getJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const
{
    doStartGetJSON(value, stream, context);
    doGetJSON(value, stream, context);
    doEndGetJSON(value, stream, context);
}

void ValueMetaType::setJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const
{
    doStartSetJSON(value, stream, context);
    doSetJSON(value, stream, context);
    doEndSetJSON(value, stream, context);
}

bool ValueMetaType::readJSON(void* value, const JSONRef& json) const
{
    return doReadJSON(value, json);
}

bool ValueMetaType::equals(const void* first, const void* second) const
{
    return doEquals(first, second);
}

void ValueMetaType::copy(void* target, const void* source) const
{
    doCopy(target, source);
}

void ValueMetaType::doLoad(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const
{
    onLoad(value, version, stream, context);
}

void ValueMetaType::doSave(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const
{
    onSave(value, stream, context);
}

void ValueMetaType::doVisitables(void* value, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback())
        callback->doVisitables(value, context);
}

std::wstring ValueMetaType::doToString(const void* value, const VisitorContext& context) const
{
    return MemberVisitor::toString(value, currentMemberSet(), context);
}

void ValueMetaType::doPostLoad(void* value, const VisitorContext& context) const
{
    onPostLoad(value, context);
}

void ValueMetaType::doPostSave(void* value, const VisitorContext& context) const
{
    onPostSave(value, context);
}

EMigrationStatus ValueMetaType::doPostMigrate(void* value, unsigned version, const VisitorContext& context) const
{
    return const_cast<ValueMetaType*>(this)->onPostMigrate(value, version, context);
}

DataModelCallback* ValueMetaType::jsonCallback() const
{
    DataModelCallback* callback = readyCallback();
    return callback != nullptr && callback->doImplementJSON() ? callback : nullptr;
}

bool ValueMetaType::doImplementJSON() const
{
    const DataModelCallback* callback = readyCallback();
    return callback == nullptr || callback->doImplementJSON();
}

bool ValueMetaType::doIncludeJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback())
        return callback->doIncludeJSON(const_cast<void*>(value), stream, context);
    return value != nullptr;
}

void ValueMetaType::doStartGetJSON(const void*, JSONGetStream*, const VisitorContext&) const {}

void ValueMetaType::doGetJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const
{
    if (DataModelCallback* callback = jsonCallback()) {
        callback->doGetJSON(const_cast<void*>(value), stream, context);
        return;
    }
    MemberVisitor::getJSON(value, currentMemberSet(), stream, context);
}

void ValueMetaType::doEndGetJSON(const void*, JSONGetStream*, const VisitorContext&) const {}

void ValueMetaType::doStartSetJSON(void*, JSONSetStream*, const VisitorContext&) const {}

void ValueMetaType::doSetJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const
{
    if (DataModelCallback* callback = jsonCallback()) {
        callback->doSetJSON(value, stream, context);
        return;
    }
    // Member by member, but all or nothing: read into a scratch copy and take it only when every
    // member was read and the result differs.
    ScratchValue scratch(*const_cast<ValueMetaType*>(this), value);
    if (!MemberVisitor::readJSON(scratch.value, currentMemberSet(), stream->currentJSONRef())) {
        stream->refuseValue();
        return;
    }
    if (doEquals(scratch.value, value))
        return;
    stream->recordChange([&] { doCopy(value, scratch.value); });
}

void ValueMetaType::doEndSetJSON(void*, JSONSetStream*, const VisitorContext&) const {}

void ValueMetaType::onPreLoad(void* value, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback())
        callback->onPreLoad(value, context);
}

void ValueMetaType::onLoad(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback()) {
        callback->onLoad(value, version, stream, context);
        return;
    }
    loadMembers(value, version, stream, context);
}

void ValueMetaType::onPostLoad(void* value, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback())
        callback->onPostLoad(value, context);
}

void ValueMetaType::onPreSave(const void* value, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback())
        callback->onPreSave(const_cast<void*>(value), context);
}

void ValueMetaType::onSave(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback()) {
        callback->onSave(value, stream, context);
        return;
    }
    saveMembers(value, stream, context);
}

void ValueMetaType::saveMembers(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const
{
    MemberVisitor::save(value, currentMemberSet(), stream, context);
}

void ValueMetaType::loadMembers(void* value, unsigned version, const IReadStreamBase* stream,
    const VisitorContext& context) const
{
    MemberVisitor::load(value, memberSetForVersion(version, context), stream, context);
}

void ValueMetaType::onPostSave(const void* value, const VisitorContext& context) const
{
    if (DataModelCallback* callback = readyCallback())
        callback->onPostSave(const_cast<void*>(value), context);
}

EMigrationStatus ValueMetaType::onPostMigrate(void* value, unsigned, const VisitorContext& context)
{
    if (DataModelCallback* callback = readyCallback())
        callback->onPostMigrate(value, context);
    return eMigrationDone;
}

void ValueMetaType::initializeMemberSet(unsigned, MemberSet*) {}

bool ValueMetaType::doReadJSON(void* value, const JSONRef& json) const
{
    ScratchValue scratch(*const_cast<ValueMetaType*>(this), value);
    if (!MemberVisitor::readJSON(scratch.value, currentMemberSet(), json))
        return false;
    doCopy(value, scratch.value);
    return true;
}

} // namespace Kx
