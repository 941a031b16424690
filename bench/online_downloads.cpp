// Downloads from the online library over loopback: 200 materials of about 1 MB each through the
// download manager and helper (transfer, SHA-256, installation into the Downloaded library) beside
// plain libcurl fetching the same files in the same run; and installations alone beside copying
// the same files into place.

#include "../apps/kx/OnlineLibraryServer.h"

#include <Types/Appearance/AmbrelManager.h>
#include <Types/Appearance/ExchangeMaterialManager.h>
#include <Types/Appearance/MaterialLocalTexRecordManager.h>
#include <Types/Online/DownloadedMaterialLibrary.h>
#include <Types/Online/ExchangeMaterialHelper.h>
#include <Types/Online/OnlineLibraryPublisher.h>

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <base/OS.h>
#include <base/UIThreadQueue.h>
#include <core/Strings.h>

#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <random>
#include <thread>

namespace {

namespace Assets = telvarin::platform::assets;
constexpr int s_materials = 200;
constexpr std::size_t s_imageBytes = 1 << 20;

// A scratch folder with a published library of 200 materials, each carrying a 1 MB image, served
// on loopback for the whole run.
struct Site {
    std::filesystem::path root;
    Kx::Types::OnlineLibraryIndex index;
    std::string url;
    std::atomic<bool> stop{false};
    std::thread server;

    Site()
    {
        char pattern[] = "/tmp/kx-bench-online-XXXXXX";
        root = ::mkdtemp(pattern);
        setenv("KX_USER_DIR", (root / "user").c_str(), 1);
        Kx::OS::markUIThread();
        const auto assets = Assets::CreateAssetLibraryManager();
        const std::filesystem::path source = root / "Source.tvrnlib";
        Assets::IAssetLibrary* library = assets->CreateAssetLibrary(source.wstring(), Assets::eUserLibrary);
        (void)assets->SaveAssetLibrary(library);
        Assets::IWritableAssetLibrary* writer = assets->GetWritableAssetLibrary(library);
        std::mt19937 random(7);
        std::vector<std::uint8_t> image(s_imageBytes);
        for (int item = 0; item < s_materials; ++item) {
            for (auto& byte : image)
                byte = static_cast<std::uint8_t>(random());
            const std::wstring name = L"image" + std::to_wstring(item) + L".bin";
            (void)writer->AddEmbeddedResource(name, image);
            Assets::InstancePtr texture(assets->CreateAssetInstance(L"texture"));
            texture->SetStringValue(L"unifiedbitmap_Bitmap", std::wstring(Assets::s_resourcePrefix) + name);
            Assets::InstancePtr appearance(assets->CreateAssetInstance(L"CorvexOpaqueSchema"));
            appearance->AddConnectedAsset(L"opaque_albedo", texture.get());
            appearance->SetName("eng", L"Bench " + std::to_wstring(item));
            (void)writer->CreateNewAssetPreset(appearance.get(), "bench-" + std::to_string(item));
        }
        (void)assets->CommitAssetLibrary(writer);
        assets->ReleaseWritableAssetLibrary(writer);
        assets->ReleaseAssetLibrary(library);
        index = Kx::Types::PublishOnlineLibrary({source}, root / "site").index;
        std::atomic<bool> ready{false};
        server = std::thread([this, &ready] {
            Kx::Console::serveOnlineLibrary(root / "site", "127.0.0.1", 0,
                [this, &ready](const std::string& at) {
                    url = at;
                    ready = true;
                },
                [this] { return stop.load(); });
        });
        while (!ready)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ~Site()
    {
        stop = true;
        server.join();
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }
    std::uint64_t bytes() const
    {
        std::uint64_t total = 0;
        for (const auto& material : index.materials)
            total += material.file.size;
        return total;
    }
};

Site& site()
{
    static Site s_site;
    return s_site;
}

std::size_t toFile(char* data, std::size_t size, std::size_t count, void* file)
{
    return std::fwrite(data, size, count, static_cast<std::FILE*>(file)) * size;
}

// libcurl alone: one handle reused, each file written to disk.
void downloadBaseline(benchmark::State& state)
{
    Site& s = site();
    const std::filesystem::path out = s.root / "baseline.bin";
    for (auto _ : state) {
        CURL* curl = curl_easy_init();
        for (const auto& material : s.index.materials) {
            std::FILE* file = std::fopen(out.c_str(), "wb");
            curl_easy_setopt(curl, CURLOPT_URL, (s.url + material.file.path).c_str());
            curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &toFile);
            curl_easy_setopt(curl, CURLOPT_WRITEDATA, file);
            if (curl_easy_perform(curl) != CURLE_OK)
                state.SkipWithError("curl failed");
            std::fclose(file);
        }
        curl_easy_cleanup(curl);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * s.bytes()));
    state.SetItemsProcessed(state.iterations() * s_materials);
}

