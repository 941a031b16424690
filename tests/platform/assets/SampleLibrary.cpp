#include "SampleLibrary.h"

#include <gtest/gtest.h>

namespace AssetTest {

InstancePtr makeSteel(IAssetLibraryManager& manager)
{
    InstancePtr steel(manager.CreateAssetInstance(L"physicalmaterial", "steel"));
    InstancePtr structural(manager.CreateAssetInstance(L"structural"));
    EXPECT_TRUE(structural->SetDoubleValue(L"structural_Density", 7850.0));
    EXPECT_TRUE(structural->SetNumericConstraint(L"structural_Density", {true, 0.0, true, 30000.0, 10.0, false}));
    EXPECT_TRUE(structural->SetPropertyUnit(L"structural_Density", L"kg/m^3"));
    EXPECT_TRUE(structural->SetChoices(L"structural_Behavior", {{0, L"isotropic"}, {1, L"orthotropic"}}));
    EXPECT_TRUE(structural->SetDoubleArrayValue(L"structural_Curve", {0.0, 1.5, -2.25}));
    EXPECT_TRUE(steel->SetConnectedAsset(L"Structural", structural.get()));
    EXPECT_TRUE(steel->AddConnectedAsset(L"physmat_aspects", structural.get()));

    InstancePtr appearance(manager.CreateAssetInstance(L"CorvexOpaqueSchema"));
    EXPECT_TRUE(appearance->SetColorValue(L"opaque_albedo", {0.5F, 0.25F, 0.125F, 1.0F}));
    EXPECT_TRUE(appearance->SetBoolValue(L"opaque_emission", false));
    EXPECT_TRUE(appearance->SetIntegerArrayValue(L"layers", {3, -7, 2147483647}));
    InstancePtr texture(manager.CreateAssetInstance(L"texture"));
    EXPECT_TRUE(texture->SetStringValue(L"unifiedbitmap_Bitmap", L"tvp:?asset=textures/steel.png"));
    EXPECT_TRUE(texture->SetDoubleValue(L"texture_UScale", 2.0));
    EXPECT_TRUE(appearance->AddConnectedAsset(L"opaque_albedo", texture.get()));
    EXPECT_TRUE(steel->SetConnectedAsset(L"materialappearance", appearance.get()));

    EXPECT_TRUE(steel->SetIntegerValue(L"revision_count", -3));
    EXPECT_TRUE(steel->SetStringValue(L"thumbnail", L"tvp:?asset=thumbnails/steel.png"));
    steel->SetName("eng", L"Steel");
    steel->SetName("deu", L"Stahl");
    return steel;
}

void writeSampleLibrary(IAssetLibraryManager& manager, const std::filesystem::path& file, const WideString& libraryId)
{
    AssetError error;
    IAssetLibrary* library = manager.CreateAssetLibrary(file.wstring(), eUserLibrary, libraryId, &error);
    ASSERT_NE(library, nullptr) << error.message;
    IWritableAssetLibrary* writable = manager.GetWritableAssetLibrary(library, &error);
    ASSERT_NE(writable, nullptr) << error.message;

    InstancePtr steel = makeSteel(manager);
    AssetPresetInfo info;
    info.materialId = "steel";
    info.category = L"Metal";
    info.subcategory = L"Steel";
    info.majorVersion = 2;
    info.minorVersion = 7;
    info.revision = L"2024.1";
    info.versionGUID = L"0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0F9";
    EXPECT_TRUE(writable->CreateNewAssetPreset(steel.get(), info, &error)) << error.message;
    info.variant = L"hot";
    EXPECT_TRUE(steel->SetDoubleValue(L"temperature", 900.0));
    EXPECT_TRUE(writable->CreateNewAssetPreset(steel.get(), info, &error)) << error.message;

    InstancePtr oak(manager.CreateAssetInstance(L"physicalmaterial"));
    oak->SetName("eng", L"Oak");
    oak->SetName("deu", L"Eiche");
    EXPECT_TRUE(writable->CreateNewAssetPreset(oak.get(), AssetPresetInfo{"oak", {}, 1, 0, {}, {}, L"Wood", L"Hardwood"}, &error))
        << error.message;

    InstancePtr glass(manager.CreateAssetInstance(L"CorvexTransparentSchema"));
    EXPECT_TRUE(glass->SetDoubleValue(L"transparent_ior", 1.52));
    glass->SetName("eng", L"Glass");
    glass->SetName("deu", L"Glas \u00d6ko");
    EXPECT_TRUE(writable->CreateNewAssetPreset(glass.get(), AssetPresetInfo{"glass", {}, 1, 0, {}, {}, L"Glass", {}}, &error))
        << error.message;

    EXPECT_TRUE(writable->SetLocalizedText(L"Metal", "deu", L"Metall", &error)) << error.message;
    EXPECT_TRUE(writable->SetLocalizedText(L"Metal", "eng", L"Metal", &error)) << error.message;
    const std::vector<std::uint8_t> png{0x89, 'P', 'N', 'G', 0, 1, 2};
    EXPECT_EQ(writable->AddEmbeddedResource(L"textures/steel.png", png, &error), L"tvp:?asset=textures/steel.png");
    EXPECT_TRUE(writable->SetLibraryName(L"Sample", &error)) << error.message;
    EXPECT_TRUE(manager.CommitAssetLibrary(writable, &error)) << error.message;
    manager.ReleaseWritableAssetLibrary(writable);
    EXPECT_TRUE(manager.SaveAssetLibrary(library, &error)) << error.message;
    EXPECT_TRUE(manager.ReleaseAssetLibrary(library));
}

} // namespace AssetTest
