// Downloads from a real HTTP server on loopback: what is installed, what is refused, and that a
// failure or a cancellation leaves nothing behind.
#include "OnlineTestSupport.h"

#include <Types/Appearance/AmbrelManager.h>
#include <Types/Online/DownloadedMaterialLibrary.h>
#include <Types/Online/Sha256.h>

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <base/AppLogMgr.h>
#include <base/LiveUpdateEvent.h>
#include <base/OldNotificationCenter.h>
#include <base/UIThreadQueue.h>
#include <core/Strings.h>

#include <fstream>

namespace OnlineTest {
namespace {

using Kx::ExchangeMaterialEvent;
using telvarin::platform::core::toWide;

using OnlineDownload = OnlineFixture;

std::wstring wide(const std::string& text)
{
    return toWide(text);
}

std::string narrow(const std::wstring& text)
{
    return telvarin::platform::core::toUTF8(text);
}

TEST_F(OnlineDownload, AMaterialIsInstalledIntoItsLibraryAndTheLibraryShowsIt)
{
    const Kx::Types::OnlineMaterial& material = materialWithTexture();
    makeHelper();
    EXPECT_EQ(manager.QueryMaterialStatus(L"", wide(material.uuid)), Kx::eExMaterialUnknown);
    manager.DownloadMaterial(L"", L"materialappearance", wide(material.uuid).c_str());
    EXPECT_TRUE(manager.isMaterialDownloading(wide(material.uuid)));
    ASSERT_TRUE(waitForEvents(1));

    const ExchangeMaterialEvent& event = site.events.front();
    EXPECT_EQ(event.GetDownloadType(), ExchangeMaterialEvent::eDownloadMaterial);
    EXPECT_TRUE(event.GetIsDownloadSuccess());
    EXPECT_EQ(event.GetMaterialID(), wide(material.uuid));
    EXPECT_TRUE(manager.isAllDownloadCompleted());
    EXPECT_TRUE(manager.IsMaterialDownloaded(wide(material.uuid)));
    EXPECT_EQ(manager.QueryMaterialStatus(L"", wide(material.uuid)), Kx::eExMaterialDownloaded);

    // The library manager has the library open and finds the material in it.
    Kx::AmbrelManager& libraries = *Kx::AmbrelManager::GetAmbrelManager(false);
    const std::wstring libraryId = helper->downloadedLibrary().libraryId();
    ASSERT_FALSE(libraryId.empty());
    const auto* library = libraries.GetLibraryByIdentifier(libraryId);
    ASSERT_NE(library, nullptr);
    EXPECT_NE(library->FindAssetDefinition(material.materialId), nullptr);
    telvarin::platform::assets::InstancePtr instance(libraries.GetAssetUncacheInstance(material.materialId, libraryId));
    EXPECT_NE(instance, nullptr);
    EXPECT_TRUE(leftovers().empty());

    // Its textures are recorded, not yet on this machine.
    const auto textures = records.getRecordTextures(wide(material.uuid));
    EXPECT_EQ(textures.size(), material.textures.size());
    EXPECT_FALSE(records.getRecordResolved(wide(material.uuid)));
}

TEST_F(OnlineDownload, TexturesResolvedAnnounceTheMaterialOnceAllAreIn)
{
    const Kx::Types::OnlineMaterial& material = materialWithTexture();
    makeHelper();
    manager.DownloadMaterial(L"", L"materialappearance", wide(material.uuid).c_str());
    ASSERT_TRUE(waitForEvents(1));
    for (const Kx::Types::OnlineTexture& texture : material.textures)
        manager.DownloadMaterialTexture(L"", L"materialappearance", wide(texture.id).c_str());
    ASSERT_TRUE(pumpUntil([&] { return manager.isAllDownloadCompleted(); }));
    EXPECT_EQ(site.count(ExchangeMaterialEvent::eTexturesResolved), 1u);
    EXPECT_TRUE(records.getRecordResolved(wide(material.uuid)));
    for (const Kx::Types::OnlineTexture& texture : material.textures) {
        const auto bytes = KxTest::readBytes(helper->texturePath(texture.id));
        EXPECT_EQ(Kx::Types::Sha256::ofBytes(bytes), texture.file.sha256);
    }
}

TEST_F(OnlineDownload, ADroppedConnectionIsResumedWithARangeAndTheHashMatches)
{
    const Kx::Types::OnlineMaterial& material = anyMaterial();
    server.setFault(material.file.path, Fault{.dropAfter = static_cast<std::int64_t>(material.file.size / 2)});
    makeHelper();
    manager.DownloadMaterial(L"", L"materialappearance", wide(material.uuid).c_str());
    ASSERT_TRUE(waitForEvents(1));
    EXPECT_TRUE(site.events.front().GetIsDownloadSuccess()) << narrow(site.events.front().GetDownloadMessage());
    const auto requests = server.requestsFor(material.file.path);
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].range, "");
    EXPECT_EQ(requests[1].range, "bytes=" + std::to_string(material.file.size / 2) + "-");
    EXPECT_TRUE(helper->downloadedLibrary().has(material.materialId));
}

