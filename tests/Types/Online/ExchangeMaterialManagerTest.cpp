// The download manager's rules, with a helper that only records what it is asked: what starts,
// what is refused, what is announced and what is ignored.
#include "OnlineTestSupport.h"

#include <base/Assert.h>
#include <base/LiveUpdateEvent.h>
#include <base/OS.h>
#include <base/OldNotificationCenter.h>

#include <thread>

namespace OnlineTest {
namespace {

using Kx::ExchangeMaterialEvent;

struct RecordingHelper : Kx::ExchangeMaterialHelperInterface {
    std::vector<std::wstring> calls;
    void DownloadMaterial(const std::wstring& library, const std::wstring& uuid, bool environment) override
    {
        calls.push_back(L"material " + library + L" " + uuid + (environment ? L" environment" : L""));
    }
    void DownloadTexture(const std::wstring&, const std::wstring& uuid) override { calls.push_back(L"texture " + uuid); }
    void DownloadThumbnail(const std::wstring&, const std::wstring& uuid) override { calls.push_back(L"thumbnail " + uuid); }
    void CancelDownloadMaterial(const std::wstring&, const std::wstring& uuid) override { calls.push_back(L"cancel " + uuid); }
    void QueryLibraryCategory(const std::wstring&, const std::wstring&, const std::wstring& parent, bool) override
    {
        calls.push_back(L"categories " + parent);
    }
};

class ExchangeMaterialManagerRules : public ::testing::Test {
protected:
    ExchangeMaterialManagerRules()
    {
        Kx::OS::markUIThread();
        Kx::ExchangeMaterialManager::SetExchangeMaterialHelper(&helper);
        Kx::OldNotificationCenter::get().clear();
    }
    ~ExchangeMaterialManagerRules() override { Kx::ExchangeMaterialManager::SetExchangeMaterialHelper(nullptr); }

    KxTest::TempDir folder;
    Kx::MaterialLocalTexRecordManager records{folder / "records.json"};
    Kx::ExchangeMaterialManager manager{nullptr, &records};
    RecordingHelper helper;
    RecordingSite site;
};

TEST_F(ExchangeMaterialManagerRules, ASecondRequestForAMaterialInFlightStartsNothing)
{
    manager.DownloadMaterial(L"LIB", L"materialappearance", L"U1");
    manager.DownloadMaterial(L"LIB", L"materialappearance", L"U1");
    manager.DownloadMaterial(L"LIB", L"environment", L"U2");
    EXPECT_EQ(helper.calls, (std::vector<std::wstring>{L"material LIB U1", L"material LIB U2 environment"}));
    EXPECT_TRUE(manager.isMaterialDownloading(L"U1"));
    EXPECT_TRUE(manager.isMaterialDownloading(L"LIB", L"U1"));
    EXPECT_FALSE(manager.isMaterialDownloading(L"OTHER", L"U1"));
    EXPECT_FALSE(manager.isAllDownloadCompleted());
}

TEST_F(ExchangeMaterialManagerRules, WithDownloadsDisabledARequestOnlyLogs)
{
    manager.EnableDownload(false);
    EXPECT_FALSE(manager.EnableDownload());
    manager.DownloadMaterial(L"LIB", L"materialappearance", L"U1");
    manager.QueryLibraryCategory(L"LIB", L"", L"Metal");
    manager.DownloadMaterialThumbnail(L"LIB", L"", L"U1");
    EXPECT_TRUE(helper.calls.empty());
    EXPECT_TRUE(site.events.empty());
    EXPECT_TRUE(manager.isAllDownloadCompleted());
}

TEST_F(ExchangeMaterialManagerRules, DuringALiveUpdateARequestFailsAtOnceAndTheUserIsTold)
{
    Kx::LiveUpdateEvent update;
    manager.minorUpdateRequested(&update);
    EXPECT_TRUE(Kx::OldNotificationCenter::get().sent().empty()); // nothing was in flight to cancel
    manager.DownloadMaterial(L"LIB", L"materialappearance", L"U1");
    EXPECT_TRUE(helper.calls.empty());
    ASSERT_EQ(site.events.size(), 1u);
    EXPECT_EQ(site.events[0].GetDownloadType(), ExchangeMaterialEvent::eDownloadMaterial);
    EXPECT_FALSE(site.events[0].GetIsDownloadSuccess());
    EXPECT_EQ(site.events[0].GetMaterialID(), L"U1");
    EXPECT_EQ(site.events[0].GetAssetType(), L"materialappearance");
    const auto notices = Kx::OldNotificationCenter::get().sent();
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0].type, L"Finished");
    EXPECT_EQ(notices[0].id, L"EMBDisabledMessageID");
    EXPECT_EQ(notices[0].title, L"Material Downloading has been Disabled");
    EXPECT_EQ(notices[0].text.rfind(L"Material downloading has been temporarily disabled due to a live update", 0), 0u);

