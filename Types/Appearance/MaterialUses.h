#pragma once

#include <datamodel/StrongRef.h>

#include <functional>
#include <string>
#include <vector>

namespace telvarin::platform::assets {
class IAssetInstance;
} // namespace telvarin::platform::assets

namespace Kx {

class Entity;
class PhysicalMaterial;
class Segment;
class VisualMaterial;

// One material value of an entity: the member that holds it ("physical", or "outer.inner" for a
// value inside a value saved member by member) and the value itself, of one kind or the other.
struct MaterialValueRef {
    Entity* entity = nullptr;
    std::string member;
    PhysicalMaterial* physical = nullptr;
    VisualMaterial* visual = nullptr;
};

// Calls `visit` for every material value held by the entities of `segment`, by entity id, then in
// member order.
void forEachMaterialValue(const Segment& segment, const std::function<void(const MaterialValueRef&)>& visit);

// A use of a registered material: the entity and the member carrying it.
struct MaterialUse {
    StrongRef<Entity> entity;
    std::string member;
};

// The values of `segment` that use `instance` (compared as the registered instance they resolve).
[[nodiscard]] std::vector<MaterialUse> findMaterialUses(const Segment& segment,
    telvarin::platform::assets::IAssetInstance* instance);

} // namespace Kx