// Each refusal: the download fails with its reason, nothing is installed and no file is left.
struct Refusal {
    const char* name;
    Fault fault;
    std::size_t requests; // how often the server is asked: only 5xx and stalls are tried again
    const char* message;
};

class OnlineRefusal : public OnlineFixture, public ::testing::WithParamInterface<Refusal> {};

TEST_P(OnlineRefusal, FailsInstallsNothingAndLeavesNothingBehind)
{
    const Kx::Types::OnlineMaterial& material = anyMaterial(1);
    Fault fault = GetParam().fault;
    if (fault.replaceBody == "same size") {
        fault.replaceBody = std::string(material.file.size, 'x');
    } else if (fault.replaceBody == "larger") {
        fault.replaceBody = std::string(material.file.size + 100000, 'x');
    }
    server.setFault(material.file.path, fault);
    makeHelper();
    const auto started = std::chrono::steady_clock::now();
    manager.DownloadMaterial(L"", L"materialappearance", wide(material.uuid).c_str());
    ASSERT_TRUE(waitForEvents(1));
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(8));
    const ExchangeMaterialEvent& event = site.events.front();
    EXPECT_FALSE(event.GetIsDownloadSuccess());
    EXPECT_NE(narrow(event.GetDownloadMessage()).find(GetParam().message), std::string::npos)
        << narrow(event.GetDownloadMessage());
    EXPECT_EQ(server.requestsFor(material.file.path).size(), GetParam().requests);
    EXPECT_FALSE(helper->downloadedLibrary().has(material.materialId));
    EXPECT_FALSE(manager.IsMaterialDownloaded(wide(material.uuid)));
    for (const auto& left : leftovers())
        ADD_FAILURE() << "left behind: " << left;
    EXPECT_TRUE(manager.isAllDownloadCompleted());
}

