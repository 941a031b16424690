#pragma once

#include <string_view>

namespace telvarin::platform::assets {

// The kind of asset a schema describes. A schema says how an asset's properties are laid out and
// there are many appearance schemas ("CorvexOpaqueSchema", "MetalSchema", ...); the type says what
// the asset is for, so a caller that wants "any appearance" asks for the type, not for one schema.
//   "physicalmaterial"    the schema "physicalmaterial"
//   "materialappearance"  every appearance schema: a name ending in "Schema" that is neither an
//                         environment ("CorvexIBLSchema") nor a decal ("DecalAppearanceSchema")
//   "environment", "decal", "texture"  those schemas
//   "aspect"              the aspects of a physical material ("structural", "thermal", ...)
// Names compare without regard to ASCII case, like schemas. Unknown schemas have no type (empty).
inline constexpr std::wstring_view kPhysicalMaterialType = L"physicalmaterial";
inline constexpr std::wstring_view kMaterialAppearanceType = L"materialappearance";

[[nodiscard]] std::wstring_view AssetTypeOfSchema(std::wstring_view schema);

// True when `typeOrSchema` names the schema itself or the schema's type.
[[nodiscard]] bool SchemaIsOfType(std::wstring_view schema, std::wstring_view typeOrSchema);

} // namespace telvarin::platform::assets
