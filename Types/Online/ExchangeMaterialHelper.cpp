#include "Types/Online/ExchangeMaterialHelper.h"

#include "Types/Appearance/ExchangeMaterialManager.h"
#include "Types/Appearance/MaterialLocalTexRecordManager.h"
#include "Types/Online/DownloadedMaterialLibrary.h"
#include "Types/Online/OnlineFiles.h"
#include "Types/Online/VerifiedDownload.h"

#include <base/AppLogMgr.h>
#include <base/Assert.h>
#include <base/Exception.h>
#include <base/OS.h>
#include <base/TempFile.h>
#include <base/UIThreadQueue.h>
#include <core/Strings.h>

#include <algorithm>

namespace Kx::Types {

namespace {

using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

ExchangeMaterialEvent::MaterialInfo infoOf(const OnlineMaterial& material, const std::string& libraryName)
{
    ExchangeMaterialEvent::MaterialInfo info;
    info.materialId = toWide(material.uuid);
    info.libraryId = toWide(material.libraryId);
    info.name = toWide(material.name);
    info.category = toWide(material.category);
    info.assetType = toWide(material.assetType);
    info.description = toWide(material.description);
    info.thumbnailUrl = material.thumbnail ? toWide(material.thumbnail->path) : std::wstring();
    info.sizeInBytes = material.file.size;
    for (const OnlineTexture& texture : material.textures)
        info.sizeInBytes += texture.file.size;
    info.version = toWide(material.version);
    return info;
}

} // namespace

struct CMExchangeMaterialHelper::Job {
    enum EKind { eMaterial, eTexture, eThumbnail, eCategories, eContent };
    EKind kind = eMaterial;
    std::wstring key; // the download manager's key, reported back with the end of the job
    std::string id;   // material UUID, texture id or category
    std::string assetType;
    std::string searchText;
    bool refresh = false;
    std::atomic<bool> cancelled{false};
};

// What the tasks posted to the UI thread reach. The helper marks it dead when it goes, so a task
// pumped later does nothing (its temporary file is still removed when the task goes).
struct CMExchangeMaterialHelper::Completion {
    ExchangeMaterialManager& manager;
    MaterialLocalTexRecordManager& textures;
    DownloadedMaterialLibrary& downloaded;
    bool alive = true;
};

CMExchangeMaterialHelper::CMExchangeMaterialHelper(OnlineLibrarySettings settings, ExchangeMaterialManager& manager,
    AmbrelManager& libraries, MaterialLocalTexRecordManager& textures)
    : m_settings(std::move(settings)),
      m_downloaded(std::make_unique<DownloadedMaterialLibrary>(libraries, m_settings.downloadDirectory / "Downloaded.tvrnlib"))
{
    m_completion = std::make_shared<Completion>(Completion{manager, textures, *m_downloaded});
    m_worker = std::thread([this] { run(); });
}

CMExchangeMaterialHelper::~CMExchangeMaterialHelper()
{
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
        for (const auto& job : m_queue)
            job->cancelled = true;
        if (m_running)
            m_running->cancelled = true;
    }
    m_wake.notify_all();
    m_worker.join();
    m_completion->alive = false;
}

void CMExchangeMaterialHelper::post(std::function<void(Completion&)> task)
{
    UIThreadQueue::get().post([completion = m_completion, task = std::move(task)] {
        if (completion->alive)
            task(*completion);
    });
}

void CMExchangeMaterialHelper::enqueue(std::shared_ptr<Job> job)
{
    KX_ASSERT(OS::platformIsUIThread());
    {
        std::lock_guard lock(m_mutex);
        m_queue.push_back(std::move(job));
    }
    m_wake.notify_one();
}

void CMExchangeMaterialHelper::DownloadMaterial(const std::wstring&, const std::wstring& uuid, bool)
{
    auto job = std::make_shared<Job>();
    job->kind = Job::eMaterial;
    job->key = uuid;
    job->id = toUTF8(uuid);
    enqueue(std::move(job));
}

void CMExchangeMaterialHelper::DownloadTexture(const std::wstring&, const std::wstring& uuid)
{
    auto job = std::make_shared<Job>();
    job->kind = Job::eTexture;
    job->key = uuid;
    job->id = toUTF8(uuid);
    enqueue(std::move(job));
}

void CMExchangeMaterialHelper::DownloadThumbnail(const std::wstring&, const std::wstring& uuid)
{
    auto job = std::make_shared<Job>();
    job->kind = Job::eThumbnail;
    job->key = ExchangeMaterialManager::thumbnailKey(uuid);
    job->id = toUTF8(uuid);
    enqueue(std::move(job));
}

