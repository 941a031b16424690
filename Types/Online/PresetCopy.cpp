#include "Types/Online/PresetCopy.h"

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>

#include <algorithm>
#include <set>

namespace Kx::Types {

namespace {

void collectResources(const Assets::IAssetInstance& instance, std::vector<Assets::WideString>& names,
    std::set<const Assets::IAssetInstance*>& seen)
{
    if (!seen.insert(&instance).second)
        return;
    const auto add = [&](const Assets::WideString& uri) {
        if (uri.starts_with(Assets::s_resourcePrefix)) {
            Assets::WideString name = uri.substr(Assets::s_resourcePrefix.size());
            if (std::find(names.begin(), names.end(), name) == names.end())
                names.push_back(std::move(name));
        }
    };
    add(instance.GetThumbnailImageURI());
    std::vector<Assets::WideString> properties = instance.GetPropertyNames();
    std::sort(properties.begin(), properties.end());
    for (const Assets::WideString& property : properties) {
        Assets::WideString value;
        if (instance.GetPropertyType(property) == Assets::EPropertyType::eString && instance.GetStringValue(property, value))
            add(value);
        const int count = instance.GetConnectedAssetCount(property);
        for (int index = 0; index < count; ++index) {
            const Assets::InstancePtr connected(instance.GetConnectedAsset(property, index));
            if (connected != nullptr)
                collectResources(*connected, names, seen);
        }
    }
}

} // namespace

std::vector<Assets::WideString> EmbeddedResourceNames(const Assets::IAssetInstance& instance)
{
    std::vector<Assets::WideString> names;
    std::set<const Assets::IAssetInstance*> seen;
    collectResources(instance, names, seen);
    return names;
}

bool CopyPreset(const Assets::IAssetLibrary& from, const Assets::IAssetDefinition& definition,
    Assets::IWritableAssetLibrary& to, Assets::AssetError& error)
{
    const Assets::InstancePtr instance(from.CreateAssetInstance(&definition));
    if (instance == nullptr) {
        error = from.GetLastError();
        if (!error.failed())
            error = {Assets::EAssetError::eNotFound, "the preset " + definition.GetMaterialId() + " cannot be read"};
        return false;
    }
    for (const Assets::WideString& name : EmbeddedResourceNames(*instance)) {
        std::vector<std::uint8_t> bytes;
        if (from.ReadEmbeddedResource(Assets::WideString(Assets::s_resourcePrefix) + name, bytes)
            && to.AddEmbeddedResource(name, bytes, &error).empty())
            return false;
    }
    const Assets::AssetPresetInfo info{definition.GetMaterialId(), definition.GetVariant(), definition.GetMajorVersion(),
        definition.GetMinorVersion(), definition.GetRevision(), definition.GetVersionGUID(), definition.GetCategory(),
        definition.GetSubcategory()};
    return to.CreateNewAssetPreset(instance.get(), info, &error);
}

} // namespace Kx::Types
