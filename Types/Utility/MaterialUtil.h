#pragma once

#include <Types/Appearance/PhysicalMaterial.h>
#include <Types/Appearance/VisualMaterial.h>

#include <string>

// Material values the console and scripts ask for by what a user knows: a name.
namespace Kx::Types {

// The physical material of the standard or advanced library whose name in the user's language is
// `name` (the standard library first); a value without identity when none is.
[[nodiscard]] PhysicalMaterial GetPhysicalMaterial(const std::wstring& name);
// The appearance of the standard or advanced appearance library named `name`, likewise.
[[nodiscard]] VisualMaterial GetVisualMaterialFromName(const std::wstring& name);
// The appearance a body is given when nothing else is chosen: the default appearance of the
// material preferences.
[[nodiscard]] VisualMaterial GetGenericVisualMaterial();
// The appearance shown for a body whose material is unknown: the appearance of the default
// physical material, which stands in for a material found nowhere.
[[nodiscard]] VisualMaterial GetUnknownVisualMaterial();

} // namespace Kx::Types
