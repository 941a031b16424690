#pragma once

#include <assets/IAssetInstance.h>

#include <atomic>
#include <cstdint>

namespace Kx {

class AmbrelManager;
class ValueMetaType;

namespace MaterialValues {

using telvarin::platform::assets::IAssetInstance;

// The application's library manager, as material values resolve through it.
[[nodiscard]] AmbrelManager* libraryManager();
// The manager with its libraries loaded (a first document opened or saved loads them): the
// registry's assets pass through the library manager's serializer either way.
[[nodiscard]] AmbrelManager* loadedLibraryManager();

// A material value keeps one reference of its own on the instance it caches, so the instance
// outlives a refresh of the library manager's cache while a value still shows it.
inline IAssetInstance* retain(IAssetInstance* instance)
{
    if (instance != nullptr) {
        instance->AddRef();
    }
    return instance;
}
inline void release(IAssetInstance* instance)
{
    if (instance != nullptr) {
        instance->Release();
    }
}

// Stores `instance` (whose reference the slot takes over) unless another thread stored one first;
// answers the instance the slot holds afterwards. Two readers resolving at once both resolve, and
// the second gives its reference back.
inline IAssetInstance* storeResolved(std::atomic<IAssetInstance*>& slot, IAssetInstance* instance)
{
    IAssetInstance* expected = nullptr;
    if (slot.compare_exchange_strong(expected, instance)) {
        return instance;
    }
    release(instance);
    return expected;
}

// Replaces the slot's instance with `instance` (a reference of its own) and drops the old one.
inline void replace(std::atomic<IAssetInstance*>& slot, IAssetInstance* instance)
{
    release(slot.exchange(instance));
}

// Equal when they are one instance or have the same schema and property values.
[[nodiscard]] bool isEqual(const IAssetInstance* first, const IAssetInstance* second);

// The meta types register themselves here when they are made at start-up.
extern ValueMetaType* s_physicalMaterialMetaType;
extern ValueMetaType* s_visualMaterialMetaType;

} // namespace MaterialValues
} // namespace Kx
