// Opening a material library of 10,000 presets cold (a new manager and connection each time) and
// listing it by category, each beside raw SQLite doing the same work on the same file: opening
// and reading the header row, and one query of the preset columns in category order.

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>

#include "RawLibrary.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <unistd.h>

namespace {

using namespace telvarin::platform::assets;

constexpr int kPresets = 10'000;
constexpr int kCategories = 20;
constexpr int kSubcategories = 5;

// A library shaped like the standard ones: every preset a physical material with a structural
// aspect connected, so that the asset table holds twice as many rows as there are presets.
class SyntheticLibrary {
public:
    SyntheticLibrary()
        : m_folder(std::filesystem::temp_directory_path() / ("kx-assets-open-" + std::to_string(::getpid())))
    {
        std::filesystem::create_directories(m_folder);
        auto manager = CreateAssetLibraryManager();
        AssetError error;
        IAssetLibrary* library = manager->CreateAssetLibrary(file().wstring(), eUserLibrary, {}, &error);
        IWritableAssetLibrary* writable = library != nullptr ? manager->GetWritableAssetLibrary(library, &error) : nullptr;
        if (writable == nullptr) {
            throw std::runtime_error(error.message);
        }
        for (int index = 0; index < kPresets; ++index) {
            IAssetInstance* material = manager->CreateAssetInstance(L"physicalmaterial");
            IAssetInstance* structural = manager->CreateAssetInstance(L"structural");
            structural->SetDoubleValue(L"structural_Density", 1000.0 + index);
            structural->SetDoubleValue(L"structural_Young_modulus", 2.0e11);
            material->SetConnectedAsset(L"Structural", structural);
            material->SetName("eng", L"Material " + std::to_wstring(index));
            AssetPresetInfo info;
            info.materialId = "M-" + std::to_string(index);
            info.category = L"Category " + std::to_wstring(index % kCategories);
            info.subcategory = L"Subcategory " + std::to_wstring(index / kCategories % kSubcategories);
            if (!writable->CreateNewAssetPreset(material, info, &error)) {
                throw std::runtime_error(error.message);
            }
            structural->Release();
            material->Release();
        }
        if (!manager->CommitAssetLibrary(writable, &error)) {
            throw std::runtime_error(error.message);
        }
        manager->ReleaseWritableAssetLibrary(writable);
        if (!manager->SaveAssetLibrary(library, &error)) {
            throw std::runtime_error(error.message);
        }
        manager->ReleaseAssetLibrary(library);
    }

    ~SyntheticLibrary()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    [[nodiscard]] std::filesystem::path file() const { return m_folder / "synthetic.tvrnlib"; }

private:
    std::filesystem::path m_folder;
};

const SyntheticLibrary& synthetic()
{
    static const SyntheticLibrary s_library;
    return s_library;
}

void reportPresets(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * kPresets);
}

void openKx(benchmark::State& state)
{
    const std::wstring location = synthetic().file().wstring();
    for (auto _ : state) {
        auto manager = CreateAssetLibraryManager();
        IAssetLibrary* library = manager->OpenAssetLibrary(location);
        if (library == nullptr) {
            state.SkipWithError("the library did not open");
            return;
        }
        benchmark::DoNotOptimize(library->GetLibraryId().size());
        manager->ReleaseAssetLibrary(library);
    }
}

void openBaseline(benchmark::State& state)
{
    const std::string file = synthetic().file().string();
    for (auto _ : state) {
        if (!KxBench::openAndReadHeader(file)) {
            state.SkipWithError("no header row");
        }
    }
}

void listByCategoryKx(benchmark::State& state)
{
    const std::wstring location = synthetic().file().wstring();
    for (auto _ : state) {
        auto manager = CreateAssetLibraryManager();
        IAssetLibrary* library = manager->OpenAssetLibrary(location);
        std::size_t listed = 0;
        for (const auto& [category, subcategory] : library->GetCategories()) {
            for (const IAssetDefinition* definition : library->SearchByCategory(category, subcategory)) {
                benchmark::DoNotOptimize(definition->GetMaterialId().data());
                ++listed;
            }
        }
        if (listed != kPresets) {
            state.SkipWithError("not every preset was listed");
        }
        manager->ReleaseAssetLibrary(library);
    }
    reportPresets(state);
}

void listByCategoryBaseline(benchmark::State& state)
{
    const std::string file = synthetic().file().string();
    for (auto _ : state) {
        sqlite3* db = nullptr;
        sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(db,
            "SELECT asset_key, asset_id, schema, origin_library, variant, version_major, version_minor, revision, "
            "version_guid, category, subcategory FROM asset WHERE preset = 1 "
            "ORDER BY category, subcategory, asset_id, variant",
            -1, &statement, nullptr);
        std::size_t listed = 0;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            for (int column = 0; column < 11; ++column) {
                benchmark::DoNotOptimize(sqlite3_column_text(statement, column));
            }
            ++listed;
        }
        if (listed != kPresets) {
            state.SkipWithError("not every preset was listed");
        }
        sqlite3_finalize(statement);
        sqlite3_close(db);
    }
    reportPresets(state);
}

BENCHMARK(openKx)->Name("assets.open-10000/kx")->Unit(benchmark::kMillisecond);
BENCHMARK(openBaseline)->Name("assets.open-10000/baseline")->Unit(benchmark::kMillisecond);
BENCHMARK(listByCategoryKx)->Name("assets.list-by-category-10000/kx")->Unit(benchmark::kMillisecond);
BENCHMARK(listByCategoryBaseline)->Name("assets.list-by-category-10000/baseline")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
