#include "Types/Appearance/AppearanceColors.h"

#include <assets/IAssetDefinition.h>

#include <algorithm>
#include <array>

namespace Kx {

namespace {

constexpr std::wstring_view s_tintToggle = L"common_Tint_toggle";
constexpr std::wstring_view s_tintColor = L"common_Tint_color";

// Water types 0 to 4 (pool, reflecting pool, river, lake, sea) have the colour of their kind;
// 5 is the custom water. Metal type 1 is anodised aluminium; the others show their natural colour.
constexpr std::array s_rules{
    TintRule{L"HardwoodSchema", L"hardwood_tint_enabled", s_tintColor, {}, 0},
    TintRule{L"WaterSchema", s_tintToggle, s_tintColor, L"water_type", 5},
    TintRule{L"MetalSchema", s_tintToggle, s_tintColor, L"metal_type", 1},
    TintRule{L"StoneSchema", {}, L"stone_color", {}, 0},
    TintRule{{}, s_tintToggle, s_tintColor, {}, 0},
};

struct ColorProperties {
    std::wstring_view schema;
    std::array<std::wstring_view, 2> properties;
    std::size_t count;
};

constexpr std::array s_colorProperties{
    ColorProperties{L"CorvexOpaqueSchema", {L"opaque_albedo"}, 1},
    ColorProperties{L"CorvexMetalSchema", {L"metal_f0"}, 1},
    ColorProperties{L"CorvexLayeredSchema", {L"layered_diffuse"}, 1},
    ColorProperties{L"CorvexTransparentSchema", {L"transparent_color"}, 1},
    ColorProperties{L"CorvexWoodSchema", {L"wood_early_color", L"wood_manual_late_color"}, 2},
    ColorProperties{L"GenericSchema", {L"generic_color", s_tintColor}, 2},
    ColorProperties{L"DecalAppearanceSchema", {L"decApp_color", s_tintColor}, 2},
    ColorProperties{L"SolidGlassSchema", {L"solidglass_color", s_tintColor}, 2},
    ColorProperties{L"GlazingSchema", {L"glazing_color", s_tintColor}, 2},
    ColorProperties{L"MetalSchema", {L"metal_color", s_tintColor}, 2},
    ColorProperties{L"WaterSchema", {L"water_color", s_tintColor}, 2},
    ColorProperties{L"StoneSchema", {L"stone_color"}, 1},
    ColorProperties{L"HardwoodSchema", {L"hardwood_color", s_tintColor}, 2},
    ColorProperties{L"CeramicSchema", {L"ceramic_color", s_tintColor}, 2},
    ColorProperties{L"ConcreteSchema", {L"concrete_color", s_tintColor}, 2},
    ColorProperties{L"MasonryCMUSchema", {L"masonrycmu_color", s_tintColor}, 2},
    ColorProperties{L"MetallicPaintSchema", {L"metallicpaint_color", s_tintColor}, 2},
    ColorProperties{L"MirrorSchema", {L"mirror_color", s_tintColor}, 2},
    ColorProperties{L"PlasticVinylSchema", {L"plasticvinyl_color", s_tintColor}, 2},
    ColorProperties{L"WallPaintSchema", {L"wallpaint_color", s_tintColor}, 2},
};

} // namespace

const TintRule& FindTintRule(std::wstring_view schema)
{
    const auto found = std::find_if(s_rules.begin(), s_rules.end() - 1,
        [&](const TintRule& rule) { return telvarin::platform::assets::SchemaEquals(rule.schema, schema); });
    return *found;
}

std::span<const std::wstring_view> ColorPropertiesOf(std::wstring_view schema)
{
    for (const ColorProperties& row : s_colorProperties) {
        if (telvarin::platform::assets::SchemaEquals(row.schema, schema)) {
            return {row.properties.data(), row.count};
        }
    }
    return {};
}

} // namespace Kx
