#include "Presets.h"

#include "German.h"
#include "Png.h"
#include "Srgb.h"

#include <assets/AssetTypes.h>
#include <assets/IAssetLibrary.h>

#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <limits>
#include <stdexcept>

namespace Kx::Content {

using namespace telvarin::platform::assets;

namespace {

constexpr double s_infinity = std::numeric_limits<double>::infinity();
// "<property>_origin" holds where a value that is not the source's own figure comes from.
constexpr const wchar_t* s_originSuffix = L"_origin";

// Authored colours are chosen in 8-bit sRGB, as an artist picks them, and stored linear like the data.
Rgb fromSrgb(int r, int g, int b)
{
    return {linearFromSrgbByte(r), linearFromSrgbByte(g), linearFromSrgbByte(b)};
}

// Reflectance at normal incidence of a dielectric in air.
double reflectanceOf(double ior)
{
    const double ratio = (ior - 1.0) / (ior + 1.0);
    return ratio * ratio;
}

AssetColor colour(const Rgb& rgb)
{
    return {static_cast<float>(rgb.r), static_cast<float>(rgb.g), static_cast<float>(rgb.b), 1.0F};
}

using telvarin::platform::core::toWide;

// The URI of a resource the library embeds; its image is made only when the library does not hold
// it yet, since the physical libraries share their appearances' swatches.
template <class Encode>
std::wstring embed(Resources& resources, const std::string& name, Encode&& encode)
{
    if (!resources.contains(name)) {
        resources.emplace(name, encode());
    }
    return std::wstring(telvarin::platform::assets::s_resourcePrefix) + toWide(name);
}

void require(bool done, const char* what)
{
    if (!done) {
        throw std::runtime_error(std::string("cannot set ") + what);
    }
}

// A double with its bounds (either may be infinite: no bound) and unit.
void setDouble(IAssetInstance& asset, const wchar_t* name, double value, double minimum, double maximum,
    const wchar_t* unit = L"")
{
    require(asset.SetDoubleValue(name, value), "a double");
    NumericConstraint constraint;
    constraint.hasMinimum = std::isfinite(minimum);
    constraint.minimum = constraint.hasMinimum ? minimum : 0.0;
    constraint.hasMaximum = std::isfinite(maximum);
    constraint.maximum = constraint.hasMaximum ? maximum : 0.0;
    if (constraint.hasMinimum || constraint.hasMaximum) {
        require(asset.SetNumericConstraint(name, constraint), "a constraint");
    }
    if (*unit != L'\0') {
        require(asset.SetPropertyUnit(name, unit), "a unit");
    }
}

void setNames(IAssetInstance& asset, const std::string& english, const std::string& german)
{
    asset.SetName(s_englishLanguage, toWide(english));
    asset.SetName(s_germanLanguage, toWide(german));
}

std::string sourceOf(const AppearanceRecord& record)
{
    return record.source + " (CC0 1.0)";
}

constexpr const char* s_authored = "authored for the standard libraries, not measured (content/data/README.md)";

InstancePtr buildTexture(IAssetLibraryManager& manager, const AppearancePreset& preset, Resources& resources)
{
    Image image;
    std::string file;
    switch (preset.texture) {
    case ETexture::eBrick:
        image = brickTexture(preset.base, preset.textureSecondary);
        file = "textures/brick.png";
        break;
    case ETexture::eTiles:
        image = tileTexture(preset.base, preset.textureSecondary);
        file = "textures/tiles.png";
        break;
    case ETexture::eNoise:
        image = noiseTexture(preset.base);
        file = "textures/concrete.png";
        break;
    case ETexture::eNone:
        return nullptr;
    }
    InstancePtr texture(manager.CreateAssetInstance(L"texture", preset.id + "-texture"));
    require(texture->SetStringValue(L"unifiedbitmap_Bitmap", embed(resources, file, [&] { return encodePng(image); })),
        "a bitmap");
    setDouble(*texture, L"texture_UScale", 1.0, 1e-6, s_infinity);
    setDouble(*texture, L"texture_VScale", 1.0, 1e-6, s_infinity);
    setDouble(*texture, L"texture_UOffset", 0.0, -s_infinity, s_infinity);
    setDouble(*texture, L"texture_VOffset", 0.0, -s_infinity, s_infinity);
    setDouble(*texture, L"texture_WAngle", 0.0, -360.0, 360.0, L"deg");
    return texture;
}

// The finishes a CAD user picks for a metal part. The measured metals are polished mirrors
// (roughness 0), which a viewport shows as a reflection of its surroundings, not as the part; these
// keep the measured base and edge colours and only raise the (isotropic) roughness.
struct MetalFinish {
    const char* name;
    const char* suffix;
    double roughness;
};
constexpr MetalFinish s_metalFinishes[] = {{"Satin", "SATIN", 0.2}, {"Brushed", "BRUSHED", 0.35},
    {"Bead-blasted", "BEAD-BLASTED", 0.5}};
constexpr const char* s_finishedMetals[] = {"AP-METAL-ALUMINUM", "AP-METAL-STAINLESS-STEEL", "AP-METAL-IRON",
    "AP-METAL-COPPER", "AP-METAL-BRASS", "AP-METAL-TITANIUM", "AP-METAL-NICKEL", "AP-METAL-CHROMIUM"};

// Opaque, pigmented versions of the clear measured polymers, as moulded parts of them usually are;
// the index of refraction (so the specular reflectance) stays the measured one.
struct PigmentedPlastic {
    const char* id;
    const char* name;
    const char* measured;
    int r, g, b; // 8-bit sRGB
};
constexpr PigmentedPlastic s_pigmentedPlastics[] = {
    {"AD-PLASTIC-PP-NATURAL", "Plastic (PP, Natural)", "AP-PLASTIC-PP", 230, 228, 218},
    {"AD-PLASTIC-PP-BLACK", "Plastic (PP, Black)", "AP-PLASTIC-PP", 25, 25, 25},
    {"AD-PLASTIC-PVC-GREY", "Plastic (PVC, Grey)", "AP-PLASTIC-PVC", 120, 124, 128},
    {"AD-PLASTIC-PVC-WHITE", "Plastic (PVC, White)", "AP-PLASTIC-PVC", 238, 238, 232},
    {"AD-PLASTIC-PET-WHITE", "Plastic (PET, White)", "AP-PLASTIC-PET", 245, 245, 242},
};
constexpr double s_mouldedRoughness = 0.4;

// Painted finishes: a pigmented coat under a clear coat of index 1.5 (gloss and satin), or a matte
// single coat.
struct Paint {
    const char* id;
    const char* name;
    const char* kind;
    double roughness;
    int r, g, b; // 8-bit sRGB
};
constexpr Paint s_paints[] = {
    {"AD-PAINT-GLOSS-WHITE", "Paint (Gloss White)", "layered", 0.05, 240, 240, 236},
    {"AD-PAINT-GLOSS-BLACK", "Paint (Gloss Black)", "layered", 0.05, 20, 20, 20},
    {"AD-PAINT-GLOSS-RED", "Paint (Gloss Red)", "layered", 0.05, 180, 30, 30},
    {"AD-PAINT-SATIN-BLUE", "Paint (Satin Blue)", "layered", 0.3, 30, 70, 150},
    {"AD-PAINT-SATIN-GREY", "Paint (Satin Grey)", "layered", 0.3, 128, 128, 128},
    {"AD-PAINT-MATTE-BLACK", "Paint (Matte Black)", "opaque", 0.8, 25, 25, 25},
};

void appendDerivedPresets(std::vector<AppearancePreset>& presets)
{
    const auto measured = [&](const std::string& id) {
        const auto found = std::find_if(presets.begin(), presets.end(), [&](const AppearancePreset& p) { return p.id == id; });
        if (found == presets.end()) {
            throw std::runtime_error("the data has no appearance " + id);
        }
        return *found;
    };
    for (const char* metal : s_finishedMetals) {
        const AppearancePreset polished = measured(metal);
        for (const MetalFinish& finish : s_metalFinishes) {
            AppearancePreset preset = polished;
            preset.id = std::string("AD") + (polished.id.c_str() + 2) + "-" + finish.suffix;
            preset.name = polished.name + " (" + finish.name + ")";
            preset.roughness = finish.roughness;
            preset.source = "derived from the measured " + polished.name + " (" + polished.source + "), its roughness raised to " +
                            std::to_string(finish.roughness).substr(0, 4) + " for the " + finish.name + " finish";
            presets.push_back(std::move(preset));
        }
    }
    for (const PigmentedPlastic& plastic : s_pigmentedPlastics) {
        const AppearancePreset clear = measured(plastic.measured);
        AppearancePreset preset;
        preset.id = plastic.id;
        preset.name = plastic.name;
        preset.category = "Plastic";
        preset.subcategory = "Opaque";
        preset.kind = "opaque";
        preset.base = fromSrgb(plastic.r, plastic.g, plastic.b);
        preset.roughness = s_mouldedRoughness;
        preset.ior = clear.ior;
        preset.source = "derived from the measured " + clear.name + " (its index of refraction), pigmented and opaque: " +
                        s_authored;
        presets.push_back(std::move(preset));
    }
    for (const Paint& paint : s_paints) {
        AppearancePreset preset;
        preset.id = paint.id;
        preset.name = paint.name;
        preset.category = "Paint";
        preset.subcategory = std::string(paint.kind) == "layered" ? "Layered" : "Opaque";
        preset.kind = paint.kind;
        preset.base = fromSrgb(paint.r, paint.g, paint.b);
        preset.roughness = paint.roughness;
        preset.ior = 1.5;
        preset.source = s_authored;
        presets.push_back(std::move(preset));
    }
}

} // namespace

std::wstring derivedGuid(const std::string& seed)
{
    // The namespace of the standard content's name-based GUIDs; changing it changes every derived
    // identifier of the shipped libraries.
    static const boost::uuids::uuid s_namespace = boost::uuids::string_generator()("51DE8458-1E6D-440C-98EE-6225DD6CCB5C");
    const boost::uuids::name_generator_sha1 generate(s_namespace);
    std::string text = boost::uuids::to_string(generate(seed));
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return toWide(text);
}

std::vector<AppearancePreset> appearancePresets(const std::vector<AppearanceRecord>& records)
{
    std::vector<AppearancePreset> presets;
    for (const AppearanceRecord& record : records) {
        AppearancePreset preset;
        preset.id = record.id;
        preset.name = record.name;
        preset.category = record.category;
        preset.kind = record.kind;
        preset.subcategory = record.kind == "metal"         ? "Metallic"
                             : record.kind == "transparent" ? "Transparent"
                             : record.kind == "layered"     ? "Layered"
                                                            : "Opaque";
        preset.base = record.base;
        preset.roughness = record.roughness;
        preset.ior = record.ior;
        preset.specular = record.specular;
        preset.source = sourceOf(record);
        if (record.kind != "metal" && !record.ior) {
            throw std::runtime_error(record.id + ": a dielectric without an index of refraction");
        }
        presets.push_back(std::move(preset));
    }
    const auto find = [&](const std::string& id) -> const AppearancePreset& {
        for (const AppearancePreset& preset : presets) {
            if (preset.id == id) {
                return preset;
            }
        }
        throw std::runtime_error("the data has no appearance " + id);
    };
    const auto wood = [](std::string id, std::string name, std::string subcategory, Rgb early, WoodParameters parameters) {
        AppearancePreset preset;
        preset.id = std::move(id);
        preset.name = std::move(name);
        preset.category = "Wood";
        preset.subcategory = std::move(subcategory);
        preset.kind = "wood";
        preset.base = early;
        preset.roughness = 0.45;
        preset.ior = 1.5;
        preset.wood = parameters;
        preset.source = s_authored;
        return preset;
    };
    presets.push_back(wood("AU-WOOD-OAK", "Oak", "Hardwood", fromSrgb(190, 150, 100),
        {fromSrgb(150, 105, 60), 2.0, true, true, 0.003, 0.0002, 0.6}));
    presets.push_back(wood("AU-WOOD-BEECH", "Beech", "Hardwood", fromSrgb(215, 170, 130),
        {fromSrgb(190, 140, 100), 1.5, false, true, 0.004, 0.0001, 0.5}));
    presets.push_back(wood("AU-WOOD-MAPLE", "Maple", "Hardwood", fromSrgb(230, 205, 165),
        {fromSrgb(205, 175, 130), 1.2, false, false, 0.003, 0.0001, 0.4}));
    presets.push_back(wood("AU-WOOD-WALNUT", "Walnut", "Hardwood", fromSrgb(120, 85, 60),
        {fromSrgb(80, 55, 40), 2.5, true, false, 0.004, 0.0002, 0.6}));
    presets.push_back(wood("AU-WOOD-PINE", "Pine", "Softwood", fromSrgb(225, 190, 140),
        {fromSrgb(180, 120, 70), 3.0, false, false, 0.005, 0.0003, 0.5}));

    const auto authored = [](std::string id, std::string name, std::string category, std::string subcategory,
                              std::string kind, Rgb base, double roughness) {
        AppearancePreset preset;
        preset.id = std::move(id);
        preset.name = std::move(name);
        preset.category = std::move(category);
        preset.subcategory = std::move(subcategory);
        preset.kind = std::move(kind);
        preset.base = base;
        preset.roughness = roughness;
        preset.ior = 1.5;
        preset.source = s_authored;
        return preset;
    };
    presets.push_back(authored("AU-PLASTIC-MATTE-WHITE", "Plastic (Matte White)", "Plastic", "Opaque", "opaque",
        fromSrgb(235, 235, 230), 0.6));
    presets.push_back(authored("AU-COMPOSITE-CARBON", "Carbon Fibre (Clear Coat)", "Manmade", "Layered", "layered",
        fromSrgb(30, 30, 32), 0.05));
    // The textured presets take their colours from the measured brick and concrete.
    AppearancePreset brick = authored("AU-TEXTURED-BRICK", "Brick (Running Bond)", "Manmade", "Textured", "opaque",
        find("AP-MANMADE-BRICK").base, find("AP-MANMADE-BRICK").roughness);
    brick.texture = ETexture::eBrick;
    brick.textureSecondary = fromSrgb(180, 175, 165);
    AppearancePreset tiles = authored("AU-TEXTURED-TILES", "Ceramic Tiles (Grey Grout)", "Manmade", "Textured", "opaque",
        fromSrgb(240, 240, 235), 0.2);
    tiles.texture = ETexture::eTiles;
    tiles.textureSecondary = fromSrgb(128, 128, 128);
    AppearancePreset concrete = authored("AU-TEXTURED-CONCRETE", "Concrete (Textured)", "Manmade", "Textured", "opaque",
        find("AP-MANMADE-CONCRETE").base, find("AP-MANMADE-CONCRETE").roughness);
    concrete.texture = ETexture::eNoise;
    presets.push_back(brick);
    presets.push_back(tiles);
    presets.push_back(concrete);
    appendDerivedPresets(presets);
    return presets;
}

const AppearancePreset& appearanceFor(const PhysicalRecord& record, const std::vector<AppearancePreset>& appearances)
{
    // Materials whose look differs from their subcategory's first.
    static const std::map<std::string, std::string> s_byId{
        {"PM-PL-ACRYLIC-GLASS", "AP-PLASTIC-ACRYLIC"}, {"PM-PL-PMMA", "AP-PLASTIC-ACRYLIC"},
        {"PM-PL-PC-MOLDED", "AP-PLASTIC-PC"}, {"PM-PL-PET", "AD-PLASTIC-PET-WHITE"}, {"PM-PL-PP", "AD-PLASTIC-PP-NATURAL"},
        {"PM-PL-PVC", "AD-PLASTIC-PVC-GREY"}, {"PM-CU-220", "AD-METAL-BRASS-SATIN"}, {"PM-CU-230", "AD-METAL-BRASS-SATIN"},
        {"PM-CU-443", "AD-METAL-BRASS-SATIN"}, {"PM-CU-464", "AD-METAL-BRASS-SATIN"}, {"PM-CU-706", "AD-METAL-NICKEL-SATIN"},
        {"PM-CU-715", "AD-METAL-NICKEL-SATIN"},
    };
    // Engineering metals are shown satin: a part as machined, not a mirror.
    static const std::map<std::string, std::string> s_bySubcategory{
        {"Aluminum", "AD-METAL-ALUMINUM-SATIN"}, {"Cast iron", "AD-METAL-IRON-SATIN"}, {"Cast steel", "AD-METAL-IRON-SATIN"},
        {"Iron", "AD-METAL-IRON-SATIN"}, {"Steel", "AD-METAL-IRON-SATIN"}, {"Reinforcing steel", "AD-METAL-IRON-SATIN"},
        {"Stainless steel", "AD-METAL-STAINLESS-STEEL-SATIN"}, {"Copper", "AD-METAL-COPPER-SATIN"},
        {"Copper alloy", "AD-METAL-COPPER-SATIN"}, {"Nickel alloy", "AD-METAL-NICKEL-SATIN"},
        {"Titanium alloy", "AD-METAL-TITANIUM-SATIN"}, {"Thermoplastic", "AU-PLASTIC-MATTE-WHITE"},
        {"Generic wood", "AU-WOOD-PINE"}, {"Glass fibre", "AP-CRYSTAL-GLASS-SODA-LIME"},
        {"Soda-lime glass", "AP-CRYSTAL-GLASS-SODA-LIME"}, {"Concrete", "AP-MANMADE-CONCRETE"},
        {"Carbon fibre reinforced polymer", "AU-COMPOSITE-CARBON"}, {"Carbon", "AP-ORGANIC-CHARCOAL"},
    };
    std::string id;
    if (const auto found = s_byId.find(record.id); found != s_byId.end()) {
        id = found->second;
    } else if (const auto bySubcategory = s_bySubcategory.find(record.subcategory); bySubcategory != s_bySubcategory.end()) {
        id = bySubcategory->second;
    } else {
        throw std::runtime_error(record.id + ": no appearance for subcategory \"" + record.subcategory + "\"");
    }
    for (const AppearancePreset& preset : appearances) {
        if (preset.id == id) {
            return preset;
        }
    }
    throw std::runtime_error(record.id + ": the appearance " + id + " does not exist");
}

InstancePtr buildAppearance(IAssetLibraryManager& manager, const AppearancePreset& preset, const std::string& guidSeed,
    Resources& resources)
{
    static const std::map<std::string, std::wstring> s_schemas{{"opaque", L"CorvexOpaqueSchema"},
        {"metal", L"CorvexMetalSchema"}, {"layered", L"CorvexLayeredSchema"},
        {"transparent", L"CorvexTransparentSchema"}, {"wood", L"CorvexWoodSchema"}};
    InstancePtr asset(manager.CreateAssetInstance(s_schemas.at(preset.kind), preset.id));
    IAssetInstance& a = *asset;
    if (preset.kind == "opaque") {
        require(a.SetColorValue(L"opaque_albedo", colour(preset.base)), "opaque_albedo");
        setDouble(a, L"opaque_f0", reflectanceOf(*preset.ior), 0.0, 1.0);
        setDouble(a, L"opaque_luminance", 0.0, 0.0, s_infinity, L"cd/m^2");
        require(a.SetBoolValue(L"opaque_emission", false), "opaque_emission");
        require(a.SetBoolValue(L"opaque_translucency", false), "opaque_translucency");
        setDouble(a, L"opaque_mfp", 0.0, 0.0, 10.0, L"m");
        setDouble(a, L"surface_roughness", preset.roughness, 0.0, 1.0);
        if (InstancePtr texture = buildTexture(manager, preset, resources)) {
            require(a.AddConnectedAsset(L"opaque_albedo", texture.get()), "the albedo texture");
        }
    } else if (preset.kind == "metal") {
        require(a.SetColorValue(L"metal_f0", colour(preset.base)), "metal_f0");
        if (preset.specular) {
            require(a.SetColorValue(L"metal_edge_tint", colour(*preset.specular)), "metal_edge_tint");
        }
        setDouble(a, L"surface_roughness", preset.roughness, 0.0, 1.0);
    } else if (preset.kind == "layered") {
        require(a.SetColorValue(L"layered_diffuse", colour(preset.base)), "layered_diffuse");
        setDouble(a, L"layered_f0", reflectanceOf(*preset.ior), 0.0, 1.0);
        setDouble(a, L"layered_roughness", preset.roughness, 0.0, 1.0);
    } else if (preset.kind == "transparent") {
        require(a.SetColorValue(L"transparent_color", colour(preset.base)), "transparent_color");
        setDouble(a, L"transparent_ior", *preset.ior, 1.0, 5.0);
        // The depth at which light takes the transparent colour; the data has none, 10 mm suits
        // objects of everyday size.
        setDouble(a, L"transparent_distance", 0.01, 0.0, s_infinity, L"m");
        setDouble(a, L"surface_roughness", preset.roughness, 0.0, 1.0);
    } else {
        const WoodParameters& wood = *preset.wood;
        require(a.SetColorValue(L"wood_early_color", colour(preset.base)), "wood_early_color");
        require(a.SetColorValue(L"wood_manual_late_color", colour(wood.lateColor)), "wood_manual_late_color");
        require(a.SetBoolValue(L"wood_use_manual_late_color", true), "wood_use_manual_late_color");
        setDouble(a, L"wood_late_color_power", wood.latePower, 0.0, 10.0);
        require(a.SetBoolValue(L"wood_use_pores", wood.pores), "wood_use_pores");
        require(a.SetBoolValue(L"wood_use_rays", wood.rays), "wood_use_rays");
        setDouble(a, L"wood_ring_thickness", wood.ringThickness, 1e-4, 0.1, L"m");
        setDouble(a, L"wood_latewood_bump_depth", wood.latewoodBumpDepth, 0.0, 0.01, L"m");
        setDouble(a, L"wood_groove_roughness", wood.grooveRoughness, 0.0, 1.0);
        setDouble(a, L"surface_roughness", preset.roughness, 0.0, 1.0);
    }
    const std::string thumbnail = "thumbnails/" + preset.id + ".png";
    require(a.SetStringValue(L"thumbnail", embed(resources, thumbnail, [&] { return encodePng(swatch(preset.base)); })),
        "thumbnail");
    require(a.SetStringValue(L"ExchangeGUID", derivedGuid(guidSeed)), "ExchangeGUID");
    require(a.SetStringValue(L"asset_source", toWide(preset.source)), "asset_source");
    setNames(a, preset.name, germanAppearanceName(preset.name));
    return asset;
}

InstancePtr buildPhysical(IAssetLibraryManager& manager, const PhysicalRecord& record, const AppearancePreset& appearance,
    const std::string& guidSeed, Resources& resources)
{
    using P = EPhysicalProperty;
    struct Target {
        P property;
        const wchar_t* structural;
        const wchar_t* thermal; // null: not a thermal property
        double minimum;
        double maximum;
    };
    // The property names are those every reader of physical materials asks for.
    static constexpr Target s_targets[] = {
        {P::eDensity, L"structural_Density", L"thermal_Density", 0.0, 25000.0},
        {P::eYoungsModulus, L"structural_Young_modulus", nullptr, 0.0, s_infinity},
        {P::ePoissonRatio, L"structural_Poisson_ratio", nullptr, -1.0, 0.5},
        {P::eYieldStrength, L"structural_Minimum_yield_stress", nullptr, 0.0, s_infinity},
        {P::eTensileStrength, L"structural_Minimum_tensile_strength", nullptr, 0.0, s_infinity},
        {P::eThermalConductivity, L"structural_Thermal_conductivity", L"thermal_Thermal_conductivity", 0.0, s_infinity},
        {P::eThermalExpansion, L"structural_Thermal_expansion_coefficient", L"thermal_Thermal_expansion_coefficient",
            -s_infinity, s_infinity},
        {P::eSpecificHeat, L"structural_Specific_heat", L"thermal_Specific_heat", 0.0, s_infinity},
    };
    InstancePtr material(manager.CreateAssetInstance(L"physicalmaterial", record.id));
    InstancePtr structural(manager.CreateAssetInstance(L"structural", record.id + "-structural"));
    InstancePtr thermal(manager.CreateAssetInstance(L"thermal", record.id + "-thermal"));
    bool hasThermal = false;
    for (const Target& target : s_targets) {
        const auto& value = record.value(target.property);
        if (!value) {
            continue;
        }
        const std::wstring unit = toWide(s_physicalColumns[static_cast<std::size_t>(target.property)].unit);
        setDouble(*structural, target.structural, *value, target.minimum, target.maximum, unit.c_str());
        if (target.thermal != nullptr) {
            setDouble(*thermal, target.thermal, *value, target.minimum, target.maximum, unit.c_str());
            hasThermal = hasThermal || target.property != P::eDensity;
        }
    }
    // A value that is not the source's own figure says so beside it, withdrawn ones included, so
    // whoever reads the material sees the correction or family value and its reference.
    for (const Target& target : s_targets) {
        if (const auto& note = record.notes[static_cast<std::size_t>(target.property)]) {
            const std::wstring text = toWide(note->text);
            require(structural->SetStringValue(std::wstring(target.structural) + s_originSuffix, text), "an origin");
            if (target.thermal != nullptr && target.property != P::eDensity) {
                require(thermal->SetStringValue(std::wstring(target.thermal) + s_originSuffix, text), "an origin");
                hasThermal = hasThermal || note->origin != EValueOrigin::eWithdrawn;
            }
        }
    }
    require(structural->SetChoices(L"structural_Behavior",
                {{0, L"isotropic"}, {1, L"orthotropic"}, {2, L"transversely isotropic"}}),
        "structural_Behavior");
    require(structural->SetChoiceValue(L"structural_Behavior", record.behavior == "orthotropic" ? 1 : 0),
        "the behaviour");
    require(material->SetConnectedAsset(L"Structural", structural.get()), "Structural");
    require(material->AddConnectedAsset(L"physmat_aspects", structural.get()), "physmat_aspects");
    if (hasThermal) {
        require(material->SetConnectedAsset(L"Thermal", thermal.get()), "Thermal");
        require(material->AddConnectedAsset(L"physmat_aspects", thermal.get()), "physmat_aspects");
    }
    InstancePtr look = buildAppearance(manager, appearance, guidSeed + "/materialappearance", resources);
    require(material->SetConnectedAsset(L"materialappearance", look.get()), "materialappearance");
    require(material->SetStringValue(L"thumbnail", look->GetThumbnailImageURI()), "thumbnail");
    require(material->SetStringValue(L"ExchangeGUID", derivedGuid(guidSeed)), "ExchangeGUID");
    require(material->SetStringValue(L"asset_source", toWide("FreeCAD material card " + record.source)), "asset_source");
    if (!record.inheritedFrom.empty()) {
        require(material->SetStringValue(L"asset_inherited_from", toWide(record.inheritedFrom)), "asset_inherited_from");
    }
    setNames(*material, record.name, germanPhysicalName(record.name));
    return material;
}

} // namespace Kx::Content
