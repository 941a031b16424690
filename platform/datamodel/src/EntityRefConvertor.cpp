#include "datamodel/EntityRefConvertor.h"

#include "datamodel/Entity.h"

namespace Kx {

StrongRef<Entity> EntityRefConvertor::JSONToEntityRef(const boost::json::value& json, const IEntityResolver& resolver)
{
    EntityId id = kNoEntityId;
    if (json.is_uint64())
        id = static_cast<EntityId>(json.get_uint64());
    else if (json.is_int64() && json.get_int64() >= 0)
        id = static_cast<EntityId>(json.get_int64());
    if (id == kNoEntityId)
        return {};
    return StrongRef<Entity>(resolver.resolveEntity(id));
}

boost::json::value EntityRefConvertor::entityRefToJSON(const Entity* entity)
{
    if (entity == nullptr)
        return nullptr;
    return static_cast<std::uint64_t>(entity->id());
}

} // namespace Kx
