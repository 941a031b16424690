// Saving and opening a document of 100,000 GeometryTestor entities, binary and XML, each beside a
// baseline that moves the same bytes through a zip container with libzip directly (same entries,
// same compression): what the data model adds on top of the container is the ratio. The XML cases
// have a second reference, "pugixml": the same entities written and read by hand with pugixml
// (a DOM of the same elements and attributes, indented text, the same container), which is what
// the data model adds on top of the XML library.

#include <Types/Geometry/ValueMetaTypes.h>
#include <Types/Testors/GeometryTestor.h>

#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/Segment.h>

#include "BenchDirectory.h"

#include <benchmark/benchmark.h>
#include <pugixml.hpp>
#include <zip.h>

#include <unistd.h>

#include <charconv>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
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

// Reads every entry whole; `onEntry` sees each entry's name and bytes.
template <class OnEntry>
std::size_t readZip(const std::filesystem::path& file, OnEntry&& onEntry)
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
        onEntry(std::string_view(zip_get_name(archive, index, 0)), bytes);
    }
    zip_discard(archive);
    return total;
}

std::size_t readZip(const std::filesystem::path& file)
{
    return readZip(file, [](std::string_view, std::vector<std::uint8_t>& bytes) { benchmark::DoNotOptimize(bytes.data()); });
}

// The segment entry of the XML document, which the pugixml reference writes and reads itself.
constexpr const char* kXmlSegmentEntry = "segments/0.xml";

struct StringWriter final : pugi::xml_writer {
    void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
    std::string text;
};

// What the sample entities hold, written as pugixml writes numbers.
std::vector<std::uint8_t> writeSegmentByHand()
{
    pugi::xml_document document;
    pugi::xml_node entities = document.append_child("KxSegment").append_child("Entities");
    for (std::size_t i = 0; i < kEntities; ++i) {
        const auto n = static_cast<int>(i);
        pugi::xml_node entity = entities.append_child("GeometryTestor");
        entity.append_attribute("_id") = static_cast<unsigned long long>(i + 1);
        entity.append_attribute("_version") = 0;
        entity.append_attribute("count") = n;
        entity.append_attribute("name") = ("testor-" + std::to_string(i)).c_str();
        const auto element = [&](const char* name, std::initializer_list<std::pair<const char*, int>> fields) {
            pugi::xml_node child = entity.append_child(name);
            for (const auto& [field, value] : fields)
                child.append_attribute(field) = value;
        };
        element("point", {{"x", n}, {"y", -n}});
        element("size", {{"width", n % 640}, {"height", n % 480}});
        element("rect", {{"left", n}, {"top", n + 1}, {"right", n + 100}, {"bottom", n + 50}});
        element("border", {{"top", 1}, {"bottom", 2}, {"left", 3}, {"right", n % 7}});
        pugi::xml_node color = entity.append_child("color");
        color.append_attribute("red") = static_cast<float>(i % 256) / 255.0f;
        color.append_attribute("green") = 0.5f;
        color.append_attribute("blue") = 0.25f;
        color.append_attribute("alpha") = 1.0f;
        pugi::xml_node label = entity.append_child("label");
        label.append_attribute("value") = ("Testor " + std::to_string(i)).c_str();
        label.append_attribute("module") = "";
        label.append_attribute("id") = "";
        label.append_attribute("defaultValue") = "";
        label.append_attribute("globalized") = 0;
        label.append_attribute("globalizedValueInitialize") = 0;
    }
    StringWriter out;
    document.save(out, "  ", pugi::format_indent, pugi::encoding_utf8);
    return {out.text.begin(), out.text.end()};
}

// The document's entries with the segment written by hand, last.
Entries entriesWrittenByHand()
{
    Entries entries;
    for (const auto& entry : savedEntries(EStreamMode::eXML)) {
        if (entry.first != kXmlSegmentEntry)
            entries.push_back(entry);
    }
    entries.emplace_back(kXmlSegmentEntry, writeSegmentByHand());
    return entries;
}

struct RawTestor {
    int count, x, y, width, height, left, top, right, bottom, borderTop, borderBottom, borderLeft, borderRight;
    float red, green, blue, alpha;
    std::string name, label;
};

