#pragma once

#include <Types/Appearance/MaterialKey.h>
#include <Types/Appearance/MaterialTweak.h>
#include <Types/Utility/TypesUtil.h>

#include <array>
#include <filesystem>
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace telvarin::platform::assets {
class IAssetDefinition;
class IAssetInstance;
class IAssetLibrary;
class IAssetLibraryManager;
class ILocalization;
} // namespace telvarin::platform::assets

namespace Kx {

namespace Assets = telvarin::platform::assets;
using WideString = std::wstring;
using UTF8String = std::string;

// Display name -> (path, identifier) of a library.
using LibraryInfoMap = std::map<std::wstring, std::pair<std::wstring, std::wstring>>;

// How a document's copy of a material compares with the preset it came from.
enum class MaterialState { eSameAsLibrary, eDifferentFromLibrary, eNotInLibrary };

// The application-wide owner of the material and appearance libraries: opens the standard and the
// user libraries, caches tweaked asset instances by material, and answers every question about an
// instance's parameters. Every instance it hands out carries one reference for the caller, who
// gives it back with Release().
class DefaultMaterialOptionGroup;
class InstanceShortcuts;

class AmbrelManager {
public:
    using LibraryManagerSource = std::function<Assets::IAssetLibraryManager*()>;

    // Positions in GetStandardLibraryDisplayNames.
    enum EDisplayName : int {
        eSystemVisualName, eSystemPhysicalName, eAdvancedVisualName, eAdvancedPhysicalName, eFavoritesName,
        eAdditiveName, eNonlinearName, ePrivateVisualName
    };

    // The application's manager, working on GetIAssetLibraryManager(); with `load`, LoadLibs(false) first.
    [[nodiscard]] static AmbrelManager* GetAmbrelManager(bool load);

    // An independent manager (tools, tests) that takes its library manager from `source`.
    explicit AmbrelManager(LibraryManagerSource source);
    ~AmbrelManager();
    AmbrelManager(const AmbrelManager&) = delete;
    AmbrelManager& operator=(const AmbrelManager&) = delete;

    // The material preferences whose defaults follow this manager's favourites (a removed favourite
    // that was the default material resets them). The application's manager uses the application's
    // group; an independent one none, unless a group made over it registers itself here.
    void setDefaultMaterialOptions(DefaultMaterialOptionGroup* options);
    [[nodiscard]] DefaultMaterialOptionGroup* defaultMaterialOptions() const;

    // --- loading ---
    // Loads every library once. A failed load is tried again only with `force` (or after ReleaseLib).
    bool LoadLibs(bool force);
    [[nodiscard]] bool LibsLoaded() const;
    // UI thread. Releases the cache, the libraries and the library manager; nothing while an
    // operation of kind 2 is active (OperationContext) or before a load.
    void ReleaseLib();
    // UI thread. Re-reads one open library and drops the cached instances made from it (they may
    // show what the library no longer holds); an unknown identifier does nothing.
    void RefreshLibraryByIdentifier(const WideString& libraryId);
    [[nodiscard]] std::recursive_mutex& mutex() const { return m_mutex; }

    // "eng" unless the user's locale tag is one of the table's; "zn-TW" (sic) is the tag of
    // traditional Chinese, so "zh-TW" gives "eng".
    [[nodiscard]] static std::string LanguageCodeForLocale(const std::string& localeTag);
    [[nodiscard]] const std::string& GetUserLanguage() const { return m_userLanguage; }

    // --- paths and libraries ---
    [[nodiscard]] WideString GetPhysicalLibraryPath() const;
    [[nodiscard]] WideString GetVisualLibraryPath() const;
    [[nodiscard]] WideString GetAdvancedPhysicalLibraryPath() const;
    [[nodiscard]] WideString GetAdvancedVisualLibraryPath() const;
    [[nodiscard]] WideString GetAdditivePhysicalLibraryPath() const;
    [[nodiscard]] WideString GetNonlinearPhysicalLibraryPath() const;
    [[nodiscard]] WideString GetFavoritesLibPath() const;
    [[nodiscard]] WideString GetPrivateVisualLibPath() const;
    // The texture folder of the base appearance library, beside its file.
    [[nodiscard]] WideString GetVisualLibraryTextureFolder() const;

