#include "AmbrelTestLibraries.h"

#include <base/Options.h>

#include <functional>

namespace AmbrelTest {

namespace {

void writeLibrary(IAssetLibraryManager& manager, const std::filesystem::path& file, const WideString& id, int kind,
    const std::function<void(IWritableAssetLibrary&)>& fill)
{
    std::filesystem::create_directories(file.parent_path());
    AssetError error;
    IAssetLibrary* library = manager.CreateAssetLibrary(file.wstring(), kind, id, &error);
    ASSERT_NE(library, nullptr) << error.message;
    IWritableAssetLibrary* writable = manager.GetWritableAssetLibrary(library, &error);
    ASSERT_NE(writable, nullptr) << error.message;
    fill(*writable);
    EXPECT_TRUE(manager.CommitAssetLibrary(writable, &error)) << error.message;
    manager.ReleaseWritableAssetLibrary(writable);
    EXPECT_TRUE(manager.SaveAssetLibrary(library, &error)) << error.message;
    EXPECT_TRUE(manager.ReleaseAssetLibrary(library));
}

void addPreset(IWritableAssetLibrary& library, IAssetInstance* instance, const char* id, const wchar_t* english,
    const wchar_t* german, const wchar_t* category = L"")
{
    instance->SetName("eng", english);
    instance->SetName("deu", german);
    AssetError error;
    EXPECT_TRUE(library.CreateNewAssetPreset(instance, AssetPresetInfo{id, {}, 1, 0, {}, {}, category, {}}, &error))
        << error.message;
    instance->Release();
}

} // namespace

AmbrelFixture::AmbrelFixture()
{
    // The installed set's GUID names the reduced library folder; whichever test reads the history
    // first, it reads the shipped one.
    std::filesystem::copy_file(std::filesystem::path(KX_TEST_DATA_DIR) / ".." / ".." / "content" / "MaterialLibraryHistory.xml",
        m_root.path() / "MaterialLibraryHistory.xml");
    setUserLibraries({}, {});
}

AmbrelFixture::~AmbrelFixture()
{
    setUserLibraries({}, {});
}

std::unique_ptr<Kx::AmbrelManager> AmbrelFixture::makeManager()
{
    return std::make_unique<Kx::AmbrelManager>([this] { return m_assets.get(); });
}

void AmbrelFixture::setUserLibraries(const std::vector<std::string>& names, const std::vector<std::string>& paths)
{
    auto& options = Kx::AmbrelMaterialOptionGroup::get();
    ASSERT_TRUE(options.optionAs<Kx::StringListOption>("UserLibraryNames")->setValue(names));
    ASSERT_TRUE(options.optionAs<Kx::StringListOption>("UserLibraryPaths")->setValue(paths));
}

void AmbrelFixture::writeVisualLibrary(const std::filesystem::path& file, const WideString& id)
{
    writeVisualLibraryFile(*m_assets, file, id);
}

void writeVisualLibraryFile(IAssetLibraryManager& assets, const std::filesystem::path& file, const WideString& id)
{
    writeLibrary(assets, file, id, eSystemAppearanceLibrary, [&](IWritableAssetLibrary& library) {
        IAssetInstance* red = assets.CreateAssetInstance(L"CorvexOpaqueSchema");
        EXPECT_TRUE(red->SetColorValue(L"opaque_albedo", {0.5F, 0.25F, 0.125F, 1.0F}));
        EXPECT_TRUE(red->SetDoubleValue(L"opaque_f0", 0.04));
        EXPECT_TRUE(red->SetDoubleValue(L"opaque_luminance", 12.0));
        EXPECT_TRUE(red->SetNumericConstraint(L"opaque_luminance", {true, 0.0, true, 1000.0, 1.0, true}));
        EXPECT_TRUE(red->SetBoolValue(L"opaque_emission", true));
        EXPECT_TRUE(red->SetDoubleValue(L"surface_roughness", 0.3));
        addPreset(library, red, "red", L"Red", L"Rot", L"Paint");

        IAssetInstance* brick = assets.CreateAssetInstance(L"CorvexOpaqueSchema");
        EXPECT_TRUE(brick->SetColorValue(L"opaque_albedo", {0.4F, 0.2F, 0.1F, 1.0F}));
        IAssetInstance* texture = assets.CreateAssetInstance(L"texture");
        EXPECT_TRUE(texture->SetStringValue(L"unifiedbitmap_Bitmap", L"tvp:?asset=textures/brick.png"));
        EXPECT_TRUE(texture->SetDoubleValue(L"texture_UScale", 2.0));
        EXPECT_TRUE(texture->SetDoubleValue(L"texture_VScale", 2.0));
        EXPECT_TRUE(texture->SetDoubleValue(L"texture_WAngle", 0.0));
        EXPECT_TRUE(brick->AddConnectedAsset(L"opaque_albedo", texture));
        texture->Release();
        addPreset(library, brick, "brick", L"Brick", L"Ziegel");
        AssetError error;
        const std::vector<std::uint8_t> image{0x89, 'P', 'N', 'G', 13, 10, 26, 10};
        EXPECT_EQ(library.AddEmbeddedResource(L"textures/brick.png", image, &error), L"tvp:?asset=textures/brick.png");
        // A resource whose name climbs out of any folder it is extracted to.
        EXPECT_EQ(library.AddEmbeddedResource(L"../../escape.png", image, &error), L"tvp:?asset=../../escape.png");
        IAssetInstance* escape = assets.CreateAssetInstance(L"CorvexOpaqueSchema");
        IAssetInstance* escapeTexture = assets.CreateAssetInstance(L"texture");
        EXPECT_TRUE(escapeTexture->SetStringValue(L"unifiedbitmap_Bitmap", L"tvp:?asset=../../escape.png"));
        EXPECT_TRUE(escape->AddConnectedAsset(L"opaque_albedo", escapeTexture));
        escapeTexture->Release();
        addPreset(library, escape, "escape", L"Escape", L"Ausbruch");

        IAssetInstance* oak = assets.CreateAssetInstance(L"corvexWOODschema");
        EXPECT_TRUE(oak->SetColorValue(L"wood_early_color", {0.6F, 0.4F, 0.2F, 1.0F}));
        EXPECT_TRUE(oak->SetColorValue(L"wood_manual_late_color", {0.3F, 0.2F, 0.1F, 1.0F}));
        EXPECT_TRUE(oak->SetDoubleValue(L"wood_ring_thickness", 0.003));
        EXPECT_TRUE(oak->SetBoolValue(L"wood_use_pores", true));
        EXPECT_TRUE(oak->SetDoubleValue(L"surface_roughness", 0.45));
        addPreset(library, oak, "oak", L"Oak", L"Eiche");

        IAssetInstance* glass = assets.CreateAssetInstance(L"CorvexTransparentSchema");
        EXPECT_TRUE(glass->SetDoubleValue(L"transparent_ior", 1.52));
        EXPECT_TRUE(glass->SetNumericConstraint(L"transparent_ior", {true, 1.0, true, 3.0, 0.0, false}));
        EXPECT_TRUE(glass->SetDoubleValue(L"surface_roughness", 0.1));
        EXPECT_TRUE(glass->SetColorValue(L"transparent_color", {0.9F, 0.95F, 0.9F, 1.0F}));
        addPreset(library, glass, "glass", L"Glass", L"Glas");

        IAssetInstance* tinted = assets.CreateAssetInstance(L"GenericSchema");
        EXPECT_TRUE(tinted->SetBoolValue(L"common_Tint_toggle", true));
        EXPECT_TRUE(tinted->SetColorValue(L"common_Tint_color", {0.0F, 1.0F, 0.0F, 1.0F}));
        EXPECT_TRUE(tinted->SetDoubleValue(L"generic_refraction_index", 1.33));
        addPreset(library, tinted, "tinted", L"Tinted", L"Getönt");
    });
}

void AmbrelFixture::writePhysicalLibrary(const std::filesystem::path& file)
{
    IAssetLibraryManager& assets = *m_assets;
    const auto withDensity = [&](double density) {
        IAssetInstance* material = assets.CreateAssetInstance(L"physicalmaterial");
        IAssetInstance* structural = assets.CreateAssetInstance(L"structural");
        EXPECT_TRUE(structural->SetDoubleValue(L"structural_Density", density));
        EXPECT_TRUE(structural->SetNumericConstraint(L"structural_Density", {true, 0.0, true, 25000.0, 0.0, false}));
        EXPECT_TRUE(material->SetConnectedAsset(L"Structural", structural));
        structural->Release();
        return material;
    };
    writeLibrary(assets, file, s_physicalId, eSystemPhysicalLibrary, [&](IWritableAssetLibrary& library) {
        addPreset(library, withDensity(7850.0), "steel", L"Steel", L"Stahl", L"Metal");
        // Written before the constraint applies: a stored value is taken as it is.
        IAssetInstance* damaged = assets.CreateAssetInstance(L"physicalmaterial");
        IAssetInstance* structural = assets.CreateAssetInstance(L"structural");
        EXPECT_TRUE(structural->SetDoubleValue(L"structural_Density", -5.0));
        EXPECT_TRUE(damaged->SetConnectedAsset(L"Structural", structural));
        structural->Release();
        addPreset(library, damaged, "damaged", L"Damaged", L"Beschädigt", L"Metal");
        addPreset(library, assets.CreateAssetInstance(L"physicalmaterial"), "bare", L"Bare", L"Blank", L"Other");
    });
}

} // namespace AmbrelTest
