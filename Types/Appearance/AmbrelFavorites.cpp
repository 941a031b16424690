// The favourites library: a writable library beside the standard files into which the user copies
// materials and appearances.
#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/DefaultMaterialOptions.h"

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <base/AppLogMgr.h>
#include <base/Assert.h>
#include <core/Strings.h>

#include <stdexcept>

namespace Kx {

using Assets::IAssetInstance;
using Assets::IAssetLibrary;
using Assets::IWritableAssetLibrary;

namespace {

// The favourite shows the same pictures as the original: images the original takes from its own
// library ("tvp:?asset=...") are copied into the favourites library under the same name.
void carryEmbeddedImage(const IAssetLibrary* origin, IWritableAssetLibrary& favorites, const WideString& uri)
{
    if (origin == nullptr || !uri.starts_with(Assets::s_resourcePrefix)) {
        return;
    }
    std::vector<std::uint8_t> bytes;
    if (origin->ReadEmbeddedResource(uri, bytes)) {
        (void)favorites.AddEmbeddedResource(uri.substr(Assets::s_resourcePrefix.size()), bytes);
    }
}

} // namespace

void AmbrelManager::setDefaultMaterialOptions(DefaultMaterialOptionGroup* options)
{
    std::lock_guard lock(m_mutex);
    m_defaultMaterialOptions = options;
}

DefaultMaterialOptionGroup* AmbrelManager::defaultMaterialOptions() const
{
    std::lock_guard lock(m_mutex);
    return m_defaultMaterialOptions;
}

bool AmbrelManager::CreateFavoritesLibrary()
{
    std::lock_guard lock(m_mutex);
    if (m_libraries[eFavorites] != nullptr || m_libMgr == nullptr) {
        return false;
    }
    const WideString path = m_paths[eFavorites];
    if (path.empty()) {
        return false;
    }
    Assets::AssetError error;
    IAssetLibrary* library = m_libMgr->CreateAssetLibrary(path, 5, {}, &error);
    if (library == nullptr) {
        AppLogMgr::appLogEx(ELogLevel::eWarning,
            L"Favorites library " + path + L" not created: " + telvarin::platform::core::toWide(error.message));
        return false;
    }
    if (!m_libMgr->SaveAssetLibrary(library, &error) || !m_libMgr->RegisterAssetLibrary(library, &error)) {
        AppLogMgr::appLogEx(ELogLevel::eWarning,
            L"Favorites library " + path + L" not created: " + telvarin::platform::core::toWide(error.message));
        m_libMgr->ReleaseAssetLibrary(library);
        return false;
    }
    m_libraries[eFavorites] = library;
    m_libraryIds[eFavorites] = library->GetLibraryId();
    m_librariesInfoBuilt = false;
    return true;
}

IAssetInstance* AmbrelManager::AddMaterialToFavorites(IAssetInstance* instance)
{
    if (instance == nullptr) {
        return nullptr;
    }
    Assets::IAssetLibraryManager* mpAssetLibraryManager = GetAssetLibMgr();
    KX_ASSERT(mpAssetLibraryManager);
    if (mpAssetLibraryManager == nullptr) {
        return nullptr;
    }
    const IAssetLibrary* pReadOnlyLibrary = GetFavoritesLibrary();
    if (pReadOnlyLibrary == nullptr) {
        CreateFavoritesLibrary();
        pReadOnlyLibrary = GetFavoritesLibrary();
    }
    KX_ASSERT(pReadOnlyLibrary);
    if (pReadOnlyLibrary == nullptr) {
        return nullptr;
    }

    std::lock_guard lock(m_mutex);
    IWritableAssetLibrary* pWriteableAssetLibrary =
        mpAssetLibraryManager->GetWritableAssetLibrary(const_cast<IAssetLibrary*>(pReadOnlyLibrary));
    KX_ASSERT(pWriteableAssetLibrary);
    if (pWriteableAssetLibrary == nullptr) {
        return nullptr;
    }
    IAssetInstance* clone = CloneAndCacheAsset(instance, true);
    if (clone == nullptr) {
        mpAssetLibraryManager->ReleaseWritableAssetLibrary(pWriteableAssetLibrary);
        return nullptr;
    }
    const Assets::IAssetDefinition* origin = instance->GetAssetDefinition();
    const IAssetLibrary* originLibrary = origin != nullptr ? GetLibraryByIdentifier(origin->GetLibraryId()) : nullptr;
    carryEmbeddedImage(originLibrary, *pWriteableAssetLibrary, clone->GetThumbnailImageURI());
    if (Assets::SchemaEquals(clone->GetSchemaName(), L"physicalmaterial")) {
        const int count = clone->GetConnectedAssetCount(L"physmat_aspects");
        for (int index = 0; index < count; ++index) {
            const Assets::InstancePtr aspect(clone->GetConnectedAsset(L"physmat_aspects", index));
            if (aspect != nullptr) {
                const WideString thumbnail = GetThumbnailImageURI(aspect.get());
                aspect->SetStringValue(L"thumbnail", thumbnail);
                carryEmbeddedImage(originLibrary, *pWriteableAssetLibrary, thumbnail);
            }
        }
    }

    const UTF8String materialId = clone->GetAssetId();
    bool bSucceeded = false;
    bool thrown = false;
    try {
        bSucceeded = pWriteableAssetLibrary->CreateNewAssetPreset(clone, materialId);
    } catch (const std::exception&) {
        thrown = true;
    }
    clone->Release();
    if (thrown) {
        KX_ASSERT(!"An exception is thrown by telvarin::platform::assets::IAssetLibrary::CreateNewAssetPreset");
    } else {
        KX_ASSERT(bSucceeded);
    }
    if (!bSucceeded) {
        // Released without a commit: the library is left as it was.
        mpAssetLibraryManager->ReleaseWritableAssetLibrary(pWriteableAssetLibrary);
        return nullptr;
    }
    Assets::AssetSearchIterator iter = pWriteableAssetLibrary->SearchByMaterialId(materialId);
    KX_ASSERT(!iter.IsEmpty());
    IAssetInstance* result = iter.GetAssetInstance();
    iter.Release();
    mpAssetLibraryManager->CommitAssetLibrary(pWriteableAssetLibrary);
    mpAssetLibraryManager->ReleaseWritableAssetLibrary(pWriteableAssetLibrary);
    return result;
}

bool AmbrelManager::RemoveMaterialFromFavorites(IAssetInstance* instance)
{
    if (instance == nullptr || instance->GetAssetDefinition() == nullptr) {
        return false;
    }
    Assets::IAssetLibraryManager* mpAssetLibraryManager = GetAssetLibMgr();
    KX_ASSERT(mpAssetLibraryManager);
    const IAssetLibrary* favorites = GetFavoritesLibrary();
    if (mpAssetLibraryManager == nullptr || favorites == nullptr) {
        return false;
    }

    std::unique_lock lock(m_mutex);
    IWritableAssetLibrary* pWriteableAssetLibrary =
        mpAssetLibraryManager->GetWritableAssetLibrary(const_cast<IAssetLibrary*>(favorites));
    KX_ASSERT(pWriteableAssetLibrary);
    if (pWriteableAssetLibrary == nullptr) {
        return false;
    }
    const Assets::IAssetDefinition& definition = *instance->GetAssetDefinition();
    const UTF8String materialId = definition.GetMaterialId();
    Assets::AssetSearchIterator iter2 = pWriteableAssetLibrary->SearchByMaterialId(materialId);
    KX_ASSERT(!iter2.IsEmpty());
    Assets::IAssetDefinition* pAssetDef = nullptr;
    for (Assets::IAssetDefinition* candidate : iter2) {
        if (candidate->GetVariant() == definition.GetVariant()) {
            pAssetDef = candidate;
        }
    }
    KX_ASSERT(pAssetDef != NULL);
    bool bSucceeded = false;
    if (pAssetDef != nullptr) {
        bSucceeded = pWriteableAssetLibrary->DeleteAssetDefinition(pAssetDef);
        KX_ASSERT(bSucceeded);
    }
    iter2.Release();
    if (bSucceeded) {
        const bool bCommitted = mpAssetLibraryManager->CommitAssetLibrary(pWriteableAssetLibrary);
        KX_ASSERT(bCommitted);
        bSucceeded = bCommitted;
    }
    mpAssetLibraryManager->ReleaseWritableAssetLibrary(pWriteableAssetLibrary);
    if (!bSucceeded) {
        return false;
    }
    dropCachedInstancesOf(favorites->GetLibraryId());

    // A default that no longer exists would give new documents a missing material.
    DefaultMaterialOptionGroup* options = m_defaultMaterialOptions;
    lock.unlock();
    if (options == nullptr && m_isApplicationManager) {
        options = DefaultMaterialOptionGroup::get();
    }
    if (options != nullptr) {
        const std::wstring removed = telvarin::platform::core::toWide(materialId);
        if (removed == options->PhysicalMaterialID()) {
            options->resetPhysicalMaterialOptionsToDefault();
        }
        if (removed == options->VisualMaterialID()) {
            options->resetVisualMaterialOptionsToDefault();
        }
    }
    return true;
}

} // namespace Kx
