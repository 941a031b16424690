#include "Types/Appearance/MaterialEvent.h"

#include <datamodel/Comp/Component.h>
#include <datamodel/Selection.h>

namespace Kx {

MaterialEvent::MaterialEvent(const PhysicalMaterial& physicalMaterial, ETiming timing)
    : BubbledEvent(timing)
    , m_physicalMaterial(physicalMaterial)
{
}

MaterialEvent::MaterialEvent(const PhysicalMaterial& physicalMaterial, const PhysicalMaterial& replacement, ETiming timing)
    : BubbledEvent(timing)
    , m_physicalMaterial(physicalMaterial)
    , m_replacePhysicalMaterial(replacement)
{
}

MaterialEvent::MaterialEvent(const VisualMaterial& visualMaterial, ETiming timing)
    : BubbledEvent(timing)
    , m_visualMaterial(visualMaterial)
{
}

MaterialEvent::MaterialEvent(const VisualMaterial& visualMaterial, const VisualMaterial& replacement, ETiming timing)
    : BubbledEvent(timing)
    , m_visualMaterial(visualMaterial)
    , m_replaceVisualMaterial(replacement)
{
}

// Out of line: copying the references needs the complete Selection and Component.
MaterialEvent::MaterialEvent(const MaterialEvent& other) = default;
MaterialEvent& MaterialEvent::operator=(const MaterialEvent& other) = default;
MaterialEvent::~MaterialEvent() = default;

void MaterialEvent::addSelection(const StrongRef<Selection>& selection)
{
    m_selections.push_back(selection);
}

void MaterialEvent::addComponentPath(const ObjectPath& path)
{
    m_componentPaths.push_back(path);
}

void MaterialEvent::addCompWithPMMatRef(const StrongRef<Comp::Component>& component)
{
    m_compsWithPMMatRef.push_back(component);
}

} // namespace Kx
