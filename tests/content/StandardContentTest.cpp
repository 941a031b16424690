#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>

#include "Lint.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

namespace {

using namespace telvarin::platform::assets;

struct ReleaseInstance {
    void operator()(IAssetInstance* instance) const { instance->Release(); }
};
using InstancePtr = std::unique_ptr<IAssetInstance, ReleaseInstance>;

struct GeneratorRun {
    int status = -1;
    std::string output;
};

GeneratorRun generate(const std::filesystem::path& data, const std::filesystem::path& out)
{
    const std::string command =
        std::string("\"") + KX_CONTENT_GENERATOR + "\" --data \"" + data.string() + "\" --out \"" + out.string() + "\" 2>&1";
    GeneratorRun run;
    if (FILE* pipe = ::popen(command.c_str(), "r")) {
        char buffer[4096];
        while (std::size_t count = std::fread(buffer, 1, sizeof buffer, pipe)) {
            run.output.append(buffer, count);
        }
        run.status = ::pclose(pipe);
    }
    return run;
}

const char* const s_dataFiles[] = {"physical.csv", "appearance.csv", "corrections.csv", "family-values.csv"};

const char* const s_physicalLibraries[] = {"PhysicalMaterial.tvrnlib", "PhysicalMaterialAdvanced.tvrnlib",
    "Additive.tvrnlib", "Nonlinear Material Library.tvrnlib"};
const char* const s_appearanceLibraries[] = {"assetlibrary_base.tvrnlib", "assetlibrary_advanced.tvrnlib"};

class StandardContentTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_dir = new KxTest::TempDir;
        s_run = new GeneratorRun(generate(KX_CONTENT_DATA_DIR, s_dir->path() / "libraries"));
    }
    static void TearDownTestSuite()
    {
        delete s_run;
        delete s_dir;
    }

    void SetUp() override { ASSERT_EQ(s_run->status, 0) << s_run->output; }
    void TearDown() override
    {
        for (IAssetLibrary* library : m_open) {
            m_manager->ReleaseAssetLibrary(library);
        }
    }

    IAssetLibrary* open(const std::string& file)
    {
        AssetError error;
        IAssetLibrary* library = m_manager->OpenAssetLibrary((s_dir->path() / "libraries" / file).wstring(), &error);
        EXPECT_NE(library, nullptr) << file << ": " << error.message;
        if (library != nullptr) {
            m_open.push_back(library);
        }
        return library;
    }

    static double structural(const IAssetInstance& material, const wchar_t* property)
    {
        InstancePtr aspect(material.GetConnectedAsset(L"Structural"));
        double value = -1.0;
        EXPECT_NE(aspect, nullptr);
        if (aspect) {
            EXPECT_TRUE(aspect->GetDoubleValue(property, value)) << telvarin::platform::core::toUTF8(property);
        }
        return value;
    }

    static KxTest::TempDir* s_dir;
    static GeneratorRun* s_run;
    std::unique_ptr<IAssetLibraryManager> m_manager = CreateAssetLibraryManager();
    std::vector<IAssetLibrary*> m_open;
};

KxTest::TempDir* StandardContentTest::s_dir = nullptr;
GeneratorRun* StandardContentTest::s_run = nullptr;

TEST_F(StandardContentTest, GenerationIsDeterministic)
{
    KxTest::TempDir again;
    const GeneratorRun second = generate(KX_CONTENT_DATA_DIR, again.path());
    ASSERT_EQ(second.status, 0) << second.output;
    EXPECT_EQ(second.output.substr(0, second.output.rfind("written to")), s_run->output.substr(0, s_run->output.rfind("written to")));
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(s_dir->path() / "libraries")) {
        const std::string name = entry.path().filename().string();
        files.insert(name);
        SCOPED_TRACE(name);
        EXPECT_EQ(KxTest::readBytes(entry.path()), KxTest::readBytes(again.path() / name));
    }
    EXPECT_EQ(files.size(), 8u) << "six libraries, the mount table and the lint report";
}

