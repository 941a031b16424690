#include "Types/Appearance/AmbrelManager.h"

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>

#include <filesystem>

namespace Kx {

using Assets::IAssetDefinition;
using Assets::IAssetInstance;
using Assets::SchemaEquals;

namespace {

bool isPhysical(const WideString& schema)
{
    return SchemaEquals(schema, L"physicalmaterial");
}

bool isEnvironment(const WideString& schema)
{
    return SchemaEquals(schema, L"environment") || SchemaEquals(schema, L"CorvexIBLSchema");
}

// Presets of an appearance library carry their appearance schema, so an appearance is any preset
// that is not a physical material, an environment, a bare texture or a decal.
bool isVisual(const WideString& schema)
{
    return !isPhysical(schema) && !isEnvironment(schema) && !SchemaEquals(schema, L"texture")
        && !SchemaEquals(schema, L"Decal") && !SchemaEquals(schema, L"DecalAppearance")
        && !SchemaEquals(schema, L"DecalAppearanceSchema");
}

template <class Keep, class Visit>
void forEachPreset(const Assets::IAssetLibrary* library, Keep&& keep, Visit&& visit)
{
    if (library == nullptr) {
        return;
    }
    for (IAssetDefinition* definition : library->GetAssetDefinitions()) {
        if (keep(definition->GetSchemaName())) {
            visit(*definition);
        }
    }
}

bool anyPreset(const WideString&)
{
    return true;
}

std::multimap<WideString, UTF8String> categorized(const Assets::IAssetLibrary* library, bool (*keep)(const WideString&))
{
    std::multimap<WideString, UTF8String> result;
    forEachPreset(library, keep, [&](const IAssetDefinition& definition) {
        result.emplace(definition.GetCategory().empty() ? WideString(L"default") : definition.GetCategory(),
            definition.GetMaterialId());
    });
    return result;
}

std::vector<UTF8String> ids(const Assets::IAssetLibrary* library, bool (*keep)(const WideString&))
{
    std::vector<UTF8String> result;
    forEachPreset(library, keep,
        [&](const IAssetDefinition& definition) { result.push_back(definition.GetMaterialId()); });
    return result;
}

void collectTextures(const IAssetInstance& instance, std::vector<IAssetInstance*>& textures, int depth)
{
    // Connections cannot form cycles; the depth limit only guards against a damaged library.
    if (depth > 16) {
        return;
    }
    for (const WideString& property : instance.GetPropertyNames()) {
        const int count = instance.GetConnectedAssetCount(property);
        for (int i = 0; i < count; ++i) {
            IAssetInstance* connected = instance.GetConnectedAsset(property, i);
            if (connected == nullptr) {
                continue;
            }
            if (SchemaEquals(connected->GetSchemaName(), L"texture")) {
                textures.push_back(connected);
            } else {
                collectTextures(*connected, textures, depth + 1);
                connected->Release();
            }
        }
    }
}

} // namespace

std::multimap<WideString, UTF8String> AmbrelManager::GetCategorizedPhysicalMaterialsByLibrary(
    const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    return categorized(GetLibraryByIdentifier(libraryId), isPhysical);
}

std::multimap<WideString, UTF8String> AmbrelManager::GetCategorizedVisualMaterialsByLibrary(
    const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    return categorized(GetLibraryByIdentifier(libraryId), isVisual);
}

std::vector<UTF8String> AmbrelManager::GetPhysicalMaterialsByLibrary(const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    return ids(GetLibraryByIdentifier(libraryId), isPhysical);
}

std::vector<UTF8String> AmbrelManager::GetVisualMaterialsByLibrary(const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    return ids(GetLibraryByIdentifier(libraryId), isVisual);
}

std::vector<UTF8String> AmbrelManager::GetEnvironmentAssetsByLibrary(const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    return ids(GetLibraryByIdentifier(libraryId), isEnvironment);
}

bool AmbrelManager::GetEnvironmentAssetInfo(const UTF8String& materialId, const WideString& libraryId,
    WideString& image, double& illuminance) const
{
    const Assets::InstancePtr instance(createInstance(materialId, libraryId));
    if (instance == nullptr) {
        return false;
    }
    WideString readImage;
    double readIlluminance = 0.0;
    const bool found = isEnvironment(instance->GetSchemaName()) && instance->GetStringValue(L"image", readImage)
        && instance->GetDoubleValue(L"illuminance", readIlluminance);
    if (found) {
        image = readImage;
        illuminance = readIlluminance;
    }
    return found;
}

std::vector<std::pair<UTF8String, WideString>> AmbrelManager::GetAllIDAndUuids(const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    std::vector<std::pair<UTF8String, WideString>> result;
    const Assets::IAssetLibrary* library = GetLibraryByIdentifier(libraryId);
    forEachPreset(library, anyPreset, [&](const IAssetDefinition& definition) {
        const Assets::InstancePtr instance(library->CreateAssetInstance(&definition));
        WideString guid;
        if (instance != nullptr && instance->GetStringValue(L"ExchangeGUID", guid)) {
            result.emplace_back(definition.GetMaterialId(), guid);
        }
    });
    return result;
}

std::vector<std::pair<UTF8String, WideString>> AmbrelManager::GetAssetIDsAndNames(const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    std::vector<std::pair<UTF8String, WideString>> result;
    const Assets::IAssetLibrary* library = GetLibraryByIdentifier(libraryId);
    forEachPreset(library, anyPreset, [&](const IAssetDefinition& definition) {
        const UTF8String& id = definition.GetMaterialId();
        result.emplace_back(id, library->GetAssetName(id, m_userLanguage));
    });
    return result;
}

std::multimap<WideString, UTF8String> AmbrelManager::GetMateriaNamesAndIDs(const WideString& libraryId) const
{
    std::multimap<WideString, UTF8String> result;
    for (auto& [id, name] : GetAssetIDsAndNames(libraryId)) {
        result.emplace(std::move(name), std::move(id));
    }
    return result;
}

std::vector<IAssetInstance*> AmbrelManager::CollectTextureAssets(const IAssetInstance* instance) const
{
    std::vector<IAssetInstance*> textures;
    if (instance != nullptr) {
        collectTextures(*instance, textures, 0);
    }
    return textures;
}

bool AmbrelManager::InstanceTexturesAreLocal(const IAssetInstance* instance) const
{
    bool local = true;
    for (IAssetInstance* texture : CollectTextureAssets(instance)) {
        WideString bitmap;
        if (texture->GetStringValue(L"unifiedbitmap_Bitmap", bitmap) && !bitmap.starts_with(Assets::s_resourcePrefix)) {
            std::error_code ignored;
            local = local && std::filesystem::exists(bitmap, ignored);
        }
        texture->Release();
    }
    return local;
}

} // namespace Kx
