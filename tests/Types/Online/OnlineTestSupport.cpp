#include "OnlineTestSupport.h"

#include "../Appearance/AmbrelTestLibraries.h"

#include <Types/Appearance/AmbrelManager.h>
#include <Types/Appearance/ExchangeMaterialEventSource.h>
#include <Types/Online/OnlineLibraryPublisher.h>

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <base/OS.h>
#include <base/Paths.h>
#include <base/UIThreadQueue.h>

namespace OnlineTest {

RecordingSite::RecordingSite()
{
    Kx::ExchangeMaterialEventSource::get().subscribe(this);
}

RecordingSite::~RecordingSite()
{
    Kx::ExchangeMaterialEventSource::get().unsubscribe(this);
}

std::size_t RecordingSite::count(Kx::ExchangeMaterialEvent::EDownloadType type) const
{
    return static_cast<std::size_t>(std::count_if(events.begin(), events.end(),
        [&](const Kx::ExchangeMaterialEvent& event) { return event.GetDownloadType() == type; }));
}

namespace {

// One appearance with a thumbnail taken from its library.
void writeThumbnailLibrary(telvarin::platform::assets::IAssetLibraryManager& assets, const std::filesystem::path& file)
{
    using namespace telvarin::platform::assets;
    AssetError error;
    IAssetLibrary* library = assets.CreateAssetLibrary(file.wstring(), eUserLibrary, L"22222222-0000-4000-8000-000000000001", &error);
    ASSERT_NE(library, nullptr) << error.message;
    ASSERT_TRUE(assets.SaveAssetLibrary(library, &error)) << error.message;
    IWritableAssetLibrary* writer = assets.GetWritableAssetLibrary(library, &error);
    ASSERT_NE(writer, nullptr) << error.message;
    const std::vector<std::uint8_t> image{0x89, 'P', 'N', 'G', 1, 2, 3, 4, 5, 6};
    EXPECT_FALSE(writer->AddEmbeddedResource(L"thumbs/shiny.png", image, &error).empty()) << error.message;
    InstancePtr shiny(assets.CreateAssetInstance(L"CorvexOpaqueSchema"));
    shiny->SetStringValue(L"thumbnail", L"tvp:?asset=thumbs/shiny.png");
    shiny->SetName("eng", L"Shiny");
    EXPECT_TRUE(writer->CreateNewAssetPreset(shiny.get(), AssetPresetInfo{"shiny", {}, 1, 0, {}, {}, L"Metal", L"Polished"}, &error))
        << error.message;
    EXPECT_TRUE(assets.CommitAssetLibrary(writer, &error)) << error.message;
    assets.ReleaseWritableAssetLibrary(writer);
    assets.ReleaseAssetLibrary(library);
}

struct Published {
    KxTest::TempDir folder;
    Kx::Types::OnlineLibraryIndex index;

    Published()
    {
        const auto assets = telvarin::platform::assets::CreateAssetLibraryManager();
        const std::filesystem::path handMade = folder / "source" / "HandMade.tvrnlib";
        AmbrelTest::writeVisualLibraryFile(*assets, handMade);
        const std::filesystem::path thumbnails = folder / "source" / "Thumbnails.tvrnlib";
        writeThumbnailLibrary(*assets, thumbnails);
        index = Kx::Types::PublishOnlineLibrary({handMade, thumbnails}, folder / "online").index;
    }
};

const Published& published()
{
    static const Published s_published;
    return s_published;
}

} // namespace

const std::filesystem::path& handMadeLibrary()
{
    static const std::filesystem::path s_file = published().folder / "source" / "HandMade.tvrnlib";
    return s_file;
}

const std::filesystem::path& publishedLibrary()
{
    static const std::filesystem::path s_root = published().folder / "online";
    return s_root;
}

const Kx::Types::OnlineLibraryIndex& publishedIndex()
{
    return published().index;
}

const Kx::Types::OnlineMaterial& materialWithTexture()
{
    for (const Kx::Types::OnlineMaterial& material : publishedIndex().materials) {
        if (!material.textures.empty())
            return material;
    }
    throw std::logic_error("no published material has a texture");
}

const Kx::Types::OnlineMaterial& anyMaterial(std::size_t which)
{
    return publishedIndex().materials.at(which);
}

OnlineFixture::OnlineFixture()
{
    Kx::OS::markUIThread();
    settings.baseUrl = server.baseUrl();
    settings.downloadDirectory = folder / "downloads";
    settings.textureDirectory = folder / "textures";
    settings.limits.connectTimeout = std::chrono::milliseconds(1000);
    // A stalled transfer is given up after about a second; loopback runs far above this speed.
    settings.limits.lowSpeedBytes = 1024;
    settings.limits.lowSpeedTime = std::chrono::seconds(1);
    settings.attempts = 2;
    settings.backoff = std::chrono::milliseconds(5);
    (void)Kx::UIThreadQueue::get().pump();
}

OnlineFixture::~OnlineFixture()
{
    Kx::ExchangeMaterialManager::SetExchangeMaterialHelper(nullptr);
    helper.reset();
    (void)Kx::UIThreadQueue::get().pump();
}

Kx::Types::CMExchangeMaterialHelper& OnlineFixture::makeHelper()
{
    helper = std::make_unique<Kx::Types::CMExchangeMaterialHelper>(settings, manager,
        *Kx::AmbrelManager::GetAmbrelManager(true), records);
    Kx::ExchangeMaterialManager::SetExchangeMaterialHelper(helper.get());
    return *helper;
}

bool OnlineFixture::pumpUntil(const std::function<bool()>& done, std::chrono::milliseconds limit)
{
    const auto until = std::chrono::steady_clock::now() + limit;
    while (!done()) {
        if (std::chrono::steady_clock::now() > until)
            return false;
        (void)Kx::UIThreadQueue::get().waitAndPump(std::chrono::milliseconds(20));
    }
    return true;
}

std::vector<std::filesystem::path> OnlineFixture::leftovers() const
{
    std::vector<std::filesystem::path> found;
    std::error_code ignored;
    for (const auto& root : {settings.downloadDirectory, settings.textureDirectory}) {
        if (!std::filesystem::exists(root, ignored))
            continue;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
            const std::string name = entry.path().filename().string();
            if (entry.is_regular_file() && name != "Downloaded.tvrnlib" && name != "index.json" && name != "index.etag")
                found.push_back(entry.path());
        }
    }
    return found;
}

} // namespace OnlineTest
