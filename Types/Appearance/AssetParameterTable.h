#pragma once

#include <string_view>

namespace Kx {

// The parameters AmbrelManager reads and writes on asset instances.
enum class EAssetParameter {
    eDensity, eAbsorptionDistance, eLuminance, eLuminanceEnabled, eTranslucencyEnabled, eTranslucencyDepth,
    eReflectance, eRefractiveIndex, eRoughness, eEarlywoodRoughness, eLateWoodColor, eLateWoodColorEnabled,
    eLateWoodExponent, ePoresEnabled, eRaysEnabled, eRingDepth, eRingThickness, eTextureScale, eTextureRotate,
    eColor
};

// Where a parameter lives for one schema: in `property` of the instance, or of the aspect asset
// connected under `aspect` when that is not empty.
struct AssetParameterSource {
    std::wstring_view aspect;
    std::wstring_view property;
};

// The source of `parameter` for an instance of `schema` (compared without regard to case); null
// when the schema does not have the parameter.
[[nodiscard]] const AssetParameterSource* FindAssetParameterSource(EAssetParameter parameter, std::wstring_view schema);

// The five physically based appearance schemas.
[[nodiscard]] bool IsCorvexSchema(std::wstring_view schema);

} // namespace Kx
