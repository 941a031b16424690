#pragma once

#include "assets/AssetTypes.h"

#include <string_view>

namespace telvarin::platform::assets {

// The identity of a preset in a library: what an instance of it was made from. Definitions are
// immutable; one stays valid while its library is open or an instance made from it is alive.
class IAssetDefinition {
public:
    virtual ~IAssetDefinition() = default;

    // The library the preset belongs to (for presets read back from a document: the library it
    // came from).
    [[nodiscard]] virtual const WideString& GetLibraryId() const = 0;
    [[nodiscard]] virtual const UTF8String& GetMaterialId() const = 0;
    // Empty for the usual single variant.
    [[nodiscard]] virtual const WideString& GetVariant() const = 0;
    [[nodiscard]] virtual int GetMajorVersion() const = 0;
    [[nodiscard]] virtual int GetMinorVersion() const = 0;
    // Free text of the library's author, e.g. "2024.1".
    [[nodiscard]] virtual WideString GetRevision() const = 0;
    // Changes whenever the preset's content changes; empty when the library does not track it.
    [[nodiscard]] virtual WideString GetVersionGUID() const = 0;
    // The schema as stored; compare case-insensitively (SchemaEquals).
    [[nodiscard]] virtual const WideString& GetSchemaName() const = 0;
    // English keys; ILocalization::GetText translates them. Empty when the preset has none.
    [[nodiscard]] virtual const WideString& GetCategory() const = 0;
    [[nodiscard]] virtual const WideString& GetSubcategory() const = 0;
};

// Schema names are compared without regard to ASCII letter case ("corvexwoodschema" is the wood schema).
[[nodiscard]] bool SchemaEquals(std::wstring_view left, std::wstring_view right);

} // namespace telvarin::platform::assets
