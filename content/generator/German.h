#pragma once

#include <string>
#include <string_view>

// German texts of the standard libraries (the second shipped language). Generic words are
// translated; designations, standards and proper names (Invar, Spectralon, MIT Black) are kept.
// Every function throws std::runtime_error for a text it has no translation for, so new data
// cannot ship half translated.
namespace Kx::Content {

// Category and subcategory keys of both data files and of the authored presets.
[[nodiscard]] std::string germanCategory(std::string_view english);
// Names of physical materials, by a table of phrases applied in order.
[[nodiscard]] std::string germanPhysicalName(std::string_view english);
// Names of the appearances of the data and of the authored presets.
[[nodiscard]] std::string germanAppearanceName(std::string_view english);

} // namespace Kx::Content
