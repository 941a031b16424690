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
}

std::vector<std::uint8_t> saveEntityBinary(const Entity& entity)
{
    BinaryWriteStream stream;
    entity.entityMetaType().save(entity, &stream, VisitorContext(eVisitSave));
    return stream.takeBytes();
}

void loadEntityBinary(Entity& entity, std::span<const std::uint8_t> bytes)
{
    BinaryReadStream stream(bytes);
    entity.entityMetaType().load(entity, &stream, VisitorContext(eVisitLoad));
}

std::string saveEntityXml(const Entity& entity)
{
    XmlWriteStream stream(kEntitiesElement);
    entity.entityMetaType().save(entity, &stream, VisitorContext(eVisitSave).withEntity(nullptr, stream.root()));
    return stream.toString();
}

void loadEntityXml(Entity& entity, std::string_view xml)
{
    XmlReadStream stream(xml);
    const XMLNode element = stream.root().firstChild();
    entity.entityMetaType().load(entity, &stream, VisitorContext(eVisitLoad).withEntity(nullptr, element));
}

std::string entityToJSON(const Entity& entity)
{
    JSONGetStream stream;
    entity.entityMetaType().getJSON(entity, &stream, VisitorContext(eVisitJSON));
    return stream.takeText();
}

unsigned entityFromJSON(Entity& entity, std::string_view json, bool notifyOfChange)
{
    JSONSetStream stream{JSONNode(json), notifyOfChange};
    entity.entityMetaType().setJSON(entity, &stream, VisitorContext(eVisitJSON));
    return stream.membersUpdated();
}

} // namespace Kx