void CMExchangeMaterialHelper::QueryLibraryContent(const std::wstring&, const std::wstring& assetType,
    const std::wstring& category, const std::wstring& searchText, bool refresh)
{
    auto job = std::make_shared<Job>();
    job->kind = Job::eContent;
    job->key = ExchangeMaterialManager::contentQueryKey(category);
    job->id = toUTF8(category);
    job->assetType = toUTF8(assetType);
    job->searchText = toUTF8(searchText);
    job->refresh = refresh;
    enqueue(std::move(job));
}

void CMExchangeMaterialHelper::QueryLibraryCategory(const std::wstring&, const std::wstring& assetType,
    const std::wstring& parentCategory, bool refresh)
{
    auto job = std::make_shared<Job>();
    job->kind = Job::eCategories;
    job->key = ExchangeMaterialManager::categoryQueryKey(parentCategory);
    job->id = toUTF8(parentCategory);
    job->assetType = toUTF8(assetType);
    job->refresh = refresh;
    enqueue(std::move(job));
}

void CMExchangeMaterialHelper::CancelDownloadMaterial(const std::wstring&, const std::wstring& uuid)
{
    KX_ASSERT(OS::platformIsUIThread());
    std::lock_guard lock(m_mutex);
    const auto queued = std::find_if(m_queue.begin(), m_queue.end(), [&](const auto& job) { return job->key == uuid; });
    if (queued != m_queue.end()) {
        m_queue.erase(queued);
        post([uuid](Completion& completion) { completion.manager.CancelMaterialDownloadComplete(uuid); });
    } else if (m_running && m_running->key == uuid) {
        // The transfer stops at its next progress call; the worker then reports the cancellation.
        m_running->cancelled = true;
    }
}

bool CMExchangeMaterialHelper::IsMaterialDownloaded(const std::wstring& uuid)
{
    const std::optional<OnlineLibraryIndex> known = index();
    const OnlineMaterial* material = known ? known->findMaterial(toUTF8(uuid)) : nullptr;
    return material != nullptr && m_downloaded->has(material->materialId);
}

ExMaterialStatus CMExchangeMaterialHelper::QueryMaterialStatus(const std::wstring&, const std::wstring& uuid)
{
    {
        std::lock_guard lock(m_mutex);
        const bool queued = std::any_of(m_queue.begin(), m_queue.end(), [&](const auto& job) { return job->key == uuid; });
        if (queued || (m_running && m_running->key == uuid))
            return eExMaterialDownloading;
    }
    const std::optional<OnlineLibraryIndex> known = index();
    const OnlineMaterial* material = known ? known->findMaterial(toUTF8(uuid)) : nullptr;
    if (material == nullptr)
        return eExMaterialUnknown;
    return m_downloaded->has(material->materialId) ? eExMaterialDownloaded : eExMaterialNotDownloaded;
}

std::wstring CMExchangeMaterialHelper::getUserSpecifiedAccessToken()
{
    return toWide(m_settings.accessToken);
}

bool CMExchangeMaterialHelper::setAccessToken()
{
    return !m_settings.accessToken.empty();
}

void CMExchangeMaterialHelper::setProgressListener(ProgressListener listener)
{
    std::lock_guard lock(m_mutex);
    m_progress = std::move(listener);
}

std::optional<OnlineLibraryIndex> CMExchangeMaterialHelper::index() const
{
    {
        std::lock_guard lock(m_mutex);
        if (m_index)
            return m_index;
    }
    // Nothing fetched yet in this session: the copy kept from an earlier one, if it reads.
    if (const std::optional<std::string> text = readWholeFile(m_settings.downloadDirectory / "index.json")) {
        try {
            return readOnlineLibraryIndex(*text);
        } catch (const Exception&) {
        }
    }
    return std::nullopt;
}

std::filesystem::path CMExchangeMaterialHelper::texturePath(const std::string& textureId) const
{
    return m_settings.textureDirectory / std::filesystem::path(textureId);
}

std::filesystem::path CMExchangeMaterialHelper::thumbnailPath(const OnlineMaterial& material) const
{
    const std::string extension = material.thumbnail ? std::filesystem::path(material.thumbnail->path).extension().string() : "";
    return m_settings.downloadDirectory / "thumbnails" / (material.uuid + extension);
}

