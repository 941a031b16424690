#include "Types/Appearance/MaterialUses.h"

#include "Types/Appearance/Meta/MaterialMetaTypes.h"
#include "Types/Appearance/PhysicalMaterial.h"
#include "Types/Appearance/VisualMaterial.h"

#include <datamodel/Entity.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/MemberSet.h>
#include <datamodel/Segment.h>
#include <datamodel/ValueMetaType.h>

namespace Kx {

namespace {

void visitMembers(Entity& entity, void* owner, const MemberSet& members, const std::string& prefix,
    const std::function<void(const MaterialValueRef&)>& visit)
{
    for (const Member& member : members.members()) {
        const ValueMetaType* metaType = member.metaType->asValueMetaType();
        if (metaType == nullptr)
            continue;
        void* value = member.in(owner);
        const std::string name = prefix.empty() ? member.name : prefix + "." + member.name;
        if (metaType == &physicalMaterialValueMetaType()) {
            visit(MaterialValueRef{&entity, name, static_cast<PhysicalMaterial*>(value), nullptr});
        } else if (metaType == &visualMaterialValueMetaType()) {
            visit(MaterialValueRef{&entity, name, nullptr, static_cast<VisualMaterial*>(value)});
        } else if (metaType->dataModelCallback() == nullptr) {
            // A value with a callback keeps its fields to itself; the others are saved member by
            // member and may hold materials.
            visitMembers(entity, value, metaType->currentMemberSet(), name, visit);
        }
    }
}

} // namespace

void forEachMaterialValue(const Segment& segment, const std::function<void(const MaterialValueRef&)>& visit)
{
    for (const auto& [id, entity] : segment.entities()) {
        if (entity)
            visitMembers(*entity, entity.get(), entity->entityMetaType().memberSet(), {}, visit);
    }
}

std::vector<MaterialUse> findMaterialUses(const Segment& segment, telvarin::platform::assets::IAssetInstance* instance)
{
    std::vector<MaterialUse> uses;
    if (instance == nullptr)
        return uses;
    forEachMaterialValue(segment, [&](const MaterialValueRef& value) {
        const auto* resolved = value.physical != nullptr ? value.physical->assetInstance() : value.visual->assetInstance();
        if (resolved == instance)
            uses.push_back(MaterialUse{StrongRef<Entity>(value.entity), value.member});
    });
    return uses;
}

} // namespace Kx
