#pragma once

#include <assets/AssetTypes.h>

#include <string>
#include <vector>

namespace telvarin::platform::assets {
class IAssetDefinition;
class IAssetInstance;
class IAssetLibrary;
class IWritableAssetLibrary;
} // namespace telvarin::platform::assets

namespace Kx::Types {

namespace Assets = telvarin::platform::assets;

// The images a preset takes from its library ("tvp:?asset=<name>"): its thumbnail and every string
// property of it and of the assets it connects, depth first, each name once.
[[nodiscard]] std::vector<Assets::WideString> EmbeddedResourceNames(const Assets::IAssetInstance& instance);

// Writes the preset `definition` of `from` into `to` under the same identity (material id, variant,
// versions, categories) with everything it connects and the images it takes from its library.
// False, with the reason in `error`, when anything fails; the caller's writer then rolls back.
bool CopyPreset(const Assets::IAssetLibrary& from, const Assets::IAssetDefinition& definition,
    Assets::IWritableAssetLibrary& to, Assets::AssetError& error);

} // namespace Kx::Types
