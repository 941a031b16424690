// The library manager over the standard material content: loading every standard library cold,
// and handing out a cached material instance, on one and on two threads. Each beside raw SQLite
// doing the nearest work on the same files: opening each library and reading its header row, and
// looking a preset up by its material identifier with a prepared statement. The lookups cycle
// through every material of the advanced physical library, the threads at different places in it.
//
// The cold load has a second raw SQLite variant, "sqlite-rows", that reads by hand what the load
// must read of each file before it uses it: the header row alone is a third of that work. A load
// refuses a file that is not a library of this format version, truncated, or short of a column of
// the layout (four header numbers and the layout looked up in the schema), and the first load of a
// process reads the base appearance library's catalogue (every preset's listing row). What the
// variant leaves out is the manager's own bookkeeping around the files, measured only in the load:
// bringing the user's copy of the installed set up to date (a status of each file and its copy),
// resolving the libraries' netfs locations, and making the catalogue's preset definitions.

#include <Types/Appearance/AmbrelManager.h>

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibraryManager.h>
#include <base/Options.h>
#include <base/Paths.h>

#include "RawLibrary.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace telvarin::platform::assets;

std::vector<std::string> standardLibraryFiles()
{
    std::vector<std::string> files;
    // The installed files, which the manager's folder holds copies of.
    for (const auto& entry : std::filesystem::directory_iterator(Kx::Paths::contentRoot() / "libraries")) {
        if (entry.path().extension() == ".tvrnlib") {
            files.push_back(entry.path().string());
        }
    }
    return files;
}

void clearUserLibraries()
{
    auto& options = Kx::AmbrelMaterialOptionGroup::get();
    options.optionAs<Kx::StringListOption>("UserLibraryNames")->setValue({});
    options.optionAs<Kx::StringListOption>("UserLibraryPaths")->setValue({});
}

// One library manager and one loaded AmbrelManager for the cache cases, shared by their threads.
struct LoadedManager {
    LoadedManager() : manager([this] { return assets.get(); })
    {
        clearUserLibraries();
        loaded = manager.LoadLibs(false);
        advancedPhysicalId = manager.GetAdvancedPhysicalLibraryID();
        materialIds = manager.GetPhysicalMaterialsByLibrary(advancedPhysicalId);
        // Every lookup measured afterwards is a hit.
        for (const std::string& id : materialIds) {
            IAssetInstance* instance = manager.GetAssetInstance(id, advancedPhysicalId, {});
            loaded = loaded && instance != nullptr;
            if (instance != nullptr) {
                instance->Release();
            }
        }
        loaded = loaded && !materialIds.empty();
    }

    std::unique_ptr<IAssetLibraryManager> assets = CreateAssetLibraryManager();
    Kx::AmbrelManager manager;
    bool loaded = false;
    Kx::WideString advancedPhysicalId;
    std::vector<std::string> materialIds;
};

// Where a thread starts in the material list, so that two threads ask for different materials.
std::size_t startOf(const benchmark::State& state, std::size_t count)
{
    return count * static_cast<std::size_t>(state.thread_index()) / static_cast<std::size_t>(state.threads());
}

LoadedManager& loadedManager()
{
    static LoadedManager s_loaded;
    return s_loaded;
}

void loadStandardKx(benchmark::State& state)
{
    clearUserLibraries();
    for (auto _ : state) {
        auto assets = CreateAssetLibraryManager();
        Kx::AmbrelManager manager([&] { return assets.get(); });
        if (!manager.LoadLibs(false) || manager.GetNonlinearPhysicalLibraryID().empty()) {
            state.SkipWithError("the standard libraries did not load");
            return;
        }
    }
}

void loadStandardBaseline(benchmark::State& state)
{
    const std::vector<std::string> files = standardLibraryFiles();
    for (auto _ : state) {
        for (const std::string& file : files) {
            if (!KxBench::openAndReadHeader(file)) {
                state.SkipWithError("no header row");
            }
        }
    }
}

void loadStandardRows(benchmark::State& state)
{
    const std::vector<std::string> files = standardLibraryFiles();
    for (auto _ : state) {
        for (const std::string& file : files) {
            if (!KxBench::openAndReadLikeALoad(file, file.ends_with("assetlibrary_base.tvrnlib"))) {
                state.SkipWithError("a library lacks what a load reads");
            }
        }
    }
}

void cacheHitKx(benchmark::State& state)
{
    LoadedManager& loaded = loadedManager();
    if (!loaded.loaded) {
        state.SkipWithError("the standard libraries did not load");
        return;
    }
    const Kx::MaterialTweak neutral;
    const std::vector<std::string>& ids = loaded.materialIds;
    std::size_t next = startOf(state, ids.size());
    for (auto _ : state) {
        IAssetInstance* instance = loaded.manager.GetAssetInstance(ids[next], loaded.advancedPhysicalId, neutral);
        benchmark::DoNotOptimize(instance);
        instance->Release();
        next = next + 1 == ids.size() ? 0 : next + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

// Each thread its own connection, as SQLite connections are not shared between threads here, and
// one read transaction around all its lookups, so that they pay no file locking: the best raw
// SQLite does for a lookup by identifier.
void cacheHitBaseline(benchmark::State& state)
{
    const std::vector<std::string>& ids = loadedManager().materialIds;
    std::size_t next = startOf(state, ids.size());
    std::string file;
    for (const std::string& candidate : standardLibraryFiles()) {
        if (candidate.ends_with("PhysicalMaterialAdvanced.tvrnlib")) {
            file = candidate;
        }
    }
    sqlite3* db = nullptr;
    sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db,
        "SELECT asset_key, schema, variant, version_major, version_minor FROM asset "
        "WHERE asset_id = ?1 AND variant = '' AND preset = 1 AND instance_key IS NULL",
        -1, &statement, nullptr);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    for (auto _ : state) {
        sqlite3_bind_text(statement, 1, ids[next].c_str(), -1, SQLITE_STATIC);
        if (sqlite3_step(statement) != SQLITE_ROW) {
            state.SkipWithError("a preset is missing");
            break;
        }
        benchmark::DoNotOptimize(sqlite3_column_int64(statement, 0));
        sqlite3_reset(statement);
        next = next + 1 == ids.size() ? 0 : next + 1;
    }
    sqlite3_finalize(statement);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(loadStandardKx)->Name("ambrel.load-standard/kx")->Unit(benchmark::kMillisecond);
BENCHMARK(loadStandardBaseline)->Name("ambrel.load-standard/baseline")->Unit(benchmark::kMillisecond);
BENCHMARK(loadStandardRows)->Name("ambrel.load-standard/sqlite-rows")->Unit(benchmark::kMillisecond);
BENCHMARK(cacheHitKx)->Name("ambrel.cache-hit/kx")->Threads(1)->Threads(2)->UseRealTime();
BENCHMARK(cacheHitBaseline)->Name("ambrel.cache-hit/baseline")->Threads(1)->Threads(2)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
