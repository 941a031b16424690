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

// Writes every standard library, the netfs mount table and the lint report (lint-report.txt) into
// `folder` (created when missing); throws on any failure, leaving the folder as it was. The same
// data gives the same bytes.
void writeStandardLibraries(telvarin::platform::assets::IAssetLibraryManager& manager,
    const std::vector<PhysicalRecord>& physical, const std::vector<AppearanceRecord>& appearance,
    const std::string& lintReport, const std::filesystem::path& folder);

} // namespace Kx::Content
