#pragma once

#include "MaterialData.h"

#include <filesystem>
#include <string>
#include <vector>

namespace telvarin::platform::assets {
class IAssetLibraryManager;
}

// The six standard libraries and their fixed identifiers.
namespace Kx::Content {

struct StandardLibrary {
    const char* file;
    const wchar_t* id;
    const wchar_t* name;
    int kind;
    const char* netfsPath; // null: reached by file only
};

// In the order they are written: system physical, system appearance, advanced physical, advanced
// appearance, additive physical, nonlinear physical.
[[nodiscard]] const std::vector<StandardLibrary>& standardLibraries();

// Writes every standard library and the netfs mount table into `folder` (created when missing);
// throws std::runtime_error on any failure. The same data gives the same bytes.
void writeStandardLibraries(telvarin::platform::assets::IAssetLibraryManager& manager,
    const std::vector<PhysicalRecord>& physical, const std::vector<AppearanceRecord>& appearance,
    const std::filesystem::path& folder);

} // namespace Kx::Content
