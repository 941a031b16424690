// Files that are not sound documents: hostile entry names, broken manifests, missing parts and
// truncated streams are refused with Kx::Exception, and nothing they made stays alive.

#include "DocumentTestTypes.h"

#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/Segment.h>

#include <base/Exception.h>
#include <base/Strings.h>

#include <support/TestSupport.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

namespace Kx {
namespace {

using DocumentTest::bytesOf;
using DocumentTest::entry;
using DocumentTest::textOf;
using DocumentTest::ZipEntries;

const std::wstring kCorrupt = L"The file you are trying to open is corrupt! The current operation will be aborted!";
const std::wstring kUnknownType = L"The document contains objects this application does not know and cannot be opened.";

ZipEntries savedEntries(EStreamMode mode)
{
    Document document;
    Segment& main = *document.createSegment("main");
    StrongRef<Node> first = main.add(StrongRefCreator<Node>::create());
    StrongRef<Node> second = main.add(StrongRefCreator<Node>::create());
    first->next = second;
    main.addRoot("Store", *StrongRef<Store>(new Store()));
    static_cast<Store&>(*main.root("Store")).name = "Store";
    KxTest::TempDir directory;
    DocumentFile::save(document, directory / "base.kxd", mode);
    return DocumentTest::readZip(directory / "base.kxd");
}

void replace(std::vector<std::uint8_t>& bytes, const std::string& from, const std::string& to)
{
    std::string text = textOf(bytes);
    const auto at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    text.replace(at, from.size(), to);
    bytes = bytesOf(text);
}

void remove(ZipEntries& entries, const std::string& name)
{
    std::erase_if(entries, [&](const auto& item) { return item.first == name; });
}

// Opens `bytes` and expects a refusal with `userText` whose detail holds `detail`.
void expectRefused(const std::vector<std::uint8_t>& bytes, const std::wstring& userText, const std::string& detail)
{
    const int before = DocumentTest::liveEntities();
    try {
        (void)DocumentFile::open(bytes);
        ADD_FAILURE() << "opened";
    } catch (const Exception& error) {
        EXPECT_EQ(error.userText(), userText) << error.what();
        EXPECT_NE(error.detail().find(detail), std::string::npos) << error.detail();
    }
    EXPECT_EQ(DocumentTest::liveEntities(), before) << "a refused document leaves nothing alive";
}

std::vector<std::uint8_t> zipped(const ZipEntries& entries, bool deflate = true)
{
    KxTest::TempDir directory;
    DocumentTest::writeZip(directory / "doc.kxd", entries, deflate);
    return KxTest::readBytes(directory / "doc.kxd");
}

struct Damage {
    const char* name;
    EStreamMode mode;
    std::function<void(ZipEntries&)> apply;
    std::wstring userText;
    std::string detail;
};

TEST(DocumentCorruption, DamagedOrHostileContainersAreRefused)
{
    constexpr auto binary = EStreamMode::eBinary;
    constexpr auto xml = EStreamMode::eXML;
    const auto addEntry = [](std::string name) { return [name](ZipEntries& entries) { entries.emplace_back(name, bytesOf("x")); }; };
    const auto inManifest = [](std::string from, std::string to) {
        return [from, to](ZipEntries& entries) { replace(entry(entries, "manifest.json"), from, to); };
    };
    const Damage damages[] = {
        {"entry climbing out", binary, addEntry("../evil.txt"), kCorrupt, "not a name inside the document"},
        {"entry climbing out later", binary, addEntry("blobs/../../evil"), kCorrupt, "not a name inside the document"},
        {"absolute entry", binary, addEntry("/etc/evil"), kCorrupt, "not a name inside the document"},
        {"backslashes", binary, addEntry("blobs\\..\\evil"), kCorrupt, "not a name inside the document"},
        {"drive letter", binary, addEntry("C:/evil"), kCorrupt, "not a name inside the document"},
        {"dot level", binary, addEntry("blobs/./Store.store"), kCorrupt, "not a name inside the document"},
        {"control character", binary, addEntry("blobs/a\x01"), kCorrupt, "not a name inside the document"},
        {"no manifest", binary, [](ZipEntries& entries) { remove(entries, "manifest.json"); }, kCorrupt, "manifest.json\" is missing"},
        {"manifest not JSON", binary, [](ZipEntries& entries) { entry(entries, "manifest.json") = bytesOf("{\"format\":"); }, kCorrupt, "not JSON"},
        {"manifest of another format", binary, inManifest("\"KxDocument\"", "\"Other\""), kCorrupt, "not a document manifest"},
        {"field of the wrong kind", binary, inManifest("\"nextEntityId\": ", "\"nextEntityId\": \"1\", \"x\": "), kCorrupt, "nextEntityId"},
        {"segment entry elsewhere", binary, inManifest("\"segments/0.bin\"", "\"../segments/0.bin\""), kCorrupt, "not where the format puts it"},
        {"segment entry of the other kind", binary, inManifest("\"segments/0.bin\"", "\"segments/0.xml\""), kCorrupt, "not where the format puts it"},
        {"blob part climbing out", binary, inManifest("\"name\": \"Store.store\"", "\"name\": \"../Store.store\""), kCorrupt, "is not valid"},
        {"segment stream missing", binary, [](ZipEntries& entries) { remove(entries, "segments/0.bin"); }, kCorrupt, "segments/0.bin\" is missing"},
        {"blob part missing", binary, [](ZipEntries& entries) { remove(entries, "blobs/Store.store"); }, kCorrupt, "blobs/Store.store\" is missing"},
        {"blob part of another size", binary, [](ZipEntries& entries) { entry(entries, "blobs/Store.store").push_back(0); }, kCorrupt, "not the size"},
        {"unknown entity type", binary, inManifest("4A9D2C7E-3B1F-4E60-8D75-96A0B1C2D3E4", "4A9D2C7E-0000-0000-0000-96A0B1C2D3E4"), kUnknownType, "Node"},
        {"more entities than stored", binary, inManifest("\"entities\": 3", "\"entities\": 4"), kCorrupt, "number of entities"},
        {"segment stream of another kind", binary, [](ZipEntries& entries) { entry(entries, "segments/0.bin") = bytesOf("hello, world"); }, kCorrupt, "not a segment stream"},
        {"bytes after the roots", binary, [](ZipEntries& entries) { entry(entries, "segments/0.bin").push_back(0); }, kCorrupt, "bytes follow the roots"},
        {"duplicate entity id", xml, [](ZipEntries& entries) { replace(entry(entries, "segments/0.xml"), "_id=\"2\"", "_id=\"1\""); }, kCorrupt, "occurs twice"},
        {"no entity id", xml, [](ZipEntries& entries) { replace(entry(entries, "segments/0.xml"), "_id=\"2\"", "_id=\"x\""); }, kCorrupt, "not valid"},
        {"root naming no entity", xml, [](ZipEntries& entries) { replace(entry(entries, "segments/0.xml"), "entity=\"3\"", "entity=\"9\""); }, kCorrupt, "names no entity"},
        {"unknown element", xml, [](ZipEntries& entries) { replace(entry(entries, "segments/0.xml"), "<Store ", "<Stores "); }, kCorrupt, "<Stores>"},
        {"malformed XML", xml, [](ZipEntries& entries) { entry(entries, "segments/0.xml").resize(40); }, kCorrupt, "segments/0.xml"},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.name);
        ZipEntries entries = savedEntries(damage.mode);
        damage.apply(entries);
        expectRefused(zipped(entries), damage.userText, damage.detail);
    }
}

TEST(DocumentCorruption, EveryTruncationOfASegmentStreamIsRefused)
{
    const ZipEntries intact = savedEntries(EStreamMode::eBinary);
    const std::vector<std::uint8_t>& stream = DocumentTest::entry(const_cast<ZipEntries&>(intact), "segments/0.bin");
    for (std::size_t length = 0; length < stream.size(); ++length) {
        SCOPED_TRACE(length);
        ZipEntries entries = intact;
        entry(entries, "segments/0.bin").resize(length);
        expectRefused(zipped(entries), kCorrupt, "segments/0.bin");
    }
}

TEST(DocumentCorruption, TruncatedOrForeignFilesAreRefused)
{
    const std::vector<std::uint8_t> file = zipped(savedEntries(EStreamMode::eBinary));
    for (std::size_t length = 0; length < file.size(); length += 1 + file.size() / 64) {
        SCOPED_TRACE(length);
        expectRefused(std::vector<std::uint8_t>(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)), kCorrupt, "");
    }
    expectRefused(bytesOf("PK\x03\x04 this is not a zip container"), kCorrupt, "");

    // A byte flipped inside a stored entry: the checksum gives it away.
    std::vector<std::uint8_t> flipped = zipped(savedEntries(EStreamMode::eBinary), /*deflate=*/false);
    const std::string marker = "KxDocument";
    const auto at = std::search(flipped.begin(), flipped.end(), marker.begin(), marker.end());
    ASSERT_NE(at, flipped.end());
    *at ^= 1;
    expectRefused(flipped, kCorrupt, "CRC");
}

} // namespace
} // namespace Kx
