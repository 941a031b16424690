#include <assets/AssetType.h>

#include <gtest/gtest.h>

#include <string>

using namespace telvarin::platform::assets;

namespace {

struct TypeCase {
    const char* name;
    std::wstring_view schema;
    std::wstring_view type;
};

} // namespace

TEST(AssetType, EachSchemaHasTheTypeItsAssetsAreUsedAs)
{
    const TypeCase cases[] = {
        {"opaque appearance", L"CorvexOpaqueSchema", kMaterialAppearanceType},
        {"older appearance", L"MetalSchema", kMaterialAppearanceType},
        {"appearance in any case", L"corvexWOODschema", kMaterialAppearanceType},
        {"physical material", L"physicalmaterial", kPhysicalMaterialType},
        {"physical material upper case", L"PhysicalMaterial", kPhysicalMaterialType},
        {"environment is no appearance", L"CorvexIBLSchema", L"environment"},
        {"decal is no appearance", L"DecalAppearanceSchema", L"decal"},
        {"texture", L"texture", L"texture"},
        {"aspect", L"structural", L"aspect"},
        {"the bare suffix is no schema", L"Schema", L""},
        {"unknown", L"somethingelse", L""},
        {"empty", L"", L""},
    };
    for (const TypeCase& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(std::wstring(AssetTypeOfSchema(c.schema)), std::wstring(c.type));
    }
}

TEST(AssetType, ASchemaIsOfItsOwnNameAndOfItsType)
{
    EXPECT_TRUE(SchemaIsOfType(L"CorvexOpaqueSchema", L"materialappearance"));
    EXPECT_TRUE(SchemaIsOfType(L"CorvexOpaqueSchema", L"corvexopaqueschema"));
    EXPECT_TRUE(SchemaIsOfType(L"physicalmaterial", L"physicalmaterial"));
    EXPECT_FALSE(SchemaIsOfType(L"physicalmaterial", L"materialappearance"));
    EXPECT_FALSE(SchemaIsOfType(L"CorvexOpaqueSchema", L"physicalmaterial"));
    EXPECT_FALSE(SchemaIsOfType(L"CorvexIBLSchema", L"materialappearance"));
    EXPECT_FALSE(SchemaIsOfType(L"CorvexOpaqueSchema", L"CorvexMetalSchema"));
    EXPECT_FALSE(SchemaIsOfType(L"somethingelse", L""));
}