TEST_F(StandardContentTest, TheDefaultsOfNewDocumentsExist)
{
    IAssetLibrary* physical = open("PhysicalMaterialAdvanced.tvrnlib");
    IAssetLibrary* appearance = open("assetlibrary_advanced.tvrnlib");
    ASSERT_TRUE(physical && appearance);
    InstancePtr steel(physical->CreateAssetInstance("CorvexMaterial-018"));
    ASSERT_NE(steel, nullptr) << physical->GetLastError().message;
    EXPECT_EQ(steel->GetName("eng"), L"Steel (generic)");
    EXPECT_EQ(steel->GetName("deu"), L"Stahl (allgemein)");
    EXPECT_EQ(structural(*steel, L"structural_Density"), 7900.0);
    // A name-based GUID (SHA-1, version 5) of "<library id>/<material id>" in the content's
    // namespace, as any RFC 4122 implementation computes it: documents refer to it across releases.
    std::wstring exchange;
    ASSERT_TRUE(steel->GetStringValue(L"ExchangeGUID", exchange));
    EXPECT_EQ(exchange, L"20A09943-3774-57F8-ABAB-3546EC88A5A5");

    InstancePtr grey(appearance->CreateAssetInstance("Corvex-256"));
    ASSERT_NE(grey, nullptr) << appearance->GetLastError().message;
    EXPECT_EQ(grey->GetSchemaName(), L"CorvexOpaqueSchema");
    AssetColor albedo;
    ASSERT_TRUE(grey->GetColorValue(L"opaque_albedo", albedo));
    EXPECT_FLOAT_EQ(albedo.g, 0.18F);
}

// The preferences name the standard libraries and the defaults above: the standard libraries are a
// subset of the advanced ones, every material under the same id with the same values.
TEST_F(StandardContentTest, TheStandardLibrariesAreSubsetsOfTheAdvancedOnes)
{
    const std::pair<const char*, const char*> pairs[] = {
        {"PhysicalMaterial.tvrnlib", "PhysicalMaterialAdvanced.tvrnlib"},
        {"assetlibrary_base.tvrnlib", "assetlibrary_advanced.tvrnlib"}};
    const char* const defaults[] = {"CorvexMaterial-018", "Corvex-256"};
    for (std::size_t side = 0; side < 2; ++side) {
        SCOPED_TRACE(pairs[side].first);
        IAssetLibrary* standard = open(pairs[side].first);
        IAssetLibrary* advanced = open(pairs[side].second);
        ASSERT_TRUE(standard && advanced);
        EXPECT_GT(standard->GetAssetCount(), 10u);
        EXPECT_LT(standard->GetAssetCount(), advanced->GetAssetCount());
        EXPECT_NE(standard->FindAssetDefinition(defaults[side]), nullptr);
        for (const IAssetDefinition* definition : standard->GetAssetDefinitions()) {
            SCOPED_TRACE(definition->GetMaterialId());
            const IAssetDefinition* twin = advanced->FindAssetDefinition(definition->GetMaterialId());
            ASSERT_NE(twin, nullptr);
            EXPECT_EQ(definition->GetCategory(), twin->GetCategory());
            EXPECT_EQ(definition->GetVersionGUID(), twin->GetVersionGUID());
            InstancePtr mine(standard->CreateAssetInstance(definition));
            InstancePtr theirs(advanced->CreateAssetInstance(twin));
            ASSERT_TRUE(mine && theirs);
            EXPECT_TRUE(mine->IsEqual(theirs.get()));
            EXPECT_EQ(mine->GetNames(), theirs->GetNames());
        }
    }
}

