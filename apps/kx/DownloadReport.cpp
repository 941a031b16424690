#include "DownloadReport.h"

#include <Types/Appearance/ExchangeMaterialEvent.h>
#include <Types/Appearance/ExchangeMaterialEventSite.h>
#include <Types/Appearance/ExchangeMaterialEventSource.h>
#include <Types/Appearance/ExchangeMaterialManager.h>
#include <Types/Online/OnlineDownloads.h>

#include <base/Strings.h>
#include <base/UIThreadQueue.h>

#include <chrono>
#include <cstdlib>
#include <string>

namespace Kx::Console {

class DownloadReport::Site final : public ExchangeMaterialEventSite {
public:
    Site(std::ostream& out, std::ostream& err) : m_out(out), m_err(err) {}

    void exchangeMaterialDownloaded(ExchangeMaterialEvent* event) override
    {
        using Event = ExchangeMaterialEvent;
        std::string what;
        switch (event->GetDownloadType()) {
        case Event::eDownloadMaterial: what = "Material Download: " + ToUTF8(event->GetMaterialID()); break;
        case Event::eDownloadThumbnail: what = "Download Material Thumbnail: " + ToUTF8(event->GetMaterialID()); break;
        case Event::eQueryCategoryList:
            what = "Query Library Category: " + std::to_string(event->GetCategoryList().size()) + " categories";
            break;
        case Event::eQuerymaterialInfoList:
            what = "Query Library Content: " + std::to_string(event->GetMaterialInfoList().size()) + " materials";
            break;
        case Event::eCancelDownload: what = "Material Download: " + ToUTF8(event->GetMaterialID()) + " cancelled"; break;
        default: return;
        }
        if (event->GetIsDownloadSuccess() || event->GetDownloadType() == Event::eCancelDownload) {
            m_out << what << (event->GetDownloadType() == Event::eDownloadMaterial ? " installed" : "") << '\n';
            return;
        }
        failed = true;
        std::string message = ToUTF8(event->GetDownloadMessage());
        for (char& c : message) {
            if (c == '\n' || c == '\r')
                c = ' ';
        }
        m_err << "kx: " << what << " failed: " << message << '\n';
    }

    bool failed = false;

private:
    std::ostream& m_out;
    std::ostream& m_err;
};

DownloadReport::DownloadReport(std::ostream& out, std::ostream& err) : m_site(new Site(out, err))
{
    ExchangeMaterialEventSource::get().subscribe(m_site);
}

DownloadReport::~DownloadReport()
{
    ExchangeMaterialEventSource::get().unsubscribe(m_site);
    delete m_site;
}

void DownloadReport::pump() { (void)UIThreadQueue::get().pump(); }

int DownloadReport::finish(int status)
{
    ExchangeMaterialManager& manager = ExchangeMaterialManager::GetInstance();
    const char* configured = std::getenv("KX_DOWNLOAD_WAIT");
    const auto wait = std::chrono::seconds(configured != nullptr ? std::atoi(configured) : 120);
    const auto until = std::chrono::steady_clock::now() + wait;
    pump();
    while (!manager.isAllDownloadCompleted() && std::chrono::steady_clock::now() < until)
        (void)UIThreadQueue::get().waitAndPump(std::chrono::milliseconds(50));
    pump();
    const bool unfinished = !manager.isAllDownloadCompleted();
    if (unfinished)
        ExchangeMaterialManager::GetInstance().CancelDownloadMaterials();
    Types::ShutdownExchangeMaterialHelper();
    return unfinished || m_site->failed ? std::max(status, 1) : status;
}

} // namespace Kx::Console
