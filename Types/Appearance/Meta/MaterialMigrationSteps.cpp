// The steps a document runs after it was opened as a copy of another, or with material values of
// an older member set: the values of a copy take their instances from the copy's own registry, and
// the registries' use counts are counted again from the values, then checked.

#include "Types/Appearance/AmbrelAssetManager.h"
#include "Types/Appearance/Meta/MaterialMetaTypes.h"
#include "Types/Appearance/PhysicalMaterial.h"
#include "Types/Appearance/VisualMaterial.h"

#include <base/AppLogMgr.h>
#include <base/Assert.h>
#include <datamodel/Document.h>
#include <datamodel/MigrationStep.h>
#include <datamodel/Segment.h>
#include <datamodel/ValueMetaType.h>

#include <string>

namespace Kx {

namespace {

bool materialsChanged(bool copiedAsset, const std::function<bool(const std::string&)>& wasMigrated)
{
    return copiedAsset || wasMigrated(physicalMaterialValueMetaType().metaTypeId())
        || wasMigrated(visualMaterialValueMetaType().metaTypeId());
}

} // namespace

// The values of a document opened as a copy take their instances from the copy's registry.
template <class Value>
class RegisterMaterialOnAssetCopy : public MigrationStep {
protected:
    using LookUp = AmbrelAssetManager::IAssetInstance* (AmbrelAssetManager::*)(const std::wstring&) const;

    // `sameRegistry` is the check's text as the value's kind spells it.
    void registerValues(const ValueMetaType& metaType, LookUp lookUp, const char* sameRegistry)
    {
        StrongRef<AmbrelAssetManager> rAmbrelAssetManager = AmbrelAssetManager::find(asset());
        if (!isCopiedAsset() || !rAmbrelAssetManager)
            return;
        forEachValue(metaType, [&](void* value, Entity&) {
            auto* pMaterial = static_cast<Value*>(value);
            if (pMaterial->assetReference().empty())
                return;
            KX_ASSERT_TEXT(pMaterial->ambrelAssetManager() == rAmbrelAssetManager, sameRegistry);
            auto* pAssetInstance = ((*rAmbrelAssetManager).*lookUp)(pMaterial->assetReference());
            KX_ASSERT(pAssetInstance);
            pMaterial->assetInstance(pAssetInstance);
        });
    }
};

class RegisterPhysicalMaterialOnAssetCopy final : public RegisterMaterialOnAssetCopy<PhysicalMaterial> {
public:
    void onMigrate() override
    {
        registerValues(physicalMaterialValueMetaType(), &AmbrelAssetManager::physicalMaterialAssetInstance,
            "pPhysicalMaterial->ambrelAssetManager() == rAmbrelAssetManager");
    }
};

class RegisterVisualMaterialOnAssetCopy final : public RegisterMaterialOnAssetCopy<VisualMaterial> {
public:
    void onMigrate() override
    {
        registerValues(visualMaterialValueMetaType(), &AmbrelAssetManager::visualMaterialAssetInstance,
            "pVisualMaterial->ambrelAssetManager() == rAmbrelAssetManager");
    }
};

// Each registry of the document's loaded segments counts its uses again.
class RecalculateMaterialUseCounts final : public MigrationStep {
public:
    void onMigrate() override
    {
        if (!materialsChanged(isCopiedAsset(), [this](const std::string& id) { return wasMigrated(id); }))
            return;
        for (const auto& segment : asset()->segments()) {
            if (segment->isTransient())
                continue;
            if (StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(segment.get()))
                registry->fixRefCounts();
        }
    }
};

// What the recalculation leaves must hold: each registry's maps agree with each other, and every
// value naming a reference names one its segment's registry holds.
class ValidateMaterialUseCounts final : public MigrationStep {
public:
    void onMigrate() override
    {
        if (!materialsChanged(isCopiedAsset(), [this](const std::string& id) { return wasMigrated(id); }))
            return;
        bool valid = true;
        for (const auto& segment : asset()->segments()) {
            if (StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(segment.get()))
                valid = registry->validate() && valid;
        }
        const auto check = [&](const std::wstring& reference, const StrongRef<AmbrelAssetManager>& registry, bool found) {
            if (!reference.empty() && (!registry || !found))
                valid = false;
        };
        forEachValue(physicalMaterialValueMetaType(), [&](void* value, Entity&) {
            const auto& material = *static_cast<PhysicalMaterial*>(value);
            const auto& registry = material.ambrelAssetManager();
            check(material.assetReference(), registry,
                registry && registry->physicalMaterialAssetInstance(material.assetReference()) != nullptr);
        });
        forEachValue(visualMaterialValueMetaType(), [&](void* value, Entity&) {
            const auto& material = *static_cast<VisualMaterial*>(value);
            const auto& registry = material.ambrelAssetManager();
            check(material.assetReference(), registry,
                registry && registry->visualMaterialAssetInstance(material.assetReference()) != nullptr);
        });
        KX_ASSERT(valid);
        if (!valid)
            AppLogMgr::appLogEx(ELogLevel::eWarning, L"Material use counts of the opened document are inconsistent");
    }
};

namespace {
// The instances of a copy are set before the counts are taken, and checked last.
const MigrationStepRegistration<RegisterPhysicalMaterialOnAssetCopy> s_physicalOnCopy("Kx.RegisterPhysicalMaterialOnAssetCopy", 100);
const MigrationStepRegistration<RegisterVisualMaterialOnAssetCopy> s_visualOnCopy("Kx.RegisterVisualMaterialOnAssetCopy", 100);
const MigrationStepRegistration<RecalculateMaterialUseCounts> s_recalculate("Kx.RecalculateMaterialUseCounts", 200);
const MigrationStepRegistration<ValidateMaterialUseCounts> s_validate("Kx.ValidateMaterialUseCounts", 300);
} // namespace

} // namespace Kx
