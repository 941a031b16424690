#include "Types/Online/OnlineDownloads.h"

#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/ExchangeMaterialEventSite.h"
#include "Types/Appearance/ExchangeMaterialEventSource.h"
#include "Types/Appearance/ExchangeMaterialManager.h"
#include "Types/Appearance/MaterialLocalTexRecordManager.h"
#include "Types/Online/ExchangeMaterialHelper.h"

#include <base/UIThreadQueue.h>

#include <memory>

namespace Kx::Types {

namespace {

std::unique_ptr<CMExchangeMaterialHelper>& applicationHelper()
{
    static std::unique_ptr<CMExchangeMaterialHelper> s_helper;
    return s_helper;
}

// Keeps the first event `wanted` accepts while it is subscribed.
class WaitingSite final : public ExchangeMaterialEventSite {
public:
    explicit WaitingSite(const std::function<bool(const ExchangeMaterialEvent&)>& wanted) : m_wanted(wanted)
    {
        ExchangeMaterialEventSource::get().subscribe(this);
    }
    ~WaitingSite() override { ExchangeMaterialEventSource::get().unsubscribe(this); }
    void exchangeMaterialDownloaded(ExchangeMaterialEvent* event) override
    {
        if (!heard && m_wanted(*event))
            heard = *event;
    }

    std::optional<ExchangeMaterialEvent> heard;

private:
    const std::function<bool(const ExchangeMaterialEvent&)>& m_wanted;
};

} // namespace

CMExchangeMaterialHelper& InstallExchangeMaterialHelper()
{
    std::unique_ptr<CMExchangeMaterialHelper>& helper = applicationHelper();
    if (!helper) {
        helper = std::make_unique<CMExchangeMaterialHelper>(OnlineLibrarySettings::fromEnvironment(),
            ExchangeMaterialManager::GetInstance(), *AmbrelManager::GetAmbrelManager(true), MaterialLocalTexRecordManager::get());
        ExchangeMaterialManager::SetExchangeMaterialHelper(helper.get());
    }
    return *helper;
}

void ShutdownExchangeMaterialHelper()
{
    if (applicationHelper()) {
        ExchangeMaterialManager::SetExchangeMaterialHelper(nullptr);
        applicationHelper().reset();
    }
}

std::optional<ExchangeMaterialEvent> WaitForExchangeMaterialEvent(
    const std::function<bool(const ExchangeMaterialEvent&)>& wanted, std::chrono::milliseconds timeout)
{
    WaitingSite site(wanted);
    const auto until = std::chrono::steady_clock::now() + timeout;
    while (!site.heard && std::chrono::steady_clock::now() < until)
        (void)UIThreadQueue::get().waitAndPump(std::chrono::milliseconds(50));
    return site.heard;
}

std::optional<ExchangeMaterialEvent> DownloadMaterialAndWait(const std::wstring& uuid, std::chrono::milliseconds timeout,
    const std::wstring& libraryId, const std::wstring& assetType)
{
    const std::function<bool(const ExchangeMaterialEvent&)> ended = [&](const ExchangeMaterialEvent& event) {
        return event.GetMaterialID() == uuid
            && (event.GetDownloadType() == ExchangeMaterialEvent::eDownloadMaterial
                || event.GetDownloadType() == ExchangeMaterialEvent::eCancelDownload);
    };
    WaitingSite site(ended);
    ExchangeMaterialManager& manager = ExchangeMaterialManager::GetInstance();
    manager.DownloadMaterial(libraryId, assetType, uuid.c_str());
    const auto until = std::chrono::steady_clock::now() + timeout;
    while (!site.heard && std::chrono::steady_clock::now() < until) {
        // Refused at once (downloads disabled): nothing is in flight and no event will come.
        if (!manager.isMaterialDownloading(uuid) && UIThreadQueue::get().pending() == 0)
            break;
        (void)UIThreadQueue::get().waitAndPump(std::chrono::milliseconds(50));
    }
    return site.heard;
}

} // namespace Kx::Types
