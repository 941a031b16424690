// The document file: whole documents through both stream kinds, blob parts, the order of the
// hooks around a save and an open, and saves that fail halfway.

#include "DocumentTestTypes.h"

#include <datamodel/BlobFolder.h>
#include <datamodel/BlobPart.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/Segment.h>

#include <base/Exception.h>
#include <base/FaultInjection.h>

#include <support/TestSupport.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace Kx {
namespace {

using DocumentTest::hookLog;
using DocumentTest::hookNames;
using DocumentTest::snapshot;

template <class T>
T& add(Segment& segment)
{
    return *segment.add(StrongRefCreator<T>::create());
}

// Two segments with references inside and across them, roots, a transient segment, and a store
// whose payload travels in a blob part.
std::unique_ptr<Document> sampleDocument(EBlobFolderKind folderKind = EBlobFolderKind::eFlat)
{
    auto document = std::make_unique<Document>(folderKind);
    document->identifier("0F1E2D3C-4B5A-4968-8776-A5B4C3D2E1F0");
    Segment& main = *document->createSegment("main");
    Segment& side = *document->createSegment("side \"two\" <&>");
    const StrongRef<Store> store(new Store());
    store->name = folderKind == EBlobFolderKind::eFlat ? "Store" : "stores/first/Store";
    store->payload = std::string("payload\0with a zero byte", 24);
    main.addRoot("Store", *store);
    Node& first = add<Node>(main);
    Node& second = add<Node>(side);
    Shape& shape = add<Shape>(side);
    first.label = L"Gr\u00FC\u00DFe \u2713";
    first.mark.number = -7;
    first.next = StrongRef<Node>(&second);
    first.shape = StrongRef<Shape>(&shape);
    second.label = L"second";
    second.next = StrongRef<Node>(&first);
    shape.title = L"square";
    shape.area = 0.1;
    shape.mark.number = 2147483647;
    side.addRoot("Registry", *StrongRef<Node>(new Node()));
    Segment& scratch = *document->createSegment("scratch", /*transient=*/true);
    add<Node>(scratch).label = L"never saved";
    return document;
}

std::string withoutTransient(std::string text)
{
    return text.substr(0, text.find("segment scratch"));
}

class DocumentFiles : public ::testing::TestWithParam<EStreamMode> {
protected:
    KxTest::TempDir directory;
};

TEST_P(DocumentFiles, AWholeDocumentComesBackAsItWasSaved)
{
    const std::unique_ptr<Document> document = sampleDocument();
    const auto file = directory / "sample.kxd";
    DocumentFile::save(*document, file, GetParam());
    EXPECT_EQ(document->path(), file);

    const std::unique_ptr<Document> opened = DocumentFile::open(file);
    EXPECT_EQ(snapshot(*opened), withoutTransient(snapshot(*document)));
    EXPECT_EQ(opened->identifier(), document->identifier());
    EXPECT_EQ(opened->nextEntityId(), document->nextEntityId()) << "ids of the transient segment are not given again";
    EXPECT_EQ(opened->path(), file);
    EXPECT_EQ(opened->segment("scratch"), nullptr);
    const auto& store = static_cast<const Store&>(*opened->segment("main")->root("Store"));
    EXPECT_EQ(store.payload, std::string("payload\0with a zero byte", 24));
    const auto& first = static_cast<const Node&>(*opened->segment("main")->entities().rbegin()->second);
    ASSERT_TRUE(first.next && first.shape);
    EXPECT_EQ(first.next->next.get(), &first) << "references across segments, both ways";
    EXPECT_EQ(first.shape->segment(), opened->segment("side \"two\" <&>"));
    EXPECT_EQ(DocumentFile::readManifest(file).streamMode, GetParam());
}

TEST_P(DocumentFiles, AMultiLevelBlobFolderKeepsItsFoldersAndPartsNoSerializerKnows)
{
    const std::unique_ptr<Document> document = sampleDocument(EBlobFolderKind::eMultiLevel);
    BlobFolder& folder = static_cast<BlobFolder&>(*document->blobFolder());
    BlobPart* notes = folder.makeBlobPart("notes/readme", "txt");
    ASSERT_NE(notes, nullptr);
    notes->zipPart(DocumentTest::bytesOf("opaque to this build"));
    notes->markUsed();
    const auto file = directory / "folders.kxd";
    DocumentFile::save(*document, file, GetParam());

    const std::unique_ptr<Document> opened = DocumentFile::open(file);
    const auto& openedFolder = static_cast<const BlobFolder&>(*opened->blobFolder());
    EXPECT_TRUE(openedFolder.multiLevelFolder());
    EXPECT_EQ(openedFolder.subFolders(""), (std::vector<std::string>{"notes", "stores"}));
    EXPECT_EQ(openedFolder.subFolders("stores"), std::vector<std::string>{"first"});
    ASSERT_NE(openedFolder.findBlobPart("notes/readme.txt"), nullptr);
    EXPECT_EQ(DocumentTest::textOf(openedFolder.findBlobPart("notes/readme.txt")->zipPart()), "opaque to this build");
    EXPECT_EQ(openedFolder.blobParts("stores").size(), 1u);
    EXPECT_EQ(static_cast<const Store&>(*opened->segment("main")->root("Store")).payload.size(), 24u);
}

TEST_P(DocumentFiles, HooksRunInTheOrderOfASaveAndOfAnOpen)
{
    Document document;
    Segment& main = *document.createSegment("main");
    const StrongRef<Store> store(new Store());
    store->name = "Store";
    main.addRoot("Store", *store);
    add<Node>(main).mark.number = 3;
    const auto file = directory / "hooks.kxd";

    hookLog().clear();
    DocumentFile::save(document, file, GetParam());
    EXPECT_EQ(hookNames(), (std::vector<std::string>{"trigger.prepare", "entity.preAssetSave", "entity.preSave",
                               "value.preSave", "value.postSave", "entity.postSave", "blob.doSave"}));

    hookLog().clear();
    (void)DocumentFile::open(file);
    EXPECT_EQ(hookNames(), (std::vector<std::string>{"blob.doLoad", "entity.preLoad", "value.preLoad", "value.postLoad",
                               "entity.postLoad", "trigger.sync", "entity.postAssetLoad", "value.postAssetLoad"}));
}

TEST_P(DocumentFiles, SavingTheSameDocumentTwiceWritesTheSameBytes)
{
    const std::unique_ptr<Document> document = sampleDocument();
    DocumentFile::save(*document, directory / "one.kxd", GetParam());
    DocumentFile::save(*document, directory / "two.kxd", GetParam());
    EXPECT_EQ(KxTest::readBytes(directory / "one.kxd"), KxTest::readBytes(directory / "two.kxd"));
}

INSTANTIATE_TEST_SUITE_P(BothStreams, DocumentFiles, ::testing::Values(EStreamMode::eBinary, EStreamMode::eXML),
    [](const auto& info) { return info.param == EStreamMode::eBinary ? std::string("Binary") : std::string("XML"); });

struct FaultCase {
    const char* name;
    const char* point;
    unsigned passes;
};

class FailedSave : public ::testing::TestWithParam<FaultCase> {};

TEST_P(FailedSave, LeavesThePreviousFileByteForByteAndNothingElse)
{
    KxTest::TempDir directory;
    const auto file = directory / "kept.kxd";
    const std::unique_ptr<Document> document = sampleDocument();
    DocumentFile::save(*document, file);
    const std::vector<std::uint8_t> previous = KxTest::readBytes(file);
    const std::string savedState = withoutTransient(snapshot(*document));

    DocumentTest::setLabel(static_cast<Node&>(*document->segment("side \"two\" <&>")->entities().begin()->second), L"edited");
    {
        FaultInjection::ScopedFault fault(GetParam().point, GetParam().passes);
        try {
            DocumentFile::save(*document, file);
            FAIL() << "the save went through";
        } catch (const Exception& error) {
            EXPECT_EQ(error.userText(), L"The document could not be saved. The previous version of the file is unchanged.");
        }
    }
    EXPECT_EQ(KxTest::readBytes(file), previous);
    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(directory.path()))
        left.push_back(entry.path().filename().string());
    EXPECT_EQ(left, std::vector<std::string>{"kept.kxd"});
    EXPECT_EQ(snapshot(*DocumentFile::open(file)), savedState);

