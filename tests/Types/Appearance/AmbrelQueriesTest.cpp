#include <Types/Appearance/AmbrelManager.h>

#include "AmbrelTestLibraries.h"

#include <base/BootstrapOptionGroup.h>
#include <base/OS.h>

#include <gtest/gtest.h>

#include <functional>

namespace AmbrelTest {
namespace {

using Kx::AmbrelManager;
using Kx::Color;

class AmbrelQueries : public AmbrelFixture {
protected:
    void SetUp() override
    {
        Kx::OS::markUIThread();
        writeVisualLibrary(librariesFolder() / "assetlibrary_base.tvrnlib");
        writePhysicalLibrary(librariesFolder() / "PhysicalMaterial.tvrnlib");
        m_manager = makeManager();
        ASSERT_TRUE(m_manager->LoadLibs(false));
    }

    InstancePtr fresh(const char* id, const wchar_t* library = s_visualId)
    {
        InstancePtr instance(m_manager->GetAssetUncacheInstance(id, library));
        EXPECT_NE(instance, nullptr) << id;
        return instance;
    }

    std::unique_ptr<AmbrelManager> m_manager;
};

using DoubleGetter = bool (AmbrelManager::*)(const IAssetInstance*, double&) const;
using DoubleSetter = bool (AmbrelManager::*)(IAssetInstance*, double);

TEST_F(AmbrelQueries, DoubleParametersReadAndWriteTheirSchemasProperty)
{
    struct Case {
        const char* name;
        const char* preset;
        DoubleGetter get;
        DoubleSetter set;
        const wchar_t* property;  // null: the schema has no such parameter
        double stored;
    };
    const Case cases[] = {
        {"opaque luminance", "red", &AmbrelManager::GetAssetInstanceLuminance,
            &AmbrelManager::SetAssetInstanceLuminance, L"opaque_luminance", 12.0},
        {"opaque reflectance", "red", &AmbrelManager::GetAssetInstanceReflectance,
            &AmbrelManager::SetAssetInstanceReflectance, L"opaque_f0", 0.04},
        {"opaque roughness", "red", &AmbrelManager::GetAssetInstanceRoughness,
            &AmbrelManager::SetAssetInstanceRoughness, L"surface_roughness", 0.3},
        {"transparent index", "glass", &AmbrelManager::GetAssetInstanceRefractiveIndex,
            &AmbrelManager::SetAssetInstanceRefractiveIndex, L"transparent_ior", 1.52},
        {"generic index", "tinted", &AmbrelManager::GetAssetInstanceRefractiveIndex,
            &AmbrelManager::SetAssetInstanceRefractiveIndex, L"generic_refraction_index", 1.33},
        {"wood by a differently cased schema", "oak", &AmbrelManager::GetAssetInstanceRingThickness,
            &AmbrelManager::SetAssetInstanceRingThickness, L"wood_ring_thickness", 0.003},
        {"wood roughness", "oak", &AmbrelManager::GetAssetInstanceRoughness,
            &AmbrelManager::SetAssetInstanceRoughness, L"surface_roughness", 0.45},
        {"no luminance on glass", "glass", &AmbrelManager::GetAssetInstanceLuminance,
            &AmbrelManager::SetAssetInstanceLuminance, nullptr, 0.0},
        {"no absorption on opaque", "red", &AmbrelManager::GetAssetInstanceAbsorptionDist,
            &AmbrelManager::SetAssetInstanceAbsorptionDist, nullptr, 0.0},
        {"no generic index on opaque", "red", &AmbrelManager::GetAssetInstanceRefractiveIndex,
            &AmbrelManager::SetAssetInstanceRefractiveIndex, nullptr, 0.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        InstancePtr instance = fresh(c.preset);
        double value = -1.0;
        if (c.property == nullptr) {
            EXPECT_FALSE((m_manager.get()->*c.get)(instance.get(), value));
            EXPECT_FALSE((m_manager.get()->*c.set)(instance.get(), 0.5));
            EXPECT_EQ(value, -1.0);
            continue;
        }
        ASSERT_TRUE((m_manager.get()->*c.get)(instance.get(), value));
        EXPECT_DOUBLE_EQ(value, c.stored);
        ASSERT_TRUE((m_manager.get()->*c.set)(instance.get(), c.stored * 1.5));
        double raw = 0.0;
        ASSERT_TRUE(instance->GetDoubleValue(c.property, raw));
        EXPECT_DOUBLE_EQ(raw, c.stored * 1.5);
        EXPECT_FALSE((m_manager.get()->*c.get)(nullptr, value));
    }
}

TEST_F(AmbrelQueries, DensityComesFromTheStructuralAspectAndMustNotBeNegative)
{
    const std::tuple<const char*, bool, double> cases[] = {
        {"steel", true, 7850.0}, {"damaged", false, 0.0}, {"bare", false, 0.0}};
    for (const auto& [preset, found, expected] : cases) {
        SCOPED_TRACE(preset);
        InstancePtr material = fresh(preset, s_physicalId);
        double density = 42.0;
        EXPECT_EQ(m_manager->GetAssetInstanceDensity(material.get(), density), found);
        EXPECT_EQ(density, found ? expected : 42.0) << "a failed read leaves the output alone";
    }

    InstancePtr steel = fresh("steel", s_physicalId);
    bool hasMinimum = false;
    bool hasMaximum = false;
    bool logarithmic = true;
    double minimum = -1.0;
    double maximum = -1.0;
    double increment = -1.0;
    ASSERT_TRUE(m_manager->GetAssetInstanceDensityBounds(steel.get(), hasMinimum, minimum, hasMaximum, maximum,
        increment, logarithmic));
    EXPECT_TRUE(hasMinimum && hasMaximum);
    EXPECT_EQ(minimum, 0.0);
    EXPECT_EQ(maximum, 25000.0);
    EXPECT_FALSE(logarithmic);
    EXPECT_FALSE(m_manager->SetAssetInstanceDensity(steel.get(), 30000.0)) << "outside the constraint";
    ASSERT_TRUE(m_manager->SetAssetInstanceDensity(steel.get(), 7000.0));
    double density = 0.0;
    ASSERT_TRUE(m_manager->GetAssetInstanceDensity(steel.get(), density));
    EXPECT_EQ(density, 7000.0);

    InstancePtr red = fresh("red");
    ASSERT_TRUE(m_manager->GetAssetInstanceLuminanceBounds(red.get(), hasMinimum, minimum, hasMaximum, maximum,
        increment, logarithmic));
    EXPECT_EQ(maximum, 1000.0);
    EXPECT_TRUE(logarithmic);
    EXPECT_FALSE(m_manager->GetAssetInstanceReflectanceBounds(red.get(), hasMinimum, minimum, hasMaximum, maximum,
        increment, logarithmic)) << "a property without a constraint has no bounds";
}

TEST_F(AmbrelQueries, ColourBySchema)
{
    struct Case {
        const char* preset;
        bool found;
        Color expected;
    };
    const Case cases[] = {
        {"red", true, Color(0.5f, 0.25f, 0.125f, 1.0f)},
        {"brick", false, {}},  // its albedo is a texture: no single colour
        {"oak", true, Color(0.6f, 0.4f, 0.2f, 1.0f)},
        {"glass", true, Color(0.9f, 0.95f, 0.9f, 1.0f)},
        {"tinted", true, Color(0.0f, 1.0f, 0.0f, 1.0f)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.preset);
        InstancePtr instance = fresh(c.preset);
        Color color(0.7f, 0.7f, 0.7f, 0.7f);
        EXPECT_EQ(m_manager->GetAssetInstanceColor(instance.get(), color), c.found);
        EXPECT_EQ(color, c.found ? c.expected : Color(0.7f, 0.7f, 0.7f, 0.7f));
    }
    InstancePtr tinted = fresh("tinted");
    ASSERT_TRUE(tinted->SetBoolValue(L"common_Tint_toggle", false));
    Color color;
    EXPECT_FALSE(m_manager->GetAssetInstanceColor(tinted.get(), color)) << "an untinted older appearance has no colour";
}

// Older appearances carry a tint; each case sets up one schema's switches, then reads the colour,
// writes a tint through a tweak and reads it back.
TEST_F(AmbrelQueries, OlderSchemasAnswerTheirTintUnderTheirSwitches)
{
    const Color tint(0.25f, 0.5f, 0.75f, 1.0f);
    const Color picked(0.1f, 0.2f, 0.3f, 1.0f);
    struct Case {
        const char* name;
        const wchar_t* schema;
        std::function<void(IAssetInstance&)> prepare;
        bool answersBefore;
    };
    const auto choice = [](const wchar_t* property, int value) {
        return [=](IAssetInstance& instance) {
            EXPECT_TRUE(instance.SetChoices(property,
                {{0, L"a"}, {1, L"b"}, {2, L"c"}, {3, L"d"}, {4, L"e"}, {5, L"f"}}));
            EXPECT_TRUE(instance.SetChoiceValue(property, value));
        };
    };
    const auto tintOn = [&](const wchar_t* toggle) {
        return [=](IAssetInstance& instance) {
            EXPECT_TRUE(instance.SetBoolValue(toggle, true));
            EXPECT_TRUE(instance.SetColorValue(L"common_Tint_color", {tint.red(), tint.green(), tint.blue(), 1.0f}));
        };
    };
    const Case cases[] = {
        {"generic with its tint on", L"GenericSchema", tintOn(L"common_Tint_toggle"), true},
        {"hardwood's own toggle", L"HardwoodSchema", tintOn(L"hardwood_tint_enabled"), true},
        {"hardwood ignores the common toggle", L"HardwoodSchema", tintOn(L"common_Tint_toggle"), false},
        {"custom water", L"WaterSchema",
            [&](IAssetInstance& i) { tintOn(L"common_Tint_toggle")(i); choice(L"water_type", 5)(i); }, true},
        {"a river has the colour of its kind", L"WaterSchema",
            [&](IAssetInstance& i) { tintOn(L"common_Tint_toggle")(i); choice(L"water_type", 2)(i); }, false},
        {"anodised aluminium", L"MetalSchema",
            [&](IAssetInstance& i) { tintOn(L"common_Tint_toggle")(i); choice(L"metal_type", 1)(i); }, true},
        {"copper shows its own colour", L"metalschema",
            [&](IAssetInstance& i) { tintOn(L"common_Tint_toggle")(i); choice(L"metal_type", 3)(i); }, false},
        {"stone has a colour of its own", L"StoneSchema",
            [&](IAssetInstance& i) {
                EXPECT_TRUE(i.SetColorValue(L"stone_color", {tint.red(), tint.green(), tint.blue(), 1.0f}));
            },
            true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        InstancePtr instance(m_manager->GetAssetLibMgr()->CreateAssetInstance(c.schema));
        ASSERT_NE(instance, nullptr);
        c.prepare(*instance);
        Color color;
        EXPECT_EQ(m_manager->GetAssetInstanceColor(instance.get(), color), c.answersBefore);
        if (c.answersBefore) {
            EXPECT_EQ(color, tint);
        }
        Kx::MaterialTweak tweak;
        tweak.kind = Kx::MaterialTweak::eTintColor;
        tweak.color = picked;
        m_manager->SetAssetInstanceColor(instance.get(), tweak);
        ASSERT_TRUE(m_manager->GetAssetInstanceColor(instance.get(), color)) << "a tint written is a tint read";
        EXPECT_EQ(color, picked);
    }

    InstancePtr texturedStone(m_manager->GetAssetLibMgr()->CreateAssetInstance(L"StoneSchema"));
    InstancePtr texture(m_manager->GetAssetLibMgr()->CreateAssetInstance(L"texture"));
    ASSERT_TRUE(texturedStone->AddConnectedAsset(L"stone_color", texture.get()));
    Color color;
    EXPECT_FALSE(m_manager->GetAssetInstanceColor(texturedStone.get(), color)) << "a stone image has no single colour";
}

TEST_F(AmbrelQueries, ColourPropertiesOfEverySchema)
{
    using Names = std::vector<std::wstring>;
    EXPECT_EQ(m_manager->GetMaterialPropertyNames(L"corvexopaqueschema"), Names{L"opaque_albedo"});
    EXPECT_EQ(m_manager->GetMaterialPropertyNames(L"CorvexWoodSchema"),
        (Names{L"wood_early_color", L"wood_manual_late_color"}));
    EXPECT_EQ(m_manager->GetMaterialPropertyNames(L"WallPaintSchema"), (Names{L"wallpaint_color", L"common_Tint_color"}));
    EXPECT_EQ(m_manager->GetMaterialPropertyNames(L"MasonryCMUSchema").front(), L"masonrycmu_color");
    EXPECT_TRUE(m_manager->GetMaterialPropertyNames(L"physicalmaterial").empty());
}

TEST_F(AmbrelQueries, SchemaTestsIgnoreLetterCase)
{
    InstancePtr oak = fresh("oak");
    InstancePtr glass = fresh("glass");
    InstancePtr tinted = fresh("tinted");
    EXPECT_TRUE(m_manager->IsCorvexWoodMaterial(oak.get()));
    EXPECT_TRUE(m_manager->IsCorvexMaterial(oak.get()));
    EXPECT_FALSE(m_manager->IsCorvexWoodMaterial(glass.get()));
    EXPECT_TRUE(m_manager->IsAssetOfType(glass.get(), "corvextransparentschema"));
    EXPECT_TRUE(m_manager->IsAssetOfType(glass.get(), "materialappearance")) << "every appearance schema is of that type";
    EXPECT_FALSE(m_manager->IsAssetOfType(glass.get(), "physicalmaterial"));
    EXPECT_FALSE(m_manager->IsCorvexMaterial(tinted.get()));
    EXPECT_FALSE(m_manager->IsEnvironmentAsset(glass.get()));
    EXPECT_FALSE(m_manager->IsCorvexMaterial(nullptr));
}

TEST_F(AmbrelQueries, IdentityAndListings)
{
    InstancePtr steel = fresh("steel", s_physicalId);
    std::wstring library;
    std::wstring material;
    std::wstring variant = L"x";
    ASSERT_TRUE(m_manager->GetAssetInstanceInfo(steel.get(), library, material, variant));
    EXPECT_EQ(library, s_physicalId);
    EXPECT_EQ(material, L"steel");
    EXPECT_TRUE(variant.empty());
    EXPECT_TRUE(m_manager->IsSystemMaterial(steel.get()));

    std::wstring category;
    std::wstring subcategory;
    ASSERT_TRUE(m_manager->GetCategoryForMaterial("steel", s_physicalId, category, subcategory));
    EXPECT_EQ(category, L"Metal");
    EXPECT_EQ(subcategory, L"default");
    EXPECT_FALSE(m_manager->GetCategoryForMaterial("nothing", s_physicalId, category, subcategory));

    // Library order: category, then material id; presets without a category come first.
    EXPECT_EQ(m_manager->GetPhysicalMaterialsByLibrary(s_physicalId),
        (std::vector<std::string>{"damaged", "steel", "bare"}));
    EXPECT_EQ(m_manager->GetVisualMaterialsByLibrary(s_visualId),
        (std::vector<std::string>{"brick", "escape", "glass", "oak", "tinted", "red"}));
    EXPECT_TRUE(m_manager->GetPhysicalMaterialsByLibrary(s_visualId).empty());
    const auto categorized = m_manager->GetCategorizedVisualMaterialsByLibrary(s_visualId);
    EXPECT_EQ(categorized.count(L"default"), 5U);
    ASSERT_EQ(categorized.count(L"Paint"), 1U);
    EXPECT_EQ(categorized.find(L"Paint")->second, "red");

    std::vector<std::string> byName;
    for (const auto& [name, id] : m_manager->GetMateriaNamesAndIDs(s_physicalId)) {
        byName.push_back(id);
    }
    EXPECT_EQ(byName, (std::vector<std::string>{"bare", "damaged", "steel"}));

    InstancePtr brick = fresh("brick");
    std::vector<IAssetInstance*> textures = m_manager->CollectTextureAssets(brick.get());
    ASSERT_EQ(textures.size(), 1U);
    EXPECT_EQ(textures.front()->GetReferenceCount(), 2) << "the brick's connection and the caller's";
    textures.front()->Release();
    EXPECT_TRUE(m_manager->InstanceTexturesAreLocal(brick.get())) << "an embedded bitmap is local";
}

TEST_F(AmbrelQueries, NamesFollowTheUserLanguage)
{
    auto& bootstrap = Kx::BootstrapOptionGroup::get();
    const std::string previous = bootstrap.userLanguage();
    const std::tuple<const char*, const wchar_t*, const wchar_t*> cases[] = {
        {"de-DE", L"Eiche", L"Stahl"}, {"en-US", L"Oak", L"Steel"}, {"zh-TW", L"Oak", L"Steel"}};
    for (const auto& [tag, oak, steel] : cases) {
        SCOPED_TRACE(tag);
        bootstrap.userLanguage(tag);
        auto manager = makeManager();
        ASSERT_TRUE(manager->LoadLibs(false));
        EXPECT_EQ(manager->GetUIName("oak", s_visualId), oak);
        EXPECT_EQ(manager->GetVisualMaterialUINameByID("oak"), oak);
        EXPECT_EQ(manager->GetPhysicalMaterialUINameByID("steel"), steel);
        InstancePtr instance(manager->GetAssetInstance("oak", s_visualId, {}));
        EXPECT_EQ(manager->GetUIName(instance.get()), oak);
        EXPECT_TRUE(manager->GetPhysicalMaterialUINameByID("oak").empty());
    }
    bootstrap.userLanguage(previous);
}

// The generated standard libraries (ctest's KX_CONTENT_DIR), opened as files by a server edition.
TEST(AmbrelStandardContent, DefaultsAndTheirValues)
{
    Kx::OS::markUIThread();
    KxTest::ScopedEnvironment edition("KX_EDITION", "server");
    auto assets = CreateAssetLibraryManager();
    AmbrelManager manager([&] { return assets.get(); });
    ASSERT_TRUE(manager.LoadLibs(false));

    InstancePtr steel(manager.GetAssetInstance("CorvexMaterial-018", manager.GetAdvancedPhysicalLibraryID(), {}));
    ASSERT_NE(steel, nullptr);
    double density = 0.0;
    ASSERT_TRUE(manager.GetAssetInstanceDensity(steel.get(), density));
    EXPECT_EQ(density, 7900.0);

    InstancePtr grey(manager.GetAssetInstance("Corvex-256", manager.GetAdvancedVisualLibraryID(), {}));
    Color color;
    ASSERT_TRUE(manager.GetAssetInstanceColor(grey.get(), color));
    EXPECT_EQ(color, Color(0.18f, 0.18f, 0.18f, 1.0f));

    // The standard libraries are a subset of the advanced ones under the same ids.
    InstancePtr brick(manager.GetAssetInstance("Corvex-117", manager.GetVisualLibraryID(), {}));
    ASSERT_NE(brick, nullptr);
    EXPECT_FALSE(manager.GetAssetInstanceColor(brick.get(), color));
    InstancePtr oak(manager.GetAssetInstance("Corvex-110", manager.GetVisualLibraryID(), {}));
    EXPECT_TRUE(manager.IsCorvexWoodMaterial(oak.get()));

    EXPECT_EQ(manager.GetPhysicalMaterialsByLibrary(manager.GetPhysicalLibraryID()).size(), 18U)
        << "one material per subcategory";
    const auto uuids = manager.GetAllIDAndUuids(manager.GetPhysicalLibraryID());
    EXPECT_EQ(uuids.size(), 18U);
    EXPECT_EQ(manager.GetAllIDAndUuids(manager.GetAdvancedPhysicalLibraryID()).size(), 141U);
    EXPECT_TRUE(manager.GetEnvironmentAssetsByLibrary(manager.GetVisualLibraryID()).empty());
    const auto ids = manager.GetVisualMaterialsByLibrary(manager.GetVisualLibraryID());
    EXPECT_EQ(ids.size(), 21U) << "the looks of the 18 materials, the default grey and the authored presets";
    EXPECT_EQ(manager.GetVisualMaterialsByLibrary(manager.GetAdvancedVisualLibraryID()).size(), 155U)
        << "110 measured, 10 authored and 35 derived appearances";
}

} // namespace
} // namespace AmbrelTest