    // Completions of work started before are ignored while it lasts.
    manager.liveUpdateFinished();
    manager.DownloadMaterial(L"LIB", L"", L"U2");
    manager.majorUpdateRequested(&update);
    EXPECT_TRUE(manager.isAllDownloadCompleted());
    EXPECT_EQ(helper.calls.back(), L"cancel U2");
    manager.DownloadComplete(L"U2", true, L"");
    EXPECT_EQ(site.events.size(), 1u);
}

TEST_F(ExchangeMaterialManagerRules, ACompletionIsAnnouncedOnceAndALateOneIsIgnored)
{
    manager.DownloadMaterial(L"LIB", L"materialappearance", L"U1");
    manager.DownloadComplete(L"U1", false, L"the server answered 404");
    manager.DownloadComplete(L"U1", true, L"");
    manager.DownloadComplete(L"NEVER", true, L"");
    ASSERT_EQ(site.events.size(), 1u);
    EXPECT_EQ(site.events[0].GetDownloadMessage(), L"the server answered 404");
    EXPECT_EQ(site.events[0].GetLibraryID(), L"LIB");
    EXPECT_FALSE(manager.isMaterialDownloading(L"U1"));
}

TEST_F(ExchangeMaterialManagerRules, ACancellationGoesToTheHelperOnlyForWhatIsInFlight)
{
    manager.CancelDownloadMaterial(L"LIB", L"U1");
    EXPECT_TRUE(helper.calls.empty());
    manager.DownloadMaterial(L"LIB", L"", L"U1");
    manager.DownloadMaterial(L"OTHER", L"", L"U2");
    manager.CancelDownloadMaterials(L"LIB");
    EXPECT_EQ(helper.calls.back(), L"cancel U1");
    manager.CancelMaterialDownloadComplete(L"U1");
    ASSERT_EQ(site.events.size(), 1u);
    EXPECT_EQ(site.events[0].GetDownloadType(), ExchangeMaterialEvent::eCancelDownload);
    EXPECT_TRUE(manager.isMaterialDownloading(L"U2"));
}

TEST_F(ExchangeMaterialManagerRules, ACategoryQueryIsKeptUnderItsKeyUntilItCompletes)
{
    manager.QueryLibraryCategory(L"LIB", L"", L"Metal");
    manager.QueryLibraryCategory(L"LIB", L"", L"Metal");
    EXPECT_EQ(helper.calls, std::vector<std::wstring>{L"categories Metal"});
    EXPECT_TRUE(manager.isMaterialDownloading(L"QueryCategory_Metal"));
    manager.QueryLibraryCategoryComplete(L"Metal", true, L"", {{L"Metal/Steel", L"Steel", L"Metal", 3, {}}});
    ASSERT_EQ(site.events.size(), 1u);
    EXPECT_EQ(site.events[0].GetDownloadType(), ExchangeMaterialEvent::eQueryCategoryList);
    EXPECT_EQ(site.events[0].GetCategoryList().at(0).materialCount, 3u);
    manager.QueryLibraryCategory(L"LIB", L"", L"Metal");
    EXPECT_EQ(helper.calls.size(), 2u);
}

TEST_F(ExchangeMaterialManagerRules, TheTexturesOfAMaterialAreAnnouncedWhenTheLastIsResolved)
{
    records.setRecordTextures(L"M", {L"M/a.png", L"M/b.png"});
    manager.DownloadMaterialTexture(L"LIB", L"", L"M/a.png");
    manager.DownloadMaterialTexture(L"LIB", L"", L"M/b.png");
    manager.DownloadComplete(L"M/a.png", true, L"");
    EXPECT_TRUE(site.events.empty());
    manager.DownloadComplete(L"M/b.png", true, L"");
    ASSERT_EQ(site.events.size(), 1u);
    EXPECT_EQ(site.events[0].GetDownloadType(), ExchangeMaterialEvent::eTexturesResolved);
    EXPECT_EQ(site.events[0].GetMaterialID(), L"M");
    // The records are kept on disk.
    Kx::MaterialLocalTexRecordManager reread(records.file());
    EXPECT_TRUE(reread.getRecordResolved(L"M"));
}

TEST_F(ExchangeMaterialManagerRules, ARequestOffTheUIThreadIsReportedAndItsEventsReachNobody)
{
    Kx::ScopedAssertionCapture capture;
    std::thread([&] {
        manager.DownloadMaterial(L"LIB", L"", L"U1");
        manager.DownloadComplete(L"U1", true, L"");
    }).join();
    ASSERT_GE(capture.count(), 2u);
    EXPECT_EQ(capture.reports()[0].condition, "OS::platformIsUIThread()");
    EXPECT_TRUE(site.events.empty());
}

} // namespace
} // namespace OnlineTest