    DocumentFile::save(*document, file);
    EXPECT_NE(snapshot(*DocumentFile::open(file)), savedState) << "the next save goes through";
}

INSTANTIATE_TEST_SUITE_P(EveryFaultPoint, FailedSave,
    ::testing::Values(FaultCase{"SecondSegment", "DocumentFile.save.segment", 1},
        FaultCase{"BlobPart", "DocumentFile.save.blob", 0}, FaultCase{"Commit", "DocumentFile.save.commit", 0},
        FaultCase{"Rename", "DocumentFile.save.rename", 0}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(DocumentFile, AFailedFirstSaveDoesNotSpeakOfAPreviousVersion)
{
    KxTest::TempDir directory;
    const auto file = directory / "first.kxd";
    const std::unique_ptr<Document> document = sampleDocument();
    FaultInjection::ScopedFault fault("DocumentFile.save.commit", 0);
    try {
        DocumentFile::save(*document, file);
        FAIL() << "the save went through";
    } catch (const Exception& error) {
        EXPECT_EQ(error.userText(), L"The document could not be saved.");
        EXPECT_EQ(error.detail(), "fault injected at DocumentFile.save.commit");
    }
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(DocumentFile, AFileThatIsNotThereOrAFolderThatIsNotThereIsReportedAsSuch)
{
    KxTest::TempDir directory;
    try {
        (void)DocumentFile::open(directory / "missing.kxd");
        FAIL() << "opened";
    } catch (const Exception& error) {
        EXPECT_EQ(error.userText(), L"The document cannot be opened: the file does not exist or cannot be read.");
    }
    Document document;
    EXPECT_THROW(DocumentFile::save(document, directory / "no such folder" / "file.kxd"), Exception);
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST(DocumentFile, ASerializerThatCannotReadItsPartAbortsTheOpenAndLeavesNothing)
{
    KxTest::TempDir directory;
    const auto file = directory / "store.kxd";
    DocumentFile::save(*sampleDocument(), file);
    const int before = DocumentTest::liveEntities();
    StoreBlobSerializer::get().failNextLoad = true;
    try {
        (void)DocumentFile::open(file);
        FAIL() << "opened";
    } catch (const Exception& error) {
        EXPECT_EQ(error.userText(), L"The store cannot be read.");
    }
    EXPECT_EQ(DocumentTest::liveEntities(), before);
}

// Golden documents are kept forever: every later build must open them. The writer is held to
// the same entries, so a change of the format shows here first.
TEST(DocumentFile, GoldenDocumentsOpenAndTheWriterStillWritesThem)
{
    for (const EStreamMode mode : {EStreamMode::eBinary, EStreamMode::eXML}) {
        const std::string name = mode == EStreamMode::eBinary ? "binary" : "xml";
        SCOPED_TRACE(name);
        const std::unique_ptr<Document> document = sampleDocument();
        KxTest::TempDir directory;
        const auto file = directory / "golden.kxd";
        DocumentFile::save(*document, file, mode);
        for (const auto& [entry, bytes] : DocumentTest::readZip(file))
            KxTest::expectGoldenBytes("documents/sample-" + name + "/" + entry, bytes);

        const auto golden = KxTest::dataPath("documents/sample-v1-" + name + ".kxd");
        if (const char* update = std::getenv("KX_UPDATE_GOLDEN"); update != nullptr && std::string(update) == "1")
            KxTest::writeBytes(golden, KxTest::readBytes(file));
        EXPECT_EQ(snapshot(*DocumentFile::open(golden)), withoutTransient(snapshot(*document)));
    }
}

} // namespace
} // namespace Kx