OnlineLibraryIndex CMExchangeMaterialHelper::currentIndex(bool refresh, const std::atomic<bool>& cancelled)
{
    {
        std::lock_guard lock(m_mutex);
        if (m_index && !refresh)
            return *m_index;
    }
    const std::filesystem::path cache = m_settings.downloadDirectory / "index.json";
    const std::filesystem::path etagFile = m_settings.downloadDirectory / "index.etag";
    const auto remember = [&](OnlineLibraryIndex index) {
        std::lock_guard lock(m_mutex);
        m_index = std::move(index);
        return *m_index;
    };
    const auto fromCache = [&](const std::string& why) {
        const std::optional<std::string> text = readWholeFile(cache);
        if (!text)
            throw Exception(L"The online material library cannot be reached", why);
        AppLogMgr::appLog(toWide("Online library: answering from the index kept in " + cache.string() + " (" + why + ")"));
        return remember(readOnlineLibraryIndex(*text));
    };
    if (m_settings.offline)
        return fromCache("offline");
    if (m_settings.baseUrl.empty())
        throw Exception(L"No online material library is set", "KX_ONLINE_LIBRARY is empty");

    std::error_code ignored;
    std::filesystem::create_directories(m_settings.downloadDirectory, ignored);
    TempFile fetched = TempFile::beside(cache);
    HttpRequest request;
    request.url = m_settings.urlOf("index.json");
    request.file = fetched.path();
    request.maxBytes = OnlineIndexLimits{}.maxBytes;
    request.bearerToken = m_settings.accessToken;
    if (std::filesystem::exists(cache, ignored))
        request.ifNoneMatch = readWholeFile(etagFile).value_or("");
    const HttpResult result = runWithRetries(m_settings, request, cancelled, false);
    if (result.outcome == ETransferOutcome::eNotModified)
        return fromCache("not modified");
    if (result.outcome != ETransferOutcome::eDone) {
        if (result.outcome == ETransferOutcome::eCancelled || result.outcome == ETransferOutcome::eClientError)
            throw Exception(L"The online material library index cannot be read", result.message);
        return fromCache(result.message);
    }
    OnlineLibraryIndex index = readOnlineLibraryIndex(readWholeFile(fetched.path()).value_or(""));
    if (installTempFile(fetched, cache)) {
        if (result.etag.empty())
            std::filesystem::remove(etagFile, ignored);
        else
            (void)writeFileAtomically(etagFile, result.etag);
    }
    return remember(std::move(index));
}

void CMExchangeMaterialHelper::run()
{
    for (;;) {
        std::shared_ptr<Job> job;
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [this] { return m_stopping || !m_queue.empty(); });
            if (m_stopping)
                return;
            job = m_queue.front();
            m_queue.pop_front();
            m_running = job;
        }
        try {
            perform(*job);
        } catch (const std::exception& error) {
            // Every failure of a job ends it with its reason, as the manager expects an answer.
            const std::wstring message = toWide(error.what());
            const std::wstring key = job->key;
            const std::wstring category = toWide(job->id);
            if (job->cancelled && job->kind != Job::eCategories && job->kind != Job::eContent)
                post([key](Completion& c) { c.manager.CancelMaterialDownloadComplete(key); });
            else if (job->kind == Job::eCategories)
                post([category, message](Completion& c) { c.manager.QueryLibraryCategoryComplete(category, false, message, {}); });
            else if (job->kind == Job::eContent)
                post([category, message](Completion& c) { c.manager.QueryLibraryContentComplete(category, false, message, {}); });
            else
                post([key, message](Completion& c) { c.manager.DownloadComplete(key, false, message); });
        }
        std::lock_guard lock(m_mutex);
        m_running.reset();
    }
}

