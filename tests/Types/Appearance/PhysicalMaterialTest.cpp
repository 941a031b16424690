// Physical materials: where a value finds its asset, the properties it caches (from 8 threads at
// once), and the deliberate asymmetry of equality and ordering.

#include "MaterialTestSupport.h"

#include <Types/Appearance/PhysicalMaterial.h>

#include <base/Assert.h>

#include <thread>
#include <vector>

namespace Kx {

// Reaches the value's private asset writers.
class MaterialValueAccess {
public:
    static bool setDouble(PhysicalMaterial::IAssetInstance* instance, const std::wstring& name, double value, double scale)
    {
        return PhysicalMaterial::setPropertyValueDouble(instance, name, &value, scale);
    }
    static bool getDouble(PhysicalMaterial::IAssetInstance* instance, const std::wstring& name, double& value)
    {
        return PhysicalMaterial::getPropertyValueDouble(instance, name, value);
    }
};

namespace {

using namespace MaterialTest;

bool reported(const ScopedAssertionCapture& capture, const std::string& condition)
{
    for (const AssertionReport& report : capture.reports()) {
        if (report.condition == condition) {
            return true;
        }
    }
    return false;
}

TEST(PhysicalMaterial, ResolvesFromItsLibraryThenTheAdvancedThenTheStandardLibrary)
{
    AmbrelManager& libraries = manager();
    const std::wstring standardId = firstId(libraries.GetPhysicalMaterialsByLibrary(libraries.GetPhysicalLibraryID()));
    const std::wstring advancedOnly = advancedOnlyPhysicalId();
    ASSERT_FALSE(standardId.empty());
    ASSERT_FALSE(advancedOnly.empty()) << "the advanced library holds more than the standard one";

    struct Case {
        const char* name;
        std::wstring materialId;
        std::wstring libraryId;
        std::wstring expectedLibrary; // empty: nothing resolves
    };
    const Case cases[] = {
        {"own library", standardId, libraries.GetPhysicalLibraryID(), libraries.GetPhysicalLibraryID()},
        {"advanced-only material under another library's id", advancedOnly, libraries.GetVisualLibraryID(),
            libraries.GetAdvancedPhysicalLibraryID()},
        {"advanced-only material without a library", advancedOnly, L"", libraries.GetAdvancedPhysicalLibraryID()},
        {"standard material under an unknown library: the advanced library holds it too", standardId,
            L"00000000-0000-0000-0000-000000000000", libraries.GetAdvancedPhysicalLibraryID()},
        {"unknown material", L"PM-NO-SUCH-MATERIAL", libraries.GetPhysicalLibraryID(), L""},
        {"no identity", L"", L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PhysicalMaterial value(c.materialId, c.libraryId);
        IAssetInstance* instance = value.assetInstance();
        EXPECT_EQ(libraryOf(instance), c.expectedLibrary);
        EXPECT_EQ(value.hasDefinition(), !c.expectedLibrary.empty());
        if (instance != nullptr) {
            EXPECT_EQ(value.assetInstance(), instance) << "resolved once, then cached";
            EXPECT_EQ(value.ambrelMaterialID(), c.materialId);
        }
    }
}

TEST(PhysicalMaterial, PropertiesAreReadOnceFromTheStructuralAspectAndSettersOnlyCache)
{
    AmbrelManager& libraries = manager();
    struct Property {
        const wchar_t* name;
        double (PhysicalMaterial::*get)() const;
    };
    const Property properties[] = {
        {L"structural_Density", &PhysicalMaterial::density},
        {L"structural_Young_modulus", &PhysicalMaterial::youngsModulus},
        {L"structural_Poisson_ratio", &PhysicalMaterial::poissonsRatio},
        {L"structural_Minimum_yield_stress", &PhysicalMaterial::yieldStrength},
        {L"structural_Minimum_tensile_strength", &PhysicalMaterial::ultimateTensileStrength},
        {L"structural_Thermal_conductivity", &PhysicalMaterial::thermalConductivity},
        {L"structural_Thermal_expansion_coefficient", &PhysicalMaterial::linearExpansion},
        {L"structural_Specific_heat", &PhysicalMaterial::specificHeat},
    };
    // Several materials, so that properties a card does not give (read as the -1 mark) come up too.
    bool sawMissing = false;
    for (std::size_t index = 0; index < 6; ++index) {
        PhysicalMaterial material(standardPhysicalId(index), libraries.GetPhysicalLibraryID());
        ASSERT_NE(material.assetInstance(), nullptr);
        for (const Property& property : properties) {
            SCOPED_TRACE(std::wstring(material.ambrelMaterialID()) + L" " + property.name);
            const double stored = storedStructural(material.assetInstance(), property.name);
            sawMissing = sawMissing || stored == -1.0;
            EXPECT_DOUBLE_EQ((material.*property.get)(), stored);
        }
    }
    EXPECT_TRUE(sawMissing) << "the content has materials without some properties";

    PhysicalMaterial material(standardPhysicalId(), libraries.GetPhysicalLibraryID());
    const double density = storedStructural(material.assetInstance(), L"structural_Density");
    material.density(1234.5);
    EXPECT_DOUBLE_EQ(material.density(), 1234.5);
    EXPECT_DOUBLE_EQ(storedStructural(material.assetInstance(), L"structural_Density"), density)
        << "the setter changes the cache, never the asset";
    material.setDefaultConfig();
    EXPECT_DOUBLE_EQ(material.m_cached[0].load(), -1.0);
    EXPECT_DOUBLE_EQ(material.density(), density) << "after the reset the asset is read again";
}

TEST(PhysicalMaterial, EightReadersOfOneValueSeeTheSameProperties)
{
    AmbrelManager& libraries = manager();
    const PhysicalMaterial reference(standardPhysicalId(1), libraries.GetPhysicalLibraryID());
    const std::vector<double> expected{reference.density(), reference.youngsModulus(), reference.poissonsRatio(),
        reference.yieldStrength(), reference.ultimateTensileStrength(), reference.thermalConductivity(),
        reference.linearExpansion(), reference.specificHeat()};

    for (int round = 0; round < 20; ++round) {
        // A fresh value each round, so the threads race on the first, lazy read.
        const PhysicalMaterial shared(standardPhysicalId(1), libraries.GetPhysicalLibraryID());
        std::vector<std::vector<double>> seen(8);
        std::vector<std::wstring> names(8);
        std::vector<std::thread> readers;
        for (std::size_t t = 0; t < 8; ++t) {
            readers.emplace_back([&, t] {
                seen[t] = {shared.density(), shared.youngsModulus(), shared.poissonsRatio(), shared.yieldStrength(),
                    shared.ultimateTensileStrength(), shared.thermalConductivity(), shared.linearExpansion(),
                    shared.specificHeat()};
                names[t] = shared.name();
            });
        }
        for (std::thread& reader : readers) {
            reader.join();
        }
        for (std::size_t t = 0; t < 8; ++t) {
            SCOPED_TRACE(t);
            EXPECT_EQ(seen[t], expected);
            EXPECT_EQ(names[t], reference.name());
        }
    }
}

TEST(PhysicalMaterial, SpecificHeatOrdersButDoesNotCompare)
{
    struct Case {
        const char* name;
        void (*change)(PhysicalMaterial&);
        bool equal;
        bool less; // first < second
    };
    const Case cases[] = {
        {"only specific heat differs", [](PhysicalMaterial& m) { m.specificHeat(901.0); }, true, true},
        {"density within 1e-6", [](PhysicalMaterial& m) { m.density(1000.0000005); }, true, false},
        {"density beyond 1e-6", [](PhysicalMaterial& m) { m.density(1000.00001); }, false, true},
        {"linear expansion differs", [](PhysicalMaterial& m) { m.linearExpansion(3e-5); }, false, true},
        {"library id differs", [](PhysicalMaterial& m) { m.m_libraryId = L"other"; }, false, false},
        {"name differs", [](PhysicalMaterial& m) { m.name(L"Zinc"); }, false, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        // No material id: neither value resolves, so they compare by identity and cached values.
        PhysicalMaterial first;
        first.name(L"Custom");
        first.density(1000.0);
        first.youngsModulus(1.0);
        first.poissonsRatio(0.3);
        first.yieldStrength(2.0);
        first.ultimateTensileStrength(3.0);
        first.thermalConductivity(4.0);
        first.linearExpansion(2e-5);
        first.specificHeat(900.0);
        PhysicalMaterial second(first);
        c.change(second);
        EXPECT_EQ(first == second, c.equal);
        EXPECT_EQ(first != second, !c.equal);
        EXPECT_EQ(first < second, c.less);
        if (c.equal && c.less) {
            EXPECT_FALSE(second < first);
        }
    }
}

TEST(PhysicalMaterial, AssertionsReportAndCarryOn)
{
    AmbrelManager& libraries = manager();
    PhysicalMaterial steel(standardPhysicalId(), libraries.GetPhysicalLibraryID());
    const double density = storedStructural(steel.assetInstance(), L"structural_Density");
    ASSERT_GT(density, 0.0);
    InstancePtr structural(libraries.GetConnectedAssetInstance(steel.assetInstance(), PhysicalMaterial::StructuralAspect));
    ASSERT_NE(structural, nullptr);
    InstancePtr copy(structural->Clone());
    for (const double scale : {0.0, -1.0}) {
        SCOPED_TRACE(scale);
        ScopedAssertionCapture capture;
        EXPECT_FALSE(MaterialValueAccess::setDouble(copy.get(), L"structural_Density", 5.0, scale));
        EXPECT_TRUE(reported(capture, "scaleConversion > 0.0"));
        double unchanged = 0.0;
        EXPECT_TRUE(copy->GetDoubleValue(L"structural_Density", unchanged));
        EXPECT_DOUBLE_EQ(unchanged, density);
    }
    EXPECT_TRUE(MaterialValueAccess::setDouble(copy.get(), L"structural_Density", 2.0 * density + 2.0, 2.0));
    double halved = 0.0;
    EXPECT_TRUE(copy->GetDoubleValue(L"structural_Density", halved));
    EXPECT_DOUBLE_EQ(halved, density + 1.0) << "the value is divided by the scale conversion";

    ScopedAssertionCapture capture;
    EXPECT_FALSE(PhysicalMaterial::matches(std::vector<double>{1.0, 2.0}, std::vector<double>{1.0}));
    EXPECT_TRUE(reported(capture, "iter2 != prop2.end()"));
    EXPECT_TRUE(PhysicalMaterial::matches(std::vector<double>{1.0}, std::vector<double>{1.0 + 5e-7, 9.0}))
        << "only the first list is walked";
    EXPECT_FALSE(PhysicalMaterial::matches(std::map<std::wstring, double>{{L"a", 1.0}}, {{L"b", 1.0}}));
    EXPECT_TRUE(reported(capture, "iter2 != map2.end()"));
}

TEST(PhysicalMaterial, IdentityAndNames)
{
    AmbrelManager& libraries = manager();
    PhysicalMaterial unnamed(standardPhysicalId(), libraries.GetPhysicalLibraryID());
    const std::wstring libraryName = libraries.GetUIName(unnamed.assetInstance());
    ASSERT_FALSE(libraryName.empty());
    EXPECT_TRUE(unnamed.safeName().empty());
    EXPECT_EQ(unnamed.name(), libraryName) << "the asset's name fills the fallback";
    EXPECT_EQ(unnamed.safeName(), libraryName);
    EXPECT_TRUE(unnamed.hasIdentity());

    PhysicalMaterial nothing;
    EXPECT_EQ(nothing.name(), L"Unknown");
    EXPECT_FALSE(nothing.hasIdentity());
    EXPECT_EQ(nothing.assetInstance(), nullptr);

    PhysicalMaterial copy(unnamed);
    EXPECT_EQ(copy.assetInstance(), unnamed.assetInstance());
    EXPECT_NE(copy.instanceNumber(), unnamed.instanceNumber());
    EXPECT_TRUE(copy.clearIdentity());
    EXPECT_EQ(copy.assetInstance(), nullptr);
    EXPECT_TRUE(copy.ambrelMaterialID().empty());
    EXPECT_NE(unnamed.assetInstance(), nullptr) << "the original keeps its asset";

    copy.setPostMigrationIdentity(standardPhysicalId(1), libraries.GetPhysicalLibraryID());
    EXPECT_EQ(copy.assetInstance(), PhysicalMaterial(standardPhysicalId(1), libraries.GetPhysicalLibraryID()).assetInstance());
}

} // namespace
} // namespace Kx
