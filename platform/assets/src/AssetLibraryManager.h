#pragma once

#include "AssetLibrary.h"
#include "LocalizationManager.h"

#include "assets/IAssetLibraryManager.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

namespace telvarin::platform::assets {

class AssetLibraryManager final : public IAssetLibraryManager {
public:
    AssetLibraryManager();
    ~AssetLibraryManager() override;

    void SetConfigurationPath(const WideString& path) override;
    [[nodiscard]] WideString GetConfigurationPath() const override;
    [[nodiscard]] IAssetLibrary* OpenAssetLibrary(const WideString& location, AssetError* error) override;
    [[nodiscard]] IAssetLibrary* CreateAssetLibrary(const WideString& path, int kind, const WideString& libraryId,
        AssetError* error) override;
    bool SaveAssetLibrary(IAssetLibrary* library, AssetError* error) override;
    bool RegisterAssetLibrary(IAssetLibrary* library, AssetError* error) override;
    bool ReleaseAssetLibrary(IAssetLibrary* library) override;
    [[nodiscard]] IAssetLibrary* GetAssetLibrary(const WideString& libraryId) const override;
    [[nodiscard]] std::vector<IAssetLibrary*> GetAssetLibraries() const override;
    bool RefreshAssetLibrary(IAssetLibrary* library) override;
    [[nodiscard]] IWritableAssetLibrary* GetWritableAssetLibrary(IAssetLibrary* library, AssetError* error) override;
    bool CommitAssetLibrary(IWritableAssetLibrary* library, AssetError* error) override;
    void ReleaseWritableAssetLibrary(IWritableAssetLibrary* library) override;
    [[nodiscard]] IAssetInstance* CreateAssetInstance(const WideString& schema, const UTF8String& assetId) override;
    [[nodiscard]] ILocalizationManager* GetLocalizationManager() override { return &m_localization; }
    [[nodiscard]] std::unique_ptr<IAssetSerializer> CreateAssetSerializer() override;
    [[nodiscard]] std::unique_ptr<IAssetDeSerializer> CreateAssetDeSerializer() override;

private:
    struct Entry {
        std::unique_ptr<AssetLibrary> library;
        int openings = 0;
        bool registered = false;
    };

    // Under m_mutex.
    [[nodiscard]] Entry* find(const IAssetLibrary* library);
    [[nodiscard]] const Entry* findRegistered(const WideString& libraryId) const;
    // The file a location names; throws sqlite::Failure for a malformed one.
    [[nodiscard]] std::filesystem::path resolve(const WideString& location) const;

    mutable std::mutex m_mutex;
    WideString m_configurationPath;
    std::vector<Entry> m_entries;
    LocalizationManager m_localization;
};

} // namespace telvarin::platform::assets
