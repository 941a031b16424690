#include "Types/TextCommands/MaterialTextCommands.h"

#include <Types/Appearance/AmbrelAssetManager.h>
#include <Types/Appearance/AmbrelManager.h>
#include <Types/TextCommands/MaterialDictionary.h>
#include <Types/Utility/MaterialUtil.h>
#include <Types/Utility/TypesUtil.h>

#include <assets/IAssetInstance.h>
#include <base/JSONNode.h>
#include <base/Strings.h>
#include <core/Strings.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentRegistry.h>
#include <datamodel/Segment.h>

#include <boost/format.hpp>
#include <boost/json/object.hpp>

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace Kx {

namespace {

using IAssetInstance = AmbrelAssetManager::IAssetInstance;
using telvarin::platform::core::toWide;


template <class First, class... Rest>
std::wstring line(const wchar_t* format, const First& first, const Rest&... rest)
{
    boost::wformat formatted(format);
    formatted % first;
    ((formatted % rest), ...);
    return formatted.str();
}

AmbrelManager* loadedLibraries()
{
    AmbrelManager* manager = AmbrelManager::GetAmbrelManager(true);
    return manager != nullptr && manager->LibsLoaded() ? manager : nullptr;
}

const std::wstring s_noLibraries = L"The material libraries could not be loaded";

// --- finding in the libraries ---

struct FindTexts {
    const wchar_t* missing;
    const wchar_t* tooMany;
};

template <class Material>
std::wstring find(const TextCommandParameters& parameters, const FindTexts& texts)
{
    constexpr bool visual = std::is_same_v<Material, VisualMaterial>;
    if (parameters.parameters() == 0)
        return TextCommand::failure(texts.missing);
    if (parameters.parameters() > 1)
        return TextCommand::failure(texts.tooMany);
    AmbrelManager* manager = loadedLibraries();
    if (manager == nullptr)
        return TextCommand::failure(s_noLibraries);
    const std::wstring& wanted = parameters[0];
    if (parameters.hasFlag(L"ById")) {
        const std::wstring library = visual ? manager->GetVisualLibraryID() : manager->GetPhysicalLibraryID();
        const std::wstring name = manager->GetUIName(ToUTF8(wanted), library);
        if (name.empty())
            return TextCommand::failure(line(L"No material has the id %1%", wanted));
        return line(L"Name %1%, Id %2%", name, wanted);
    }
    Material found;
    if constexpr (visual)
        found = Types::GetVisualMaterialFromName(wanted);
    else
        found = Types::GetPhysicalMaterial(wanted);
    if (found.ambrelMaterialID().empty())
        return TextCommand::failure(line(L"No material is named %1%", wanted));
    return line(L"Name %1%, Id %2%", found.name(), found.ambrelMaterialID());
}

// --- the material dictionary commands ---

boost::json::object colorObject(const telvarin::platform::assets::AssetColor& color)
{
    // Red, blue, green, alpha: the order scripts reading these objects expect.
    boost::json::object object;
    object["r"] = color.r;
    object["b"] = color.b;
    object["g"] = color.g;
    object["a"] = color.a;
    return object;
}

void addAssetProperties(boost::json::object& out, const IAssetInstance& asset)
{
    using telvarin::platform::assets::EPropertyType;
    for (const std::wstring& name : asset.GetPropertyNames()) {
        const std::string key = ToUTF8(name);
        switch (asset.GetPropertyType(name)) {
        case EPropertyType::eString: {
            std::wstring value;
            if (asset.GetStringValue(name, value))
                out[key] = ToUTF8(value);
            break;
        }
        case EPropertyType::eDouble: {
            double value = 0;
            if (asset.GetDoubleValue(name, value))
                out[key] = value;
            break;
        }
        case EPropertyType::eBoolean: {
            bool value = false;
            if (asset.GetBoolValue(name, value))
                out[key] = value;
            break;
        }
        case EPropertyType::eInteger: {
            int value = 0;
            if (asset.GetIntegerValue(name, value))
                out[key] = value;
            break;
        }
        case EPropertyType::eColor: {
            telvarin::platform::assets::AssetColor value;
            if (asset.GetColorValue(name, value))
                out[key] = colorObject(value);
            break;
        }
        default:
            break;
        }
    }
}

std::wstring properties(const MaterialDictionary& dictionary, AmbrelManager& manager)
{
    boost::json::object out;
    if (const auto* physical = std::get_if<PhysicalMaterial>(&dictionary.material)) {
        out["name"] = ToUTF8(manager.GetUIName(physical->assetInstance()));
        out["type"] = "physicalMaterial";
        out["density"] = physical->density();
        out["youngsModulus"] = physical->youngsModulus();
        out["poissonsRatio"] = physical->poissonsRatio();
        out["yieldStrength"] = physical->yieldStrength();
        out["ultimateTensileStrength"] = physical->ultimateTensileStrength();
        out["thermalConductivity"] = physical->thermalConductivity();
        out["linearExpansion"] = physical->linearExpansion();
        out["specificHeat"] = physical->specificHeat();
        return toWide(JSONNode::fromValue(std::move(out)).stringify());
    }
    const auto& visual = std::get<VisualMaterial>(dictionary.material);
    IAssetInstance* asset = visual.assetInstance();
    out["name"] = ToUTF8(manager.GetUIName(asset));
    out["type"] = "visualMaterial";
    out["scale"] = JSON::floatToStoredDouble(visual.originalScale());
    out["rotation"] = JSON::floatToStoredDouble(visual.originalRotation());
    if (asset != nullptr && !manager.IsCorvexMaterial(asset))
        addAssetProperties(out, *asset);
    return toWide(JSONNode::fromValue(std::move(out)).stringify());
}

template <class Answer>
std::wstring withDictionary(const TextCommandParameters& parameters, Answer answer)
{
    AmbrelManager* manager = loadedLibraries();
    if (manager == nullptr)
        return TextCommand::failure(s_noLibraries);
    const auto read = readMaterialDictionary(parameters.parameters() == 0 ? nullptr : &parameters[0]);
    if (const auto* problem = std::get_if<std::wstring>(&read))
        return TextCommand::failure(*problem);
    return answer(std::get<MaterialDictionary>(read), *manager);
}

// --- listing the open documents ---

// A value's text form on one line: its lines joined by ", ".
std::wstring oneLine(std::wstring text)
{
    for (std::size_t at = text.find(L"\r\n"); at != std::wstring::npos; at = text.find(L"\r\n", at))
        text.replace(at, 2, L", ");
    for (wchar_t& c : text) {
        if (c == L'\n' || c == L'\r')
            c = L' ';
    }
    return text;
}

// A registered material as its value prints (name, id, reference, library), on one line.
std::wstring textForm(AmbrelManager* manager, IAssetInstance* instance, const std::wstring& reference)
{
    const std::wstring id = manager != nullptr ? manager->GetAssetInstanceMaterialID(instance) : std::wstring{};
    const std::wstring library = manager != nullptr ? manager->GetAssetInstanceLibraryID(instance) : std::wstring{};
    const std::wstring name = manager != nullptr ? manager->GetUIName(instance) : std::wstring{};
    return oneLine(name + L"\r\n" + id + L"\r\n" + reference + L"\r\n" + library);
}

std::wstring documentName(const Document& document)
{
    return document.path().empty() ? toWide(document.identifier()) : document.path().stem().wstring();
}

// --- listing the libraries ---

struct LibraryListing {
    std::wstring name;
    std::wstring path;
    std::wstring identifier;
};

// The name the manager's listing gives `id`, as it stands.
std::wstring listedName(const std::vector<std::pair<UTF8String, WideString>>& listed, const std::string& id)
{
    const auto found = std::find_if(listed.begin(), listed.end(), [&](const auto& entry) { return entry.first == id; });
    return found != listed.end() ? found->second : std::wstring{};
}

std::vector<LibraryListing> librariesOf(AmbrelManager& manager)
{
    std::vector<LibraryListing> libraries;
    for (const auto& [name, pathAndId] : manager.GetLibrariesInfo())
        libraries.push_back({name, pathAndId.first, pathAndId.second});
    return libraries;
}

} // namespace

std::wstring TextCmdMaterialsFindPhysical::execute(const TextCommandParameters& parameters) const
{
    return find<PhysicalMaterial>(parameters,
        {L"You need to provide a Physical material name or id (maybe using quotes)",
            L"You provided too many parameters; the only needed parameter is the Physical material name or id BUT YOU "
            L"MIGHT NEED TO USE QUOTES"});
}

std::wstring TextCmdMaterialsFindVisual::execute(const TextCommandParameters& parameters) const
{
    return find<VisualMaterial>(parameters,
        {L"You need to provide a visual material name or id (maybe using quotes)",
            L"You provided too many parameters; the only needed parameter is the visual material name or id BUT YOU "
            L"MIGHT NEED TO USE QUOTES"});
}

std::wstring TextCmdMaterialsGetMaterialProperties::execute(const TextCommandParameters& parameters) const
{
    return withDictionary(parameters, &properties);
}

std::wstring TextCmdMaterialsGetUserNameW::execute(const TextCommandParameters& parameters) const
{
    return withDictionary(parameters, [](const MaterialDictionary& dictionary, AmbrelManager& manager) {
        return std::visit([&](const auto& material) { return manager.GetUIName(material.assetInstance()); }, dictionary.material);
    });
}

std::wstring TextCmdMaterialsList::execute(const TextCommandParameters&) const
{
    AmbrelManager* manager = loadedLibraries();
    std::wstring out;
    std::size_t physical = 0;
    std::size_t visual = 0;
    for (Document* document : DocumentRegistry::get().documents()) {
        out += line(L"These materials were found in asset: %1% of document: %1% %2%", documentName(*document),
                   document->path().wstring())
            + L"\n";
        for (const auto& segment : document->segments()) {
            StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(segment.get());
            if (!registry)
                continue;
            out += line(L"Segment Id: %1% ", toWide(segment->name())) + L"\n";
            registry->forEachRegisteredMaterial([&](IAssetInstance* instance, const std::wstring& reference, bool isVisual) {
                out += textForm(manager, instance, reference) + L"\n";
                ++(isVisual ? visual : physical);
            });
        }
    }
    return out + line(L"Total Physical Materials: %1%, Visual Materials: %2%", physical, visual);
}

std::wstring TextCmdMaterialsListPhysical::execute(const TextCommandParameters& parameters) const
{
    AmbrelManager* manager = loadedLibraries();
    if (manager == nullptr)
        return failure(s_noLibraries);
    const bool raw = parameters.hasFlag(L"Raw");
    std::wstring out = L"These physical materials were found in the ambrel library in session:\n";
    std::size_t total = 0;
    for (const LibraryListing& library : librariesOf(*manager)) {
        const auto listed = manager->GetAssetIDsAndNames(library.identifier);
        std::vector<std::pair<std::wstring, std::wstring>> materials;
        for (const std::string& id : manager->GetPhysicalMaterialsByLibrary(library.identifier)) {
            if (raw) {
                materials.emplace_back(listedName(listed, id), toWide(id));
            } else {
                const PhysicalMaterial material(toWide(id), library.identifier);
                materials.emplace_back(material.name(), material.ambrelMaterialID());
            }
        }
        if (materials.empty())
            continue;
        out += line(L"Library name: %1%, path: %2%", library.name, library.path) + L"\n";
        out += line(L"Number of physical materials: %1%", materials.size()) + L"\n";
        for (const auto& [name, id] : materials)
            out += line(L"Name %1%, Id %2%", name, id) + L"\n";
        total += materials.size();
    }
    return out + line(L"Total Physical Materials: %1%", total);
}

std::wstring TextCmdMaterialsListVisual::execute(const TextCommandParameters& parameters) const
{
    AmbrelManager* manager = loadedLibraries();
    if (manager == nullptr)
        return failure(s_noLibraries);
    const bool raw = parameters.hasFlag(L"Raw");
    std::wstring out;
    std::size_t total = 0;
    for (const LibraryListing& library : librariesOf(*manager)) {
        const std::vector<std::string> ids = manager->GetVisualMaterialsByLibrary(library.identifier);
        if (ids.empty())
            continue;
        const auto listed = manager->GetAssetIDsAndNames(library.identifier);
        for (const std::string& id : ids) {
            if (raw) {
                out += line(L"Name %1%, Id %2%", listedName(listed, id), toWide(id)) + L"\n";
            } else {
                const VisualMaterial material(toWide(id), library.identifier);
                out += line(L"Name %1%, Id %2%", material.name(), material.ambrelMaterialID()) + L"\n";
            }
            ++total;
        }
    }
    for (const VisualMaterial& extra : {Types::GetGenericVisualMaterial(), Types::GetUnknownVisualMaterial()}) {
        // The unknown appearance may be one a material carries, with no preset id of its own: its
        // asset's id is shown then.
        const std::wstring id = extra.ambrelMaterialID().empty() ? manager->GetAssetInstanceMaterialID(extra.assetInstance())
                                                                 : extra.ambrelMaterialID();
        out += line(L"Name %1%, Id %2%", extra.name(), id) + L"\n";
        ++total;
    }
    return out + line(L"%1% Visual Materials", total);
}

std::wstring TextCmdMaterialsListReducedLibrary::execute(const TextCommandParameters& parameters) const
{
    AmbrelManager* manager = loadedLibraries();
    if (manager == nullptr)
        return failure(s_noLibraries);
    const bool physicalOnly = parameters.parameters() > 0 && parameters[0] == L"-physical";
    std::vector<std::wstring> libraries{manager->GetPhysicalLibraryID(), manager->GetAdvancedPhysicalLibraryID()};
    if (!physicalOnly) {
        libraries.push_back(manager->GetVisualLibraryID());
        libraries.push_back(manager->GetAdvancedVisualLibraryID());
    }
    std::wstring out;
    std::size_t total = 0;
    for (const std::wstring& library : libraries) {
        const auto physical = manager->GetPhysicalMaterialsByLibrary(library);
        for (const auto& [id, uuid] : manager->GetAllIDAndUuids(library)) {
            if (physicalOnly && std::find(physical.begin(), physical.end(), id) == physical.end())
                continue;
            out += line(L"Material ID: %1%, UUID: %2% \n", toWide(id), uuid);
            ++total;
        }
    }
    return out + line(L"Total %1% Materials \n", total);
}

std::wstring TextCmdMaterialsMaterialLibraryPath::execute(const TextCommandParameters&) const
{
    return Types::GetReducedLibraryPath();
}

} // namespace Kx
