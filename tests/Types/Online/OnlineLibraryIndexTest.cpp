// The index of an online library: what publishing writes reads back the same, and a hostile index
// is refused with its reason instead of being believed.
#include "OnlineTestSupport.h"

#include <Types/Online/OnlineLibraryPublisher.h>
#include <Types/Online/Sha256.h>

#include <base/Exception.h>
#include <base/Paths.h>

namespace OnlineTest {
namespace {

using Kx::Types::OnlineIndexLimits;
using Kx::Types::readOnlineLibraryIndex;

TEST(OnlineLibraryIndex, PublishingListsEveryPresetWithFilesThatMatchTheirHashes)
{
    const Kx::Types::OnlineLibraryIndex& index = publishedIndex();
    ASSERT_EQ(index.materials.size(), 7u);
    for (const Kx::Types::OnlineMaterial& material : index.materials) {
        SCOPED_TRACE(material.materialId);
        EXPECT_EQ(Kx::Types::Sha256::ofFile(publishedLibrary() / material.file.path), material.file.sha256);
        EXPECT_EQ(std::filesystem::file_size(publishedLibrary() / material.file.path), material.file.size);
        for (const Kx::Types::OnlineTexture& texture : material.textures)
            EXPECT_EQ(Kx::Types::Sha256::ofFile(publishedLibrary() / texture.file.path), texture.file.sha256);
    }
    // What is written reads back as it was.
    EXPECT_EQ(readOnlineLibraryIndex(KxTest::readText(publishedLibrary() / "index.json")), index);
}

TEST(OnlineLibraryIndex, AnImageWithAHostileNameIsPublishedUnderAPlainName)
{
    const auto& materials = publishedIndex().materials;
    const auto escape = std::find_if(materials.begin(), materials.end(), [](const auto& m) { return m.materialId == "escape"; });
    ASSERT_NE(escape, materials.end());
    ASSERT_EQ(escape->textures.size(), 1u);
    EXPECT_EQ(escape->textures[0].id, escape->uuid + "/escape.png");
    EXPECT_TRUE(std::filesystem::exists(publishedLibrary() / "textures" / escape->uuid / "escape.png"));
}

TEST(OnlineLibraryIndex, PublishingTheSameLibraryTwiceGivesTheSameBytes)
{
    KxTest::TempDir folder;
    const std::filesystem::path& source = handMadeLibrary();
    const auto first = Kx::Types::PublishOnlineLibrary({source}, folder / "a");
    const auto second = Kx::Types::PublishOnlineLibrary({source}, folder / "b");
    EXPECT_EQ(KxTest::readBytes(folder / "a" / "index.json"), KxTest::readBytes(folder / "b" / "index.json"));
    for (const Kx::Types::OnlineMaterial& material : first.index.materials)
        EXPECT_EQ(KxTest::readBytes(folder / "a" / material.file.path), KxTest::readBytes(folder / "b" / material.file.path));
    EXPECT_EQ(first.bytes, second.bytes);
    EXPECT_EQ(first.index.categories.size(), 1u); // "Paint"
}

TEST(OnlineLibraryIndex, AHostileIndexIsRefusedWithItsReason)
{
    const std::string file = R"("file":{"path":"materials/A.tvrnlib","size":10,"sha256":")" + std::string(64, 'a') + "\"}";
    const auto material = [&](const std::string& uuid, const std::string& fileText) {
        return R"({"uuid":")" + uuid + R"(","materialId":"m","libraryId":"L","name":"n","assetType":"materialappearance",)" + fileText + "}";
    };
    const auto index = [](const std::string& materials, const std::string& version = "1") {
        return R"({"format":"kx-online-material-library","version":)" + version
            + R"(,"libraryId":"L","name":"N","categories":[],"materials":[)" + materials + "]}";
    };
    // The well-formed one first, so the refusals below are each about their one fault.
    EXPECT_EQ(readOnlineLibraryIndex(index(material("A", file))).materials.size(), 1u);
    const auto withPath = [&](const std::string& path) {
        return index(material("A", R"("file":{"path":")" + path + R"(","size":10,"sha256":")" + std::string(64, 'a') + "\"}"));
    };
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"not JSON", "{\"format\":"},
        {"not an object", "[1,2]"},
        {"another format", R"({"format":"zip","version":1})"},
        {"a newer version", index("", "2")},
        {"a negative size", index(material("A", R"("file":{"path":"a","size":-1,"sha256":")" + std::string(64, 'a') + "\"}"))},
        {"a short hash", index(material("A", R"("file":{"path":"a","size":1,"sha256":"abc"})"))},
        {"climbing out", withPath("../../etc/passwd")},
        {"climbing out in the middle", withPath("materials/../../x")},
        {"an absolute path", withPath("/etc/passwd")},
        {"a backslash", withPath("materials\\\\x")},
        {"an empty segment", withPath("materials//x")},
        {"a URL", withPath("http://elsewhere/x")},
        {"a UUID that is a path", index(material("../A", file))},
        {"a repeated UUID", index(material("A", file) + "," + material("A", file))},
        {"a missing file", index(R"({"uuid":"A","materialId":"m","libraryId":"L","name":"n","assetType":"t"})")},
        {"a string for a number", index(material("A", R"("file":{"path":"a","size":"10","sha256":")" + std::string(64, 'a') + "\"}"))},
        {"too deep", std::string(100, '[') + std::string(100, ']')},
    };
    for (const auto& [name, text] : cases) {
        SCOPED_TRACE(name);
        EXPECT_THROW((void)readOnlineLibraryIndex(text), Kx::Exception);
    }
}

TEST(OnlineLibraryIndex, HugeCountsAreRefusedBeforeTheyCostMemory)
{
    OnlineIndexLimits limits;
    limits.maxMaterials = 3;
    std::string materials;
    for (int item = 0; item < 4; ++item)
        materials += std::string(item == 0 ? "" : ",") + "{}";
    const std::string text = R"({"format":"kx-online-material-library","version":1,"libraryId":"","name":"","categories":[],"materials":[)"
        + materials + "]}";
    try {
        (void)readOnlineLibraryIndex(text, limits);
        FAIL() << "four materials were taken where three are allowed";
    } catch (const Kx::Exception& error) {
        EXPECT_NE(std::string(error.what()).find("more than 3"), std::string::npos) << error.what();
    }
    limits.maxBytes = 100;
    EXPECT_THROW((void)readOnlineLibraryIndex(std::string(101, ' '), limits), Kx::Exception);
}

} // namespace
} // namespace OnlineTest