INSTANTIATE_TEST_SUITE_P(Refusals, OnlineRefusal,
    ::testing::Values(Refusal{"WrongHash", Fault{.replaceBody = "same size"}, 1, "SHA-256"},
        Refusal{"OversizedBody", Fault{.replaceBody = "larger"}, 1, "larger than allowed"},
        Refusal{"NotFound", Fault{.failuresFirst = 99, .failureStatus = 404}, 1, "404"},
        Refusal{"Forbidden", Fault{.failuresFirst = 99, .failureStatus = 403}, 1, "403"},
        Refusal{"ServerErrorEveryTime", Fault{.failuresFirst = 99, .failureStatus = 503}, 2, "503"},
        Refusal{"StallingServer", Fault{.stall = true}, 2, "in time"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(OnlineDownload, AServerErrorIsTriedAgainAfterAPause)
{
    const Kx::Types::OnlineMaterial& material = anyMaterial();
    server.setFault(material.file.path, Fault{.failuresFirst = 1, .failureStatus = 500});
    makeHelper();
    manager.DownloadMaterial(L"", L"materialappearance", wide(material.uuid).c_str());
    ASSERT_TRUE(waitForEvents(1));
    EXPECT_TRUE(site.events.front().GetIsDownloadSuccess());
    const auto requests = server.requestsFor(material.file.path);
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].status, 500);
}

TEST_F(OnlineDownload, CancellingDuringTheTransferLeavesNoPartialFile)
{
    const Kx::Types::OnlineMaterial& material = anyMaterial();
    server.setFault(material.file.path, Fault{.slowChunkMs = 50});
    std::atomic<bool> started{false};
    makeHelper().setProgressListener([&](const std::wstring&, std::uint64_t done, std::uint64_t) {
        if (done > 0)
            started = true;
    });
    manager.DownloadMaterial(L"", L"materialappearance", wide(material.uuid).c_str());
    ASSERT_TRUE(pumpUntil([&] { return started.load(); }));
    manager.CancelDownloadMaterial(L"", wide(material.uuid).c_str());
    ASSERT_TRUE(waitForEvents(1));
    EXPECT_EQ(site.events.front().GetDownloadType(), ExchangeMaterialEvent::eCancelDownload);
    EXPECT_EQ(site.events.front().GetMaterialID(), wide(material.uuid));
    EXPECT_TRUE(manager.isAllDownloadCompleted());
    EXPECT_FALSE(helper->downloadedLibrary().has(material.materialId));
    EXPECT_TRUE(leftovers().empty());
}

TEST_F(OnlineDownload, ALiveUpdateCancelsEverythingInFlightAndLocksDownloads)
{
    for (std::size_t which = 0; which < 3; ++which)
        server.setFault(anyMaterial(which).file.path, Fault{.slowChunkMs = 50});
    makeHelper();
    Kx::OldNotificationCenter::get().clear();
    for (std::size_t which = 0; which < 3; ++which)
        manager.DownloadMaterial(L"", L"materialappearance", wide(anyMaterial(which).uuid).c_str());
    EXPECT_EQ(manager.inFlightCount(), 3u);
    Kx::LiveUpdateEvent update(L"10.1");
    manager.minorUpdateRequested(&update);
    EXPECT_TRUE(manager.isAllDownloadCompleted());
    const auto notices = Kx::OldNotificationCenter::get().sent();
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0].id, L"EMBCanceledMessageID");
    EXPECT_EQ(notices[0].title, L"Material Downloads have been canceled");

    // The worker's late reports find no record: nothing is announced, nothing installed.
    helper.reset();
    (void)Kx::UIThreadQueue::get().pump();
    EXPECT_TRUE(site.events.empty());
    EXPECT_TRUE(leftovers().empty());
    manager.liveUpdateFinished();
}

TEST_F(OnlineDownload, TwoIdenticalCategoryQueriesWhileTheFirstRunsAskTheLibraryOnce)
{
    server.setFault("index.json", Fault{.slowChunkMs = 20});
    makeHelper();
    manager.QueryLibraryCategory(L"", L"", L"");
    manager.QueryLibraryCategory(L"", L"", L"");
    ASSERT_TRUE(waitForEvents(1));
    EXPECT_FALSE(pumpUntil([&] { return site.events.size() > 1; }, std::chrono::milliseconds(200)));
    EXPECT_EQ(server.requestsFor("index.json").size(), 1u);
    const ExchangeMaterialEvent& event = site.events.front();
    EXPECT_EQ(event.GetDownloadType(), ExchangeMaterialEvent::eQueryCategoryList);
    EXPECT_TRUE(event.GetIsDownloadSuccess());
    std::size_t topLevel = 0;
    for (const Kx::Types::OnlineCategory& category : publishedIndex().categories)
        topLevel += category.parent.empty() ? 1 : 0;
    EXPECT_EQ(event.GetCategoryList().size(), topLevel);
}