    [[nodiscard]] WideString GetPhysicalLibraryID() const;
    [[nodiscard]] WideString GetVisualLibraryID() const;
    [[nodiscard]] WideString GetAdvancedPhysicalLibraryID() const;
    [[nodiscard]] WideString GetAdvancedVisualLibraryID() const;
    [[nodiscard]] WideString GetAdditivePhysicalLibraryID() const;
    [[nodiscard]] WideString GetNonlinearPhysicalLibraryID() const;
    [[nodiscard]] WideString GetFavoritesLibraryID() const;
    [[nodiscard]] WideString GetPrivateVisualLibID() const;

    [[nodiscard]] const Assets::IAssetLibrary* GetPhysicalAssetLibrary() const;
    [[nodiscard]] const Assets::IAssetLibrary* GetVisualAssetLibrary() const;
    [[nodiscard]] const Assets::IAssetLibrary* GetAdvancedPhysicalAssetLibrary() const;
    [[nodiscard]] const Assets::IAssetLibrary* GetAdvancedVisualAssetLibrary() const;
    [[nodiscard]] const Assets::IAssetLibrary* GetFavoritesLibrary() const;
    // The user's private appearance library, opened when it exists, and created (empty, writable)
    // the first time it is asked for after a load; null before a load or when it cannot be made.
    [[nodiscard]] const Assets::IAssetLibrary* GetPrivateVisualAssetLibrary() const;
    [[nodiscard]] Assets::IAssetLibrary* GetLibraryByIdentifier(const WideString& libraryId) const;
    [[nodiscard]] Assets::IAssetLibraryManager* GetAssetLibMgr() const;
    [[nodiscard]] bool IsSystemMaterialLibrary(const WideString& libraryId) const;
    // The display names of the standard, favourites and private libraries in the user's language
    // (EDisplayName order), read once per process, at the manager's first initialisation (so in the
    // language the start-up options chose).
    [[nodiscard]] static const std::vector<WideString>& GetStandardLibraryDisplayNames();

    // --- favourites and user libraries ---
    // Creates "Favorites.tvrnlib" in the reduced library folder; false when one is open already,
    // there is no path, or it cannot be written.
    bool CreateFavoritesLibrary();
    // A copy of `instance` as a new preset of the favourites library (created when missing), with a
    // reference for the caller; null when it cannot be added (already there, no writable library).
    [[nodiscard]] Assets::IAssetInstance* AddMaterialToFavorites(Assets::IAssetInstance* instance);
    // Deletes the favourite `instance` was made from; false when it is not a favourite. Removing the
    // default material of the preferences sets that side of them back to its defaults.
    bool RemoveMaterialFromFavorites(Assets::IAssetInstance* instance);
    // UI thread. Opens the library file at `path` as a user library (once; the second call answers
    // the same name), names it (GenerateLibraryDisplayName) and adds it to the material options,
    // which are saved so the next start opens it again.
    bool LoadUserLib(const WideString& path, WideString& displayName);
    // UI thread. Closes the user library shown under `displayName` and takes it off the options.
    bool UnloadUserLib(const WideString& displayName);
    // Display name -> (path, identifier) of the open user libraries; rebuilt when `rebuild` or never
    // built. The reference stays valid while the manager lives; read it on the UI thread.
    const LibraryInfoMap& GetUserLibrariesInfo(bool rebuild = false);
    // A library the last load could not open: the name the user knows it by (the display name of a
    // standard library, the name given to a user library), its file and why it was not opened.
    struct LibraryFailure {
        WideString name;
        WideString location;
        std::string reason;
    };
    // The libraries the last load could not open, in the order it tried them; optional standard
    // libraries that are not installed are no failure.
    [[nodiscard]] std::vector<LibraryFailure> GetLibraryFailures() const;
    // Every open library under its display name: the standard ones, favourites, private, then user
    // libraries. Rebuilt when `rebuild` or after the libraries changed; same validity as above.
    const LibraryInfoMap& GetLibrariesInfo(bool rebuild = false);

