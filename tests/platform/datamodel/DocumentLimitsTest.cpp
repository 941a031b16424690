// Containers that would make an open inflate more than a document can hold (zip bombs: parts that
// shrink a thousandfold, sizes that lie, hundreds of thousands of entries) are refused as corrupt,
// quickly, without the memory they ask for; documents within the limits open and save as before.

#include "DocumentTestTypes.h"

#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/DocumentLimits.h>
#include <datamodel/Segment.h>

#include <base/Exception.h>

#include <support/TestSupport.h>

#include <gtest/gtest.h>

#include <zip.h>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <optional>
#include <random>
#include <stdexcept>
#include <variant>

namespace Kx {
namespace {

using DocumentTest::bytesOf;
using DocumentTest::textOf;

const std::wstring kCorrupt = L"The file you are trying to open is corrupt! The current operation will be aborted!";
constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;

// An entry of `size` bytes of `fill`, made as libzip deflates it: the test never holds the bytes.
struct ByteRun {
    std::uint64_t size;
    std::uint8_t fill = 0;
};
using Content = std::variant<std::vector<std::uint8_t>, ByteRun>;
using Entries = std::vector<std::pair<std::string, Content>>;

struct RunCursor {
    ByteRun run;
    std::uint64_t done = 0;
};

zip_int64_t readRun(void* state, void* data, zip_uint64_t length, zip_source_cmd_t command)
{
    auto* cursor = static_cast<RunCursor*>(state);
    switch (command) {
    case ZIP_SOURCE_OPEN:
        cursor->done = 0;
        return 0;
    case ZIP_SOURCE_READ: {
        const std::uint64_t count = std::min<std::uint64_t>(length, cursor->run.size - cursor->done);
        std::memset(data, cursor->run.fill, static_cast<std::size_t>(count));
        cursor->done += count;
        return static_cast<zip_int64_t>(count);
    }
    case ZIP_SOURCE_CLOSE:
        return 0;
    case ZIP_SOURCE_STAT: {
        auto* stat = static_cast<zip_stat_t*>(data);
        zip_stat_init(stat);
        stat->size = cursor->run.size;
        stat->valid |= ZIP_STAT_SIZE;
        return sizeof(zip_stat_t);
    }
    case ZIP_SOURCE_FREE:
        delete cursor;
        return 0;
    case ZIP_SOURCE_SUPPORTS:
        return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE, ZIP_SOURCE_STAT,
            ZIP_SOURCE_FREE, -1);
    default:
        return -1;
    }
}

zip_source_t* runSource(zip_t* archive, const ByteRun& run)
{
    return zip_source_function(archive, &readRun, new RunCursor{run});
}

void writeArchive(const std::filesystem::path& file, const Entries& entries)
{
    int error = 0;
    zip_t* archive = zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (archive == nullptr)
        throw std::runtime_error("cannot create " + file.string());
    for (const auto& [name, content] : entries) {
        zip_source_t* source = std::holds_alternative<ByteRun>(content)
            ? runSource(archive, std::get<ByteRun>(content))
            : zip_source_buffer(archive, std::get<0>(content).data(), std::get<0>(content).size(), 0);
        const zip_int64_t index = zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_RAW);
        if (index < 0)
            throw std::runtime_error("cannot add " + name);
        zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, 1);
    }
    if (zip_close(archive) != 0)
        throw std::runtime_error("cannot write " + file.string());
}

// A sound document with a Store whose blob part "blobs/Store.store" a test replaces.
Entries savedDocument()
{
    Document document;
    Segment& main = *document.createSegment("main");
    main.add(StrongRefCreator<Node>::create());
    main.addRoot("Store", *StrongRef<Store>(new Store()));
    static_cast<Store&>(*main.root("Store")).name = "Store";
    static_cast<Store&>(*main.root("Store")).payload = "payload";
    KxTest::TempDir directory;
    DocumentFile::save(document, directory / "base.kxd");
    Entries entries;
    for (auto& [name, bytes] : DocumentTest::readZip(directory / "base.kxd"))
        entries.emplace_back(name, std::move(bytes));
    return entries;
}

// The document with its blob part replaced by `part`, the manifest stating the part's size.
Entries withBlobPart(Content part)
{
    Entries entries = savedDocument();
    const std::uint64_t size = std::holds_alternative<ByteRun>(part) ? std::get<ByteRun>(part).size : std::get<0>(part).size();
    for (auto& [name, content] : entries) {
        if (name == "blobs/Store.store")
            content = std::move(part);
        if (name == "manifest.json") {
            std::string text = textOf(std::get<0>(content));
            const std::string key = "\"size\": ";
            const auto at = text.find(key) + key.size();
            text.replace(at, text.find_first_of(",}", at) - at, std::to_string(size));
            content = bytesOf(text);
        }
    }
    return entries;
}

