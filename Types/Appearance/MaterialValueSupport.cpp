#include "Types/Appearance/internal/MaterialValueSupport.h"

#include "Types/Appearance/AmbrelManager.h"

#include <mutex>

namespace Kx::MaterialValues {

ValueMetaType* s_physicalMaterialMetaType = nullptr;
ValueMetaType* s_visualMaterialMetaType = nullptr;

AmbrelManager* libraryManager() { return AmbrelManager::GetAmbrelManager(false); }
AmbrelManager* loadedLibraryManager() { return AmbrelManager::GetAmbrelManager(true); }

bool isEqual(const IAssetInstance* first, const IAssetInstance* second)
{
    if (first == second) {
        return true;
    }
    if (first == nullptr || second == nullptr) {
        return false;
    }
    // Instances are not thread-safe to read: compare under the lock every other reader takes.
    AmbrelManager* manager = libraryManager();
    if (manager == nullptr) {
        return first->IsEqual(second);
    }
    std::lock_guard lock(manager->mutex());
    return first->IsEqual(second);
}

} // namespace Kx::MaterialValues
