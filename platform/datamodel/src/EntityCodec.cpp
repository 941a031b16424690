#include "datamodel/EntityCodec.h"

#include "datamodel/BinaryStreams.h"
#include "datamodel/Entity.h"
#include "datamodel/EntityMetaType.h"
#include "datamodel/JSONStreams.h"
#include "datamodel/VisitorContext.h"
#include "datamodel/XmlBulkStream.h"

#include <base/Exception.h>

namespace Kx {

namespace {
constexpr const char* kEntitiesElement = "KxEntities";

VisitorContext plainContext(std::uint32_t mode, const Entity& entity)
{
    return VisitorContext(mode).withSegment(entity.segment());
}
} // namespace

std::vector<std::uint8_t> saveEntityBinary(const Entity& entity)
{
    return saveEntityBinary(entity, plainContext(eVisitSave, entity));
}

std::vector<std::uint8_t> saveEntityBinary(const Entity& entity, const VisitorContext& context)
{
    BinaryWriteStream stream;
    entity.entityMetaType().save(entity, &stream, context);
    return stream.takeBytes();
}

void loadEntityBinary(Entity& entity, std::span<const std::uint8_t> bytes)
{
    loadEntityBinary(entity, bytes, plainContext(eVisitLoad, entity));
}

void loadEntityBinary(Entity& entity, std::span<const std::uint8_t> bytes, const VisitorContext& context)
{
    BinaryReadStream stream(bytes);
    (void)entity.entityMetaType().load(entity, &stream, context);
}

std::string saveEntityXml(const Entity& entity)
{
    XmlWriteStream stream(kEntitiesElement);
    (void)entity.entityMetaType().save(entity, &stream, plainContext(eVisitSave, entity).withEntity(nullptr, stream.root()));
    return stream.toString();
}

void loadEntityXml(Entity& entity, std::string_view xml)
{
    XmlReadStream stream(xml);
    const XMLNode element = stream.root().firstChild();
    (void)entity.entityMetaType().load(entity, &stream, plainContext(eVisitLoad, entity).withEntity(nullptr, element));
}

std::string entityToJSON(const Entity& entity)
{
    JSONGetStream stream;
    entity.entityMetaType().getJSON(entity, &stream, plainContext(eVisitJSON, entity));
    return stream.takeText();
}

unsigned entityFromJSON(Entity& entity, std::string_view json, bool notifyOfChange)
{
    JSONSetStream stream{JSONNode(json), notifyOfChange};
    entity.entityMetaType().setJSON(entity, &stream, plainContext(eVisitJSON, entity));
    return stream.membersUpdated();
}

EntityJSONSetReport entityFromJSONWithReport(Entity& entity, std::string_view json, bool notifyOfChange)
{
    JSONSetStream stream{JSONNode(json), notifyOfChange};
    if (!stream.document().ref().isObject())
        throw Exception(L"The JSON text is not an object of members.");
    entity.entityMetaType().setJSON(entity, &stream, plainContext(eVisitJSON, entity));
    return {stream.membersUpdated(), stream.refusedMembers(), stream.unknownMembers()};
}

} // namespace Kx