std::vector<std::uint8_t> noise(std::size_t size)
{
    std::mt19937 random(7);
    std::vector<std::uint8_t> bytes(size);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
    return bytes;
}

// Overwrites the uncompressed size the local header and the central directory state for `name`.
void stateSize(std::vector<std::uint8_t>& file, const std::string& name, std::uint32_t size)
{
    const auto put = [&](std::size_t at) { std::memcpy(&file[at], &size, sizeof size); };
    int patched = 0;
    for (std::size_t at = 0; at + 46 + name.size() <= file.size(); ++at) {
        if (std::memcmp(&file[at], "PK\x03\x04", 4) == 0 && std::memcmp(&file[at + 30], name.data(), name.size()) == 0) {
            put(at + 22);
            ++patched;
        }
        if (std::memcmp(&file[at], "PK\x01\x02", 4) == 0 && std::memcmp(&file[at + 46], name.data(), name.size()) == 0) {
            put(at + 24);
            ++patched;
        }
    }
    ASSERT_EQ(patched, 2) << name;
}

// A sound zip container of `count` empty stored entries, written byte by byte: libzip needs
// seconds for the hundreds of thousands of entries a test of the entry limit wants.
std::vector<std::uint8_t> emptyEntries(std::uint32_t count)
{
    std::vector<std::uint8_t> bytes;
    const auto put = [&](std::uint64_t value, unsigned width) {
        for (unsigned k = 0; k < width; ++k)
            bytes.push_back(static_cast<std::uint8_t>(value >> (8 * k)));
    };
    const auto putName = [&](std::uint32_t index) {
        const std::string name = "pad/" + std::to_string(index);
        put(name.size(), 2), put(0, 2);
        return name;
    };
    const auto putText = [&](const std::string& text) { bytes.insert(bytes.end(), text.begin(), text.end()); };
    std::vector<std::uint32_t> offsets;
    for (std::uint32_t index = 0; index < count; ++index) {
        offsets.push_back(static_cast<std::uint32_t>(bytes.size()));
        put(0x04034b50, 4), put(20, 2), put(0, 2), put(0, 2), put(0, 4), put(0, 4), put(0, 4), put(0, 4);
        putText(putName(index));
    }
    const std::uint64_t directory = bytes.size();
    for (std::uint32_t index = 0; index < count; ++index) {
        put(0x02014b50, 4), put(20, 2), put(20, 2), put(0, 2), put(0, 2), put(0, 4), put(0, 4), put(0, 4), put(0, 4);
        const std::string name = putName(index);
        put(0, 2), put(0, 2), put(0, 2), put(0, 4), put(offsets[index], 4);
        putText(name);
    }
    const std::uint64_t directorySize = bytes.size() - directory;
    const std::uint64_t zip64End = bytes.size();
    put(0x06064b50, 4), put(44, 8), put(45, 2), put(45, 2), put(0, 4), put(0, 4);
    put(count, 8), put(count, 8), put(directorySize, 8), put(directory, 8);
    put(0x07064b50, 4), put(0, 4), put(zip64End, 8), put(1, 4);
    put(0x06054b50, 4), put(0, 2), put(0, 2), put(0xFFFF, 2), put(0xFFFF, 2);
    put(directorySize, 4), put(directory, 4), put(0, 2);
    return bytes;
}

long peakResidentKiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

struct Outcome {
    std::optional<Exception> error;
    double seconds = 0;
    long peakGrowthMiB = 0;
};

Outcome openTimed(const std::filesystem::path& file, const DocumentLimits& limits = {})
{
    Outcome outcome;
    const long peakBefore = peakResidentKiB();
    const auto start = std::chrono::steady_clock::now();
    try {
        (void)DocumentFile::open(file, DocumentOpenOptions{.limits = limits});
    } catch (const Exception& error) {
        outcome.error = error;
    }
    outcome.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    outcome.peakGrowthMiB = (peakResidentKiB() - peakBefore) / 1024;
    return outcome;
}

void expectCorrupt(const Outcome& outcome, const std::string& detail)
{
    ASSERT_TRUE(outcome.error.has_value()) << "opened";
    EXPECT_EQ(outcome.error->userText(), kCorrupt);
    EXPECT_NE(outcome.error->detail().find(detail), std::string::npos) << outcome.error->detail();
}

