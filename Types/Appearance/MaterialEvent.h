#pragma once

#include <Types/Appearance/PhysicalMaterial.h>
#include <Types/Appearance/VisualMaterial.h>

#include <base/BubbledEvent.h>
#include <datamodel/ObjectPath.h>
#include <datamodel/StrongRef.h>

#include <vector>

namespace Kx {

class Selection;
namespace Comp {
class Component;
}

// A request or query about one material of a document, sent by its registry's MaterialEventSource:
// replace the material, count where it is used, select what carries it, collect the components
// referring to it. The listeners answer in the event itself (reference count, selections,
// component paths and components); fields a constructor does not set stay empty.
class MaterialEvent : public BubbledEvent {
public:
    MaterialEvent(const PhysicalMaterial& physicalMaterial, ETiming timing);
    MaterialEvent(const PhysicalMaterial& physicalMaterial, const PhysicalMaterial& replacement, ETiming timing);
    MaterialEvent(const VisualMaterial& visualMaterial, ETiming timing);
    // Replacing an appearance needs the replacement too, as replacing a physical material does.
    MaterialEvent(const VisualMaterial& visualMaterial, const VisualMaterial& replacement, ETiming timing);
    MaterialEvent(const MaterialEvent& other);
    MaterialEvent& operator=(const MaterialEvent& other);
    ~MaterialEvent() override;

    [[nodiscard]] const PhysicalMaterial& physicalMaterial() const noexcept { return m_physicalMaterial; }
    [[nodiscard]] const PhysicalMaterial& replacePhysicalMaterial() const noexcept { return m_replacePhysicalMaterial; }
    [[nodiscard]] const VisualMaterial& visualMaterial() const noexcept { return m_visualMaterial; }
    [[nodiscard]] const VisualMaterial& replaceVisualMaterial() const noexcept { return m_replaceVisualMaterial; }

    [[nodiscard]] const std::vector<StrongRef<Selection>>& selections() const noexcept { return m_selections; }
    void addSelection(const StrongRef<Selection>& selection);
    [[nodiscard]] const std::vector<ObjectPath>& getComponentPaths() const noexcept { return m_componentPaths; }
    void addComponentPath(const ObjectPath& path);
    [[nodiscard]] const std::vector<StrongRef<Comp::Component>>& getCompsWithPMMatRef() const noexcept { return m_compsWithPMMatRef; }
    void addCompWithPMMatRef(const StrongRef<Comp::Component>& component);

    // Whether bodies the user eliminated from the design count as users too.
    [[nodiscard]] bool isIncludeEliminatedBodies() const noexcept { return m_includeEliminatedBodies; }
    void isIncludeEliminatedBodies(bool include) noexcept { m_includeEliminatedBodies = include; }

    // The uses counted by the listeners of a where-used query, one addRefCount() per use.
    [[nodiscard]] unsigned int refCount() const noexcept { return m_refCount; }
    void addRefCount() noexcept { ++m_refCount; }

private:
    PhysicalMaterial m_physicalMaterial;
    PhysicalMaterial m_replacePhysicalMaterial;
    VisualMaterial m_visualMaterial;
    VisualMaterial m_replaceVisualMaterial;
    std::vector<StrongRef<Selection>> m_selections;
    std::vector<ObjectPath> m_componentPaths;
    std::vector<StrongRef<Comp::Component>> m_compsWithPMMatRef;
    bool m_includeEliminatedBodies = false;
    unsigned int m_refCount = 0;
};

} // namespace Kx
