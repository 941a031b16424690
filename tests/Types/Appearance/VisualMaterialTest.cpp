// Visual materials: tweaks that take part in resolving, tolerant equality without the library id,
// ordering, and the texts.

#include "MaterialTestSupport.h"

#include <Types/Appearance/VisualMaterial.h>

namespace Kx {
namespace {

using namespace MaterialTest;

TEST(VisualMaterial, TweaksAreExact)
{
    struct Case {
        const char* name;
        bool useColor;
        float scale;
        float rotation;
        bool tweaked;
    };
    const Case cases[] = {
        {"neutral", false, 1.0f, 0.0f, false},
        {"scale 1.00001", false, 1.00001f, 0.0f, true},
        {"rotation", false, 1.0f, 0.5f, true},
        {"customized colour", true, 1.0f, 0.0f, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VisualMaterial value;
        value.useCustomizedColor(c.useColor);
        value.ambrelMaterialScale(c.scale);
        value.ambrelMaterialRotation(c.rotation);
        EXPECT_EQ(value.isTweaked(), c.tweaked);
    }
}

TEST(VisualMaterial, EqualityIgnoresTheLibraryAndToleratesSmallTweaks)
{
    struct Case {
        const char* name;
        void (*change)(VisualMaterial&);
        bool equal;
        bool less;
        bool greater;
    };
    const Case cases[] = {
        {"library id only", [](VisualMaterial& m) { m.m_libraryId = L"elsewhere"; }, true, false, false},
        {"scale by 0.00005", [](VisualMaterial& m) { m.ambrelMaterialScale(1.00005f); }, true, false, false},
        {"scale by 0.001", [](VisualMaterial& m) { m.ambrelMaterialScale(1.001f); }, false, true, false},
        {"rotation by 0.001", [](VisualMaterial& m) { m.ambrelMaterialRotation(-0.001f); }, false, false, true},
        {"customized colour on", [](VisualMaterial& m) { m.useCustomizedColor(true); }, false, true, false},
        {"version GUID", [](VisualMaterial& m) { m.m_versionGUID = L"{1}"; }, false, false, false},
        {"material id", [](VisualMaterial& m) { m.m_materialId = L"ZZ"; }, false, true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        // Ids no library holds: the values compare by their own fields.
        VisualMaterial first(L"AP-NOT-IN-ANY-LIBRARY", L"library");
        first.name(L"Paint");
        VisualMaterial second(first);
        c.change(second);
        EXPECT_EQ(first == second, c.equal);
        EXPECT_EQ(first < second, c.less);
        EXPECT_EQ(second < first, c.greater);
    }
    // Colours count only while they are in use, and then within the colour's own tolerance.
    VisualMaterial red(L"AP-X", L"");
    red.name(L"Red");
    VisualMaterial other(red);
    other.customizedColor(Color(1.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_TRUE(red == other);
    red.useCustomizedColor(true);
    other.useCustomizedColor(true);
    EXPECT_FALSE(red == other);
    EXPECT_TRUE(red < other) << "by Color::operator<";
}

TEST(VisualMaterial, ResolvesWithItsTweakAndCachesOnlyWhatItFound)
{
    AmbrelManager& libraries = manager();
    const std::wstring id = firstId(libraries.GetVisualMaterialsByLibrary(libraries.GetVisualLibraryID()));
    ASSERT_FALSE(id.empty());

    VisualMaterial plain(id, libraries.GetVisualLibraryID());
    VisualMaterial scaled(id, L"");
    scaled.ambrelMaterialScale(2.0f);
    ASSERT_NE(plain.assetInstance(), nullptr);
    ASSERT_NE(scaled.assetInstance(), nullptr) << "found through the advanced or the standard library";
    EXPECT_NE(plain.assetInstance(), scaled.assetInstance()) << "a tweaked value resolves to a tweaked instance";
    VisualMaterial again(id, libraries.GetVisualLibraryID());
    EXPECT_TRUE(plain == again) << "equal assets";

    VisualMaterial missing(L"AP-NOT-IN-ANY-LIBRARY", libraries.GetVisualLibraryID());
    EXPECT_EQ(missing.assetInstance(), nullptr);
    EXPECT_EQ(missing.m_pAssetInstance.load(), nullptr) << "nothing cached: a later call tries again";
    EXPECT_EQ(missing.name(), L"Unknown");
}

TEST(VisualMaterial, Texts)
{
    VisualMaterial value(L"AP-1", L"LIB");
    value.name(L"Paint");
    value.ambrelMaterialScale(2.0f);
    value.ambrelMaterialRotation(0.5f);
    EXPECT_EQ(value.toString(), L"Paint\r\nAP-1\r\n\r\nLIB\r\n(AmbrelMaterialScale: 2, AmbrelMaterialRotation: 0.5");
    EXPECT_EQ(value.toString().back(), L'5') << "the parenthesis stays open";

    EXPECT_EQ(value.customizedName(), L"Paint");
    value.useCustomizedColor(true);
    value.customizedColor(Color(1.0f, 0.0f, 0.5f, 1.0f));
    const std::wstring customized = value.customizedName();
    EXPECT_EQ(customized.rfind(L"Paint[", 0), 0u) << customized;
    EXPECT_EQ(customized.back(), L']');
}

TEST(VisualMaterial, ClearIdentityIsRefusedWhileTheRegistryCountsTheValue)
{
    VisualMaterial value(L"AP-1", L"LIB");
    value.name(L"Paint");
    value.assetReference(L"3");
    EXPECT_FALSE(value.clearIdentity());
    EXPECT_EQ(value.ambrelMaterialID(), L"AP-1");
    EXPECT_EQ(value.safeName(), L"Paint");
    value.assetReference(L"");
    EXPECT_TRUE(value.clearIdentity());
    EXPECT_TRUE(value.ambrelMaterialID().empty());
    EXPECT_TRUE(value.libraryID().empty());
    EXPECT_TRUE(value.safeName().empty());
}

} // namespace
} // namespace Kx
