#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/MaterialKey.h"
#include "Types/Appearance/internal/InstanceShortcuts.h"

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <base/Assert.h>
#include <base/OS.h>


namespace Kx {

namespace {

MaterialKey keyOf(const Assets::IAssetDefinition& definition, const MaterialTweak& tweak)
{
    return MaterialKey(definition.GetLibraryId(), definition.GetMaterialId(), definition.GetVariant(),
        definition.GetMajorVersion(), definition.GetMinorVersion(), tweak);
}

} // namespace

WideString AmbrelManager::GetKeyForMaterial(const WideString& libraryId, const WideString& materialId,
    const WideString& variant, int majorVersion, int minorVersion, const MaterialTweak& tweak)
{
    return MaterialKey(libraryId, materialId, variant, majorVersion, minorVersion, tweak).str();
}

namespace {

// A cached instance handed out: the cache's own reference keeps it alive, the caller gets another.
Assets::IAssetInstance* handOut(Assets::IAssetInstance* pAssentInstance)
{
    KX_ASSERT(pAssentInstance->GetReferenceCount() > 0);
    pAssentInstance->AddRef();
    return pAssentInstance;
}

} // namespace

Assets::IAssetInstance* AmbrelManager::findCached(std::wstring_view key) const
{
    const auto cached = m_instanceCache.find(key);
    return cached != m_instanceCache.end() ? handOut(cached->second) : nullptr;
}

Assets::IAssetInstance* AmbrelManager::cacheNew(WideString key, Assets::IAssetInstance* pAssetInst,
    const MaterialTweak& tweak)
{
    if (pAssetInst == nullptr) {
        return nullptr;
    }
    KX_ASSERT(pAssetInst->GetReferenceCount() == 1);
    // A fresh instance is the library's already: only what the tweak changes is applied (a neutral
    // scale or rotation given to the setters would set the library's own texture values back).
    SetAssetInstanceColor(pAssetInst, tweak);
    if (tweak.scale != 1.0f) {
        SetAssetInstanceTextureScale(pAssetInst, tweak);
    }
    if (tweak.rotation != 0.0f) {
        SetAssetInstanceTextureRotate(pAssetInst, tweak);
    }
    m_instanceCache.emplace(std::move(key), pAssetInst);
    pAssetInst->AddRef();
    return pAssetInst;
}

Assets::IAssetInstance* AmbrelManager::GetAssetInstance(Assets::IAssetInstance* instance, const MaterialTweak& tweak)
{
    if (instance == nullptr || instance->GetAssetDefinition() == nullptr) {
        return nullptr;
    }
    std::lock_guard lock(m_mutex);
    Assets::IAssetDefinition* definition = instance->GetAssetDefinition();
    const MaterialKey key = keyOf(*definition, tweak);
    if (Assets::IAssetInstance* cached = findCached(key.view())) {
        return cached;
    }
    // Made afresh from the definition: `instance` may be a document's edited copy, and what the
    // cache answers for a material must be the library's. Without its library there is nothing to
    // make it from.
    // The definition may be another library object's (a document's copy of the preset): the
    // preset is found again by its identity.
    Assets::IAssetLibrary* library = GetLibraryByIdentifier(definition->GetLibraryId());
    return library != nullptr
        ? cacheNew(key.str(), library->CreateAssetInstance(definition->GetMaterialId(), definition->GetVariant()), tweak)
        : nullptr;
}

void AmbrelManager::dropCachedInstancesOf(const WideString& libraryId)
{
    m_shortcuts->forgetAll();
    std::erase_if(m_instanceCache, [&](const auto& entry) {
        const Assets::IAssetDefinition* definition = entry.second->GetAssetDefinition();
        if (definition == nullptr || definition->GetLibraryId() != libraryId) {
            return false;
        }
        const int count = entry.second->GetReferenceCount();
        KX_ASSERT(count > 0);
        entry.second->Release();
        return true;
    });
}

Assets::IAssetInstance* AmbrelManager::GetAssetInstance(Assets::IAssetDefinition* definition,
    const WideString& libraryId, const MaterialTweak& tweak)
{
    if (definition == nullptr) {
        return nullptr;
    }
    std::lock_guard lock(m_mutex);
    return cachedInstance(*definition, tweak, nullptr, libraryId);
}

Assets::IAssetInstance* AmbrelManager::cachedInstance(Assets::IAssetDefinition& definition, const MaterialTweak& tweak,
    Assets::IAssetLibrary* library, const WideString& libraryId)
{
    const MaterialKey key = keyOf(definition, tweak);
    if (Assets::IAssetInstance* cached = findCached(key.view())) {
        return cached;
    }
    if (library == nullptr) {
        library = GetLibraryByIdentifier(libraryId.empty() ? definition.GetLibraryId() : libraryId);
    }
    return library != nullptr ? cacheNew(key.str(), library->CreateAssetInstance(&definition), tweak) : nullptr;
}

Assets::IAssetInstance* AmbrelManager::GetAssetInstance(const UTF8String& materialId, const WideString& libraryId,
    const MaterialTweak& tweak)
{
    if (!LoadLibs(false)) {
        return nullptr;
    }
    if (Assets::IAssetInstance* cached = m_shortcuts->find(libraryId, materialId, tweak)) {
        return cached;
    }
    std::lock_guard lock(m_mutex);
    Assets::IAssetLibrary* library = GetLibraryByIdentifier(libraryId);
    if (library == nullptr) {
        return nullptr;
    }
    // Read before the lookup: a change made meanwhile then leaves the shortcut out of date, not wrong.
    const std::uint64_t changeCount = library->GetChangeCount();
    Assets::IAssetDefinition* definition = library->FindAssetDefinition(materialId);
    if (definition == nullptr) {
        return nullptr;
    }
    Assets::IAssetInstance* instance = cachedInstance(*definition, tweak, library, libraryId);
    // Only libraries of this manager: it forgets the shortcuts before it releases one of them.
    if (instance != nullptr && ownsLibrary(library)) {
        m_shortcuts->remember(libraryId, *library, materialId, tweak, instance, changeCount);
    }
    return instance;
}

Assets::IAssetInstance* AmbrelManager::createInstance(const UTF8String& materialId, const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    Assets::IAssetLibrary* library = GetLibraryByIdentifier(libraryId);
    return library != nullptr ? library->CreateAssetInstance(materialId) : nullptr;
}

Assets::IAssetInstance* AmbrelManager::GetAssetUncacheInstance(const UTF8String& materialId,
    const WideString& libraryId)
{
    if (!LoadLibs(false)) {
        return nullptr;
    }
    return createInstance(materialId, libraryId);
}

Assets::IAssetInstance* AmbrelManager::CloneAndCacheAsset(Assets::IAssetInstance* instance, bool replace)
{
    KX_ASSERT(OS::platformIsUIThread());
    if (instance == nullptr) {
        return nullptr;
    }
    std::lock_guard lock(m_mutex);
    Assets::IAssetInstance* clone = instance->Clone();
    if (clone == nullptr) {
        return nullptr;
    }
    KX_ASSERT(clone->GetReferenceCount() > 0);
    if (const Assets::IAssetDefinition* origin = clone->GetAssetDefinition()) {
        if (Assets::IAssetLibrary* library = GetLibraryByIdentifier(origin->GetLibraryId())) {
            ExtractEmbedResource(*library, *clone);
        }
    }
    const Assets::IAssetDefinition* definition = clone->GetAssetDefinition();
    const WideString key = definition != nullptr
        ? keyOf(*definition, MaterialTweak{}).str()
        : GetKeyForMaterial({}, telvarin::platform::core::toWide(clone->GetAssetId()), {}, 0, 0, MaterialTweak{});
    const auto existing = m_instanceCache.find(key);
    if (existing == m_instanceCache.end()) {
        m_instanceCache.emplace(key, clone);
        clone->AddRef();
    } else if (replace) {
        m_shortcuts->forgetAll();
        existing->second->Release();
        existing->second = clone;
        clone->AddRef();
    }
    return clone;
}

Assets::IAssetInstance* AmbrelManager::GetConnectedAssetInstance(const Assets::IAssetInstance* instance,
    const WideString& property) const
{
    if (instance == nullptr) {
        return nullptr;
    }
    Assets::IAssetInstance* pInst = instance->GetConnectedAsset(property);
    if (pInst != nullptr) {
        KX_ASSERT(pInst->GetReferenceCount() > 0);
    }
    return pInst;
}

std::size_t AmbrelManager::GetCachedInstanceCount() const
{
    std::lock_guard lock(m_mutex);
    return m_instanceCache.size();
}

} // namespace Kx