TEST_F(StandardContentTest, EveryPhysicalMaterialHasItsAspectsAndAnAppearance)
{
    const std::set<std::wstring> corvex{L"CorvexOpaqueSchema", L"CorvexMetalSchema", L"CorvexLayeredSchema",
        L"CorvexTransparentSchema", L"CorvexWoodSchema"};
    for (const char* file : s_physicalLibraries) {
        SCOPED_TRACE(file);
        IAssetLibrary* library = open(file);
        ASSERT_NE(library, nullptr);
        EXPECT_TRUE(library->IsReadOnly());
        ASSERT_GT(library->GetAssetCount(), 0u);
        for (const IAssetDefinition* definition : library->GetAssetDefinitions()) {
            SCOPED_TRACE(definition->GetMaterialId());
            EXPECT_EQ(definition->GetSchemaName(), L"physicalmaterial");
            InstancePtr material(library->CreateAssetInstance(definition));
            ASSERT_NE(material, nullptr) << library->GetLastError().message;
            EXPECT_GT(structural(*material, L"structural_Density"), 0.0);
            InstancePtr aspect(material->GetConnectedAsset(L"Structural"));
            InstancePtr thermal(material->GetConnectedAsset(L"Thermal"));
            const bool thermalData = aspect->HasProperty(L"structural_Thermal_conductivity") ||
                                     aspect->HasProperty(L"structural_Specific_heat") ||
                                     aspect->HasProperty(L"structural_Thermal_expansion_coefficient");
            EXPECT_EQ(thermal != nullptr, thermalData);
            EXPECT_EQ(material->GetConnectedAssetCount(L"physmat_aspects"), thermalData ? 2 : 1);
            InstancePtr look(material->GetConnectedAsset(L"materialappearance"));
            ASSERT_NE(look, nullptr);
            EXPECT_TRUE(corvex.contains(look->GetSchemaName()));
            std::vector<std::uint8_t> thumbnail;
            EXPECT_TRUE(library->ReadEmbeddedResource(material->GetThumbnailImageURI(), thumbnail));
            EXPECT_FALSE(material->GetName("deu").empty());
            EXPECT_NE(library->GetLocalizedText(definition->GetCategory(), "deu"), L"");
        }
    }
}

TEST_F(StandardContentTest, LintCorrectionsAndClampsReachTheLibraries)
{
    EXPECT_NE(s_run->output.find("PM-OTHER-GRAPHITE youngs_modulus_pa"), std::string::npos) << s_run->output;
    EXPECT_EQ(KxTest::readText(s_dir->path() / "libraries" / "lint-report.txt") + "kx_content_generator:",
        s_run->output.substr(0, s_run->output.find("kx_content_generator:") + 21));
    IAssetLibrary* physical = open("PhysicalMaterial.tvrnlib");
    ASSERT_NE(physical, nullptr);
    InstancePtr graphite(physical->CreateAssetInstance("CorvexMaterial-141"));
    ASSERT_NE(graphite, nullptr);
    EXPECT_DOUBLE_EQ(structural(*graphite, L"structural_Young_modulus"), 11.7e9);

    IAssetLibrary* appearance = open("assetlibrary_advanced.tvrnlib");
    ASSERT_NE(appearance, nullptr);
    InstancePtr gold(appearance->CreateAssetInstance("Corvex-038"));
    ASSERT_NE(gold, nullptr);
    AssetColor f0;
    ASSERT_TRUE(gold->GetColorValue(L"metal_f0", f0));
    EXPECT_EQ(f0.r, 1.0F) << "measured 1.059, clamped";
    EXPECT_FLOAT_EQ(f0.g, 0.773F);
}