void CMExchangeMaterialHelper::perform(Job& job)
{
    const std::wstring key = job.key;
    const OnlineLibraryIndex index = currentIndex(job.refresh, job.cancelled);
    ProgressListener listener;
    {
        std::lock_guard lock(m_mutex);
        listener = m_progress;
    }
    const auto progress = [&](std::uint64_t done, std::uint64_t total) {
        if (listener)
            listener(key, done, total);
    };
    const auto fail = [&](const std::string& message) {
        post([key, message = toWide(message)](Completion& c) { c.manager.DownloadComplete(key, false, message); });
    };
    const auto cancelled = [&] {
        post([key](Completion& c) { c.manager.CancelMaterialDownloadComplete(key); });
    };

    switch (job.kind) {
    case Job::eCategories: {
        std::vector<ExchangeMaterialEvent::CategoryInfo> categories;
        for (const OnlineCategory& category : index.categories) {
            if (category.parent == job.id)
                categories.push_back({toWide(category.id), toWide(category.name), toWide(category.parent), category.materialCount, {}});
        }
        post([category = toWide(job.id), categories](Completion& c) {
            c.manager.QueryLibraryCategoryComplete(category, true, {}, categories);
        });
        return;
    }
    case Job::eContent: {
        std::vector<std::pair<ExchangeMaterialEvent::MaterialInfo, std::string>> found;
        for (const OnlineMaterial& material : index.materials) {
            const bool inCategory = job.id.empty() || material.category == job.id || material.category.starts_with(job.id + "/");
            const bool ofType = job.assetType.empty() || material.assetType == job.assetType;
            const bool named = job.searchText.empty() || material.name.find(job.searchText) != std::string::npos;
            if (inCategory && ofType && named)
                found.emplace_back(infoOf(material, index.name), material.materialId);
        }
        post([category = toWide(job.id), found](Completion& c) {
            std::vector<ExchangeMaterialEvent::MaterialInfo> materials;
            for (const auto& [info, materialId] : found) {
                materials.push_back(info);
                materials.back().downloaded = c.downloaded.has(materialId);
            }
            c.manager.QueryLibraryContentComplete(category, true, {}, materials);
        });
        return;
    }
    case Job::eMaterial: {
        const OnlineMaterial* material = index.findMaterial(job.id);
        if (material == nullptr)
            return fail("The online library has no material " + job.id);
        if (m_settings.offline) {
            // Offline, only a material that is installed already can be answered for.
            post([key, material = *material](Completion& c) {
                const bool installed = c.downloaded.has(material.materialId);
                c.manager.DownloadComplete(key, installed, installed ? L"" : L"offline: the material is not installed");
            });
            return;
        }
        std::error_code ignored;
        std::filesystem::create_directories(m_settings.downloadDirectory, ignored);
        auto downloaded = std::make_shared<TempFile>(TempFile::beside(m_downloaded->file()));
        const VerifiedDownloadResult result = downloadVerified(m_settings, material->file, downloaded->path(), job.cancelled, progress);
        if (!result.verified || job.cancelled) {
            // The partial file goes before the news does: whoever hears of it finds nothing left.
            downloaded.reset();
            return job.cancelled || result.outcome == ETransferOutcome::eCancelled ? cancelled() : fail(result.message);
        }
        std::vector<std::pair<std::wstring, std::filesystem::path>> textures;
        for (const OnlineTexture& texture : material->textures)
            textures.emplace_back(toWide(texture.id), texturePath(texture.id));
        post([key, material = *material, downloaded, textures](Completion& c) {
            const std::string problem = c.downloaded.install(downloaded->path(), material);
            if (problem.empty()) {
                std::vector<std::wstring> ids;
                for (const auto& [id, path] : textures)
                    ids.push_back(id);
                c.textures.setRecordTextures(key, ids);
                for (const auto& [id, path] : textures) {
                    std::error_code missing;
                    if (std::filesystem::exists(path, missing))
                        c.textures.setRecordTextureResolved(key, id);
                }
                c.manager.SetDownloadedLibraryID(c.downloaded.libraryId());
            }
            c.manager.DownloadComplete(key, problem.empty(), toWide(problem));
        });
        return;
    }
    case Job::eTexture:
    case Job::eThumbnail: {
        const OnlineFile* file = nullptr;
        std::filesystem::path target;
        if (job.kind == Job::eTexture) {
            const auto [material, texture] = index.findTexture(job.id);
            if (texture != nullptr) {
                file = &texture->file;
                target = texturePath(texture->id);
            }
        } else if (const OnlineMaterial* material = index.findMaterial(job.id); material != nullptr && material->thumbnail) {
            file = &*material->thumbnail;
            target = thumbnailPath(*material);
        }
        if (file == nullptr)
            return fail("The online library has no " + std::string(job.kind == Job::eTexture ? "texture " : "thumbnail of ") + job.id);
        std::error_code exists;
        if (std::filesystem::exists(target, exists)) {
            post([key](Completion& c) { c.manager.DownloadComplete(key, true, {}); });
            return;
        }
        if (m_settings.offline)
            return fail("offline: " + job.id + " is not installed");
        std::filesystem::create_directories(target.parent_path(), exists);
        std::optional<TempFile> downloaded = TempFile::beside(target);
        const VerifiedDownloadResult result = downloadVerified(m_settings, *file, downloaded->path(), job.cancelled, progress);
        const bool installed = result.verified && !job.cancelled && installTempFile(*downloaded, target);
        downloaded.reset();
        if (job.cancelled || result.outcome == ETransferOutcome::eCancelled)
            return cancelled();
        if (!installed)
            return fail(result.verified ? job.id + " could not be installed at " + target.string() : result.message);
        post([key](Completion& c) { c.manager.DownloadComplete(key, true, {}); });
        return;
    }
    }
}

} // namespace Kx::Types
