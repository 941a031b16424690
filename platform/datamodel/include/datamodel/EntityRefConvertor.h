#pragma once

#include <datamodel/StrongRef.h>

#include <boost/json/value.hpp>

namespace Kx {

class Entity;
class IEntityResolver;

// The JSON form of a reference to an entity, as an entity's JSON writes its reference members: the
// entity's id as a number, null for no entity.
class EntityRefConvertor {
public:
    // The entity `json` names among those `resolver` knows; empty for null, for anything but a
    // whole non-negative number, and for an id nobody has.
    [[nodiscard]] static StrongRef<Entity> JSONToEntityRef(const boost::json::value& json, const IEntityResolver& resolver);
    [[nodiscard]] static boost::json::value entityRefToJSON(const Entity* entity);
};

} // namespace Kx
