#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Kx::Types {

// What "MaterialLibraryHistory.xml" says: the current library set's GUID and the earlier sets'
// GUIDs in ascending order of their "ID".
struct MaterialLibraryHistory {
    std::wstring current;
    std::vector<std::wstring> legacy;
};

// Reads one history file, reporting every problem through the assertion facility and keeping what
// was found (docs/formats.md). Never throws.
[[nodiscard]] MaterialLibraryHistory readMaterialLibraryHistory(const std::filesystem::path& file);

} // namespace Kx::Types
