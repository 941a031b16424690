#pragma once
// A material dictionary: the JSON of a PhysicalMaterial or VisualMaterial value, as a document's
// entity shows it (kx doc dump) and as scripts pass it. It names the document's registry by entity
// id and the material by its id; members may carry their field names ("rAmbrelAssetManager",
// "isUseCustomizedColor") or the names they are stored under ("AmbrelAssetManager",
// "UseCustomizedColor").

#include <Types/Appearance/PhysicalMaterial.h>
#include <Types/Appearance/VisualMaterial.h>

#include <datamodel/StrongRef.h>

#include <string>
#include <variant>

namespace Kx {

class AmbrelAssetManager;

struct MaterialDictionary {
    StrongRef<AmbrelAssetManager> registry;
    // The value with the registered instance, and, for an appearance, the dictionary's tweaks.
    std::variant<PhysicalMaterial, VisualMaterial> material;

    [[nodiscard]] bool isAppearance() const { return material.index() == 1; }
};

// The dictionary read from `text`, its registry found in the active document; or the answer
// the commands give instead (the system's own texts).
[[nodiscard]] std::variant<MaterialDictionary, std::wstring> readMaterialDictionary(const std::wstring* text);

} // namespace Kx