TEST(DocumentLimits, PartsThatShrinkLikeABombAreRefusedBeforeTheyInflate)
{
    struct Case {
        const char* name;
        Content part;
        const char* refusal;  // null: the document opens
    };
    const Case cases[] = {
        // Three of these make a file of under a megabyte that would inflate to three quarters of a gigabyte.
        {"256 MiB of zeros", ByteRun{256 * kMiB}, "inflates"},
        {"zeros just past the ratio floor", ByteRun{DocumentLimits::s_ratioFloor + 1}, "inflates"},
        {"a run of another byte", ByteRun{8 * kMiB, 0xA5}, "inflates"},
        {"zeros up to the floor", ByteRun{DocumentLimits::s_ratioFloor}, nullptr},
        {"incompressible bytes", noise(4 * kMiB), nullptr},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        KxTest::TempDir directory;
        writeArchive(directory / "doc.kxd", withBlobPart(test.part));
        const Outcome outcome = openTimed(directory / "doc.kxd");
        if (test.refusal == nullptr) {
            EXPECT_FALSE(outcome.error.has_value()) << outcome.error->detail();
            continue;
        }
        expectCorrupt(outcome, test.refusal);
        EXPECT_LT(outcome.seconds, 0.5);
        EXPECT_LT(outcome.peakGrowthMiB, 16);
    }
}

TEST(DocumentLimits, SizesThatLieStopTheInflationAtTheStatedSize)
{
    // The central directory and the local header both say 1000 bytes; the data inflates to 256 MiB.
    KxTest::TempDir directory;
    writeArchive(directory / "doc.kxd", withBlobPart(ByteRun{256 * kMiB}));
    std::vector<std::uint8_t> file = KxTest::readBytes(directory / "doc.kxd");
    stateSize(file, "blobs/Store.store", 1000);
    KxTest::writeBytes(directory / "lying.kxd", file);

    const Outcome outcome = openTimed(directory / "lying.kxd");
    expectCorrupt(outcome, "blobs/Store.store");
    EXPECT_LT(outcome.seconds, 0.5);
    EXPECT_LT(outcome.peakGrowthMiB, 16);
}

TEST(DocumentLimits, StatedSizesAreSummedAndCappedAtOpen)
{
    KxTest::TempDir directory;
    writeArchive(directory / "doc.kxd", withBlobPart(noise(256 * 1024)));
    EXPECT_FALSE(openTimed(directory / "doc.kxd").error.has_value());

    // One entry alone within each limit, the document beyond the total.
    expectCorrupt(openTimed(directory / "doc.kxd", {.maxTotalSize = 200 * 1024}), "inflate to more than the 204800 bytes");
    expectCorrupt(openTimed(directory / "doc.kxd", {.maxPartSize = 100 * 1024}), "larger than a document part can be");
    expectCorrupt(openTimed(directory / "doc.kxd", {.maxManifestSize = 16}), "manifest.json\" is larger");
    // A ratio of 1:1 is too much once the floor is gone: the deflated manifest and streams shrink.
    expectCorrupt(openTimed(directory / "doc.kxd", {.maxCompressionRatio = 1, .ratioFloor = 0}), "more than a document part shrinks");
}

TEST(DocumentLimits, TheEntryCountIsCheckedBeforeTheEntriesAreListed)
{
    KxTest::TempDir directory;

    // 200,000 empty entries with the zip64 end record a count above 65,535 needs. libzip takes
    // seconds to list them and memory for each; the count the end record states is refused first.
    KxTest::writeBytes(directory / "many.kxd", emptyEntries(200000));
    const Outcome many = openTimed(directory / "many.kxd");
    expectCorrupt(many, "states 200000 entries");
    EXPECT_LT(many.seconds, 0.1);
    EXPECT_LT(many.peakGrowthMiB, 4);

    // The plain end record of a small container: at the limit the document opens, beyond it not.
    const Entries document = savedDocument();
    writeArchive(directory / "small.kxd", document);
    EXPECT_FALSE(openTimed(directory / "small.kxd", {.maxEntries = document.size()}).error.has_value());
    expectCorrupt(openTimed(directory / "small.kxd", {.maxEntries = document.size() - 1}),
        "states " + std::to_string(document.size()) + " entries");
}

TEST(DocumentLimits, APartThatWouldShrinkTooMuchIsSavedStoredAndOpensAgain)
{
    Document document;
    Segment& main = *document.createSegment("main");
    main.addRoot("Store", *StrongRef<Store>(new Store()));
    static_cast<Store&>(*main.root("Store")).name = "Store";
    static_cast<Store&>(*main.root("Store")).payload = std::string(4 * kMiB, '\0');
    KxTest::TempDir directory;
    DocumentFile::save(document, directory / "zeros.kxd");

    EXPECT_GT(std::filesystem::file_size(directory / "zeros.kxd"), 4 * kMiB) << "the dense part is stored, not deflated";
    const std::unique_ptr<Document> opened = DocumentFile::open(directory / "zeros.kxd");
    EXPECT_EQ(static_cast<Store&>(*opened->segments().front()->root("Store")).payload.size(), 4 * kMiB);
}

} // namespace
} // namespace Kx
