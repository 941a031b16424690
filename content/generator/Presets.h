#pragma once

#include "MaterialData.h"

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibraryManager.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The assets of the standard libraries, built from the data records and the authored presets.
namespace Kx::Content {

using telvarin::platform::assets::IAssetInstance;
using telvarin::platform::assets::IAssetLibraryManager;
using telvarin::platform::assets::InstancePtr;

// Images a library embeds, by resource name; every library carries the ones its assets name.
using Resources = std::map<std::string, std::vector<std::uint8_t>>;

struct WoodParameters {
    Rgb lateColor;
    double latePower = 1.0;
    bool pores = false;
    bool rays = false;
    double ringThickness = 0.004;   // m
    double latewoodBumpDepth = 0.0; // m
    double grooveRoughness = 0.5;
};

enum class ETexture { eNone, eBrick, eTiles, eNoise };

// One appearance: a measured one of appearance.csv or an authored one (content/data/README.md).
struct AppearancePreset {
    std::string id;
    std::string name;
    std::string category;
    std::string subcategory; // the schema family: Metallic, Opaque, Transparent, Layered, Hardwood, Softwood, Textured
    std::string kind;        // metal, opaque, transparent, layered, wood
    Rgb base;
    double roughness = 0.5;
    std::optional<double> ior;
    std::optional<Rgb> specular;
    std::optional<WoodParameters> wood;
    ETexture texture = ETexture::eNone;
    Rgb textureSecondary; // mortar or grout
    std::string source;
};

// The appearances of the data, in file order, followed by the authored ones.
[[nodiscard]] std::vector<AppearancePreset> appearancePresets(const std::vector<AppearanceRecord>& records);
// The appearance a physical material is shown with; throws for a material the mapping does not cover.
[[nodiscard]] const AppearancePreset& appearanceFor(const PhysicalRecord& record,
    const std::vector<AppearancePreset>& appearances);

// A name-based GUID (SHA-1, version 5) of a text in the content's own namespace: the same text always
// gives the same GUID.
[[nodiscard]] std::wstring derivedGuid(const std::string& seed);

// The appearance asset, its texture connected when it has one, and its thumbnail; adds the images
// it names to `resources`.
[[nodiscard]] InstancePtr buildAppearance(IAssetLibraryManager& manager, const AppearancePreset& preset,
    const std::string& guidSeed, Resources& resources);
// A physical material: its "Structural" aspect, its "Thermal" aspect when the data has thermal
// values, both listed in "physmat_aspects", and its appearance under "materialappearance".
[[nodiscard]] InstancePtr buildPhysical(IAssetLibraryManager& manager, const PhysicalRecord& record,
    const AppearancePreset& appearance, const std::string& guidSeed, Resources& resources);

} // namespace Kx::Content
