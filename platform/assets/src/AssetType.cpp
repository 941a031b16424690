#include "assets/AssetType.h"

#include "assets/IAssetDefinition.h"

#include <array>

namespace telvarin::platform::assets {

namespace {

struct SchemaType {
    std::wstring_view schema;
    std::wstring_view type;
};

// Schemas whose type is not told by the "...Schema" rule, checked first.
constexpr std::array s_namedSchemas{
    SchemaType{L"physicalmaterial", kPhysicalMaterialType},
    SchemaType{L"environment", L"environment"},
    SchemaType{L"CorvexIBLSchema", L"environment"},
    SchemaType{L"Decal", L"decal"},
    SchemaType{L"DecalAppearance", L"decal"},
    SchemaType{L"DecalAppearanceSchema", L"decal"},
    SchemaType{L"texture", L"texture"},
    SchemaType{L"structural", L"aspect"},
    SchemaType{L"thermal", L"aspect"},
    SchemaType{L"fatigue", L"aspect"},
};

bool endsWithSchema(std::wstring_view schema)
{
    constexpr std::wstring_view suffix = L"Schema";
    return schema.size() > suffix.size() && SchemaEquals(schema.substr(schema.size() - suffix.size()), suffix);
}

} // namespace

std::wstring_view AssetTypeOfSchema(std::wstring_view schema)
{
    for (const SchemaType& named : s_namedSchemas) {
        if (SchemaEquals(schema, named.schema)) {
            return named.type;
        }
    }
    return endsWithSchema(schema) ? kMaterialAppearanceType : std::wstring_view{};
}

bool SchemaIsOfType(std::wstring_view schema, std::wstring_view typeOrSchema)
{
    if (SchemaEquals(schema, typeOrSchema)) {
        return true;
    }
    const std::wstring_view type = AssetTypeOfSchema(schema);
    return !type.empty() && SchemaEquals(type, typeOrSchema);
}

} // namespace telvarin::platform::assets
