#include "Types/Appearance/DocumentMaterialSite.h"

#include "Types/Appearance/AmbrelAssetManager.h"
#include "Types/Appearance/MaterialEvent.h"
#include "Types/Appearance/MaterialUses.h"

#include <datamodel/Comp/Component.h>
#include <datamodel/EntityChange.h>
#include <datamodel/ObjectPath.h>
#include <datamodel/Segment.h>
#include <datamodel/Selection.h>

#include <set>

namespace Kx {

namespace {

using IAssetInstance = AmbrelAssetManager::IAssetInstance;

// The instance the event is about: its physical material, or else its appearance.
IAssetInstance* subjectOf(const MaterialEvent& event)
{
    if (IAssetInstance* physical = event.physicalMaterial().assetInstance())
        return physical;
    return event.visualMaterial().assetInstance();
}

std::vector<MaterialUse> usesOf(AmbrelAssetManager& registry, const MaterialEvent& event)
{
    const Segment* segment = registry.segment();
    IAssetInstance* instance = subjectOf(event);
    return segment != nullptr && instance != nullptr ? findMaterialUses(*segment, instance) : std::vector<MaterialUse>{};
}

template <class Material>
void replaceValue(Material& value, const Material& replacement, AmbrelAssetManager& registry)
{
    value.unregister();
    value = Material(replacement.assetInstance());
    (void)registry.registerMaterial(value);
}

} // namespace

void DocumentMaterialSite::onWhereUsed(MaterialEvent* event)
{
    for (const MaterialUse& use : usesOf(m_registry, *event)) {
        event->addRefCount();
        event->addComponentPath(ObjectPath({use.entity->id()}));
    }
}

void DocumentMaterialSite::onReplaceMaterial(MaterialEvent* event)
{
    const Segment* segment = m_registry.segment();
    IAssetInstance* instance = subjectOf(*event);
    const bool physical = event->physicalMaterial().assetInstance() != nullptr;
    IAssetInstance* replacement = physical ? event->replacePhysicalMaterial().assetInstance()
                                           : event->replaceVisualMaterial().assetInstance();
    if (segment == nullptr || instance == nullptr || replacement == nullptr || replacement == instance)
        return;
    std::vector<MaterialValueRef> values;
    forEachMaterialValue(*segment, [&](const MaterialValueRef& value) {
        if (physical && value.physical != nullptr && value.physical->assetInstance() == instance)
            values.push_back(value);
        else if (!physical && value.visual != nullptr && value.visual->assetInstance() == instance)
            values.push_back(value);
    });
    std::set<Entity*> imaged;
    std::vector<std::unique_ptr<EntityChange>> changes;
    for (const MaterialValueRef& value : values) {
        // One change an entity, opened before its first value changes: undo restores the entity
        // as it was, every member at once.
        if (imaged.insert(value.entity).second) {
            changes.push_back(std::make_unique<EntityChange>(value.entity, eEntityModified, kAnyMember,
                eChangeUndoable | eChangeNotifies, 0, true));
        }
        if (value.physical != nullptr)
            replaceValue(*value.physical, event->replacePhysicalMaterial(), m_registry);
        else
            replaceValue(*value.visual, event->replaceVisualMaterial(), m_registry);
    }
}

void DocumentMaterialSite::onSelectEntityWithMat(MaterialEvent* event)
{
    const std::vector<MaterialUse> uses = usesOf(m_registry, *event);
    if (uses.empty())
        return;
    StrongRef<Selection> selection(StrongRefCreator<Selection>::create());
    for (const MaterialUse& use : uses)
        selection->add(use.entity.get());
    event->addSelection(selection);
}

void DocumentMaterialSite::onGetCompsWithPMMatRef(MaterialEvent* event)
{
    const Segment* segment = m_registry.segment();
    IAssetInstance* instance = event->physicalMaterial().assetInstance();
    if (segment == nullptr || instance == nullptr)
        return;
    std::set<const Entity*> carriers;
    for (const MaterialUse& use : findMaterialUses(*segment, instance))
        carriers.insert(use.entity.get());
    for (const auto& [id, entity] : segment->entities()) {
        auto* component = dynamic_cast<Comp::Component*>(entity.get());
        if (component != nullptr && carriers.contains(component->definition().get())) {
            event->addCompWithPMMatRef(StrongRef<Comp::Component>(component));
            event->addComponentPath(ObjectPath({component->id(), component->definition()->id()}));
        }
    }
}

} // namespace Kx
