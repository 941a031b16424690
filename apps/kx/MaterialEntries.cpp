#include "MaterialEntries.h"

#include "Srgb.h"

#include <Types/Appearance/AmbrelManager.h>

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <base/Strings.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace Kx::Console {

using Assets::IAssetInstance;

const std::array<MaterialProperty, s_materialPropertyCount> s_materialProperties{{
    {"density", L"structural_Density", "density", "kg/m^3", 1.0, false},
    {"modulus", L"structural_Young_modulus", "Young's modulus", "GPa", 1e9, false},
    {"poisson", L"structural_Poisson_ratio", "Poisson's ratio", "", 1.0, false},
    {"yield", L"structural_Minimum_yield_stress", "yield strength", "MPa", 1e6, false},
    {"tensile", L"structural_Minimum_tensile_strength", "tensile strength", "MPa", 1e6, false},
    {"conductivity", L"structural_Thermal_conductivity", "thermal conductivity", "W/(m*K)", 1.0, true},
    {"expansion", L"structural_Thermal_expansion_coefficient", "thermal expansion", "1e-6/K", 1e-6, true},
    {"heat", L"structural_Specific_heat", "specific heat", "J/(kg*K)", 1.0, true},
}};

const MaterialProperty* findMaterialProperty(std::string_view key)
{
    const auto found = std::find_if(s_materialProperties.begin(), s_materialProperties.end(),
        [&](const MaterialProperty& property) { return property.key == key; });
    return found == s_materialProperties.end() ? nullptr : &*found;
}

std::optional<double> MaterialEntry::shown(std::size_t property) const
{
    if (!values[property]) {
        return std::nullopt;
    }
    return *values[property] / s_materialProperties[property].scale;
}

std::string srgbHex(const Color& linear)
{
    return fmt::format("#{:02X}{:02X}{:02X}", Content::srgbByte(linear.red()), Content::srgbByte(linear.green()),
        Content::srgbByte(linear.blue()));
}

std::string formatValue(double value)
{
    return fmt::format("{:.6g}", value);
}

std::string foldCase(std::string_view utf8)
{
    std::string folded(utf8);
    for (std::size_t index = 0; index < folded.size(); ++index) {
        const auto byte = static_cast<unsigned char>(folded[index]);
        if (byte >= 'A' && byte <= 'Z') {
            folded[index] = static_cast<char>(byte + 32);
        } else if (byte == 0xC3 && index + 1 < folded.size()) {
            // U+00C0 … U+00DE (but not ×, U+00D7) are the capitals of U+00E0 … U+00FE.
            const auto next = static_cast<unsigned char>(folded[index + 1]);
            if (next >= 0x80 && next <= 0x9E && next != 0x97) {
                folded[index + 1] = static_cast<char>(next + 0x20);
            }
            ++index;
        }
    }
    return folded;
}

namespace {

struct Release {
    void operator()(IAssetInstance* instance) const
    {
        if (instance != nullptr) {
            instance->Release();
        }
    }
};
using Instance = std::unique_ptr<IAssetInstance, Release>;

std::string stringValue(const IAssetInstance& instance, const wchar_t* property)
{
    std::wstring text;
    return instance.GetStringValue(property, text) ? ToUTF8(text) : std::string();
}

// "CorvexMetalSchema" -> "Metal"; another schema keeps its name.
std::string kindOf(const std::wstring& schema)
{
    std::string name = ToUTF8(schema);
    if (name.starts_with("Corvex") && name.ends_with("Schema")) {
        name = name.substr(6, name.size() - 12);
    }
    return name;
}

void readAppearance(AmbrelManager& manager, const IAssetInstance& appearance, MaterialEntry& entry)
{
    Color colour;
    if (manager.GetAssetInstanceColor(&appearance, colour)) {
        entry.colour = colour;
    }
    entry.kind = kindOf(appearance.GetSchemaName());
    for (const wchar_t* property : {L"surface_roughness", L"layered_roughness"}) {
        double roughness = 0.0;
        if (appearance.GetDoubleValue(property, roughness)) {
            entry.roughness = roughness;
            break;
        }
    }
}

MaterialEntry readEntry(AmbrelManager& manager, const std::string& id, const std::wstring& libraryId, bool physical)
{
    MaterialEntry entry;
    entry.id = id;
    entry.physical = physical;
    std::wstring category;
    std::wstring subcategory;
    if (manager.GetCategoryForMaterial(id, libraryId, category, subcategory)) {
        entry.category = ToUTF8(category);
        entry.subcategory = ToUTF8(subcategory);
    }
    const Instance material(manager.GetAssetInstance(id, libraryId, MaterialTweak{}));
    if (material == nullptr) {
        return entry;
    }
    entry.name = ToUTF8(manager.GetUIName(material.get()));
    entry.englishName = ToUTF8(material->GetName("eng"));
    entry.source = stringValue(*material, L"asset_source");
    entry.inheritedFrom = stringValue(*material, L"asset_inherited_from");
    entry.thumbnail = material->GetThumbnailImageURI();
    if (!physical) {
        readAppearance(manager, *material, entry);
        return entry;
    }
    if (const Instance structural(manager.GetConnectedAssetInstance(material.get(), L"Structural")); structural) {
        for (std::size_t index = 0; index < s_materialPropertyCount; ++index) {
            const std::wstring property = s_materialProperties[index].structural;
            double value = 0.0;
            if (structural->GetDoubleValue(property, value)) {
                entry.values[index] = value;
            }
            entry.origins[index] = stringValue(*structural, (property + L"_origin").c_str());
        }
    }
    if (const Instance look(manager.GetConnectedAssetInstance(material.get(), L"materialappearance")); look) {
        entry.appearance = ToUTF8(manager.GetUIName(look.get()));
        readAppearance(manager, *look, entry);
    }
    return entry;
}

} // namespace

std::vector<std::pair<std::string, std::wstring>> openLibraries(AmbrelManager& manager)
{
    std::vector<std::pair<std::string, std::wstring>> libraries;
    for (const auto& [name, entry] : manager.GetLibrariesInfo()) {
        libraries.emplace_back(ToUTF8(name), entry.second);
    }
    const std::wstring physical = manager.GetAdvancedPhysicalLibraryID();
    const std::wstring appearance = manager.GetAdvancedVisualLibraryID();
    const auto rank = [&](const std::wstring& id) { return id == physical ? 0 : id == appearance ? 1 : 2; };
    std::stable_sort(libraries.begin(), libraries.end(),
        [&](const auto& left, const auto& right) { return rank(left.second) < rank(right.second); });
    return libraries;
}

LibraryListing readLibrary(AmbrelManager& manager, const std::string& name, const std::wstring& id)
{
    LibraryListing listing{name, id, false, {}};
    std::vector<UTF8String> ids = manager.GetPhysicalMaterialsByLibrary(id);
    listing.physical = !ids.empty();
    if (!listing.physical) {
        ids = manager.GetVisualMaterialsByLibrary(id);
    }
    for (const UTF8String& materialId : ids) {
        listing.entries.push_back(readEntry(manager, materialId, id, listing.physical));
    }
    return listing;
}

} // namespace Kx::Console