// Parses the segment in place and reads every entity into plain fields.
std::size_t readSegmentByHand(std::vector<std::uint8_t>& bytes)
{
    pugi::xml_document document;
    if (!document.load_buffer_inplace(bytes.data(), bytes.size(), pugi::parse_default, pugi::encoding_utf8))
        throw std::runtime_error("baseline segment not parsed");
    std::vector<RawTestor> testors;
    testors.reserve(kEntities);
    for (pugi::xml_node entity : document.child("KxSegment").child("Entities").children()) {
        RawTestor& testor = testors.emplace_back();
        testor.count = entity.attribute("count").as_int();
        testor.name = entity.attribute("name").as_string();
        const auto read = [&](const char* element, auto fields) {
            const pugi::xml_node node = entity.child(element);
            for (const auto& [name, field] : fields) {
                if constexpr (std::is_same_v<std::remove_pointer_t<std::decay_t<decltype(field)>>, float>)
                    *field = node.attribute(name).as_float();
                else
                    *field = node.attribute(name).as_int();
            }
        };
        using Ints = std::initializer_list<std::pair<const char*, int*>>;
        read("point", Ints{{"x", &testor.x}, {"y", &testor.y}});
        read("size", Ints{{"width", &testor.width}, {"height", &testor.height}});
        read("rect", Ints{{"left", &testor.left}, {"top", &testor.top}, {"right", &testor.right}, {"bottom", &testor.bottom}});
        read("border", Ints{{"top", &testor.borderTop}, {"bottom", &testor.borderBottom}, {"left", &testor.borderLeft},
                           {"right", &testor.borderRight}});
        read("color", std::initializer_list<std::pair<const char*, float*>>{
                          {"red", &testor.red}, {"green", &testor.green}, {"blue", &testor.blue}, {"alpha", &testor.alpha}});
        testor.label = entity.child("label").attribute("value").as_string();
    }
    benchmark::DoNotOptimize(testors.data());
    return testors.size();
}

std::size_t readZipByHand(const std::filesystem::path& file)
{
    return readZip(file, [](std::string_view name, std::vector<std::uint8_t>& bytes) {
        if (name == kXmlSegmentEntry && readSegmentByHand(bytes) != kEntities)
            throw std::runtime_error("baseline segment not read");
    });
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

// Opening ends with the document ready; closing it is measured on its own.
void open(benchmark::State& state, EStreamMode mode)
{
    (void)savedEntries(mode);
    for (auto _ : state) {
        std::unique_ptr<Document> document = DocumentFile::open(documentFile(mode));
        benchmark::DoNotOptimize(document.get());
        state.PauseTiming();
        document.reset();
        state.ResumeTiming();
    }
    report(state, documentFile(mode));
}

void close(benchmark::State& state, EStreamMode mode)
{
    (void)savedEntries(mode);
    for (auto _ : state) {
        state.PauseTiming();
        std::unique_ptr<Document> document = DocumentFile::open(documentFile(mode));
        state.ResumeTiming();
        document.reset();
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

void saveByHand(benchmark::State& state)
{
    const auto file = benchDirectory() / "save-pugixml.zip";
    for (auto _ : state)
        writeZip(file, entriesWrittenByHand());
    report(state, file);
}

const std::filesystem::path& fileWrittenByHand()
{
    static const std::filesystem::path file = [] {
        auto path = benchDirectory() / "pugixml.zip";
        writeZip(path, entriesWrittenByHand());
        return path;
    }();
    return file;
}

void openByHand(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(readZipByHand(fileWrittenByHand()));
    report(state, fileWrittenByHand());
}

void roundTripByHand(benchmark::State& state)
{
    const auto file = benchDirectory() / "roundtrip-pugixml.zip";
    for (auto _ : state) {
        writeZip(file, entriesWrittenByHand());
        benchmark::DoNotOptimize(readZipByHand(file));
    }
    report(state, file);
}

} // namespace

#define KX_DOCUMENT_BENCHMARKS(kind, mode)                                                                              \
    BENCHMARK_CAPTURE(save, kind, mode)->Name("document." #kind "-save/datamodel")->Unit(benchmark::kMillisecond);          \
    BENCHMARK_CAPTURE(saveBaseline, kind, mode)->Name("document." #kind "-save/baseline")->Unit(benchmark::kMillisecond);   \
    BENCHMARK_CAPTURE(open, kind, mode)->Name("document." #kind "-open/datamodel")->Unit(benchmark::kMillisecond);          \
    BENCHMARK_CAPTURE(openBaseline, kind, mode)->Name("document." #kind "-open/baseline")->Unit(benchmark::kMillisecond);   \
    BENCHMARK_CAPTURE(close, kind, mode)->Name("document." #kind "-close/datamodel")->Unit(benchmark::kMillisecond);        \
    BENCHMARK_CAPTURE(roundTrip, kind, mode)->Name("document." #kind "-save+open/datamodel")->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(roundTripBaseline, kind, mode)->Name("document." #kind "-save+open/baseline")->Unit(benchmark::kMillisecond)

KX_DOCUMENT_BENCHMARKS(binary, EStreamMode::eBinary);
KX_DOCUMENT_BENCHMARKS(xml, EStreamMode::eXML);
BENCHMARK(saveByHand)->Name("document.xml-save/pugixml")->Unit(benchmark::kMillisecond);
BENCHMARK(openByHand)->Name("document.xml-open/pugixml")->Unit(benchmark::kMillisecond);
BENCHMARK(roundTripByHand)->Name("document.xml-save+open/pugixml")->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
