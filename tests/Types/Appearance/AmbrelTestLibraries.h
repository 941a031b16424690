#pragma once

#include <Types/Appearance/AmbrelManager.h>

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <support/TestSupport.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace AmbrelTest {

using namespace telvarin::platform::assets;

inline constexpr const wchar_t* s_visualId = L"11111111-0000-4000-8000-000000000001";
inline constexpr const wchar_t* s_physicalId = L"11111111-0000-4000-8000-000000000002";

// The appearance library of AmbrelFixture::writeVisualLibrary, written through `assets`.
void writeVisualLibraryFile(IAssetLibraryManager& assets, const std::filesystem::path& file,
    const WideString& id = s_visualId);

// A content root of its own in a temporary folder, read as a server edition reads it (plain files
// under <root>/libraries), with an asset library manager of its own and no user libraries.
class AmbrelFixture : public ::testing::Test {
protected:
    AmbrelFixture();
    ~AmbrelFixture() override;

    [[nodiscard]] std::unique_ptr<Kx::AmbrelManager> makeManager();
    [[nodiscard]] std::filesystem::path librariesFolder() const { return m_root.path() / "libraries"; }
    // Where the manager reads the standard files from and keeps the favourites.
    [[nodiscard]] static std::filesystem::path reducedFolder() { return Kx::Types::GetReducedLibraryPath(); }

    // assetlibrary_base.tvrnlib, s_visualId:
    //   "red"      CorvexOpaqueSchema, albedo (0.5, 0.25, 0.125), f0 0.04, luminance 12 in [0, 1000]
    //   "brick"    CorvexOpaqueSchema whose albedo is driven by a texture (UScale 2, WAngle 0)
    //   "oak"      schema spelled "corvexWOODschema"; late colour, rings 0.003 m
    //   "glass"    CorvexTransparentSchema, ior 1.52, roughness 0.1
    //   "tinted"   GenericSchema with a tint on
    //   "escape"   a texture naming the embedded resource "../../escape.png"
    // The resource "textures/brick.png" (8 bytes) is embedded.
    // names in "eng" and "deu"; "red" is in category "Paint", the others have none.
    void writeVisualLibrary(const std::filesystem::path& file, const WideString& id = s_visualId);
    // PhysicalMaterial.tvrnlib, s_physicalId: "steel" (density 7850 in [0, 25000], category Metal),
    // "damaged" (density -5), "bare" (no structural aspect).
    void writePhysicalLibrary(const std::filesystem::path& file);
    void setUserLibraries(const std::vector<std::string>& names, const std::vector<std::string>& paths);

    KxTest::TempDir m_root;
    KxTest::ScopedEnvironment m_content{"KX_CONTENT_DIR", m_root.path()};
    // Each test has a user directory of its own: the reduced library folder, favourites and the
    // private library live there.
    KxTest::TempDir m_user;
    KxTest::ScopedEnvironment m_userDirectory{"KX_USER_DIR", m_user.path()};
    KxTest::ScopedEnvironment m_edition{"KX_EDITION", "server"};
    std::unique_ptr<IAssetLibraryManager> m_assets = CreateAssetLibraryManager();
};

} // namespace AmbrelTest
