#include "SampleLibrary.h"

#include <assets/IAssetDefinition.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace {

using namespace telvarin::platform::assets;
using AssetTest::InstancePtr;

class AssetInstanceTest : public ::testing::Test {
protected:
    InstancePtr make(const WideString& schema = L"CorvexOpaqueSchema")
    {
        return InstancePtr(m_manager->CreateAssetInstance(schema, "asset"));
    }

    std::unique_ptr<IAssetLibraryManager> m_manager = CreateAssetLibraryManager();
};

// Each kind is set, read back through its own getter, refused by the getter of every other kind
// and refused by another kind's setter once it exists.
TEST_F(AssetInstanceTest, EveryKindKeepsItsTypeAndRefusesOthers)
{
    struct Kind {
        const char* name;
        EPropertyType type;
        std::function<bool(IAssetInstance&)> set;
        std::function<bool(const IAssetInstance&)> readsBack;
    };
    const std::vector<Kind> kinds{
        {"string", EPropertyType::eString, [](IAssetInstance& i) { return i.SetStringValue(L"p", L"\u00c4x"); },
            [](const IAssetInstance& i) { WideString v; return i.GetStringValue(L"p", v) && v == L"\u00c4x"; }},
        {"boolean", EPropertyType::eBoolean, [](IAssetInstance& i) { return i.SetBoolValue(L"p", true); },
            [](const IAssetInstance& i) { bool v = false; return i.GetBoolValue(L"p", v) && v; }},
        {"integer", EPropertyType::eInteger, [](IAssetInstance& i) { return i.SetIntegerValue(L"p", INT32_MIN); },
            [](const IAssetInstance& i) { int v = 0; return i.GetIntegerValue(L"p", v) && v == INT32_MIN; }},
        {"double", EPropertyType::eDouble, [](IAssetInstance& i) { return i.SetDoubleValue(L"p", -0.1); },
            [](const IAssetInstance& i) { double v = 0; return i.GetDoubleValue(L"p", v) && v == -0.1; }},
        {"colour", EPropertyType::eColor, [](IAssetInstance& i) { return i.SetColorValue(L"p", {1.059F, 0, 0.5F, 0.25F}); },
            [](const IAssetInstance& i) { AssetColor v; return i.GetColorValue(L"p", v) && v == AssetColor{1.059F, 0, 0.5F, 0.25F}; }},
        {"integer array", EPropertyType::eIntegerArray, [](IAssetInstance& i) { return i.SetIntegerArrayValue(L"p", {1, -2}); },
            [](const IAssetInstance& i) { std::vector<int> v; return i.GetIntegerArrayValue(L"p", v) && v == std::vector<int>{1, -2}; }},
        {"double array", EPropertyType::eDoubleArray, [](IAssetInstance& i) { return i.SetDoubleArrayValue(L"p", {}); },
            [](const IAssetInstance& i) { std::vector<double> v{9}; return i.GetDoubleArrayValue(L"p", v) && v.empty(); }},
        {"choice", EPropertyType::eChoice, [](IAssetInstance& i) { return i.SetChoices(L"p", {{4, L"a"}, {9, L"b"}}) && i.SetChoiceValue(L"p", 9); },
            [](const IAssetInstance& i) { int v = 0; return i.GetChoiceValue(L"p", v) && v == 9; }},
    };
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        InstancePtr instance = make();
        ASSERT_TRUE(kind.set(*instance));
        EXPECT_EQ(instance->GetPropertyType(L"p"), kind.type);
        EXPECT_TRUE(kind.readsBack(*instance));
        for (const Kind& other : kinds) {
            if (other.type != kind.type) {
                SCOPED_TRACE(other.name);
                EXPECT_FALSE(other.readsBack(*instance));
                EXPECT_FALSE(other.set(*instance));
            }
        }
        EXPECT_TRUE(kind.readsBack(*instance)) << "a refused setter changed the value";
    }
}

