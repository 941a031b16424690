// Documents written with older member sets: entities and values read with the members they had
// then, migrated once the whole document is in memory, and the migration steps that follow.

#include "DocumentTestTypes.h"

#include <datamodel/BinaryStreams.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/MigrationStep.h>
#include <datamodel/Segment.h>
#include <datamodel/VisitorContext.h>

#include <base/Exception.h>

#include <support/TestSupport.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace Kx {
namespace {

using DocumentTest::bytesOf;
using DocumentTest::hookLog;
using DocumentTest::hookNames;

// A document as an older build wrote it, made by hand from the format description: a Node whose
// mark is stored with Mark version 1 (decimal text) and which refers to a Shape stored with
// version 0 (title, width and height).
std::vector<std::uint8_t> oldDocument(EStreamMode mode, unsigned shapeVersion = 0)
{
    const bool binary = mode == EStreamMode::eBinary;
    const std::string manifest = std::string(R"({"format":"KxDocument","formatVersion":1,"identifier":"OLD-DOCUMENT",)")
        + R"("stream":")" + (binary ? "binary" : "xml") + R"(","blobFolder":"flat","nextEntityId":3,"types":[)"
        + R"({"id":"4A9D2C7E-3B1F-4E60-8D75-96A0B1C2D3E4","name":"Node","kind":"entity","version":0},)"
        + R"({"id":"0D6A1F3C-5B2E-4C7D-9E8F-10A2B3C4D5E6","name":"Mark","kind":"value","version":1},)"
        + R"({"id":"7B3E0A6C-1D2F-4E58-A9B0-C1D2E3F40516","name":"Shape","kind":"entity","version":)"
        + std::to_string(shapeVersion) + "}],"
        + R"("segments":[{"name":"main","entry":"segments/0.)" + (binary ? "bin" : "xml") + R"(","entities":2}],"blobParts":[]})";

    std::vector<std::uint8_t> stream;
    if (binary) {
        BinaryWriteStream out;
        out.write(std::uint32_t{0x4753584B});
        out.write(std::uint32_t{1});
        out.write(std::uint32_t{2});
        out.write(std::uint32_t{0}); // Node
        out.write(std::uint64_t{1});
        BinaryWriteStream node;
        node.write(std::string_view("old node"));
        node.write(std::uint64_t{0});
        node.write(std::uint64_t{2});
        node.write(std::string_view("42"));
        out.write(std::uint32_t{0});
        out.write(static_cast<std::uint32_t>(node.size()));
        out.writeBytes(node.bytes().data(), node.size());
        out.write(std::uint32_t{2}); // Shape
        out.write(std::uint64_t{2});
        BinaryWriteStream shape;
        shape.write(std::string_view("old shape"));
        shape.write(std::int32_t{3});
        shape.write(std::int32_t{4});
        out.write(std::uint32_t{shapeVersion});
        out.write(static_cast<std::uint32_t>(shape.size()));
        out.writeBytes(shape.bytes().data(), shape.size());
        out.write(std::uint32_t{0});
        stream = out.takeBytes();
    } else {
        stream = bytesOf(R"(<?xml version="1.0"?><KxSegment><Entities>)"
                         R"(<Node _id="1" _version="0" label="old node" next="0" shape="2"><mark text="42"/></Node>)"
                         R"(<Shape _id="2" _version=")" + std::to_string(shapeVersion) + R"(" title="old shape" width="3" height="4"/>)"
                         R"(</Entities><Roots/></KxSegment>)");
    }
    KxTest::TempDir directory;
    const auto file = directory / "old.kxd";
    DocumentTest::writeZip(file, {{"manifest.json", bytesOf(manifest)}, {binary ? "segments/0.bin" : "segments/0.xml", stream}});
    return KxTest::readBytes(file);
}

class Migration : public ::testing::TestWithParam<EStreamMode> {};

TEST_P(Migration, OldMemberSetsAreReadAndMigratedOnceTheDocumentIsInMemory)
{
    const std::vector<std::uint8_t> bytes = oldDocument(GetParam());
    hookLog().clear();
    const std::unique_ptr<Document> document = DocumentFile::open(bytes);
    const Segment& segment = *document->segment("main");
    ASSERT_EQ(segment.size(), 2u);
    const auto& node = static_cast<const Node&>(*segment.find(1));
    const auto& shape = static_cast<const Shape&>(*segment.find(2));
    EXPECT_EQ(node.label, L"old node");
    EXPECT_EQ(node.shape.get(), &shape);
    EXPECT_EQ(node.mark.number, 42);
    EXPECT_EQ(node.mark.migratedFrom, 1u) << "onPostMigrate sees the version the value was stored with";
    EXPECT_EQ(const_cast<Node&>(node).mark.migratingVersion(), 0u) << "cleared once migrated";
    EXPECT_EQ(shape.title, L"old shape");
    EXPECT_EQ(shape.area, 12.0);

    // Values first, then entities, after every entity was read and before the post-asset-load pass.
    const std::vector<std::string> names = hookNames();
    const auto position = [&](const std::string& name) { return std::find(names.begin(), names.end(), name) - names.begin(); };
    const auto lastLoad = names.rend() - std::find(names.rbegin(), names.rend(), "entity.postLoad") - 1;
    EXPECT_LT(lastLoad, position("value.postMigrate"));
    EXPECT_LT(position("value.postMigrate"), position("entity.postMigrate"));
    EXPECT_LT(position("entity.postMigrate"), position("entity.postAssetLoad"));
    EXPECT_EQ(std::count(names.begin(), names.end(), "entity.postMigrate"), 1);

    // Saved again, the document carries the current member sets and needs no migration.
    KxTest::TempDir directory;
    DocumentFile::save(*document, directory / "new.kxd", GetParam());
    const DocumentManifest manifest = DocumentFile::readManifest(directory / "new.kxd");
    const auto shapeType = std::find_if(manifest.types.begin(), manifest.types.end(), [](const auto& type) { return type.name == "Shape"; });
    ASSERT_NE(shapeType, manifest.types.end());
    EXPECT_EQ(shapeType->version, 1u);
    hookLog().clear();
    const std::unique_ptr<Document> reopened = DocumentFile::open(directory / "new.kxd");
    EXPECT_TRUE(hookNames("entity.postMigrate").empty());
    EXPECT_TRUE(hookNames("value.postMigrate").empty());
    EXPECT_EQ(DocumentTest::snapshot(*reopened), DocumentTest::snapshot(*document));
}

TEST_P(Migration, AVersionNewerThanThisBuildIsRefused)
{
    try {
        (void)DocumentFile::open(oldDocument(GetParam(), 5));
        FAIL() << "opened";
    } catch (const Exception& error) {
        EXPECT_EQ(error.userText(), L"The document was written by a newer version of the application and cannot be opened.");
    }
}

INSTANTIATE_TEST_SUITE_P(BothStreams, Migration, ::testing::Values(EStreamMode::eBinary, EStreamMode::eXML),
    [](const auto& info) { return info.param == EStreamMode::eBinary ? std::string("Binary") : std::string("XML"); });

struct StepRun {
    std::string step;
    bool copied;
    bool shapeMigrated;
    int marks;
};
std::vector<StepRun>& stepRuns()
{
    static std::vector<StepRun> runs;
    return runs;
}

template <int Rank>
class RecordingStep final : public MigrationStep {
public:
    void onMigrate() override
    {
        int marks = 0;
        forEachValue(Mark::s_metaType(), [&](void*, Entity&) { ++marks; });
        stepRuns().push_back({"rank " + std::to_string(Rank), isCopiedAsset(), wasMigrated(Shape::s_metaType().metaTypeId()), marks});
    }
};

TEST(MigrationSteps, RunInRankOrderWhenSomethingWasMigratedOrTheDocumentIsACopy)
{
    const MigrationStepRegistration<RecordingStep<20>> late("test.late", 20);
    const MigrationStepRegistration<RecordingStep<10>> early("test.early", 10);

    stepRuns().clear();
    const std::unique_ptr<Document> migrated = DocumentFile::open(oldDocument(EStreamMode::eBinary));
    ASSERT_EQ(stepRuns().size(), 2u);
    EXPECT_EQ(stepRuns()[0].step, "rank 10");
    EXPECT_EQ(stepRuns()[1].step, "rank 20");
    EXPECT_FALSE(stepRuns()[0].copied);
    EXPECT_TRUE(stepRuns()[0].shapeMigrated);
    EXPECT_EQ(stepRuns()[0].marks, 2) << "the node's mark and the shape's";

    KxTest::TempDir directory;
    const auto file = directory / "current.kxd";
    DocumentFile::save(*migrated, file);
    stepRuns().clear();
    (void)DocumentFile::open(file);
    EXPECT_TRUE(stepRuns().empty()) << "nothing to migrate";

    hookLog().clear();
    const std::unique_ptr<Document> copy = DocumentFile::open(file, DocumentOpenOptions{.asCopy = true});
    ASSERT_EQ(stepRuns().size(), 2u);
    EXPECT_TRUE(stepRuns()[0].copied);
    EXPECT_FALSE(stepRuns()[0].shapeMigrated);
    EXPECT_NE(copy->identifier(), migrated->identifier());
    EXPECT_TRUE(copy->path().empty());
    for (const auto& hook : hookLog()) {
        if (hook.name == "value.postLoad") {
            EXPECT_TRUE(VisitorContext(hook.mode).isLoadingCopiedAsset());
        }
    }
}

} // namespace
} // namespace Kx
