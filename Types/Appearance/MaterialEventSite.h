#pragma once

#include <base/BubbledEventSite.h>
#include <datamodel/StrongRef.h>

namespace Kx {

class AmbrelAssetManager;
class MaterialEvent;

// A listener of a document's material events: the part of the application that knows which
// entities carry which material answers the registry's requests and queries through it.
class MaterialEventSite : public BubbledEventSite {
public:
    MaterialEventSite() = default;
    ~MaterialEventSite() override;

    // The registry (of the document) the site listens to; empty until the owner sets it.
    [[nodiscard]] StrongRef<AmbrelAssetManager> ambrelAssetManager() const { return m_ambrelAssetManager; }
    void ambrelAssetManager(StrongRef<AmbrelAssetManager> manager) { m_ambrelAssetManager = std::move(manager); }

    // Replace the event's material by its replacement where it is used.
    virtual void onReplaceMaterial(MaterialEvent* event) = 0;
    // Count the uses of the event's material into its reference count (addRefCount per use).
    virtual void onWhereUsed(MaterialEvent* event) = 0;
    // Add the entities carrying the event's material to its selections.
    virtual void onSelectEntityWithMat(MaterialEvent* event) = 0;
    // Add the components referring to the event's physical material (and their paths).
    virtual void onGetCompsWithPMMatRef(MaterialEvent* event) = 0;

private:
    StrongRef<AmbrelAssetManager> m_ambrelAssetManager;
};

} // namespace Kx