// The lint, run again on what the libraries hold: every shipped value lies in its category's
// plausible range, whatever path it took (source, correction or family value).
TEST_F(StandardContentTest, EveryShippedValueIsPlausibleForItsCategory)
{
    const std::pair<Kx::Content::EPhysicalProperty, const wchar_t*> properties[] = {
        {Kx::Content::EPhysicalProperty::eDensity, L"structural_Density"},
        {Kx::Content::EPhysicalProperty::eYoungsModulus, L"structural_Young_modulus"},
        {Kx::Content::EPhysicalProperty::ePoissonRatio, L"structural_Poisson_ratio"},
        {Kx::Content::EPhysicalProperty::eYieldStrength, L"structural_Minimum_yield_stress"},
        {Kx::Content::EPhysicalProperty::eTensileStrength, L"structural_Minimum_tensile_strength"},
        {Kx::Content::EPhysicalProperty::eThermalConductivity, L"structural_Thermal_conductivity"},
        {Kx::Content::EPhysicalProperty::eThermalExpansion, L"structural_Thermal_expansion_coefficient"},
        {Kx::Content::EPhysicalProperty::eSpecificHeat, L"structural_Specific_heat"},
    };
    IAssetLibrary* library = open("PhysicalMaterialAdvanced.tvrnlib");
    ASSERT_NE(library, nullptr);
    std::size_t checked = 0;
    for (const IAssetDefinition* definition : library->GetAssetDefinitions()) {
        SCOPED_TRACE(definition->GetMaterialId());
        InstancePtr material(library->CreateAssetInstance(definition));
        ASSERT_NE(material, nullptr);
        InstancePtr aspect(material->GetConnectedAsset(L"Structural"));
        ASSERT_NE(aspect, nullptr);
        const std::string category = telvarin::platform::core::toUTF8(definition->GetCategory());
        for (const auto& [property, name] : properties) {
            double value = 0.0;
            if (!aspect->GetDoubleValue(name, value)) {
                continue;
            }
            const Kx::Content::Range* range = Kx::Content::plausibleRange(category, property);
            ASSERT_NE(range, nullptr) << category;
            EXPECT_GE(value, range->minimum) << telvarin::platform::core::toUTF8(name);
            EXPECT_LE(value, range->maximum) << telvarin::platform::core::toUTF8(name);
            ++checked;
        }
        double yield = 0.0;
        double tensile = 0.0;
        if (aspect->GetDoubleValue(L"structural_Minimum_yield_stress", yield) &&
            aspect->GetDoubleValue(L"structural_Minimum_tensile_strength", tensile)) {
            EXPECT_LE(yield, tensile) << "a yield above the tensile strength is never shipped";
        }
    }
    EXPECT_GT(checked, 1000u);
}

// Corrected, withdrawn and family values each carry their origin and reference beside the value.
TEST_F(StandardContentTest, CorrectionsAndFamilyValuesNameTheirReference)
{
    EXPECT_NE(s_run->output.find("12 corrected, 17 withdrawn, 158 family values"), std::string::npos) << s_run->output;
    IAssetLibrary* library = open("PhysicalMaterialAdvanced.tvrnlib");
    ASSERT_NE(library, nullptr);
    const auto byName = [&](const std::wstring& name) -> InstancePtr {
        for (const IAssetDefinition* definition : library->GetAssetDefinitions()) {
            InstancePtr material(library->CreateAssetInstance(definition));
            if (material != nullptr && material->GetName("eng") == name) {
                return material;
            }
        }
        ADD_FAILURE() << telvarin::platform::core::toUTF8(name);
        return nullptr;
    };
    const auto origin = [](const IAssetInstance& aspect, const std::wstring& property) {
        std::wstring text;
        aspect.GetStringValue(property + L"_origin", text);
        return telvarin::platform::core::toUTF8(text);
    };

    InstancePtr stainless = byName(L"Stainless steel X5CrNi18-10 (EN 10088)");
    ASSERT_NE(stainless, nullptr);
    InstancePtr aspect(stainless->GetConnectedAsset(L"Structural"));
    EXPECT_DOUBLE_EQ(structural(*stainless, L"structural_Thermal_expansion_coefficient"), 16e-6);
    EXPECT_EQ(origin(*aspect, L"structural_Thermal_expansion_coefficient").rfind("corrected from 1.1e-05 1/K (EN 10088-1", 0), 0u);
    EXPECT_DOUBLE_EQ(structural(*stainless, L"structural_Density"), 7900.0) << "a value the data does not mark";
    EXPECT_DOUBLE_EQ(structural(*stainless, L"structural_Thermal_conductivity"), 15.0);
    EXPECT_EQ(origin(*aspect, L"structural_Thermal_conductivity").rfind("family value, austenitic", 0), 0u);
    InstancePtr thermal(stainless->GetConnectedAsset(L"Thermal"));
    ASSERT_NE(thermal, nullptr);
    EXPECT_FALSE(origin(*thermal, L"thermal_Specific_heat").empty());

    InstancePtr pp = byName(L"Polypropylene PP (generic)");
    ASSERT_NE(pp, nullptr);
    InstancePtr ppAspect(pp->GetConnectedAsset(L"Structural"));
    EXPECT_FALSE(ppAspect->HasProperty(L"structural_Minimum_tensile_strength"));
    EXPECT_EQ(origin(*ppAspect, L"structural_Minimum_tensile_strength").rfind("withdrawn; the source gives 7.97e+07 Pa", 0), 0u);

    InstancePtr steel = byName(L"Steel (generic)");
    ASSERT_NE(steel, nullptr);
    InstancePtr steelAspect(steel->GetConnectedAsset(L"Structural"));
    EXPECT_DOUBLE_EQ(structural(*steel, L"structural_Thermal_conductivity"), 50.0) << "the card's own figure wins";
    EXPECT_EQ(origin(*steelAspect, L"structural_Thermal_conductivity"), "");

    InstancePtr renamed = byName(L"Steel S355JR (EN 10025)");
    EXPECT_NE(renamed, nullptr) << "the grade name as the data corrects it";
}