    // --- instances ---
    // The cached instance of a material with the tweak applied, with a reference for the caller;
    // null when the libraries are not loaded or the material cannot be found.
    [[nodiscard]] Assets::IAssetInstance* GetAssetInstance(const UTF8String& materialId, const WideString& libraryId,
        const MaterialTweak& tweak);
    [[nodiscard]] Assets::IAssetInstance* GetAssetInstance(Assets::IAssetDefinition* definition,
        const WideString& libraryId, const MaterialTweak& tweak);
    [[nodiscard]] Assets::IAssetInstance* GetAssetInstance(Assets::IAssetInstance* instance,
        const MaterialTweak& tweak);
    // A fresh instance that is not cached, with a reference for the caller.
    [[nodiscard]] Assets::IAssetInstance* GetAssetUncacheInstance(const UTF8String& materialId,
        const WideString& libraryId);
    // UI thread. Clones `instance` and caches the clone under its identity (replacing an entry of the
    // same key when `replace`); answers the clone with a reference for the caller. The clone is the
    // copy a document edits and keeps, so the images its textures take from an open library are
    // extracted to files (ExtractEmbedResource).
    [[nodiscard]] Assets::IAssetInstance* CloneAndCacheAsset(Assets::IAssetInstance* instance, bool replace);
    // The asset connected to `property`, with a reference for the caller, or null.
    [[nodiscard]] Assets::IAssetInstance* GetConnectedAssetInstance(const Assets::IAssetInstance* instance,
        const WideString& property) const;
    [[nodiscard]] std::size_t GetCachedInstanceCount() const;
    // The cache key of a material: identity joined, then "[" and the tweak unless it is neutral.
    [[nodiscard]] static WideString GetKeyForMaterial(const WideString& libraryId, const WideString& materialId,
        const WideString& variant, int majorVersion, int minorVersion, const MaterialTweak& tweak);
    // A name for a library at `path` that is not yet a key of `known`: the file's base name, then
    // the base name followed by 1, 2, ...
    [[nodiscard]] static WideString GenerateLibraryDisplayName(const LibraryInfoMap& known, const WideString& path);

    // --- schema tests (UI thread; null is false) ---
    [[nodiscard]] bool IsCorvexMaterial(const Assets::IAssetInstance* instance) const;
    [[nodiscard]] bool IsCorvexWoodMaterial(const Assets::IAssetInstance* instance) const;
    [[nodiscard]] bool IsEnvironmentAsset(const Assets::IAssetInstance* instance) const;
    [[nodiscard]] bool IsAssetOfType(const Assets::IAssetInstance* instance, const std::string& schema) const;

