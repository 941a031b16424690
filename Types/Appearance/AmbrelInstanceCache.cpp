#include "Types/Appearance/AmbrelManager.h"

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <base/Assert.h>
#include <base/OS.h>

#include <boost/format.hpp>

namespace Kx {

WideString AmbrelManager::GetKeyForMaterial(const WideString& libraryId, const WideString& materialId,
    const WideString& variant, int majorVersion, int minorVersion, const MaterialTweak& tweak)
{
    WideString key = libraryId + materialId + variant + std::to_wstring(majorVersion) + std::to_wstring(minorVersion);
    if (tweak.isNeutral()) {
        return key;
    }
    key += L'[';
    if (tweak.kind == MaterialTweak::eVertexColor) {
        key += L"VertexColor";
    } else if (tweak.kind == MaterialTweak::eTintColor) {
        key += (boost::wformat(L"%1$2x%2$2x%3$2x%4$2x") % tweak.color.redAsInt() % tweak.color.greenAsInt()
            % tweak.color.blueAsInt() % tweak.color.alphaAsInt()).str();
    }
    if (tweak.scale != 1.0f) {
        key += (boost::wformat(L"x%1%") % tweak.scale).str();
    }
    if (tweak.rotation != 0.0f) {
        key += (boost::wformat(L"@%1%") % tweak.rotation).str();
    }
    return key;
}

namespace {

WideString keyOf(const Assets::IAssetDefinition& definition, const MaterialTweak& tweak)
{
    return AmbrelManager::GetKeyForMaterial(definition.GetLibraryId(),
        telvarin::platform::core::toWide(definition.GetMaterialId()),
        definition.GetVariant(), definition.GetMajorVersion(), definition.GetMinorVersion(), tweak);
}

} // namespace

Assets::IAssetInstance* AmbrelManager::GetAssetInstance(Assets::IAssetInstance* instance, const MaterialTweak& tweak)
{
    if (instance == nullptr || instance->GetAssetDefinition() == nullptr) {
        return nullptr;
    }
    std::lock_guard lock(m_mutex);
    Assets::IAssetDefinition* definition = instance->GetAssetDefinition();
    const WideString key = keyOf(*definition, tweak);
    if (const auto cached = m_instanceCache.find(key); cached != m_instanceCache.end()) {
        Assets::IAssetInstance* pAssentInstance = cached->second;
        KX_ASSERT(pAssentInstance->GetReferenceCount() > 0);
        pAssentInstance->AddRef();
        return pAssentInstance;
    }
    Assets::IAssetLibrary* library = GetLibraryByIdentifier(definition->GetLibraryId());
    Assets::IAssetInstance* pAssetInst =
        library != nullptr ? library->CreateAssetInstance(definition) : instance->Clone();
    if (pAssetInst == nullptr) {
        return nullptr;
    }
    KX_ASSERT(pAssetInst->GetReferenceCount() == 1);
    SetAssetInstanceColor(pAssetInst, tweak);
    SetAssetInstanceTextureScale(pAssetInst, tweak);
    SetAssetInstanceTextureRotate(pAssetInst, tweak);
    m_instanceCache.emplace(key, pAssetInst);
    pAssetInst->AddRef();
    return pAssetInst;
}

Assets::IAssetInstance* AmbrelManager::GetAssetInstance(Assets::IAssetDefinition* definition,
    const WideString& libraryId, const MaterialTweak& tweak)
{
    if (definition == nullptr) {
        return nullptr;
    }
    std::lock_guard lock(m_mutex);
    const WideString key = keyOf(*definition, tweak);
    if (const auto cached = m_instanceCache.find(key); cached != m_instanceCache.end()) {
        Assets::IAssetInstance* pAssentInstance = cached->second;
        KX_ASSERT(pAssentInstance->GetReferenceCount() > 0);
        pAssentInstance->AddRef();
        return pAssentInstance;
    }
    Assets::IAssetLibrary* library = GetLibraryByIdentifier(libraryId.empty() ? definition->GetLibraryId() : libraryId);
    if (library == nullptr) {
        return nullptr;
    }
    Assets::IAssetInstance* fresh = library->CreateAssetInstance(definition);
    if (fresh == nullptr) {
        return nullptr;
    }
    // The fresh instance only carries the identity; the cached one is made (or found) from it.
    Assets::IAssetInstance* cached = GetAssetInstance(fresh, tweak);
    fresh->Release();
    return cached;
}

Assets::IAssetInstance* AmbrelManager::GetAssetInstance(const UTF8String& materialId, const WideString& libraryId,
    const MaterialTweak& tweak)
{
    if (!LoadLibs(false)) {
        return nullptr;
    }
    std::lock_guard lock(m_mutex);
    Assets::IAssetLibrary* library = GetLibraryByIdentifier(libraryId);
    if (library == nullptr) {
        return nullptr;
    }
    return GetAssetInstance(library->FindAssetDefinition(materialId), libraryId, tweak);
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
    const Assets::IAssetDefinition* definition = clone->GetAssetDefinition();
    const WideString key = definition != nullptr
        ? keyOf(*definition, MaterialTweak{})
        : GetKeyForMaterial({}, telvarin::platform::core::toWide(clone->GetAssetId()), {}, 0, 0, MaterialTweak{});
    const auto existing = m_instanceCache.find(key);
    if (existing == m_instanceCache.end()) {
        m_instanceCache.emplace(key, clone);
        clone->AddRef();
    } else if (replace) {
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