TEST_F(StandardContentTest, AStaleCorrectionStopsTheBuild)
{
    KxTest::TempDir data;
    for (const char* file : {"appearance.csv", "corrections.csv", "family-values.csv"}) {
        std::filesystem::copy_file(std::filesystem::path(KX_CONTENT_DATA_DIR) / file, data / file);
    }
    std::string physical = KxTest::readText(std::filesystem::path(KX_CONTENT_DATA_DIR) / "physical.csv");
    const std::size_t graphite = physical.find("PM-OTHER-GRAPHITE,Graphite,Other,Carbon,1750,11700000,");
    ASSERT_NE(graphite, std::string::npos);
    physical.replace(physical.find("11700000,", graphite), 9, "11700000000,");
    std::ofstream(data / "physical.csv", std::ios::binary) << physical;

    const GeneratorRun run = generate(data.path(), data / "out");
    EXPECT_NE(run.status, 0);
    EXPECT_NE(run.output.find("lint error: PM-OTHER-GRAPHITE youngs_modulus_pa"), std::string::npos) << run.output;
    EXPECT_FALSE(std::filesystem::exists(data / "out" / "PhysicalMaterial.tvrnlib"));
}

TEST_F(StandardContentTest, AppearancesCoverEveryCorvexSchemaWithTexturesAndWood)
{
    for (const char* file : s_appearanceLibraries) {
        SCOPED_TRACE(file);
        IAssetLibrary* library = open(file);
        ASSERT_NE(library, nullptr);
        for (const wchar_t* schema : {L"CorvexOpaqueSchema", L"CorvexMetalSchema", L"CorvexLayeredSchema",
                 L"CorvexTransparentSchema"}) {
            EXPECT_FALSE(library->SearchBySchema(schema).IsEmpty());
        }
        auto wood = library->SearchBySchema(L"corvexwoodschema");
        EXPECT_EQ(wood.GetCount(), 5u);
        for (; !wood.IsDone(); wood.Next()) {
            InstancePtr preset(wood.GetAssetInstance());
            ASSERT_NE(preset, nullptr);
            double ring = 0;
            EXPECT_TRUE(preset->GetDoubleValue(L"wood_ring_thickness", ring));
            WideString source;
            EXPECT_TRUE(preset->GetStringValue(L"asset_source", source));
            EXPECT_NE(source.find(L"not measured"), WideString::npos);
        }
        std::size_t textured = 0;
        for (const IAssetDefinition* definition : library->SearchBySchema(L"CorvexOpaqueSchema")) {
            InstancePtr preset(library->CreateAssetInstance(definition));
            InstancePtr texture(preset->GetConnectedAsset(L"opaque_albedo"));
            if (!texture) {
                continue;
            }
            ++textured;
            EXPECT_EQ(texture->GetSchemaName(), L"texture");
            WideString bitmap;
            ASSERT_TRUE(texture->GetStringValue(L"unifiedbitmap_Bitmap", bitmap));
            std::vector<std::uint8_t> png;
            ASSERT_TRUE(library->ReadEmbeddedResource(bitmap, png));
            ASSERT_GT(png.size(), 8u);
            EXPECT_EQ(std::string(png.begin() + 1, png.begin() + 4), "PNG");
        }
        EXPECT_EQ(textured, 3u);
    }
}