// The download manager and its helper: transfer, hash, install, events.
void downloadKx(benchmark::State& state)
{
    Site& s = site();
    int run = 0;
    for (auto _ : state) {
        Kx::Types::OnlineLibrarySettings settings;
        settings.baseUrl = s.url;
        settings.downloadDirectory = s.root / ("downloads" + std::to_string(run++));
        settings.textureDirectory = settings.downloadDirectory / "textures";
        Kx::MaterialLocalTexRecordManager records(settings.downloadDirectory / "records.json");
        Kx::ExchangeMaterialManager manager(nullptr, &records);
        Kx::Types::CMExchangeMaterialHelper helper(settings, manager, *Kx::AmbrelManager::GetAmbrelManager(true), records);
        Kx::ExchangeMaterialManager::SetExchangeMaterialHelper(&helper);
        for (const auto& material : s.index.materials)
            manager.DownloadMaterial(L"", L"", telvarin::platform::core::toWide(material.uuid).c_str());
        while (!manager.isAllDownloadCompleted())
            (void)Kx::UIThreadQueue::get().waitAndPump(std::chrono::milliseconds(5));
        Kx::ExchangeMaterialManager::SetExchangeMaterialHelper(nullptr);
        if (!helper.downloadedLibrary().has(s.index.materials.back().materialId))
            state.SkipWithError("not installed");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * s.bytes()));
    state.SetItemsProcessed(state.iterations() * s_materials);
}

// Installing verified files: a copy renamed into place...
void installBaseline(benchmark::State& state)
{
    Site& s = site();
    for (auto _ : state) {
        for (const auto& material : s.index.materials) {
            const std::filesystem::path target = s.root / "copied.tvrnlib";
            std::filesystem::copy_file(s.root / "site" / material.file.path, s.root / "copy.tmp",
                std::filesystem::copy_options::overwrite_existing);
            std::filesystem::rename(s.root / "copy.tmp", target);
        }
    }
    state.SetItemsProcessed(state.iterations() * s_materials);
}

// ...and the preset copied into the Downloaded library in one commit each.
void installKx(benchmark::State& state)
{
    Site& s = site();
    int run = 0;
    for (auto _ : state) {
        Kx::Types::DownloadedMaterialLibrary library(*Kx::AmbrelManager::GetAmbrelManager(true),
            s.root / ("installed" + std::to_string(run++)) / "Downloaded.tvrnlib");
        for (const auto& material : s.index.materials) {
            if (!library.install(s.root / "site" / material.file.path, material).empty())
                state.SkipWithError("install failed");
        }
    }
    state.SetItemsProcessed(state.iterations() * s_materials);
}

} // namespace

BENCHMARK(downloadKx)->Name("online.download-200x1MB/kx")->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(downloadBaseline)->Name("online.download-200x1MB/baseline")->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(installKx)->Name("online.install-200/kx")->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(installBaseline)->Name("online.install-200/baseline")->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

BENCHMARK_MAIN();
