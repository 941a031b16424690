#pragma once

#include "Types/Appearance/ExchangeMaterialEvent.h"
#include "Types/Appearance/ExchangeMaterialHelperInterface.h"

#include <tbb/concurrent_hash_map.h>

#include <atomic>
#include <optional>
#include <string>
#include <vector>

namespace Kx {

class AmbrelManager;
class LiveUpdateEvent;
class MaterialLocalTexRecordManager;

// The application's front for the online material library: starts downloads of materials, their
// textures and thumbnails and queries of the library's categories and content, keeps what is in
// flight, refuses work while downloads are disabled or a live update runs, hands the transfers to
// the download helper, and announces every end of work as an ExchangeMaterialEvent.
//
// Requests are made on the UI thread; the helper calls the completions there too (it posts them
// to UIThreadQueue), so events reach their sites.
class ExchangeMaterialManager {
public:
    // One download in flight, keyed by the material's or texture's UUID (a thumbnail by
    // thumbnailKey(), a query by "QueryCategory_" or "QueryContent_" followed by its category).
    struct Record {
        std::wstring libraryId;
        std::wstring assetType;
        int downloadType = ExchangeMaterialEvent::eDownloadMaterial;
        std::wstring materialId;
    };
    using InFlightMap = tbb::concurrent_hash_map<std::wstring, Record>;

    [[nodiscard]] static ExchangeMaterialManager& GetInstance();
    // A manager of its own (tools, tests) that refreshes `libraries` and keeps texture records in
    // `textures`; null takes the application's.
    explicit ExchangeMaterialManager(AmbrelManager* libraries = nullptr, MaterialLocalTexRecordManager* textures = nullptr);
    ExchangeMaterialManager(const ExchangeMaterialManager&) = delete;
    ExchangeMaterialManager& operator=(const ExchangeMaterialManager&) = delete;

    static void SetExchangeMaterialHelper(ExchangeMaterialHelperInterface* helper);
    [[nodiscard]] static ExchangeMaterialHelperInterface* GetExchangeMaterialHelper();

    void EnableDownload(bool enable) { mbEnableDownload = enable; }
    [[nodiscard]] bool EnableDownload() const { return mbEnableDownload; }

    void DownloadMaterial(const std::wstring& libraryID, const std::wstring& type, const wchar_t* pUuid);
    // `pUuid` names a texture as the online library lists it: "<material UUID>/<file name>".
    void DownloadMaterialTexture(const std::wstring& libraryID, const std::wstring& type, const wchar_t* pUuid);
    void DownloadMaterialThumbnail(const std::wstring& libraryID, const std::wstring& type, const wchar_t* pUuid);
    void QueryLibraryCategory(const std::wstring& libraryID, const std::wstring& type, const std::wstring& category);
    void QueryLibraryContent(const std::wstring& libraryID, const std::wstring& type, const std::wstring& category);

    void CancelDownloadMaterial(const std::wstring& libraryID, const wchar_t* pUuid);
    // Every download of the library (every download when `libraryID` is empty).
    void CancelDownloadMaterials(const std::wstring& libraryID);
    void CancelDownloadMaterials() { CancelDownloadMaterials(std::wstring()); }

    // --- completions, called by the helper on the UI thread ---
    void DownloadComplete(const std::wstring& uuid, bool success, const std::wstring& message);
    void QueryLibraryCategoryComplete(const std::wstring& category, bool success, const std::wstring& message,
        const std::vector<ExchangeMaterialEvent::CategoryInfo>& categories);
    void QueryLibraryContentComplete(const std::wstring& category, bool success, const std::wstring& message,
        const std::vector<ExchangeMaterialEvent::MaterialInfo>& materials);
    void CancelMaterialDownloadComplete(const std::wstring& uuid);

    [[nodiscard]] bool IsMaterialDownloaded(const std::wstring& uuid) const;
    [[nodiscard]] ExMaterialStatus QueryMaterialStatus(const std::wstring& libraryID, const std::wstring& uuid) const;
    [[nodiscard]] bool isMaterialDownloading(const std::wstring& uuid) const;
    [[nodiscard]] bool isMaterialDownloading(const wchar_t* pUuid) const;
    [[nodiscard]] bool isMaterialDownloading(const std::wstring& libraryID, const std::wstring& uuid) const;
    [[nodiscard]] bool isAllDownloadCompleted() const { return m_inFlight.size() == 0; }
    [[nodiscard]] std::size_t inFlightCount() const { return m_inFlight.size(); }

    // --- live updates of the application ---
    // A major update needs a restart: downloads stay locked as for a minor one until it is over.
    void majorUpdateRequested(LiveUpdateEvent* event);
    void minorUpdateRequested(LiveUpdateEvent* event);
    // The update is over: downloads may start again.
    void liveUpdateFinished() { m_liveUpdate = false; }
    // True while a live update runs, and then shows the user that downloading is disabled.
    bool isLiveUpdateInProgress() const;

    // The library downloaded materials are installed into, refreshed after each successful download.
    void SetDownloadedLibraryID(const std::wstring& libraryId);

    // The key a category query is kept under while it runs.
    [[nodiscard]] static std::wstring categoryQueryKey(const std::wstring& category) { return L"QueryCategory_" + category; }
    // A thumbnail is kept apart from its material's own download, which may run at the same time;
    // the helper reports its end under this key.
    [[nodiscard]] static std::wstring thumbnailKey(const std::wstring& uuid) { return L"Thumbnail_" + uuid; }
    [[nodiscard]] static std::wstring contentQueryKey(const std::wstring& category) { return L"QueryContent_" + category; }

private:
    // The guards every request obeys; `caller` names the request in the log lines.
    bool acceptsRequests(const wchar_t* caller) const;
    // Starts a request unless one is in flight under `key`; false when one was.
    bool recordRequest(const std::wstring& key, const Record& record);
    bool takeRecord(const std::wstring& key, Record& record);
    // The event of a finished query, with what its record holds; none while live update is on or
    // when the query is not in flight.
    [[nodiscard]] std::optional<ExchangeMaterialEvent> finishedQuery(const std::wstring& key,
        ExchangeMaterialEvent::EDownloadType type, const std::wstring& category, bool success, const std::wstring& message);
    void cancelDownloadMaterials();
    void fire(ExchangeMaterialEvent& event) const;
    void refreshDownloadedLibrary();
    [[nodiscard]] AmbrelManager* libraries() const;
    [[nodiscard]] MaterialLocalTexRecordManager& textures() const;

    InFlightMap m_inFlight;
    bool mbEnableDownload = true;
    std::atomic<bool> m_liveUpdate{false};
    AmbrelManager* m_libraries = nullptr;
    MaterialLocalTexRecordManager* m_textures = nullptr;
    std::wstring m_downloadedLibraryId;
};

} // namespace Kx
