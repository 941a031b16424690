#pragma once

#include "Types/Appearance/ExchangeMaterialHelperInterface.h"
#include "Types/Online/OnlineLibraryIndex.h"
#include "Types/Online/OnlineLibrarySettings.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace Kx {
class AmbrelManager;
class ExchangeMaterialManager;
class MaterialLocalTexRecordManager;
} // namespace Kx

namespace Kx::Types {

class DownloadedMaterialLibrary;

// The application's download helper: fetches the online library's index and files over HTTP(S)
// on a worker thread of its own, one transfer at a time, and brings every end of work back to the
// UI thread (UIThreadQueue), where materials are installed into the library of downloaded
// materials and the download manager is told. Made and destroyed on the UI thread; destroying it
// cancels what is queued or running and waits for the worker.
class CMExchangeMaterialHelper final : public ExchangeMaterialHelperInterface {
public:
    // Bytes so far and bytes expected of the transfer started under `key` (the manager's key of
    // the download); called on the worker thread.
    using ProgressListener = std::function<void(const std::wstring& key, std::uint64_t done, std::uint64_t total)>;

    CMExchangeMaterialHelper(OnlineLibrarySettings settings, ExchangeMaterialManager& manager, AmbrelManager& libraries,
        MaterialLocalTexRecordManager& textures);
    ~CMExchangeMaterialHelper() override;
    CMExchangeMaterialHelper(const CMExchangeMaterialHelper&) = delete;
    CMExchangeMaterialHelper& operator=(const CMExchangeMaterialHelper&) = delete;

    void DownloadMaterial(const std::wstring& libraryId, const std::wstring& uuid, bool environment) override;
    void DownloadTexture(const std::wstring& libraryId, const std::wstring& uuid) override;
    void DownloadThumbnail(const std::wstring& libraryId, const std::wstring& uuid) override;
    void CancelDownloadMaterial(const std::wstring& libraryId, const std::wstring& uuid) override;
    [[nodiscard]] bool IsMaterialDownloaded(const std::wstring& uuid) override;
    [[nodiscard]] ExMaterialStatus QueryMaterialStatus(const std::wstring& libraryId, const std::wstring& uuid) override;
    void QueryLibraryContent(const std::wstring& libraryId, const std::wstring& assetType, const std::wstring& category,
        const std::wstring& searchText, bool refresh) override;
    void QueryLibraryCategory(const std::wstring& libraryId, const std::wstring& assetType,
        const std::wstring& parentCategory, bool refresh) override;
    [[nodiscard]] std::wstring getUserSpecifiedAccessToken() override;
    bool setAccessToken() override;

    void setProgressListener(ProgressListener listener);
    [[nodiscard]] const OnlineLibrarySettings& settings() const { return m_settings; }
    // The index read last (from the server or, offline, from the copy kept in the download folder).
    [[nodiscard]] std::optional<OnlineLibraryIndex> index() const;
    [[nodiscard]] DownloadedMaterialLibrary& downloadedLibrary() { return *m_downloaded; }
    // Where a texture or thumbnail is installed.
    [[nodiscard]] std::filesystem::path texturePath(const std::string& textureId) const;
    [[nodiscard]] std::filesystem::path thumbnailPath(const OnlineMaterial& material) const;

private:
    struct Job;
    struct Completion;

    void enqueue(std::shared_ptr<Job> job);
    void run();
    void perform(Job& job);
    // The index for a job: fetched (revalidated by its ETag) once per helper, or again with
    // `refresh`; offline, or when the server cannot be reached, the copy kept on disk. Throws
    // Kx::Exception when there is none to answer from.
    OnlineLibraryIndex currentIndex(bool refresh, const std::atomic<bool>& cancelled);
    void post(std::function<void(Completion&)> task);

    OnlineLibrarySettings m_settings;
    std::shared_ptr<Completion> m_completion; // what the UI thread's tasks reach, while the helper lives
    std::unique_ptr<DownloadedMaterialLibrary> m_downloaded;
    std::wstring m_userToken;

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::shared_ptr<Job>> m_queue;
    std::shared_ptr<Job> m_running;
    bool m_stopping = false;
    std::optional<OnlineLibraryIndex> m_index;
    ProgressListener m_progress;
    std::thread m_worker;
};

} // namespace Kx::Types