TEST_F(AssetInstanceTest, ConstraintsBoundEverySetter)
{
    InstancePtr instance = make();
    ASSERT_TRUE(instance->SetDoubleValue(L"d", 1.0));
    ASSERT_TRUE(instance->SetIntegerValue(L"i", 1));
    ASSERT_TRUE(instance->SetDoubleArrayValue(L"a", {1.0}));
    const NumericConstraint bounds{true, 0.0, true, 2.0, 0.5, true};
    for (const wchar_t* name : {L"d", L"i", L"a"}) {
        ASSERT_TRUE(instance->SetNumericConstraint(name, bounds));
    }
    struct Case {
        const char* name;
        double value;
        bool admitted;
    };
    const Case cases[] = {{"minimum", 0.0, true}, {"maximum", 2.0, true}, {"below", -1e-9, false},
        {"above", 2.000001, false}, {"NaN", std::nan(""), false}, {"infinity", INFINITY, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(instance->SetDoubleValue(L"d", c.value), c.admitted);
        EXPECT_EQ(instance->SetDoubleArrayValue(L"a", {1.0, c.value}), c.admitted);
        if (std::isfinite(c.value) && c.value == std::floor(c.value)) {
            EXPECT_EQ(instance->SetIntegerValue(L"i", static_cast<int>(c.value)), c.admitted);
        }
    }
    double value = 0;
    ASSERT_TRUE(instance->GetDoubleValue(L"d", value));
    EXPECT_EQ(value, 2.0) << "the last admitted value stays";
    NumericConstraint read;
    ASSERT_TRUE(instance->GetNumericConstraint(L"d", read));
    EXPECT_EQ(read, bounds);

    EXPECT_FALSE(instance->SetNumericConstraint(L"d", {true, 3.0, true, 2.0, 0, false})) << "minimum above maximum";
    ASSERT_TRUE(instance->SetStringValue(L"s", L"x"));
    EXPECT_FALSE(instance->SetNumericConstraint(L"s", bounds)) << "strings take no bounds";
    EXPECT_FALSE(instance->SetNumericConstraint(L"missing", bounds));
    EXPECT_TRUE(instance->ClearNumericConstraint(L"d"));
    EXPECT_TRUE(instance->SetDoubleValue(L"d", -5.0));
    EXPECT_FALSE(instance->SetDoubleValue(L"d", std::nan(""))) << "NaN is never a value";
}

TEST_F(AssetInstanceTest, ChoicesRefuseUnlistedValuesAndBadLists)
{
    InstancePtr instance = make();
    EXPECT_FALSE(instance->SetChoiceValue(L"c", 0)) << "a choice needs its list first";
    EXPECT_FALSE(instance->SetChoices(L"c", {}));
    EXPECT_FALSE(instance->SetChoices(L"c", {{1, L"a"}, {1, L"b"}})) << "repeated value";
    EXPECT_FALSE(instance->SetChoices(L"c", {{1, L"two\nlines"}}));
    ASSERT_TRUE(instance->SetChoices(L"c", {{1, L"a"}, {2, L"b"}}));
    EXPECT_FALSE(instance->SetChoiceValue(L"c", 3));
    ASSERT_TRUE(instance->SetChoiceValue(L"c", 2));
    ASSERT_TRUE(instance->SetChoices(L"c", {{5, L"e"}, {1, L"a"}}));
    int value = 0;
    ASSERT_TRUE(instance->GetChoiceValue(L"c", value));
    EXPECT_EQ(value, 5) << "a value dropped from the list falls back to the first item";
}

TEST_F(AssetInstanceTest, ConnectionsAreCountedSharedAndNeverCyclic)
{
    InstancePtr parent = make();
    InstancePtr child = make(L"texture");
    InstancePtr grandchild = make(L"texture");
    ASSERT_TRUE(child->SetConnectedAsset(L"source", grandchild.get()));
    ASSERT_TRUE(parent->SetColorValue(L"opaque_albedo", {}));
    ASSERT_TRUE(parent->AddConnectedAsset(L"opaque_albedo", child.get()));
    ASSERT_TRUE(parent->AddConnectedAsset(L"layers", child.get()));
    EXPECT_EQ(child->GetReferenceCount(), 3);
    EXPECT_EQ(parent->GetPropertyType(L"opaque_albedo"), EPropertyType::eColor) << "connecting keeps the colour";
    EXPECT_EQ(parent->GetPropertyType(L"layers"), EPropertyType::eReference);

    EXPECT_FALSE(grandchild->SetConnectedAsset(L"back", parent.get())) << "a cycle through two levels";
    EXPECT_FALSE(parent->AddConnectedAsset(L"self", parent.get()));
    EXPECT_FALSE(parent->AddConnectedAsset(L"none", nullptr));
    EXPECT_FALSE(parent->HasProperty(L"self"));

    InstancePtr connected(parent->GetConnectedAsset(L"layers"));
    EXPECT_EQ(connected.get(), child.get());
    EXPECT_EQ(child->GetReferenceCount(), 4) << "the getter hands out a reference";
    EXPECT_EQ(parent->GetConnectedAsset(L"layers", 1), nullptr);
    EXPECT_EQ(parent->GetConnectedAsset(L"layers", -1), nullptr);
    connected.reset();

    ASSERT_TRUE(parent->DisconnectAssets(L"opaque_albedo"));
    ASSERT_TRUE(parent->DisconnectAssets(L"layers"));
    EXPECT_TRUE(parent->HasProperty(L"opaque_albedo"));
    EXPECT_FALSE(parent->HasProperty(L"layers")) << "a reference property goes with its last connection";
    EXPECT_EQ(child->GetReferenceCount(), 1);
}

TEST_F(AssetInstanceTest, NamesFallBackToEnglishOnly)
{
    InstancePtr instance = make();
    EXPECT_EQ(instance->GetName("deu"), L"");
    instance->SetName("eng", L"Oak");
    EXPECT_EQ(instance->GetName("deu"), L"Oak");
    instance->SetName("deu", L"Eiche");
    EXPECT_EQ(instance->GetName("deu"), L"Eiche");
    EXPECT_EQ(instance->GetName("fra"), L"Oak");
    InstancePtr germanOnly = make();
    germanOnly->SetName("deu", L"Eiche");
    EXPECT_EQ(germanOnly->GetName("fra"), L"");
}

TEST_F(AssetInstanceTest, ClonesAreDeepAndKeepSharing)
{
    InstancePtr steel = AssetTest::makeSteel(*m_manager);
    InstancePtr copy(steel->Clone());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->GetReferenceCount(), 1);
    EXPECT_EQ(copy->GetAssetId(), "steel");
    EXPECT_EQ(copy->GetName("deu"), L"Stahl");
    EXPECT_TRUE(copy->IsEqual(steel.get()));

    InstancePtr structural(copy->GetConnectedAsset(L"Structural"));
    InstancePtr aspect(copy->GetConnectedAsset(L"physmat_aspects"));
    InstancePtr original(steel->GetConnectedAsset(L"Structural"));
    EXPECT_EQ(structural.get(), aspect.get()) << "one aspect connected twice stays one asset";
    EXPECT_NE(structural.get(), original.get()) << "connected assets are copied";

    ASSERT_TRUE(structural->SetDoubleValue(L"structural_Density", 7000.0));
    double density = 0;
    ASSERT_TRUE(original->GetDoubleValue(L"structural_Density", density));
    EXPECT_EQ(density, 7850.0);
    EXPECT_FALSE(copy->IsEqual(steel.get())) << "equality looks into connected assets";
    copy->SetName("eng", L"renamed");
    ASSERT_TRUE(structural->SetDoubleValue(L"structural_Density", 7850.0));
    EXPECT_TRUE(copy->IsEqual(steel.get())) << "names are not compared";
}

} // namespace
