#include "Types/Appearance/AssetParameterTable.h"

#include <assets/IAssetDefinition.h>

#include <algorithm>
#include <array>

namespace Kx {

namespace {

// Stands for every physically based schema not listed before it for the same parameter.
constexpr std::wstring_view s_anyCorvex = L"*Corvex";
// Stands for every schema: the parameter lives in an aspect all physical materials share.
constexpr std::wstring_view s_anySchema = L"*";

struct ParameterRow {
    EAssetParameter parameter;
    std::wstring_view schema;
    AssetParameterSource source;
};

using P = EAssetParameter;

// Rows of one parameter are tried in order, so a specific schema comes before a wildcard.
constexpr std::array s_rows{
    ParameterRow{P::eDensity, s_anySchema, {L"Structural", L"structural_Density"}},
    ParameterRow{P::eAbsorptionDistance, L"CorvexTransparentSchema", {{}, L"transparent_distance"}},
    ParameterRow{P::eLuminance, L"CorvexOpaqueSchema", {{}, L"opaque_luminance"}},
    ParameterRow{P::eLuminanceEnabled, L"CorvexOpaqueSchema", {{}, L"opaque_emission"}},
    ParameterRow{P::eTranslucencyEnabled, L"CorvexOpaqueSchema", {{}, L"opaque_translucency"}},
    ParameterRow{P::eTranslucencyDepth, L"CorvexOpaqueSchema", {{}, L"opaque_mfp"}},
    ParameterRow{P::eReflectance, L"CorvexOpaqueSchema", {{}, L"opaque_f0"}},
    ParameterRow{P::eReflectance, L"CorvexLayeredSchema", {{}, L"layered_f0"}},
    ParameterRow{P::eReflectance, L"SolidGlassSchema", {{}, L"solidglass_reflectance"}},
    ParameterRow{P::eReflectance, L"GlazingSchema", {{}, L"glazing_reflectance"}},
    ParameterRow{P::eRefractiveIndex, L"CorvexTransparentSchema", {{}, L"transparent_ior"}},
    ParameterRow{P::eRefractiveIndex, L"SolidGlassSchema", {{}, L"solidglass_refr_ior"}},
    ParameterRow{P::eRefractiveIndex, L"GenericSchema", {{}, L"generic_refraction_index"}},
    ParameterRow{P::eRefractiveIndex, L"DecalAppearanceSchema", {{}, L"decApp_refraction_index"}},
    ParameterRow{P::eRoughness, L"CorvexLayeredSchema", {{}, L"layered_roughness"}},
    ParameterRow{P::eRoughness, L"SolidGlassSchema", {{}, L"solidglass_glossiness"}},
    ParameterRow{P::eRoughness, s_anyCorvex, {{}, L"surface_roughness"}},
    ParameterRow{P::eEarlywoodRoughness, L"CorvexWoodSchema", {{}, L"wood_groove_roughness"}},
    ParameterRow{P::eLateWoodColor, L"CorvexWoodSchema", {{}, L"wood_manual_late_color"}},
    ParameterRow{P::eLateWoodColorEnabled, L"CorvexWoodSchema", {{}, L"wood_use_manual_late_color"}},
    ParameterRow{P::eLateWoodExponent, L"CorvexWoodSchema", {{}, L"wood_late_color_power"}},
    ParameterRow{P::ePoresEnabled, L"CorvexWoodSchema", {{}, L"wood_use_pores"}},
    ParameterRow{P::eRaysEnabled, L"CorvexWoodSchema", {{}, L"wood_use_rays"}},
    ParameterRow{P::eRingDepth, L"CorvexWoodSchema", {{}, L"wood_latewood_bump_depth"}},
    ParameterRow{P::eRingThickness, L"CorvexWoodSchema", {{}, L"wood_ring_thickness"}},
    ParameterRow{P::eTextureScale, L"texture", {{}, L"texture_UScale"}},
    ParameterRow{P::eTextureScale, L"MetalSchema", {{}, L"metal_pattern_scale"}},
    ParameterRow{P::eTextureRotate, L"texture", {{}, L"texture_WAngle"}},
    ParameterRow{P::eColor, L"CorvexOpaqueSchema", {{}, L"opaque_albedo"}},
    ParameterRow{P::eColor, L"CorvexMetalSchema", {{}, L"metal_f0"}},
    ParameterRow{P::eColor, L"CorvexLayeredSchema", {{}, L"layered_diffuse"}},
    ParameterRow{P::eColor, L"CorvexTransparentSchema", {{}, L"transparent_color"}},
    ParameterRow{P::eColor, L"CorvexWoodSchema", {{}, L"wood_early_color"}},
};

constexpr std::array<std::wstring_view, 5> s_corvexSchemas{
    L"CorvexOpaqueSchema", L"CorvexMetalSchema", L"CorvexLayeredSchema", L"CorvexTransparentSchema",
    L"CorvexWoodSchema"};

bool rowMatches(const ParameterRow& row, std::wstring_view schema)
{
    if (row.schema == s_anySchema) {
        return true;
    }
    if (row.schema == s_anyCorvex) {
        return IsCorvexSchema(schema);
    }
    return telvarin::platform::assets::SchemaEquals(row.schema, schema);
}

} // namespace

bool IsCorvexSchema(std::wstring_view schema)
{
    return std::ranges::any_of(s_corvexSchemas, [&](std::wstring_view known) { return telvarin::platform::assets::SchemaEquals(known, schema); });
}

const AssetParameterSource* FindAssetParameterSource(EAssetParameter parameter, std::wstring_view schema)
{
    for (const ParameterRow& row : s_rows) {
        if (row.parameter == parameter && rowMatches(row, schema)) {
            return &row.source;
        }
    }
    return nullptr;
}

} // namespace Kx
