#include "Types/Utility/MaterialUtil.h"

#include <Types/Appearance/AmbrelManager.h>
#include <Types/Appearance/DefaultMaterialOptions.h>

#include <assets/IAssetInstance.h>
#include <core/Strings.h>

#include <optional>
#include <utility>
#include <vector>

namespace Kx::Types {

namespace {

AmbrelManager* loadedManager()
{
    AmbrelManager* manager = AmbrelManager::GetAmbrelManager(true);
    return manager != nullptr && manager->LibsLoaded() ? manager : nullptr;
}

// (material id, library id) of the first material named `name` in `libraries`.
std::optional<std::pair<std::wstring, std::wstring>> findByName(AmbrelManager& manager, const std::wstring& name,
    const std::vector<std::wstring>& libraries)
{
    for (const std::wstring& library : libraries) {
        for (const auto& [id, uiName] : manager.GetAssetIDsAndNames(library)) {
            if (uiName == name)
                return std::make_pair(telvarin::platform::core::toWide(id), library);
        }
    }
    return std::nullopt;
}

} // namespace

PhysicalMaterial GetPhysicalMaterial(const std::wstring& name)
{
    AmbrelManager* manager = loadedManager();
    if (manager == nullptr)
        return {};
    const auto found = findByName(*manager, name, {manager->GetPhysicalLibraryID(), manager->GetAdvancedPhysicalLibraryID()});
    return found ? PhysicalMaterial(found->first, found->second) : PhysicalMaterial();
}

VisualMaterial GetVisualMaterialFromName(const std::wstring& name)
{
    AmbrelManager* manager = loadedManager();
    if (manager == nullptr)
        return {};
    const auto found = findByName(*manager, name, {manager->GetVisualLibraryID(), manager->GetAdvancedVisualLibraryID()});
    return found ? VisualMaterial(found->first, found->second) : VisualMaterial();
}

VisualMaterial GetGenericVisualMaterial()
{
    VisualMaterial generic;
    generic.setDefaultAssetInstance();
    return generic;
}

VisualMaterial GetUnknownVisualMaterial()
{
    PhysicalMaterial standIn;
    standIn.setDefaultAssetInstance();
    AmbrelManager* manager = loadedManager();
    auto* physical = standIn.assetInstance();
    if (manager == nullptr || physical == nullptr)
        return GetGenericVisualMaterial();
    telvarin::platform::assets::InstancePtr appearance(manager->GetConnectedAssetInstance(physical, L"materialappearance"));
    return appearance != nullptr ? VisualMaterial(appearance.get()) : GetGenericVisualMaterial();
}

} // namespace Kx::Types
