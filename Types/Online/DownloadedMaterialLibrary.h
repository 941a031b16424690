#pragma once

#include "Types/Online/OnlineLibraryIndex.h"

#include <filesystem>
#include <string>

namespace telvarin::platform::assets {
class IAssetLibrary;
}

namespace Kx {
class AmbrelManager;
}

namespace Kx::Types {

// The user library that downloaded materials are installed into (Downloaded.tvrnlib in the
// download folder). It is made by the first install and opened as a user library of the library
// manager, so the materials show with the others and the library opens again at every start.
// UI thread only: it changes the manager's libraries.
class DownloadedMaterialLibrary {
public:
    DownloadedMaterialLibrary(AmbrelManager& libraries, std::filesystem::path file);

    // Copies the material's preset, with what it connects and its images, from the verified
    // library file `source` into the library in one commit (an older copy of the preset is
    // replaced in the same commit). Empty on success, else the reason; the library is then as it was.
    [[nodiscard]] std::string install(const std::filesystem::path& source, const OnlineMaterial& material);
    [[nodiscard]] bool has(const std::string& materialId);
    // Empty until the library exists and is open.
    [[nodiscard]] std::wstring libraryId();
    [[nodiscard]] const std::filesystem::path& file() const { return m_file; }

private:
    telvarin::platform::assets::IAssetLibrary* open(bool create, std::string& problem);
    telvarin::platform::assets::IAssetLibrary* findOrOpen(bool create, std::string& problem);

    AmbrelManager& m_libraries;
    std::filesystem::path m_file;
    // The library's identifier once it was found open: looking it up again is one hash lookup,
    // where finding it among the user libraries rebuilds the manager's list.
    std::wstring m_libraryId;
};

} // namespace Kx::Types
