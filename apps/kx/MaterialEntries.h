#pragma once

#include <Types/Geometry/Color.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {
class AmbrelManager;
}

// The presets of the open libraries as the browsing commands (`kx materials list|show|find|catalogue`)
// show them: names in the user's language, physical values with their units and where each comes
// from, and the colour a person sees.
namespace Kx::Console {

// A physical property as it is shown, filtered and sorted: `key` is the name `--where` and `--sort`
// take, the shown value is the stored SI value divided by `scale`.
struct MaterialProperty {
    std::string_view key;
    const wchar_t* structural;
    std::string_view label;
    std::string_view unit;
    double scale;
    bool thermal;
};
inline constexpr std::size_t s_materialPropertyCount = 8;
extern const std::array<MaterialProperty, s_materialPropertyCount> s_materialProperties;
// Null for a key no property has.
[[nodiscard]] const MaterialProperty* findMaterialProperty(std::string_view key);

struct MaterialEntry {
    std::string id;
    std::string name;        // in the user's language, else English
    std::string englishName;
    std::string category;
    std::string subcategory;
    bool physical = false;
    std::array<std::optional<double>, s_materialPropertyCount> values; // SI units
    // Empty for the source's own figure; otherwise the correction, withdrawal or family value and
    // its reference, as the library states it.
    std::array<std::string, s_materialPropertyCount> origins;
    std::optional<Color> colour; // linear; none for a textured appearance
    std::string appearance;      // a physical material's appearance, by name
    std::string kind;            // an appearance's schema family: Metal, Opaque, Transparent, ...
    std::optional<double> roughness;
    std::string source;
    std::string inheritedFrom;
    std::wstring thumbnail; // the preview image the library embeds, when it has one

    // The shown value of a property (SI value / scale).
    [[nodiscard]] std::optional<double> shown(std::size_t property) const;
};

struct LibraryListing {
    std::string name;
    std::wstring id;
    bool physical = false; // physical materials, else appearances
    std::vector<MaterialEntry> entries;
};

// Every open library, the advanced physical and appearance libraries first, then by display name.
[[nodiscard]] std::vector<std::pair<std::string, std::wstring>> openLibraries(AmbrelManager& manager);
// The physical materials of a library, or its appearances when it has no physical material.
[[nodiscard]] LibraryListing readLibrary(AmbrelManager& manager, const std::string& name, const std::wstring& id);

// "#RRGGBB" of a linear colour, encoded with the sRGB transfer function as every colour shown is.
[[nodiscard]] std::string srgbHex(const Color& linear);
// A value for people: up to six significant digits, no exponent for everyday magnitudes.
[[nodiscard]] std::string formatValue(double value);
// Lower case for matching names: ASCII and the Latin-1 letters (Ä, Ö, Ü, É ...).
[[nodiscard]] std::string foldCase(std::string_view utf8);

} // namespace Kx::Console
