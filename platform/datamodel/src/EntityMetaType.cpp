#include "datamodel/EntityMetaType.h"

#include "datamodel/BinaryStreams.h"
#include "datamodel/DataModelCallback.h"
#include "datamodel/Entity.h"
#include "datamodel/JSONStreams.h"
#include "datamodel/MemberSet.h"
#include "datamodel/MigrationLog.h"
#include "datamodel/VisitorContext.h"
#include "internal/MemberVisitor.h"

#include <base/Exception.h>
#include <base/Strings.h>

#include <memory>

namespace Kx {

namespace {

constexpr const char* kVersionAttribute = "_version";

void checkVersion(const EntityMetaType& metaType, unsigned stored)
{
    if (stored > metaType.version())
        throw Exception(L"The data was written by a newer version of the application and cannot be read.",
            metaType.typeName() + " version " + std::to_string(stored) + " is newer than "
                + std::to_string(metaType.version()));
}

} // namespace

EntityMetaType::EntityMetaType(std::string metaTypeId, std::string typeName, unsigned version)
    : MetaType(std::move(metaTypeId), typeName + "EntityMetaType", version, typeName)
{
}

EntityMetaType::~EntityMetaType() = default;

const MemberSet& EntityMetaType::memberSet()
{
    // Every entity saved asks for it: after the first build, answered without the lock.
    if (const MemberSet* current = m_currentMemberSet.load(std::memory_order_acquire))
        return *current;
    const MemberSet& built = memberSetForVersion(version());
    m_currentMemberSet.store(&built, std::memory_order_release);
    return built;
}

const MemberSet& EntityMetaType::memberSetForVersion(unsigned version)
{
    std::lock_guard lock(m_memberSetsMutex);
    auto& memberSet = m_memberSets[version];
    if (!memberSet) {
        auto built = std::make_unique<MemberSet>(version);
        std::unique_ptr<Entity> prototype(create());
        const void* owner = prototype.get();
        MemberSet::initialize(built.get(), owner, typeName());
        initializeMemberSet(*prototype, version, built.get());
        built->markComplete();
        memberSet = std::move(built);
    }
    return *memberSet;
}

XMLNode EntityMetaType::save(const Entity& entity, IWriteStreamBase* stream, const VisitorContext& context)
{
    const MemberSet& members = memberSet();
    Entity* self = const_cast<Entity*>(&entity);
    DataModelCallback* callback = dataModelCallback();
    XMLNode element;
    if (BinaryWriteStream* binary = asBinary(stream)) {
        const VisitorContext entityContext = context.withEntity(self, XMLNode());
        if (callback != nullptr)
            callback->onPreSave(self, entityContext);
        binary->write(static_cast<std::uint32_t>(version()));
        const std::size_t lengthAt = binary->size();
        binary->write(std::uint32_t{0});
        MemberVisitor::save(&entity, members, stream, entityContext);
        const auto length = static_cast<std::uint32_t>(binary->size() - lengthAt - sizeof(std::uint32_t));
        binary->patch(lengthAt, &length, sizeof length);
        if (callback != nullptr)
            callback->onPostSave(self, entityContext);
        return element;
    }
    XMLNode parent = context.xmlNode();
    element = parent.appendChild(typeName());
    const VisitorContext entityContext = context.withEntity(self, element);
    if (callback != nullptr)
        callback->onPreSave(self, entityContext);
    element[kVersionAttribute] = version();
    MemberVisitor::save(&entity, members, stream, entityContext);
    if (callback != nullptr)
        callback->onPostSave(self, entityContext);
    return element;
}

const MemberSet& EntityMetaType::membersOf(unsigned storedVersion)
{
    return storedVersion == version() ? memberSet() : memberSetForVersion(storedVersion);
}

unsigned EntityMetaType::load(Entity& entity, const IReadStreamBase* stream, const VisitorContext& context)
{
    DataModelCallback* callback = dataModelCallback();
    unsigned stored = 0;
    VisitorContext entityContext;
    if (const BinaryReadStream* binary = asBinary(stream)) {
        stored = binary->read<std::uint32_t>();
        checkVersion(*this, stored);
        const auto length = binary->read<std::uint32_t>();
        // Members are read from exactly their own bytes: a damaged entity cannot read into the next.
        const BinaryReadStream body = binary->sub(length);
        entityContext = context.withEntity(&entity, XMLNode());
        if (callback != nullptr)
            callback->onPreLoad(&entity, entityContext);
        MemberVisitor::load(&entity, membersOf(stored), &body, entityContext);
    } else {
        const XMLNode element = context.xmlNode();
        if (element.isNull() || element.nameView() != typeName())
            throw Exception(L"The data is damaged: an entity is not where it was expected.",
                "expected element " + typeName() + ", found " + (element.isNull() ? std::string("none") : element.name()));
        XMLNode versioned = element;
        stored = versioned[kVersionAttribute].asUInt32(version());
        checkVersion(*this, stored);
        entityContext = context.withEntity(&entity, element);
        if (callback != nullptr)
            callback->onPreLoad(&entity, entityContext);
        MemberVisitor::load(&entity, membersOf(stored), stream, entityContext);
    }
    if (callback != nullptr)
        callback->onPostLoad(&entity, entityContext);
    if (stored < version()) {
        if (MigrationLog* log = context.migrationLog())
            log->addEntity(entity, stored);
        else
            (void)postMigrate(entity, stored, entityContext);
    }
    return stored;
}

void EntityMetaType::getJSON(const Entity& entity, JSONGetStream* stream, const VisitorContext& context)
{
    MemberVisitor::getJSON(&entity, memberSet(), stream, context.withEntity(const_cast<Entity*>(&entity), XMLNode()));
}

void EntityMetaType::setJSON(Entity& entity, JSONSetStream* stream, const VisitorContext& context)
{
    if (!stream->currentJSONRef().isObject())
        return;
    stream->visitEntity(&entity);
    MemberVisitor::setJSON(&entity, memberSet(), stream, context.withEntity(&entity, XMLNode()));
}

void EntityMetaType::preAssetSave(Entity& entity, const VisitorContext& context)
{
    if (DataModelCallback* callback = dataModelCallback())
        callback->onPreAssetSave(&entity, context);
    else
        onPreAssetSave(entity, context);
}

void EntityMetaType::postAssetLoad(Entity& entity, const VisitorContext& context)
{
    if (DataModelCallback* callback = dataModelCallback())
        callback->onPostAssetLoad(&entity, context);
    else
        onPostAssetLoad(entity, context);
}

void EntityMetaType::preCloneCopy(Entity& entity, const VisitorContext& context)
{
    if (DataModelCallback* callback = dataModelCallback())
        callback->onPreCloneCopy(&entity, context);
}

void EntityMetaType::postClonePaste(Entity& entity, const VisitorContext& context)
{
    if (DataModelCallback* callback = dataModelCallback())
        callback->onPostClonePaste(&entity, context);
}

EMigrationStatus EntityMetaType::postMigrate(Entity& entity, unsigned storedVersion, const VisitorContext& context)
{
    const VisitorContext migrating = context.withEntity(&entity, XMLNode()).withMode(context.mode() | eVisitMigrate);
    if (DataModelCallback* callback = dataModelCallback())
        callback->onPostMigrate(&entity, migrating);
    return onPostMigrate(entity, storedVersion, migrating);
}

} // namespace Kx
