#include "Types/Appearance/ExchangeMaterialManager.h"

#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/ExchangeMaterialEventSource.h"
#include "Types/Appearance/MaterialLocalTexRecordManager.h"

#include <base/AppLogMgr.h>
#include <base/Assert.h>
#include <base/OS.h>
#include <base/OldNotificationCenter.h>
#include <base/StringTable.h>

#include <atomic>

namespace Kx {

namespace {

std::atomic<ExchangeMaterialHelperInterface*> s_helper{nullptr};

// The helper that does nothing answers while the application has not installed its own.
ExchangeMaterialHelperInterface& helper()
{
    static ExchangeMaterialHelperInterface s_idle;
    ExchangeMaterialHelperInterface* installed = s_helper.load();
    return installed != nullptr ? *installed : s_idle;
}

void notifyUser(const wchar_t* id, const char* titleKey, const char* titleText, const char* contentKey,
    const char* contentText)
{
    OldNotificationCenter::get().sendNotification(L"Finished", id,
        StringTable::getLocalizedString("KxTypes", titleKey, titleText),
        StringTable::getLocalizedString("KxTypes", contentKey, contentText));
}

std::wstring requestLine(const wchar_t* caller, const std::wstring& libraryID, const std::wstring& type, const wchar_t* pUuid)
{
    return std::wstring(L"ExchangeMaterialManager::") + caller + L"(): libraryID=" + libraryID + L" type=" + type
        + L" pUuid=" + (pUuid != nullptr ? pUuid : L"");
}

// The material a texture belongs to: textures are listed as "<material UUID>/<file name>".
std::wstring materialOfTexture(const std::wstring& textureId)
{
    return textureId.substr(0, textureId.find(L'/'));
}

} // namespace

ExchangeMaterialManager& ExchangeMaterialManager::GetInstance()
{
    static ExchangeMaterialManager s_manager;
    return s_manager;
}

ExchangeMaterialManager::ExchangeMaterialManager(AmbrelManager* libraries, MaterialLocalTexRecordManager* textures)
    : m_libraries(libraries), m_textures(textures)
{
}

void ExchangeMaterialManager::SetExchangeMaterialHelper(ExchangeMaterialHelperInterface* helper)
{
    KX_ASSERT(OS::platformIsUIThread());
    s_helper = helper;
}

ExchangeMaterialHelperInterface* ExchangeMaterialManager::GetExchangeMaterialHelper()
{
    KX_ASSERT(OS::platformIsUIThread());
    return s_helper.load();
}

AmbrelManager* ExchangeMaterialManager::libraries() const
{
    return m_libraries != nullptr ? m_libraries : AmbrelManager::GetAmbrelManager(false);
}

MaterialLocalTexRecordManager& ExchangeMaterialManager::textures() const
{
    return m_textures != nullptr ? *m_textures : MaterialLocalTexRecordManager::get();
}

bool ExchangeMaterialManager::acceptsRequests(const wchar_t* caller) const
{
    if (!mbEnableDownload) {
        AppLogMgr::appLog(std::wstring(L"ExchangeMaterialManager::") + caller + L": mbEnableDownload=false");
        return false;
    }
    if (isLiveUpdateInProgress()) {
        AppLogMgr::appLog(std::wstring(L"ExchangeMaterialManager::") + caller + L": isLiveUpdateInProgress");
        return false;
    }
    return true;
}

bool ExchangeMaterialManager::recordRequest(const std::wstring& key, const Record& record)
{
    InFlightMap::accessor accessor;
    if (!m_inFlight.insert(accessor, key))
        return false;
    accessor->second = record;
    return true;
}

bool ExchangeMaterialManager::takeRecord(const std::wstring& key, Record& record)
{
    InFlightMap::accessor accessor;
    if (!m_inFlight.find(accessor, key))
        return false;
    record = accessor->second;
    m_inFlight.erase(accessor);
    return true;
}

void ExchangeMaterialManager::fire(ExchangeMaterialEvent& event) const
{
    ExchangeMaterialEventSource::get().fireExchangeMaterialDownloaded(&event);
}

void ExchangeMaterialManager::DownloadMaterial(const std::wstring& libraryID, const std::wstring& type, const wchar_t* pUuid)
{
    KX_ASSERT(OS::platformIsUIThread());
    AppLogMgr::appLog(requestLine(L"DownloadMaterial", libraryID, type, pUuid));
    const std::wstring uuid = pUuid != nullptr ? pUuid : L"";
    if (!mbEnableDownload) {
        AppLogMgr::appLog(L"ExchangeMaterialManager::DownloadMaterial: mbEnableDownload=false");
        return;
    }
    if (isLiveUpdateInProgress()) {
        AppLogMgr::appLog(L"ExchangeMaterialManager::DownloadMaterial: isLiveUpdateInProgress");
        ExchangeMaterialEvent event(Event::ePost);
        event.SetMaterialID(uuid);
        event.SetDownloadType(ExchangeMaterialEvent::eDownloadMaterial);
        event.SetIsDownloadSuccess(false);
        event.SetAssetType(type);
        fire(event);
        return;
    }
    if (!recordRequest(uuid, {libraryID, type, ExchangeMaterialEvent::eDownloadMaterial, uuid}))
        return;
    helper().DownloadMaterial(libraryID, uuid, type == L"environment");
}

void ExchangeMaterialManager::DownloadMaterialTexture(const std::wstring& libraryID, const std::wstring& type,
    const wchar_t* pUuid)
{
    KX_ASSERT(OS::platformIsUIThread());
    AppLogMgr::appLog(requestLine(L"DownloadMaterialTexture", libraryID, type, pUuid));
    const std::wstring uuid = pUuid != nullptr ? pUuid : L"";
    if (!acceptsRequests(L"DownloadMaterialTexture"))
        return;
    if (recordRequest(uuid, {libraryID, type, ExchangeMaterialEvent::eDownloadTexture, materialOfTexture(uuid)}))
        helper().DownloadTexture(libraryID, uuid);
}

void ExchangeMaterialManager::DownloadMaterialThumbnail(const std::wstring& libraryID, const std::wstring& type,
    const wchar_t* pUuid)
{
    KX_ASSERT(OS::platformIsUIThread());
    AppLogMgr::appLog(requestLine(L"DownloadMaterialThumbnail", libraryID, type, pUuid));
    const std::wstring uuid = pUuid != nullptr ? pUuid : L"";
    if (!acceptsRequests(L"DownloadMaterialThumbnail"))
        return;
    // Kept apart from the material's own download, which may run at the same time.
    if (recordRequest(thumbnailKey(uuid), {libraryID, type, ExchangeMaterialEvent::eDownloadThumbnail, uuid}))
        helper().DownloadThumbnail(libraryID, uuid);
}

void ExchangeMaterialManager::QueryLibraryCategory(const std::wstring& libraryID, const std::wstring& type,
    const std::wstring& category)
{
    KX_ASSERT(OS::platformIsUIThread());
    AppLogMgr::appLog(L"ExchangeMaterialManager::QueryLibraryCategory(): libraryID=" + libraryID + L" type=" + type
        + L" category=" + category);
    if (!acceptsRequests(L"QueryLibraryCategory"))
        return;
    if (recordRequest(categoryQueryKey(category), {libraryID, type, ExchangeMaterialEvent::eQueryCategoryList, category}))
        helper().QueryLibraryCategory(libraryID, type, category, false);
}

void ExchangeMaterialManager::QueryLibraryContent(const std::wstring& libraryID, const std::wstring& type,
    const std::wstring& category)
{
    KX_ASSERT(OS::platformIsUIThread());
    AppLogMgr::appLog(L"ExchangeMaterialManager::QueryLibraryContent(): libraryID=" + libraryID + L" type=" + type
        + L" category=" + category);
    if (!acceptsRequests(L"QueryLibraryContent"))
        return;
    if (recordRequest(contentQueryKey(category), {libraryID, type, ExchangeMaterialEvent::eQuerymaterialInfoList, category}))
        helper().QueryLibraryContent(libraryID, type, category, std::wstring(), false);
}

void ExchangeMaterialManager::CancelDownloadMaterial(const std::wstring& libraryID, const wchar_t* pUuid)
{
    KX_ASSERT(OS::platformIsUIThread());
    const std::wstring uuid = pUuid != nullptr ? pUuid : L"";
    AppLogMgr::appLog(L"ExchangeMaterialManager::CancelDownloadMaterial(): libraryID=" + libraryID + L" pUuid=" + uuid);
    if (!mbEnableDownload || isLiveUpdateInProgress() || !isMaterialDownloading(uuid))
        return;
    helper().CancelDownloadMaterial(libraryID, uuid);
}

void ExchangeMaterialManager::CancelDownloadMaterials(const std::wstring& libraryID)
{
    KX_ASSERT(OS::platformIsUIThread());
    AppLogMgr::appLog(L"ExchangeMaterialManager::CancelDownloadMaterials(): libraryID=" + libraryID);
    std::vector<std::pair<std::wstring, std::wstring>> chosen;
    for (const auto& [key, record] : m_inFlight) {
        if (record.downloadType == ExchangeMaterialEvent::eDownloadMaterial && (libraryID.empty() || record.libraryId == libraryID))
            chosen.emplace_back(record.libraryId, key);
    }
    for (const auto& [library, uuid] : chosen)
        CancelDownloadMaterial(library, uuid.c_str());
}

// Everything in flight, without the guards: a live update has locked downloads already. The
// records go at once, so whatever the helper still reports for them is ignored.
void ExchangeMaterialManager::cancelDownloadMaterials()
{
    std::vector<std::pair<std::wstring, Record>> all;
    for (const auto& [key, record] : m_inFlight)
        all.emplace_back(key, record);
    for (const auto& [key, record] : all) {
        Record taken;
        if (!takeRecord(key, taken))
            continue;
        // Queries end by themselves; transfers are stopped by the key they were started under.
        if (record.downloadType != ExchangeMaterialEvent::eQueryCategoryList
            && record.downloadType != ExchangeMaterialEvent::eQuerymaterialInfoList)
            helper().CancelDownloadMaterial(record.libraryId, key);
    }
}

void ExchangeMaterialManager::DownloadComplete(const std::wstring& uuid, bool success, const std::wstring& message)
{
    KX_ASSERT(OS::platformIsUIThread());
    AppLogMgr::appLog(L"ExchangeMaterialManager::DownloadComplete(): uuid=" + uuid + L" success="
        + (success ? L"true" : L"false") + L" message=" + message);
    if (m_liveUpdate || isAllDownloadCompleted())
        return;
    Record record;
    {
        InFlightMap::const_accessor accessor;
        if (!m_inFlight.find(accessor, uuid))
            return;
        record = accessor->second;
    }
    if (record.downloadType == ExchangeMaterialEvent::eDownloadTexture) {
        if (success) {
            textures().setRecordTextureResolved(record.materialId, uuid);
            if (textures().getRecordResolved(record.materialId)) {
                ExchangeMaterialEvent event(Event::ePost);
                event.SetDownloadType(ExchangeMaterialEvent::eTexturesResolved);
                event.SetIsDownloadSuccess(success);
                event.SetDownloadMessage(message);
                event.SetMaterialID(record.materialId);
                fire(event);
            }
        }
    } else {
        ExchangeMaterialEvent event(Event::ePost);
        event.SetIsDownloadSuccess(success);
        event.SetDownloadMessage(message);
        event.SetDownloadType(static_cast<ExchangeMaterialEvent::EDownloadType>(record.downloadType));
        event.SetMaterialID(record.materialId);
        event.SetLibraryID(record.libraryId);
        event.SetAssetType(record.assetType);
        fire(event);
    }
    if (success && record.downloadType == ExchangeMaterialEvent::eDownloadMaterial)
        refreshDownloadedLibrary();
    Record removed;
    (void)takeRecord(uuid, removed);
}

std::optional<ExchangeMaterialEvent> ExchangeMaterialManager::finishedQuery(const std::wstring& key,
    ExchangeMaterialEvent::EDownloadType type, const std::wstring& category, bool success, const std::wstring& message)
{
    KX_ASSERT(OS::platformIsUIThread());
    Record record;
    if (m_liveUpdate || !takeRecord(key, record))
        return std::nullopt;
    const int downloadType = record.downloadType;
    KX_ASSERT(downloadType == (int)type);
    ExchangeMaterialEvent event(Event::ePost);
    event.SetDownloadType(type);
    event.SetIsDownloadSuccess(success);
    event.SetDownloadMessage(message);
    event.SetLibraryID(record.libraryId);
    event.SetAssetType(record.assetType);
    event.SetCategory(category);
    return event;
}

void ExchangeMaterialManager::QueryLibraryCategoryComplete(const std::wstring& category, bool success,
    const std::wstring& message, const std::vector<ExchangeMaterialEvent::CategoryInfo>& categories)
{
    auto event = finishedQuery(categoryQueryKey(category), ExchangeMaterialEvent::eQueryCategoryList, category, success, message);
    if (!event)
        return;
    event->SetCategoryList(categories);
    fire(*event);
}

void ExchangeMaterialManager::QueryLibraryContentComplete(const std::wstring& category, bool success,
    const std::wstring& message, const std::vector<ExchangeMaterialEvent::MaterialInfo>& materials)
{
    auto event = finishedQuery(contentQueryKey(category), ExchangeMaterialEvent::eQuerymaterialInfoList, category, success, message);
    if (!event)
        return;
    event->SetMaterialInfoList(materials);
    fire(*event);
}

void ExchangeMaterialManager::CancelMaterialDownloadComplete(const std::wstring& uuid)
{
    KX_ASSERT(OS::platformIsUIThread());
    AppLogMgr::appLog(L"ExchangeMaterialManager::CancelMaterialDownloadComplete(): uuid=" + uuid);
    Record record;
    if (m_liveUpdate || !takeRecord(uuid, record))
        return;
    ExchangeMaterialEvent event(Event::ePost);
    event.SetDownloadType(ExchangeMaterialEvent::eCancelDownload);
    event.SetIsDownloadSuccess(false);
    event.SetMaterialID(record.materialId);
    event.SetLibraryID(record.libraryId);
    event.SetAssetType(record.assetType);
    fire(event);
}

bool ExchangeMaterialManager::IsMaterialDownloaded(const std::wstring& uuid) const
{
    return helper().IsMaterialDownloaded(uuid);
}

ExMaterialStatus ExchangeMaterialManager::QueryMaterialStatus(const std::wstring& libraryID, const std::wstring& uuid) const
{
    return helper().QueryMaterialStatus(libraryID, uuid);
}

bool ExchangeMaterialManager::isMaterialDownloading(const std::wstring& uuid) const
{
    InFlightMap::const_accessor accessor;
    return m_inFlight.find(accessor, uuid);
}

bool ExchangeMaterialManager::isMaterialDownloading(const wchar_t* pUuid) const
{
    return pUuid != nullptr && isMaterialDownloading(std::wstring(pUuid));
}

bool ExchangeMaterialManager::isMaterialDownloading(const std::wstring& libraryID, const std::wstring& uuid) const
{
    InFlightMap::const_accessor accessor;
    return m_inFlight.find(accessor, uuid) && accessor->second.libraryId == libraryID;
}

void ExchangeMaterialManager::majorUpdateRequested(LiveUpdateEvent* event)
{
    minorUpdateRequested(event);
}

void ExchangeMaterialManager::minorUpdateRequested(LiveUpdateEvent*)
{
    m_liveUpdate = true;
    if (!isAllDownloadCompleted()) {
        cancelDownloadMaterials();
        notifyUser(L"EMBCanceledMessageID", "EMBCanceledMessageTitle", "Material Downloads have been canceled",
            "EMBCanceledMessageContent",
            "Ongoing material downloads have been canceled. A live update is in progress and the material library has "
            "been locked to avoid potential damage to local user data.");
    }
}

bool ExchangeMaterialManager::isLiveUpdateInProgress() const
{
    if (!m_liveUpdate)
        return false;
    notifyUser(L"EMBDisabledMessageID", "EMBDisabledMessageTitle", "Material Downloading has been Disabled",
        "EMBDisabledMessageContent",
        "Material downloading has been temporarily disabled due to a live update currently in progress. The material "
        "library has been locked to avoid potential damage to local user data.");
    return true;
}

void ExchangeMaterialManager::SetDownloadedLibraryID(const std::wstring& libraryId)
{
    m_downloadedLibraryId = libraryId;
}

void ExchangeMaterialManager::refreshDownloadedLibrary()
{
    AmbrelManager* manager = libraries();
    if (manager != nullptr && !m_downloadedLibraryId.empty())
        manager->RefreshLibraryByIdentifier(m_downloadedLibraryId);
}

} // namespace Kx
