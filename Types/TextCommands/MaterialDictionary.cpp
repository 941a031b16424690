#include "Types/TextCommands/MaterialDictionary.h"

#include <Types/Appearance/AmbrelAssetManager.h>
#include <Types/Appearance/AmbrelManager.h>

#include <assets/IAssetInstance.h>
#include <base/Strings.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentRegistry.h>
#include <datamodel/EntityRefConvertor.h>

#include <boost/json/parse.hpp>

#include <initializer_list>
#include <string_view>

namespace Kx {

namespace {

using IAssetInstance = AmbrelAssetManager::IAssetInstance;

// The member under its field name or the name it is stored under; null when neither is there.
const boost::json::value* member(const boost::json::object& object, std::initializer_list<std::string_view> names)
{
    for (std::string_view name : names) {
        if (const auto* found = object.if_contains(name))
            return found;
    }
    return nullptr;
}

std::wstring text(const boost::json::object& object, std::string_view name)
{
    const auto* found = object.if_contains(name);
    return found != nullptr && found->is_string() ? ToIString(std::string(found->get_string())) : std::wstring{};
}

double number(const boost::json::object& object, std::string_view name, double fallback)
{
    const auto* found = object.if_contains(name);
    return found != nullptr && found->is_number() ? found->to_number<double>() : fallback;
}

// The registered instance of the dictionary's material: under its reference when the dictionary
// gives one and it names that material, else the first registered one with the material's id.
IAssetInstance* registered(AmbrelAssetManager& registry, bool appearance, const std::wstring& materialId,
    const std::wstring& reference)
{
    AmbrelManager* manager = AmbrelManager::GetAmbrelManager(true);
    if (manager == nullptr || materialId.empty())
        return nullptr;
    const auto isTheMaterial = [&](IAssetInstance* instance) {
        return instance != nullptr && manager->GetAssetInstanceMaterialID(instance) == materialId;
    };
    if (!reference.empty()) {
        IAssetInstance* byReference = appearance ? registry.visualMaterialAssetInstance(reference)
                                                 : registry.physicalMaterialAssetInstance(reference);
        if (isTheMaterial(byReference))
            return byReference;
    }
    std::vector<IAssetInstance*> instances;
    if (appearance)
        registry.getAllRegisteredVisualMaterials(instances);
    else
        registry.getAllRegisteredPhysicalMaterials(instances);
    for (IAssetInstance* instance : instances) {
        if (isTheMaterial(instance))
            return instance;
    }
    return nullptr;
}

} // namespace

std::variant<MaterialDictionary, std::wstring> readMaterialDictionary(const std::wstring* dictionaryText)
{
    if (dictionaryText == nullptr)
        return std::wstring(L"You need to provide a material directionary");
    const std::wstring invalid = L"The input material directionary is invalid";
    const std::wstring notValid = L"Not valid material";
    boost::system::error_code error;
    const boost::json::value json = boost::json::parse(ToUTF8(*dictionaryText), error);
    if (error || !json.is_object())
        return invalid;
    const boost::json::object& object = json.get_object();
    const boost::json::value* registryRef = member(object, {"rAmbrelAssetManager", "AmbrelAssetManager"});
    if (registryRef == nullptr)
        return invalid;

    // Entity ids are a document's own: the reference is read in the document the user works on.
    Document* document = DocumentRegistry::get().active();
    if (document == nullptr)
        return notValid;
    StrongRef<Entity> referenced = EntityRefConvertor::JSONToEntityRef(*registryRef, *document);
    StrongRef<AmbrelAssetManager> registry =
        referenced ? AmbrelAssetManager::find(referenced->segment()) : StrongRef<AmbrelAssetManager>{};
    if (!registry || registry.get() != dynamic_cast<AmbrelAssetManager*>(referenced.get()))
        return notValid;

    const bool appearance = member(object, {"isUseCustomizedColor", "UseCustomizedColor"}) != nullptr
        || object.contains("ambrelMaterialRotation");
    IAssetInstance* instance =
        registered(*registry, appearance, text(object, "ambrelMaterialID"), text(object, "assetReference"));
    if (instance == nullptr)
        return notValid;
    if (!appearance)
        return MaterialDictionary{registry, PhysicalMaterial(instance)};
    VisualMaterial visual(instance);
    visual.ambrelMaterialScale(static_cast<float>(number(object, "ambrelMaterialScale", 1.0)));
    visual.ambrelMaterialRotation(static_cast<float>(number(object, "ambrelMaterialRotation", 0.0)));
    return MaterialDictionary{registry, std::move(visual)};
}

} // namespace Kx
