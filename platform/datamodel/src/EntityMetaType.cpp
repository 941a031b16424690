#include "datamodel/EntityMetaType.h"

#include "datamodel/BinaryStreams.h"
#include "datamodel/Entity.h"
#include "datamodel/JSONStreams.h"
#include "datamodel/MemberSet.h"
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
    return memberSetForVersion(version());
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

void EntityMetaType::save(const Entity& entity, IWriteStreamBase* stream, const VisitorContext& context)
{
    const MemberSet& members = memberSet();
    Entity* self = const_cast<Entity*>(&entity);
    if (BinaryWriteStream* binary = asBinary(stream)) {
        binary->write(static_cast<std::uint32_t>(version()));
        const std::size_t lengthAt = binary->size();
        binary->write(std::uint32_t{0});
        MemberVisitor::save(&entity, members, stream, context.withEntity(self, XMLNode()));
        const auto length = static_cast<std::uint32_t>(binary->size() - lengthAt - sizeof(std::uint32_t));
        binary->patch(lengthAt, &length, sizeof length);
        return;
    }
    XMLNode parent = context.xmlNode();
    XMLNode element = parent.appendChild(typeName());
    element[kVersionAttribute] = version();
    MemberVisitor::save(&entity, members, stream, context.withEntity(self, element));
}

void EntityMetaType::load(Entity& entity, const IReadStreamBase* stream, const VisitorContext& context)
{
    if (const BinaryReadStream* binary = asBinary(stream)) {
        const auto stored = binary->read<std::uint32_t>();
        checkVersion(*this, stored);
        const auto length = binary->read<std::uint32_t>();
        // Members are read from exactly their own bytes: a damaged entity cannot read into the next.
        const BinaryReadStream body = binary->sub(length);
        MemberVisitor::load(&entity, memberSetForVersion(stored), &body, context.withEntity(&entity, XMLNode()));
        return;
    }
    const XMLNode element = context.xmlNode();
    if (element.isNull() || element.name() != typeName())
        throw Exception(L"The data is damaged: an entity is not where it was expected.",
            "expected element " + typeName() + ", found " + (element.isNull() ? std::string("none") : element.name()));
    XMLNode versioned = element;
    const unsigned stored = versioned[kVersionAttribute].asUInt32(version());
    checkVersion(*this, stored);
    MemberVisitor::load(&entity, memberSetForVersion(stored), stream, context.withEntity(&entity, element));
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

} // namespace Kx
