#pragma once

#include "LoopbackLibraryServer.h"

#include <Types/Appearance/ExchangeMaterialEvent.h>
#include <Types/Appearance/ExchangeMaterialEventSite.h>
#include <Types/Appearance/ExchangeMaterialManager.h>
#include <Types/Appearance/MaterialLocalTexRecordManager.h>
#include <Types/Online/ExchangeMaterialHelper.h>
#include <Types/Online/OnlineLibraryIndex.h>

#include <support/TestSupport.h>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace OnlineTest {

// Keeps every download event it hears.
class RecordingSite : public Kx::ExchangeMaterialEventSite {
public:
    RecordingSite();
    ~RecordingSite() override;
    void exchangeMaterialDownloaded(Kx::ExchangeMaterialEvent* event) override { events.push_back(*event); }
    [[nodiscard]] std::size_t count(Kx::ExchangeMaterialEvent::EDownloadType type) const;

    std::vector<Kx::ExchangeMaterialEvent> events;
};

// An online library published once per test program from a real standard library and a small
// library of hand-made presets (one with a texture, one whose image has a hostile name).
const std::filesystem::path& publishedLibrary();
const Kx::Types::OnlineLibraryIndex& publishedIndex();
// The small hand-made library among the published sources.
const std::filesystem::path& handMadeLibrary();
// A published material with at least one texture and a thumbnail-less one are both there.
const Kx::Types::OnlineMaterial& materialWithTexture();
const Kx::Types::OnlineMaterial& anyMaterial(std::size_t which = 0);

// Per test: the loopback server over the published library, a download folder of its own, a
// download manager and helper wired as the application wires them, and short timeouts.
class OnlineFixture : public ::testing::Test {
protected:
    OnlineFixture();
    ~OnlineFixture() override;

    // Settings of this test (tiny backoff, one-second stalls); change before makeHelper().
    Kx::Types::OnlineLibrarySettings settings;
    Kx::Types::CMExchangeMaterialHelper& makeHelper();
    // Pumps the UI thread until `done` or the time is up; false on time-out.
    bool pumpUntil(const std::function<bool()>& done, std::chrono::milliseconds limit = std::chrono::seconds(15));
    bool waitForEvents(std::size_t count) { return pumpUntil([&] { return site.events.size() >= count; }); }
    // Files left in the download folder other than the library, the index and its ETag.
    [[nodiscard]] std::vector<std::filesystem::path> leftovers() const;

    KxTest::TempDir folder;
    LoopbackLibraryServer server{publishedLibrary()};
    Kx::MaterialLocalTexRecordManager records{folder / "TextureRecords.json"};
    Kx::ExchangeMaterialManager manager{nullptr, &records};
    std::unique_ptr<Kx::Types::CMExchangeMaterialHelper> helper;
    RecordingSite site;
};

} // namespace OnlineTest
