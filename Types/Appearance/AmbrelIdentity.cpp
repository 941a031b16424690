#include "Types/Appearance/AmbrelManager.h"

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <base/Assert.h>

namespace Kx {

using Assets::IAssetInstance;
using telvarin::platform::core::toWide;

WideString AmbrelManager::GetAssetInstanceLibraryID(const IAssetInstance* instance) const
{
    if (instance == nullptr || instance->GetAssetDefinition() == nullptr) {
        return {};
    }
    return instance->GetAssetDefinition()->GetLibraryId();
}

WideString AmbrelManager::GetAssetInstanceMaterialID(const IAssetInstance* instance) const
{
    return instance != nullptr ? toWide(instance->GetAssetId()) : WideString{};
}

bool AmbrelManager::GetAssetInstanceInfo(const IAssetInstance* instance, WideString& libraryId, WideString& materialId,
    WideString& variant) const
{
    if (instance == nullptr || instance->GetAssetDefinition() == nullptr) {
        return false;
    }
    const Assets::IAssetDefinition& definition = *instance->GetAssetDefinition();
    libraryId = definition.GetLibraryId();
    materialId = toWide(definition.GetMaterialId());
    variant = definition.GetVariant();
    return true;
}

bool AmbrelManager::GetMaterialVersion(const IAssetInstance* instance, int& majorVersion, int& minorVersion) const
{
    if (instance == nullptr || instance->GetAssetDefinition() == nullptr) {
        return false;
    }
    majorVersion = instance->GetAssetDefinition()->GetMajorVersion();
    minorVersion = instance->GetAssetDefinition()->GetMinorVersion();
    return true;
}

std::wstring AmbrelManager::GetMaterialRevision(const IAssetInstance* instance) const
{
    if (instance == nullptr || instance->GetAssetDefinition() == nullptr) {
        return {};
    }
    return instance->GetAssetDefinition()->GetRevision();
}

WideString AmbrelManager::GetUIName(const UTF8String& materialId, const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    const Assets::IAssetLibrary* library = GetLibraryByIdentifier(libraryId);
    return library != nullptr ? library->GetAssetName(materialId, m_userLanguage) : WideString{};
}

WideString AmbrelManager::GetUIName(const IAssetInstance* instance) const
{
    return instance != nullptr ? instance->GetName(m_userLanguage) : WideString{};
}

WideString AmbrelManager::GetPhysicalMaterialUINameByID(const UTF8String& materialId) const
{
    std::lock_guard lock(m_mutex);
    for (ELibrary which : {eSystemPhysical, eAdvancedPhysical, eAdditive, eNonlinear}) {
        if (m_libraries[which] != nullptr && m_libraries[which]->FindAssetDefinition(materialId) != nullptr) {
            return m_libraries[which]->GetAssetName(materialId, m_userLanguage);
        }
    }
    return {};
}

WideString AmbrelManager::GetVisualMaterialUINameByID(const UTF8String& materialId) const
{
    std::lock_guard lock(m_mutex);
    for (ELibrary which : {eSystemVisual, eAdvancedVisual}) {
        if (m_libraries[which] != nullptr && m_libraries[which]->FindAssetDefinition(materialId) != nullptr) {
            return m_libraries[which]->GetAssetName(materialId, m_userLanguage);
        }
    }
    return {};
}

bool AmbrelManager::GetCategoryForMaterial(const UTF8String& materialId, const WideString& libraryId,
    WideString& category, WideString& subcategory) const
{
    std::lock_guard lock(m_mutex);
    const Assets::IAssetLibrary* library = GetLibraryByIdentifier(libraryId);
    const Assets::IAssetDefinition* definition =
        library != nullptr ? library->FindAssetDefinition(materialId) : nullptr;
    if (definition == nullptr) {
        return false;
    }
    category = definition->GetCategory().empty() ? L"default" : definition->GetCategory();
    subcategory = definition->GetSubcategory().empty() ? L"default" : definition->GetSubcategory();
    return true;
}

WideString AmbrelManager::GetThumbnailImageURI(const UTF8String& materialId, const WideString& libraryId) const
{
    const Assets::InstancePtr instance(createInstance(materialId, libraryId));
    if (instance == nullptr) {
        return {};
    }
    WideString uri = instance->GetThumbnailImageURI();
    return uri;
}

WideString AmbrelManager::GetThumbnailImageURI(const IAssetInstance* instance) const
{
    return instance != nullptr ? instance->GetThumbnailImageURI() : WideString{};
}

bool AmbrelManager::IsSystemMaterial(const IAssetInstance* instance) const
{
    return IsSystemMaterialLibrary(GetAssetInstanceLibraryID(instance));
}

MaterialState AmbrelManager::IsDifferentFromLibrary(const IAssetInstance* instance) const
{
    if (instance == nullptr || instance->GetAssetDefinition() == nullptr) {
        return MaterialState::eNotInLibrary;
    }
    const Assets::IAssetDefinition& definition = *instance->GetAssetDefinition();
    std::lock_guard lock(m_mutex);
    const Assets::IAssetLibrary* library = GetLibraryByIdentifier(definition.GetLibraryId());
    if (library == nullptr) {
        return MaterialState::eNotInLibrary;
    }
    const Assets::InstancePtr pLibInst(library->CreateAssetInstance(definition.GetMaterialId(), definition.GetVariant()));
    if (pLibInst == nullptr) {
        return MaterialState::eNotInLibrary;
    }
    KX_ASSERT(pLibInst->GetReferenceCount() == 1);
    const bool same = pLibInst->IsEqual(instance);
    return same ? MaterialState::eSameAsLibrary : MaterialState::eDifferentFromLibrary;
}

} // namespace Kx
