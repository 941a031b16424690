#pragma once

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>

#include <filesystem>
#include <memory>

namespace AssetTest {

using namespace telvarin::platform::assets;

inline constexpr const wchar_t* s_sampleLibraryId = L"5C1E2A77-3B9D-4F0A-9E21-7D6C0B8A4F13";

// A steel whose "Structural" aspect is connected twice (under "Structural" and in "physmat_aspects")
// and whose appearance has a texture driving its albedo.
InstancePtr makeSteel(IAssetLibraryManager& manager);

// Writes a small library at `file`: "steel" (Metal/Steel, plus a variant "hot"), "oak" (Wood), and
// "glass" (a CorvexTransparentSchema appearance), with English and German names and category texts.
// Fails the calling test on any error.
void writeSampleLibrary(IAssetLibraryManager& manager, const std::filesystem::path& file,
    const WideString& libraryId = s_sampleLibraryId);

} // namespace AssetTest
