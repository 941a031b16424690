#pragma once

#include <Types/Appearance/MaterialEventSite.h>

namespace Kx {

// The document's own answers to its material events, from the material values of the registry's
// segment: it counts and locates the uses of a material, replaces it, selects the entities that
// carry it and finds the components placing them. Every registry subscribes one, so where-used
// queries and replacement work in a document without a host; a host subscribes its own sites
// beside it for what only it knows.
class DocumentMaterialSite final : public MaterialEventSite {
public:
    explicit DocumentMaterialSite(AmbrelAssetManager& registry) : m_registry(registry) {}

    // Counts each use and adds its path (the entity's id).
    void onWhereUsed(MaterialEvent* event) override;
    // Gives every value using the material the replacement instead, each entity as one change (the
    // caller's transaction makes it one undo step), moving the use counts with it.
    void onReplaceMaterial(MaterialEvent* event) override;
    // Adds one selection of the entities carrying the material.
    void onSelectEntityWithMat(MaterialEvent* event) override;
    // Adds the components whose definition carries the physical material, with their paths
    // (component id, then definition id).
    void onGetCompsWithPMMatRef(MaterialEvent* event) override;

private:
    AmbrelAssetManager& m_registry;
};

} // namespace Kx
