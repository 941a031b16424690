// Saving and opening a document of 100,000 GeometryTestor entities, binary and XML, each beside a
// baseline that moves the same bytes through a zip container with libzip directly (same entries,
// same compression): what the data model adds on top of the container is the ratio.

#include <Types/Geometry/ValueMetaTypes.h>
#include <Types/Testors/GeometryTestor.h>

#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/Segment.h>

#include "BenchDirectory.h"

#include <benchmark/benchmark.h>
#include <zip.h>

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Kx;

constexpr std::size_t kEntities = 100'000;
// The level the document file uses for its entries.
constexpr int kDeflateLevel = 1;

using Entries = std::vector<std::pair<std::string, std::vector<std::uint8_t>>>;

const std::filesystem::path& benchDirectory()
{
    static const KxBench::BenchDirectory directory("documents");
    return directory.path();
}

Document& sampleDocument()
{
    static const std::unique_ptr<Document> document = [] {
        auto made = std::make_unique<Document>();
        Segment& segment = *made->createSegment("main");
        for (std::size_t i = 0; i < kEntities; ++i) {
            const auto n = static_cast<std::int32_t>(i);
            GeometryTestor& entity = *segment.add(StrongRefCreator<GeometryTestor>::create());
            entity.point = Point2(n, -n);
            entity.size = Size2(n % 640, n % 480);
            entity.rect = Rect2(n, n + 1, n + 100, n + 50);
            entity.border = Border4(1, 2, 3, n % 7);
            entity.color = Color(static_cast<float>(i % 256) / 255.0f, 0.5f, 0.25f, 1.0f);
            entity.label = GlobalizedString(L"Testor " + std::to_wstring(i));
            entity.count = n;
            entity.name = L"testor-" + std::to_wstring(i);
        }
        return made;
    }();
    return *document;
}

std::filesystem::path documentFile(EStreamMode mode)
{
    return benchDirectory() / (mode == EStreamMode::eBinary ? "sample-binary.kxd" : "sample-xml.kxd");
}

// The entries of the saved document, as the baselines write them.
const Entries& savedEntries(EStreamMode mode)
{
    static std::map<EStreamMode, Entries> cache;
    auto& entries = cache[mode];
    if (!entries.empty())
        return entries;
    DocumentFile::save(sampleDocument(), documentFile(mode), mode);
    int error = 0;
    zip_t* archive = zip_open(documentFile(mode).c_str(), ZIP_RDONLY, &error);
    for (zip_int64_t index = 0; index < zip_get_num_entries(archive, 0); ++index) {
        zip_stat_t stat;
        zip_stat_index(archive, index, 0, &stat);
        std::vector<std::uint8_t> bytes(stat.size);
        zip_file_t* file = zip_fopen_index(archive, index, 0);
        zip_fread(file, bytes.data(), stat.size);
        zip_fclose(file);
        entries.emplace_back(zip_get_name(archive, index, 0), std::move(bytes));
    }
    zip_discard(archive);
    return entries;
}

void writeZip(const std::filesystem::path& file, const Entries& entries)
{
    int error = 0;
    zip_t* archive = zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    for (const auto& [name, bytes] : entries) {
        zip_source_t* source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
        const zip_int64_t index = zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8);
        zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, kDeflateLevel);
    }
    if (zip_close(archive) != 0)
        throw std::runtime_error("baseline zip not written");
}

std::size_t readZip(const std::filesystem::path& file)
{
    int error = 0;
    zip_t* archive = zip_open(file.c_str(), ZIP_RDONLY, &error);
    std::size_t total = 0;
    for (zip_int64_t index = 0; index < zip_get_num_entries(archive, 0); ++index) {
        zip_stat_t stat;
        zip_stat_index(archive, index, 0, &stat);
        std::vector<std::uint8_t> bytes(stat.size);
        zip_file_t* entry = zip_fopen_index(archive, index, 0);
        total += static_cast<std::size_t>(zip_fread(entry, bytes.data(), stat.size));
        zip_fclose(entry);
        benchmark::DoNotOptimize(bytes.data());
    }
    zip_discard(archive);
    return total;
}

void report(benchmark::State& state, const std::filesystem::path& file)
{
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kEntities));
    state.counters["file_bytes"] = static_cast<double>(std::filesystem::file_size(file));
}

void save(benchmark::State& state, EStreamMode mode)
{
    Document& document = sampleDocument();
    const auto file = benchDirectory() / "save.kxd";
    for (auto _ : state)
        DocumentFile::save(document, file, mode);
    report(state, file);
}

void saveBaseline(benchmark::State& state, EStreamMode mode)
{
    const Entries& entries = savedEntries(mode);
    const auto file = benchDirectory() / "save-baseline.zip";
    for (auto _ : state)
        writeZip(file, entries);
    report(state, file);
}

void open(benchmark::State& state, EStreamMode mode)
{
    (void)savedEntries(mode);
    for (auto _ : state) {
        std::unique_ptr<Document> document = DocumentFile::open(documentFile(mode));
        benchmark::DoNotOptimize(document.get());
    }
    report(state, documentFile(mode));
}

void openBaseline(benchmark::State& state, EStreamMode mode)
{
    (void)savedEntries(mode);
    for (auto _ : state)
        benchmark::DoNotOptimize(readZip(documentFile(mode)));
    report(state, documentFile(mode));
}

void roundTrip(benchmark::State& state, EStreamMode mode)
{
    Document& document = sampleDocument();
    const auto file = benchDirectory() / "roundtrip.kxd";
    for (auto _ : state) {
        DocumentFile::save(document, file, mode);
        std::unique_ptr<Document> opened = DocumentFile::open(file);
        benchmark::DoNotOptimize(opened.get());
    }
    report(state, file);
}

void roundTripBaseline(benchmark::State& state, EStreamMode mode)
{
    const Entries& entries = savedEntries(mode);
    const auto file = benchDirectory() / "roundtrip-baseline.zip";
    for (auto _ : state) {
        writeZip(file, entries);
        benchmark::DoNotOptimize(readZip(file));
    }
    report(state, file);
}

} // namespace

#define KX_DOCUMENT_BENCHMARKS(kind, mode)                                                                              \
    BENCHMARK_CAPTURE(save, kind, mode)->Name("document." #kind "-save/datamodel")->Unit(benchmark::kMillisecond);          \
    BENCHMARK_CAPTURE(saveBaseline, kind, mode)->Name("document." #kind "-save/baseline")->Unit(benchmark::kMillisecond);   \
    BENCHMARK_CAPTURE(open, kind, mode)->Name("document." #kind "-open/datamodel")->Unit(benchmark::kMillisecond);          \
    BENCHMARK_CAPTURE(openBaseline, kind, mode)->Name("document." #kind "-open/baseline")->Unit(benchmark::kMillisecond);   \
    BENCHMARK_CAPTURE(roundTrip, kind, mode)->Name("document." #kind "-save+open/datamodel")->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(roundTripBaseline, kind, mode)->Name("document." #kind "-save+open/baseline")->Unit(benchmark::kMillisecond)

KX_DOCUMENT_BENCHMARKS(binary, EStreamMode::eBinary);
KX_DOCUMENT_BENCHMARKS(xml, EStreamMode::eXML);

BENCHMARK_MAIN();