    // --- parameters: false for null, a schema without the parameter, or a missing property ---
    bool GetAssetInstanceDensity(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceDensity(Assets::IAssetInstance* instance, double value);
    bool GetAssetInstanceAbsorptionDist(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceAbsorptionDist(Assets::IAssetInstance* instance, double value);
    bool GetAssetInstanceLuminance(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceLuminance(Assets::IAssetInstance* instance, double value);
    bool GetAssetInstanceLuminanceEnabled(const Assets::IAssetInstance* instance, bool& value) const;
    bool SetAssetInstanceLuminanceEnabled(Assets::IAssetInstance* instance, bool value);
    bool GetAssetInstanceTranslucencyEnabled(const Assets::IAssetInstance* instance, bool& value) const;
    bool SetAssetInstanceTranslucencyEnabled(Assets::IAssetInstance* instance, bool value);
    bool GetAssetInstanceTranslucencyDepth(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceTranslucencyDepth(Assets::IAssetInstance* instance, double value);
    bool GetAssetInstanceReflectance(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceReflectance(Assets::IAssetInstance* instance, double value);
    bool GetAssetInstanceRefractiveIndex(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceRefractiveIndex(Assets::IAssetInstance* instance, double value);
    bool GetAssetInstanceRoughness(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceRoughness(Assets::IAssetInstance* instance, double value);
    bool GetAssetInstanceEarlywoodRoughness(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceEarlywoodRoughness(Assets::IAssetInstance* instance, double value);
    bool GetAssetInstanceLateWoodColor(const Assets::IAssetInstance* instance, Color& value) const;
    bool SetAssetInstanceLateWoodColor(Assets::IAssetInstance* instance, const Color& value);
    bool GetAssetInstanceLateWoodColorEnabled(const Assets::IAssetInstance* instance, bool& value) const;
    bool SetAssetInstanceLateWoodColorEnabled(Assets::IAssetInstance* instance, bool value);
    bool GetAssetInstanceLateWoodExp(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceLateWoodExp(Assets::IAssetInstance* instance, double value);
    bool GetAssetInstancePoresEnabled(const Assets::IAssetInstance* instance, bool& value) const;
    bool SetAssetInstancePoresEnabled(Assets::IAssetInstance* instance, bool value);
    bool GetAssetInstanceRaysEnabled(const Assets::IAssetInstance* instance, bool& value) const;
    bool SetAssetInstanceRaysEnabled(Assets::IAssetInstance* instance, bool value);
    bool GetAssetInstanceRingDepth(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceRingDepth(Assets::IAssetInstance* instance, double value);
    bool GetAssetInstanceRingThickness(const Assets::IAssetInstance* instance, double& value) const;
    bool SetAssetInstanceRingThickness(Assets::IAssetInstance* instance, double value);
    // Of the instance when it is a texture, else of its first connected texture.
    bool GetAssetInstanceTextureScale(const Assets::IAssetInstance* instance, float& value) const;
    void SetAssetInstanceTextureScale(Assets::IAssetInstance* instance, const MaterialTweak& tweak);
    bool GetAssetInstanceTextureRotate(const Assets::IAssetInstance* instance, float& value) const;
    void SetAssetInstanceTextureRotate(Assets::IAssetInstance* instance, const MaterialTweak& tweak);
    // UI thread. False when the colour is driven by a texture: there is no single colour then.
    // The older schemas answer their tint, under the rules of docs/ARCHITECTURE.md (appearance colours).
    bool GetAssetInstanceColor(const Assets::IAssetInstance* instance, Color& value) const;
    void SetAssetInstanceColor(Assets::IAssetInstance* instance, const MaterialTweak& tweak);
    // The colour properties a user edits on an appearance of `schema`, its main colour first.
    [[nodiscard]] std::vector<WideString> GetMaterialPropertyNames(const WideString& schema) const;

    // Bounds of the property's numeric constraint; true only when it has one.
    bool GetAssetInstanceDensityBounds(const Assets::IAssetInstance* instance, bool& hasMinimum, double& minimum,
        bool& hasMaximum, double& maximum, double& increment, bool& logarithmic) const;
    bool GetAssetInstanceLuminanceBounds(const Assets::IAssetInstance* instance, bool& hasMinimum, double& minimum,
        bool& hasMaximum, double& maximum, double& increment, bool& logarithmic) const;
    bool GetAssetInstanceReflectanceBounds(const Assets::IAssetInstance* instance, bool& hasMinimum, double& minimum,
        bool& hasMaximum, double& maximum, double& increment, bool& logarithmic) const;
    bool GetAssetInstanceRoughnessBounds(const Assets::IAssetInstance* instance, bool& hasMinimum, double& minimum,
        bool& hasMaximum, double& maximum, double& increment, bool& logarithmic) const;
    bool GetAssetInstanceTranslucencyDepthBounds(const Assets::IAssetInstance* instance, bool& hasMinimum,
        double& minimum, bool& hasMaximum, double& maximum, double& increment, bool& logarithmic) const;
    bool GetAssetInstanceRefractiveIndexBounds(const Assets::IAssetInstance* instance, bool& hasMinimum,
        double& minimum, bool& hasMaximum, double& maximum) const;

    // --- identity ---
    [[nodiscard]] WideString GetAssetInstanceLibraryID(const Assets::IAssetInstance* instance) const;
    [[nodiscard]] WideString GetAssetInstanceMaterialID(const Assets::IAssetInstance* instance) const;
    bool GetAssetInstanceInfo(const Assets::IAssetInstance* instance, WideString& libraryId, WideString& materialId,
        WideString& variant) const;
    bool GetMaterialVersion(const Assets::IAssetInstance* instance, int& majorVersion, int& minorVersion) const;
    [[nodiscard]] std::wstring GetMaterialRevision(const Assets::IAssetInstance* instance) const;
    // Names in the user's language, else English; empty when unknown.
    [[nodiscard]] WideString GetUIName(const UTF8String& materialId, const WideString& libraryId) const;
    [[nodiscard]] WideString GetUIName(const Assets::IAssetInstance* instance) const;
    [[nodiscard]] WideString GetPhysicalMaterialUINameByID(const UTF8String& materialId) const;
    [[nodiscard]] WideString GetVisualMaterialUINameByID(const UTF8String& materialId) const;
    // The English category and subcategory keys; "default" for a missing one. False for an unknown material.
    bool GetCategoryForMaterial(const UTF8String& materialId, const WideString& libraryId, WideString& category,
        WideString& subcategory) const;
    [[nodiscard]] WideString GetThumbnailImageURI(const UTF8String& materialId, const WideString& libraryId) const;
    [[nodiscard]] WideString GetThumbnailImageURI(const Assets::IAssetInstance* instance) const;
    [[nodiscard]] bool IsSystemMaterial(const Assets::IAssetInstance* instance) const;
    [[nodiscard]] MaterialState IsDifferentFromLibrary(const Assets::IAssetInstance* instance) const;

    // --- listings; all in library order (category, subcategory, material id, variant) unless said ---
    [[nodiscard]] std::multimap<WideString, UTF8String> GetCategorizedPhysicalMaterialsByLibrary(
        const WideString& libraryId) const;
    [[nodiscard]] std::multimap<WideString, UTF8String> GetCategorizedVisualMaterialsByLibrary(
        const WideString& libraryId) const;
    [[nodiscard]] std::vector<UTF8String> GetPhysicalMaterialsByLibrary(const WideString& libraryId) const;
    // Appearances: presets that are neither physical materials, environments, textures nor decals.
    [[nodiscard]] std::vector<UTF8String> GetVisualMaterialsByLibrary(const WideString& libraryId) const;
    [[nodiscard]] std::vector<UTF8String> GetEnvironmentAssetsByLibrary(const WideString& libraryId) const;
    bool GetEnvironmentAssetInfo(const UTF8String& materialId, const WideString& libraryId, WideString& image,
        double& illuminance) const;
    // (material id, "ExchangeGUID"); presets without one are left out.
    [[nodiscard]] std::vector<std::pair<UTF8String, WideString>> GetAllIDAndUuids(const WideString& libraryId) const;
    // (material id, name in the user's language).
    [[nodiscard]] std::vector<std::pair<UTF8String, WideString>> GetAssetIDsAndNames(const WideString& libraryId) const;
    // Name in the user's language -> material id, ordered by name (equal names keep library order).
    [[nodiscard]] std::multimap<WideString, UTF8String> GetMateriaNamesAndIDs(const WideString& libraryId) const;
    // Every texture connected to the instance, depth first in property-name order, each with a
    // reference for the caller.
    [[nodiscard]] std::vector<Assets::IAssetInstance*> CollectTextureAssets(
        const Assets::IAssetInstance* instance) const;
    // True when every texture's bitmap is embedded in a library or an existing file.
    [[nodiscard]] bool InstanceTexturesAreLocal(const Assets::IAssetInstance* instance) const;
    // Where the images embedded in a library are extracted to: <user directory>/textures/<library id>.
    [[nodiscard]] static std::filesystem::path GetEmbeddedResourceFolder(const WideString& libraryId);

private:
    enum ELibrary : int {
        eSystemVisual, eSystemPhysical, eAdvancedVisual, eAdvancedPhysical, eFavorites, eAdditive, eNonlinear,
        eLibraryCount
    };

    [[nodiscard]] WideString pathOf(ELibrary which) const;
    [[nodiscard]] WideString idOf(ELibrary which) const;
    [[nodiscard]] const Assets::IAssetLibrary* libraryOf(ELibrary which) const;
    bool InitializeLibManager();
    [[nodiscard]] WideString GetApplicationFavoritesFile() const;
    [[nodiscard]] WideString GetPrivateVisualAssetFile() const;
    // Under the lock: opens (creating it first when `create`) the private library.
    Assets::IAssetLibrary* openPrivateLibrary(bool create) const;
    // Under the lock: drops the cache entries (and shortcuts) of instances made from `libraryId`.
    void dropCachedInstancesOf(const WideString& libraryId);
    void initializeUserLanguage();
    void SetSystemLibPaths();
    bool _LoadLibs();
    void loadUserLibraries();
    // Null when the library cannot be opened, which is logged and kept in m_libraryFailures.
    Assets::IAssetLibrary* openLibrary(const WideString& location, const WideString& name);
    // Extracts the images embedded in `library` that the textures of `instance` name
    // ("tvp:?asset=…") into GetEmbeddedResourceFolder and points the textures at the files.
    void ExtractEmbedResource(Assets::IAssetLibrary& library, Assets::IAssetInstance& instance);
    // Under the lock: gives back the cache's references and every library this manager opened,
    // and forgets their identifiers.
    void releaseCacheAndLibraries();
    // True for the libraries this manager opened (and so releases itself).
    [[nodiscard]] bool ownsLibrary(const Assets::IAssetLibrary* library) const;
    [[nodiscard]] Assets::IAssetInstance* createInstance(const UTF8String& materialId,
        const WideString& libraryId) const;
    // Under the lock: the cached instance under `key` with a reference for the caller, or null.
    [[nodiscard]] Assets::IAssetInstance* findCached(std::wstring_view key) const;
    // Under the lock: the cached instance of `definition` with `tweak`; on a miss made from
    // `library`, or from the library found by identifier when that is null.
    [[nodiscard]] Assets::IAssetInstance* cachedInstance(Assets::IAssetDefinition& definition,
        const MaterialTweak& tweak, Assets::IAssetLibrary* library, const WideString& libraryId);
    // Under the lock: tweaks a fresh instance (reference count 1) and caches it under `key`.
    [[nodiscard]] Assets::IAssetInstance* cacheNew(WideString key, Assets::IAssetInstance* fresh,
        const MaterialTweak& tweak);

    LibraryManagerSource m_source;
    DefaultMaterialOptionGroup* m_defaultMaterialOptions = nullptr;
    bool m_isApplicationManager = false;

    std::array<WideString, eLibraryCount> m_paths;
    Assets::IAssetLibraryManager* m_libMgr = nullptr;
    std::array<Assets::IAssetLibrary*, eLibraryCount> m_libraries{};
    std::atomic<bool> m_libsLoadAttempted{false};
    std::atomic<bool> m_libsLoadFailed{false};
    std::array<WideString, eLibraryCount> m_libraryIds;
    std::string m_userLanguage = "eng";
    std::array<Assets::ILocalization*, 4> m_localizations{};
    bool m_localizationsObtained = false;
    // The private library is opened lazily from a const getter.
    mutable Assets::IAssetLibrary* m_privateLibrary = nullptr;
    mutable WideString m_privateLibraryId;
    // User libraries by path: the name they are shown under and the open library.
    struct UserLibrary {
        WideString displayName;
        Assets::IAssetLibrary* library = nullptr;
    };
    std::map<WideString, UserLibrary> m_userLibraryRecords;
    LibraryInfoMap m_userLibrariesInfo;
    bool m_userLibrariesInfoBuilt = false;
    LibraryInfoMap m_librariesInfo;
    bool m_librariesInfoBuilt = false;
    std::vector<LibraryFailure> m_libraryFailures;
    std::unordered_map<std::wstring, Assets::IAssetInstance*, MaterialKeyHash, std::equal_to<>> m_instanceCache;
    // Cache hits by material identifier are answered from these without the lock: the cached
    // instance last answered for (library, material, tweak), good while that library's change count
    // stays as it was. Forgotten before the cache drops or replaces an entry.
    std::unique_ptr<InstanceShortcuts> m_shortcuts;
    mutable std::recursive_mutex m_mutex;
};

} // namespace Kx
