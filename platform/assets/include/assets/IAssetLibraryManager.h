#pragma once

#include "assets/AssetTypes.h"

#include <memory>
#include <vector>

namespace telvarin::platform::assets {

class IAssetDeSerializer;
class IAssetInstance;
class IAssetLibrary;
class IAssetSerializer;
class ILocalizationManager;
class IWritableAssetLibrary;

// Opens, creates and releases material libraries and hands out what works on them. One manager
// owns the libraries it opened; everything it answers stays valid until released through it or
// until the manager goes. All operations may be called from any thread.
//
// A location is a file path (a relative one is taken from the configuration path) or a netfs URI
// (LibraryLocation.h). Failures answer null/false and, when `error` is given, say why; a damaged
// file (not SQLite, another schema version, truncated, missing tables) is such a failure, never a
// crash.
class IAssetLibraryManager {
public:
    virtual ~IAssetLibraryManager() = default;

    // The folder relative library paths are taken from.
    virtual void SetConfigurationPath(const WideString& path) = 0;
    [[nodiscard]] virtual WideString GetConfigurationPath() const = 0;

    // Opens a library, or answers the open one with that location again; every successful call is
    // matched by one ReleaseAssetLibrary. A second library with the identifier of an open one is
    // refused (eDuplicate).
    [[nodiscard]] virtual IAssetLibrary* OpenAssetLibrary(const WideString& location, AssetError* error = nullptr) = 0;
    // A new empty library that lives in memory until SaveAssetLibrary writes it to `path`. An empty
    // `libraryId` gets a new random GUID. The library is not registered: the manager does not find
    // it by identifier before RegisterAssetLibrary.
    [[nodiscard]] virtual IAssetLibrary* CreateAssetLibrary(const WideString& path, int kind,
        const WideString& libraryId = {}, AssetError* error = nullptr) = 0;
    // Writes a new library to its path (through a temporary file beside it that is renamed over the
    // target, so a failure never leaves half a file) and keeps working on that file. True at once
    // for a library that already lives in its file. Refused while a writer holds the library.
    virtual bool SaveAssetLibrary(IAssetLibrary* library, AssetError* error = nullptr) = 0;
    // Lets GetAssetLibrary find a created library; refused when another open library has its identifier.
    virtual bool RegisterAssetLibrary(IAssetLibrary* library, AssetError* error = nullptr) = 0;
    // Gives back one opening; the last one closes the library (rolling back a writer that did not
    // commit). False for a library this manager does not hold.
    virtual bool ReleaseAssetLibrary(IAssetLibrary* library) = 0;

    [[nodiscard]] virtual IAssetLibrary* GetAssetLibrary(const WideString& libraryId) const = 0;
    [[nodiscard]] virtual std::vector<IAssetLibrary*> GetAssetLibraries() const = 0;
    // Re-reads a library from its file.
    virtual bool RefreshAssetLibrary(IAssetLibrary* library) = 0;

    // The one writer of a library: refused for a read-only library (eReadOnly) and while another
    // writer holds it (eBusy).
    [[nodiscard]] virtual IWritableAssetLibrary* GetWritableAssetLibrary(IAssetLibrary* library,
        AssetError* error = nullptr) = 0;
    virtual bool CommitAssetLibrary(IWritableAssetLibrary* library, AssetError* error = nullptr) = 0;
    // Ends the writer; changes made since its last commit are rolled back.
    virtual void ReleaseWritableAssetLibrary(IWritableAssetLibrary* library) = 0;

    // A new asset that belongs to no library (a texture made by a user, the parts of a preset being
    // written), with one reference for the caller. An empty `assetId` gets a new random GUID.
    [[nodiscard]] virtual IAssetInstance* CreateAssetInstance(const WideString& schema, const UTF8String& assetId = {}) = 0;

    [[nodiscard]] virtual ILocalizationManager* GetLocalizationManager() = 0;
    [[nodiscard]] virtual std::unique_ptr<IAssetSerializer> CreateAssetSerializer() = 0;
    [[nodiscard]] virtual std::unique_ptr<IAssetDeSerializer> CreateAssetDeSerializer() = 0;
};

// The application's manager, made at the first call and never destroyed (objects with static
// lifetime may still release through it while the process ends).
[[nodiscard]] IAssetLibraryManager* GetIAssetLibraryManager();
// An independent manager, for tools and tests.
[[nodiscard]] std::unique_ptr<IAssetLibraryManager> CreateAssetLibraryManager();

// Hands a library back to the manager that opened it, for LibraryPtr.
struct ReleaseLibrary {
    IAssetLibraryManager* manager = nullptr;
    void operator()(IAssetLibrary* library) const
    {
        if (library != nullptr && manager != nullptr)
            manager->ReleaseAssetLibrary(library);
    }
};
// One opening of a library, given back when it goes.
using LibraryPtr = std::unique_ptr<IAssetLibrary, ReleaseLibrary>;

} // namespace telvarin::platform::assets