TEST_F(StandardContentTest, ContentUrisReachTheStandardLibraries)
{
    KxTest::ScopedEnvironment content("KX_CONTENT_DIR", s_dir->path());
    for (const char* path : {"physical", "appearance", "advancedphysical", "advancedappearance"}) {
        SCOPED_TRACE(path);
        const std::wstring uri = L"netfs://LOCAL:/slib/content/" + telvarin::platform::core::toWide(path);
        AssetError error;
        IAssetLibrary* library = m_manager->OpenAssetLibrary(uri, &error);
        ASSERT_NE(library, nullptr) << error.message;
        m_open.push_back(library);
        EXPECT_EQ(library->GetLocation(), uri);
        EXPECT_GT(library->GetAssetCount(), 10u);
    }
}

// The generator runs on data someone edits: broken data must stop the build with a message that
// names the problem, while doubtful but readable values only warn.
TEST_F(StandardContentTest, BrokenDataStopsTheGenerator)
{
    struct Case {
        const char* name;
        const char* file;
        const char* from;
        const char* to;
        bool fails;
        const char* message;
    };
    const Case cases[] = {
        {"unknown category", "physical.csv", ",Other,Carbon,", ",Mineral,Carbon,", true, "no plausible ranges for category"},
        {"malformed number", "physical.csv", ",1750,", ",17five0,", true, "physical.csv:"},
        {"missing field", "physical.csv", ",1750,", ",", true, "fields"},
        {"missing column", "appearance.csv", "specular_r,", "specular_red,", true, "no column specular_r"},
        {"untranslated name", "appearance.csv", ",Gold,", ",Goldish,", true, "no German name for \"Goldish\""},
        {"unknown kind", "appearance.csv", ",Metal,metal,", ",Metal,metallic,", true, "unknown kind"},
        {"negative density", "physical.csv", ",Other,Carbon,1750,", ",Other,Carbon,-1750,", false,
            "PM-OTHER-GRAPHITE density_kg_m3 = -1750: outside [500, 23000] kg/m^3 for Other -> kept"},
        {"dark colour below 0", "appearance.csv", "Charcoal,Organic,opaque,0.02,", "Charcoal,Organic,opaque,-0.02,", false,
            "AP-ORGANIC-CHARCOAL base_r = -0.02: a colour component outside [0, 1] -> clamped to 0"},
        {"doubtful value without a correction", "physical.csv", "Aluminum-Generic.FCMat,src/Mod/Material/Resources/Materials/Appearance/Aluminum.FCMat,",
            "Aluminum-Generic.FCMat,src/Mod/Material/Resources/Materials/Appearance/Aluminum.FCMat,density_kg_m3", true,
            "PM-AL-GENERIC density_kg_m3: a doubtful value without a correction"},
        {"doubtful mark on no column", "physical.csv", "Aluminum-Generic.FCMat,src/Mod/Material/Resources/Materials/Appearance/Aluminum.FCMat,",
            "Aluminum-Generic.FCMat,src/Mod/Material/Resources/Materials/Appearance/Aluminum.FCMat,colour", true,
            "doubtful_columns names \"colour\""},
        {"correction for a material no longer in the data", "corrections.csv", "PM-SS-X2CRNIN24-4,", "PM-SS-X2CRNIN99-4,",
            true, "PM-SS-X2CRNIN99-4 thermal_expansion_1_k: the data has no such material"},
        {"correction for a value the data changed", "physical.csv", "Stainless steel X5CrNiMo17-12-2 (EN 10088),Metal,Stainless steel,7800,180000000000,",
            "Stainless steel X5CrNiMo17-12-2 (EN 10088),Metal,Stainless steel,7800,190000000000,", true,
            "PM-SS-X5CRNIMO17-12-2 youngs_modulus_pa: the correction expects 1.8e+11 but the data holds 1.9e+11"},
        {"corrected value out of range", "corrections.csv", "0.000011,0.000013,", "0.000011,0.013,", true,
            "PM-SS-X2CRNIN24-4 thermal_expansion_1_k: the value 0.013 put in its place is outside"},
        {"correction without its reference", "corrections.csv", ",0.000013,EN 10088-1:2014 Annex A: austenitic-ferritic (duplex) grade 1.4362 mean expansion 20-100 °C 13.0e-6 /K",
            ",0.000013,", true, "corrections.csv:6: every value needs its reference"},
        {"family without members", "family-values.csv", "Steel;Cast steel;Reinforcing steel,thermal_conductivity",
            "Steels,thermal_conductivity", true, "family value carbon steel thermal_conductivity_w_mk: no material of the data is a member"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        KxTest::TempDir data;
        for (const char* file : s_dataFiles) {
            std::string text = KxTest::readText(std::filesystem::path(KX_CONTENT_DATA_DIR) / file);
            if (std::string_view(file) == c.file) {
                const std::size_t at = text.find(c.from);
                ASSERT_NE(at, std::string::npos);
                text.replace(at, std::strlen(c.from), c.to);
            }
            std::ofstream(data / file, std::ios::binary) << text;
        }
        const GeneratorRun run = generate(data.path(), data / "out");
        EXPECT_EQ(run.status != 0, c.fails) << run.output;
        EXPECT_NE(run.output.find(c.message), std::string::npos) << run.output;
        EXPECT_EQ(std::filesystem::exists(data / "out" / "PhysicalMaterial.tvrnlib"), !c.fails);
    }
}

// Thumbnails are swatches in sRGB: the neutral default (linear 0.18) must show as 8-bit 118.
TEST_F(StandardContentTest, ThumbnailsCarryTheirColourInSrgb)
{
    IAssetLibrary* library = open("assetlibrary_advanced.tvrnlib");
    ASSERT_NE(library, nullptr);
    InstancePtr grey(library->CreateAssetInstance("Corvex-256"));
    ASSERT_NE(grey, nullptr);
    std::vector<std::uint8_t> png;
    ASSERT_TRUE(library->ReadEmbeddedResource(grey->GetThumbnailImageURI(), png));
    const auto bigEndian = [&](std::size_t at) {
        return (std::uint32_t{png[at]} << 24) | (std::uint32_t{png[at + 1]} << 16) | (std::uint32_t{png[at + 2]} << 8) |
               std::uint32_t{png[at + 3]};
    };
    ASSERT_EQ(std::string(png.begin() + 12, png.begin() + 16), "IHDR");
    EXPECT_EQ(bigEndian(16), 16u);
    EXPECT_EQ(bigEndian(20), 16u);
    // Every chunk's checksum holds; the image data inflate to 16 rows of a filter byte and 16 pixels.
    std::vector<std::uint8_t> data;
    for (std::size_t at = 8; at + 12 <= png.size(); at += 12 + bigEndian(at)) {
        const std::uint32_t length = bigEndian(at);
        ASSERT_LE(at + 12 + length, png.size());
        const uLong crc = crc32(crc32(0L, Z_NULL, 0), png.data() + at + 4, length + 4);
        EXPECT_EQ(bigEndian(at + 8 + length), crc) << std::string(png.begin() + at + 4, png.begin() + at + 8);
        if (std::string(png.begin() + at + 4, png.begin() + at + 8) == "IDAT")
            data.insert(data.end(), png.begin() + at + 8, png.begin() + at + 8 + length);
    }
    std::vector<std::uint8_t> rows(16 * (1 + 16 * 3));
    uLongf size = rows.size();
    ASSERT_EQ(uncompress(rows.data(), &size, data.data(), data.size()), Z_OK);
    ASSERT_EQ(size, rows.size());
    EXPECT_EQ(rows[0], 0) << "no filter";
    EXPECT_EQ(rows[1], 118);
    EXPECT_EQ(rows[2], 118);
    EXPECT_EQ(rows[3], 118);
}

} // namespace
