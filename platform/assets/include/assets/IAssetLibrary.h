#pragma once

#include "assets/AssetSearchIterator.h"
#include "assets/AssetTypes.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace telvarin::platform::assets {

class IAssetDefinition;
class IAssetInstance;

// Resources embedded in a library (texture images, thumbnails) are addressed as "tvp:?asset=<name>".
inline constexpr std::wstring_view s_resourcePrefix = L"tvp:?asset=";

// An open material library (a .tvrnlib file, docs/formats.md). Opening reads only the library's
// header; presets are read with one indexed query the first time they are asked for, and the
// properties of a preset only when an instance of it is made. Libraries are made, found and
// released through IAssetLibraryManager; a library may be used from several threads.
//
// Searches answer presets only (the assets a user picks); assets that are merely connected to a
// preset (aspects, textures) are reached through the preset's instance.
class IAssetLibrary {
public:
    // Upper-case GUID text without braces, fixed when the library is created.
    [[nodiscard]] virtual const WideString& GetLibraryId() const = 0;
    [[nodiscard]] virtual WideString GetName() const = 0;
    // The file; empty for a new library that has not been saved yet.
    [[nodiscard]] virtual WideString GetFilePath() const = 0;
    // What the library was opened by: the file path or the netfs URI.
    [[nodiscard]] virtual const WideString& GetLocation() const = 0;
    [[nodiscard]] virtual int GetLibraryKind() const = 0;
    // True when the library is marked read-only or its file cannot be written; no writable handle
    // is given for it then.
    [[nodiscard]] virtual bool IsReadOnly() const = 0;

    // Number of presets; 0 also when the presets cannot be read (LastError tells).
    [[nodiscard]] virtual std::size_t GetAssetCount() const = 0;
    // Every preset, by category, subcategory, material id and variant (byte order of the UTF-8 texts).
    [[nodiscard]] virtual AssetSearchIterator GetAssetDefinitions() const = 0;
    // The (category, subcategory) pairs in use, in the same order.
    [[nodiscard]] virtual std::vector<std::pair<WideString, WideString>> GetCategories() const = 0;
    [[nodiscard]] virtual IAssetDefinition* FindAssetDefinition(const UTF8String& materialId,
        const WideString& variant = {}) const = 0;

    // Searches answer presets in the order of GetAssetDefinitions.
    // Schema names compare without regard to ASCII case.
    [[nodiscard]] virtual AssetSearchIterator SearchBySchema(const WideString& schema) const = 0;
    // An empty subcategory matches every subcategory of the category.
    [[nodiscard]] virtual AssetSearchIterator SearchByCategory(const WideString& category,
        const WideString& subcategory = {}) const = 0;
    // Every variant of the material.
    [[nodiscard]] virtual AssetSearchIterator SearchByMaterialId(const UTF8String& materialId) const = 0;
    // Presets whose name in `language` (in any language when empty) contains `text`, compared
    // without regard to case for ASCII and Latin-1 letters.
    [[nodiscard]] virtual AssetSearchIterator SearchByName(const WideString& text,
        const UTF8String& language = {}) const = 0;

    // A new instance of a preset of this library, with a reference for the caller; null for a
    // definition of another library or a preset that cannot be read (LastError tells).
    [[nodiscard]] virtual IAssetInstance* CreateAssetInstance(const IAssetDefinition* definition) const = 0;
    [[nodiscard]] virtual IAssetInstance* CreateAssetInstance(const UTF8String& materialId,
        const WideString& variant = {}) const = 0;

    // The preset's name in `language`, else its English name, else empty.
    [[nodiscard]] virtual WideString GetAssetName(const UTF8String& materialId, const UTF8String& language) const = 0;
    // A translated text of the library (category and subcategory names are keyed by their English
    // text): the text in `language`, else empty.
    [[nodiscard]] virtual WideString GetLocalizedText(const WideString& key, const UTF8String& language) const = 0;

    // Resources stored in the library (texture images, thumbnails) are addressed by URIs of the form
    // "tvp:?asset=<name>". False when the URI has another form or names nothing.
    virtual bool ReadEmbeddedResource(const WideString& uri, std::vector<std::uint8_t>& bytes) const = 0;

    // Drops what was read so far, so that changes made to the file by others show.
    virtual void Refresh() = 0;
    // Grows each time the presets may have changed (a change, a rollback, Refresh): what a caller
    // found in the library holds while the count stays the same. Safe to read from any thread.
    [[nodiscard]] virtual std::uint64_t GetChangeCount() const = 0;
    // The failure of the most recent operation of this library that failed (reads of presets,
    // names and resources report nothing else).
    [[nodiscard]] virtual AssetError GetLastError() const = 0;

protected:
    virtual ~IAssetLibrary() = default;
};

// What a new preset is filed under; the asset's schema comes from the instance.
struct AssetPresetInfo {
    UTF8String materialId;
    WideString variant;
    int majorVersion = 1;
    int minorVersion = 0;
    WideString revision;
    WideString versionGUID;
    WideString category;
    WideString subcategory;
};

// A library while one writer holds it (IAssetLibraryManager::GetWritableAssetLibrary). Changes go
// into one SQLite transaction, visible to readers of this process through the library at once;
// CommitAssetLibrary makes them durable and ReleaseWritableAssetLibrary without a commit rolls them
// back. Every change answers false, with the reason in `error`, and leaves the library unchanged
// when it fails.
class IWritableAssetLibrary : public IAssetLibrary {
public:
    // Writes the instance (properties, names, connected assets) as a new preset. The first form
    // takes variant, versions and categories from the instance's definition when it has one.
    // Refused when a preset with that material id and variant exists.
    virtual bool CreateNewAssetPreset(IAssetInstance* instance, const UTF8String& materialId,
        AssetError* error = nullptr) = 0;
    virtual bool CreateNewAssetPreset(IAssetInstance* instance, const AssetPresetInfo& info,
        AssetError* error = nullptr) = 0;
    // Deletes a preset of this library with the assets only it connects.
    virtual bool DeleteAssetDefinition(IAssetDefinition* definition, AssetError* error = nullptr) = 0;
    virtual bool SetLibraryName(const WideString& name, AssetError* error = nullptr) = 0;
    // Marks the library read-only for every later opening (the changes of this writer still commit).
    virtual bool SetReadOnly(bool readOnly, AssetError* error = nullptr) = 0;
    virtual bool SetLocalizedText(const WideString& key, const UTF8String& language, const WideString& text,
        AssetError* error = nullptr) = 0;
    // Stores bytes under `name` (replacing what was there) and answers the URI that reads them back,
    // or empty on failure.
    virtual WideString AddEmbeddedResource(const WideString& name, std::span<const std::uint8_t> bytes,
        AssetError* error = nullptr) = 0;

protected:
    ~IWritableAssetLibrary() override = default;
};

} // namespace telvarin::platform::assets
