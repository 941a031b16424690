#pragma once

#include "assets/IAssetDefinition.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace telvarin::platform::assets {

class Catalogue;

class AssetDefinition final : public IAssetDefinition {
public:
    [[nodiscard]] const WideString& GetLibraryId() const override { return *libraryId; }
    [[nodiscard]] const UTF8String& GetMaterialId() const override { return materialId; }
    [[nodiscard]] const WideString& GetVariant() const override { return *variant; }
    [[nodiscard]] int GetMajorVersion() const override { return majorVersion; }
    [[nodiscard]] int GetMinorVersion() const override { return minorVersion; }
    [[nodiscard]] WideString GetRevision() const override { return core::toWide(revision); }
    [[nodiscard]] WideString GetVersionGUID() const override { return core::toWide(versionGuid); }
    [[nodiscard]] const WideString& GetSchemaName() const override { return *schema; }
    [[nodiscard]] const WideString& GetCategory() const override { return *category; }
    [[nodiscard]] const WideString& GetSubcategory() const override { return *subcategory; }

    // The row of the preset in its library; 0 for a definition rebuilt from a document's assets.
    std::int64_t key = 0;
    // Texts that repeat across presets point into the catalogue's pool.
    const WideString* libraryId = nullptr;
    UTF8String materialId;
    const WideString* variant = nullptr;
    int majorVersion = 1;
    int minorVersion = 0;
    UTF8String revision;
    UTF8String versionGuid;
    const WideString* schema = nullptr;
    const WideString* category = nullptr;
    const WideString* subcategory = nullptr;
    const Catalogue* catalogue = nullptr;
};

// A snapshot of the presets of a library (or the definitions rebuilt by one deserializer). It never
// changes once built; a library that changes builds a new one, and whoever still holds the old one
// (an iterator, an instance) keeps it alive.
class Catalogue : public std::enable_shared_from_this<Catalogue> {
public:
    // Definitions in library order; addresses are stable.
    std::deque<AssetDefinition> definitions;
    // True when the definitions are in (category, subcategory) order as wide texts, so that a
    // category is found by binary search. The database sorts by UTF-8 bytes, which is the same
    // order for valid text; a file with invalid UTF-8 falls back to a linear search.
    bool orderedByCategory = false;

    [[nodiscard]] const WideString* intern(std::string_view utf8);
    [[nodiscard]] const WideString* intern(const WideString& text);
    AssetDefinition& add();
    // Keeps the catalogue alive for as long as the definition is held.
    [[nodiscard]] std::shared_ptr<const AssetDefinition> share(const AssetDefinition& definition) const;
    // Definitions of a material id in library order (all variants); built at the first call.
    [[nodiscard]] const std::vector<AssetDefinition*>& byMaterialId(const UTF8String& materialId) const;
    // The preset of a material id and variant, or null.
    [[nodiscard]] AssetDefinition* find(const UTF8String& materialId, const WideString& variant) const;
    [[nodiscard]] bool owns(const IAssetDefinition* definition) const;

private:
    std::unordered_map<std::string, WideString> m_pool;
    mutable std::once_flag m_indexOnce;
    mutable std::unordered_map<UTF8String, std::vector<AssetDefinition*>> m_byMaterialId;
};

} // namespace telvarin::platform::assets