TEST_F(OnlineDownload, TheIndexIsRevalidatedByItsETagAndOfflineAnswersFromWhatIsInstalled)
{
    const Kx::Types::OnlineMaterial& installed = anyMaterial(0);
    const Kx::Types::OnlineMaterial& missing = anyMaterial(1);
    makeHelper();
    manager.DownloadMaterial(L"", L"", wide(installed.uuid).c_str());
    ASSERT_TRUE(waitForEvents(1));

    // A new session asks again with the ETag and is told nothing changed.
    makeHelper();
    manager.QueryLibraryContent(L"", L"", L"");
    ASSERT_TRUE(waitForEvents(2));
    const auto index = server.requestsFor("index.json");
    ASSERT_EQ(index.size(), 2u);
    EXPECT_FALSE(index[1].ifNoneMatch.empty());
    EXPECT_EQ(index[1].status, 304);
    const auto& listed = site.events[1].GetMaterialInfoList();
    EXPECT_EQ(listed.size(), publishedIndex().materials.size());
    const auto downloaded = std::count_if(listed.begin(), listed.end(), [](const auto& info) { return info.downloaded; });
    EXPECT_EQ(downloaded, 1);

    // Offline: no request at all; what is installed is answered, the rest fails.
    server.clearRequests();
    settings.offline = true;
    makeHelper();
    manager.DownloadMaterial(L"", L"", wide(installed.uuid).c_str());
    manager.DownloadMaterial(L"", L"", wide(missing.uuid).c_str());
    ASSERT_TRUE(waitForEvents(4));
    EXPECT_TRUE(site.events[2].GetIsDownloadSuccess());
    EXPECT_FALSE(site.events[3].GetIsDownloadSuccess());
    EXPECT_NE(site.events[3].GetDownloadMessage().find(L"offline"), std::wstring::npos);
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(OnlineDownload, TheAccessTokenIsSentAsABearerAndNeverLogged)
{
    const std::string token = "s3cret-token-7f1e";
    settings.accessToken = token;
    makeHelper();
    EXPECT_TRUE(helper->setAccessToken());
    manager.DownloadMaterial(L"", L"", wide(anyMaterial().uuid).c_str());
    ASSERT_TRUE(waitForEvents(1));
    for (const SeenRequest& request : server.requests())
        EXPECT_EQ(request.authorization, "Bearer " + token) << request.path;
    std::string logs;
    for (const auto& entry : std::filesystem::directory_iterator(Kx::AppLogMgr::logDirectory()))
        logs += KxTest::readText(entry.path());
    EXPECT_NE(logs.find(anyMaterial().file.path), std::string::npos); // the transfers are logged...
    EXPECT_EQ(logs.find(token), std::string::npos);                   // ...without the token
}

TEST_F(OnlineDownload, AHostileIndexFailsTheQueryAndIsNotKept)
{
    const std::vector<std::pair<const char*, std::string>> hostile = {
        {"not JSON", "{\"format\":"},
        {"climbs out", R"({"format":"kx-online-material-library","version":1,"libraryId":"","name":"x","categories":[],
            "materials":[{"uuid":"A","materialId":"a","libraryId":"","name":"a","assetType":"materialappearance",
            "file":{"path":"../../etc/passwd","size":1,"sha256":"0000000000000000000000000000000000000000000000000000000000000000"}}]})"},
        {"newer version", R"({"format":"kx-online-material-library","version":2})"},
    };
    for (const auto& [name, text] : hostile) {
        SCOPED_TRACE(name);
        server.setFault("index.json", Fault{.replaceBody = text});
        site.events.clear();
        makeHelper();
        manager.QueryLibraryContent(L"", L"", L"");
        ASSERT_TRUE(waitForEvents(1));
        EXPECT_FALSE(site.events.front().GetIsDownloadSuccess());
        EXPECT_TRUE(site.events.front().GetMaterialInfoList().empty());
        EXPECT_FALSE(std::filesystem::exists(settings.downloadDirectory / "index.json"));
        EXPECT_TRUE(leftovers().empty());
    }
}

TEST_F(OnlineDownload, AThumbnailIsInstalledBesideTheLibrary)
{
    const auto& materials = publishedIndex().materials;
    const auto withThumbnail = std::find_if(materials.begin(), materials.end(), [](const auto& m) { return m.thumbnail.has_value(); });
    ASSERT_NE(withThumbnail, materials.end());
    makeHelper();
    manager.DownloadMaterialThumbnail(L"", L"", wide(withThumbnail->uuid).c_str());
    ASSERT_TRUE(waitForEvents(1));
    EXPECT_EQ(site.events.front().GetDownloadType(), ExchangeMaterialEvent::eDownloadThumbnail);
    EXPECT_TRUE(site.events.front().GetIsDownloadSuccess());
    EXPECT_EQ(Kx::Types::Sha256::ofFile(helper->thumbnailPath(*withThumbnail)), withThumbnail->thumbnail->sha256);
}

} // namespace
} // namespace OnlineTest
