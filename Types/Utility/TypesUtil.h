#pragma once

#include <string>
#include <vector>

// Utilities of the material libraries' installation: which library set is installed.
namespace Kx::Types {

// The GUID of the installed material library set, from "MaterialLibraryHistory.xml" in the core
// add-in folder (the content root). The file is read once per process, by the first call of either
// function; every problem it has is reported through the assertion facility and reading goes on
// with what was found (a missing file gives an empty GUID and no legacy sets).
[[nodiscard]] std::wstring GetCurrentMaterialLibraryGUID();
// The GUIDs of the earlier library sets, oldest ("ID" 1) first.
[[nodiscard]] std::vector<std::wstring> GetLegacyMaterialLibraryGUID();

} // namespace Kx::Types
