// What a document answers about its materials by itself: where a material is used, the entities
// and components carrying it, its replacement everywhere as one undo step; use counts counted
// again when a document opens as a copy; and an asset part whose bytes were damaged.

#include "MaterialTestSupport.h"

#include <Types/Appearance/AmbrelAssetManager.h>
#include <Types/Appearance/MaterialEvent.h>
#include <Types/Appearance/MaterialUses.h>
#include <Types/Testors/AppearanceTestor.h>

#include <base/Exception.h>
#include <datamodel/Comp/Component.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/Segment.h>
#include <datamodel/Selection.h>
#include <datamodel/TransactionManager.h>
#include <support/TestSupport.h>

#include <zip.h>

namespace Kx {
namespace {

using namespace MaterialTest;
using telvarin::platform::core::toUTF8;

class MaterialUses : public ::testing::Test {
protected:
    MaterialUses()
    {
        segment = document.createSegment("main");
        registry = AmbrelAssetManager::findOrMake(segment);
        steel = addBody(0, 0);
        alsoSteel = addBody(0, 1);
        other = addBody(1, 1);
        document.transactions().clear();
    }

    AppearanceTestor* addBody(std::size_t physical, std::size_t visual)
    {
        StrongRef<AppearanceTestor> body = segment->add(StrongRefCreator<AppearanceTestor>::create());
        body->physical = PhysicalMaterial(standardPhysicalId(physical), manager().GetPhysicalLibraryID());
        body->visual = VisualMaterial(firstId(manager().GetVisualMaterialsByLibrary(manager().GetVisualLibraryID()), visual),
            manager().GetVisualLibraryID());
        EXPECT_FALSE(registry->registerMaterial(body->physical).empty());
        EXPECT_FALSE(registry->registerMaterial(body->visual).empty());
        return body.get();
    }

    Document document;
    Segment* segment = nullptr;
    StrongRef<AmbrelAssetManager> registry;
    AppearanceTestor* steel = nullptr;
    AppearanceTestor* alsoSteel = nullptr;
    AppearanceTestor* other = nullptr;
};

TEST_F(MaterialUses, TheDocumentAnswersWhereAMaterialIsUsed)
{
    IAssetInstance* material = steel->physical.assetInstance();
    const std::vector<MaterialUse> uses = findMaterialUses(*segment, material);
    ASSERT_EQ(uses.size(), 2u);
    EXPECT_EQ(uses[0].entity.get(), steel);
    EXPECT_EQ(uses[0].member, "physical");
    EXPECT_EQ(uses[1].entity.get(), alsoSteel);

    EXPECT_EQ(registry->numLiveUsers(material), 2u);
    MaterialEvent whereUsed(PhysicalMaterial(material), Event::ePre);
    registry->materialEventSource().fireWhereUsed(&whereUsed);
    ASSERT_EQ(whereUsed.getComponentPaths().size(), 2u);
    EXPECT_EQ(whereUsed.getComponentPaths()[1].leaf(), alsoSteel->id());

    MaterialEvent select(VisualMaterial(other->visual.assetInstance()), Event::ePre);
    registry->materialEventSource().fireSelectEntityWithMat(&select);
    ASSERT_EQ(select.selections().size(), 1u);
    EXPECT_EQ(select.selections()[0]->size(), 2u) << "two bodies show the second appearance";

    StrongRef<Comp::Component> placed = segment->add(StrongRefCreator<Comp::Component>::create(L"bracket", StrongRef<Entity>(alsoSteel)));
    (void)segment->add(StrongRefCreator<Comp::Component>::create(L"cover", StrongRef<Entity>(other)));
    MaterialEvent components(PhysicalMaterial(material), Event::ePre);
    registry->materialEventSource().fireGetCompsWithPMMatRef(&components);
    ASSERT_EQ(components.getCompsWithPMMatRef().size(), 1u);
    EXPECT_EQ(components.getCompsWithPMMatRef()[0], placed);
    EXPECT_EQ(components.getComponentPaths()[0], ObjectPath({placed->id(), alsoSteel->id()}));
}

TEST_F(MaterialUses, ReplacingAMaterialMovesItsUsesAndUndoesAsOneStep)
{
    IAssetInstance* from = steel->physical.assetInstance();
    IAssetInstance* to = other->physical.assetInstance();
    ASSERT_EQ(registry->useCount(from), 2u);
    ASSERT_EQ(registry->useCount(to), 1u);
    {
        Transaction replace(document, L"Replace Material");
        MaterialEvent event(PhysicalMaterial(from), PhysicalMaterial(to), Event::ePre);
        registry->materialEventSource().fireReplaceMaterial(&event);
        replace.commit();
    }
    EXPECT_EQ(steel->physical.assetInstance(), to);
    EXPECT_EQ(alsoSteel->physical.assetInstance(), to);
    EXPECT_EQ(registry->useCount(from), 0u);
    EXPECT_EQ(registry->useCount(to), 3u);
    EXPECT_TRUE(registry->validate());
    EXPECT_EQ(document.transactions().undoNames(), std::vector<std::wstring>{L"Replace Material"});

    ASSERT_TRUE(document.transactions().undo());
    EXPECT_EQ(steel->physical.assetInstance(), from);
    EXPECT_EQ(alsoSteel->physical.assetInstance(), from);
    EXPECT_EQ(registry->useCount(from), 2u);
    EXPECT_EQ(registry->useCount(to), 1u);
    ASSERT_TRUE(document.transactions().redo());
    EXPECT_EQ(alsoSteel->physical.assetInstance(), to);
    EXPECT_EQ(registry->useCount(to), 3u);
    EXPECT_TRUE(registry->validate());
}

TEST_F(MaterialUses, AStaleCountDoesNotKeepAMaterialNobodyUses)
{
    PhysicalMaterial loose(other->physical.assetInstance());
    (void)registry->registerMaterial(loose);
    IAssetInstance* material = other->physical.assetInstance();
    EXPECT_EQ(registry->useCount(material), 2u) << "the loose value is counted, but no entity holds it";
    registry->fixRefCounts();
    EXPECT_EQ(registry->useCount(material), 1u);
    EXPECT_FALSE(registry->deleteMaterial(material)) << "a body still uses it";

    other->physical.unregister();
    other->physical = PhysicalMaterial();
    registry->fixRefCounts();
    EXPECT_EQ(registry->useCount(material), 0u);
    EXPECT_TRUE(registry->deleteMaterial(material));
}

TEST_F(MaterialUses, OpenedAsACopyItsCountsAreTakenFromTheBodies)
{
    KxTest::TempDir folder;
    PhysicalMaterial loose(steel->physical.assetInstance());
    (void)registry->registerMaterial(loose);
    DocumentFile::save(document, folder / "stale.kxd");

    const std::unique_ptr<Document> same = DocumentFile::open(folder / "stale.kxd");
    StrongRef<AmbrelAssetManager> kept = AmbrelAssetManager::find(same.get());
    ASSERT_TRUE(kept);
    std::vector<IAssetInstance*> physical;
    kept->getAllRegisteredPhysicalMaterials(physical);
    ASSERT_EQ(physical.size(), 2u);
    const auto countOf = [&](AmbrelAssetManager& in, const std::wstring& materialId) {
        std::vector<IAssetInstance*> all;
        in.getAllRegisteredPhysicalMaterials(all);
        for (IAssetInstance* instance : all) {
            if (manager().GetAssetInstanceMaterialID(instance) == materialId)
                return in.useCount(instance);
        }
        return ~0u;
    };
    EXPECT_EQ(countOf(*kept, standardPhysicalId(0)), 3u) << "an ordinary open keeps what was saved";

    DocumentOpenOptions asCopy;
    asCopy.asCopy = true;
    const std::unique_ptr<Document> copy = DocumentFile::open(folder / "stale.kxd", asCopy);
    StrongRef<AmbrelAssetManager> counted = AmbrelAssetManager::find(copy.get());
    ASSERT_TRUE(counted);
    EXPECT_EQ(countOf(*counted, standardPhysicalId(0)), 2u);
    EXPECT_EQ(countOf(*counted, standardPhysicalId(1)), 1u);
    EXPECT_TRUE(counted->validate());
}

// Rewrites the document's asset part with `damage` applied to its (uncompressed) bytes.
void damageAssetPart(const std::filesystem::path& file, const std::function<void(std::vector<std::uint8_t>&)>& damage)
{
    int error = 0;
    zip_t* archive = zip_open(file.c_str(), 0, &error);
    ASSERT_NE(archive, nullptr);
    const zip_int64_t index = zip_name_locate(archive, "blobs/AmbrelAsset.ambrel", 0);
    ASSERT_GE(index, 0);
    zip_stat_t stat;
    zip_stat_index(archive, static_cast<zip_uint64_t>(index), 0, &stat);
    auto* bytes = static_cast<std::uint8_t*>(std::malloc(stat.size));
    zip_file_t* part = zip_fopen_index(archive, static_cast<zip_uint64_t>(index), 0);
    ASSERT_EQ(zip_fread(part, bytes, stat.size), static_cast<zip_int64_t>(stat.size));
    zip_fclose(part);
    std::vector<std::uint8_t> content(bytes, bytes + stat.size);
    std::free(bytes);
    damage(content);
    // The archive reads the bytes when it is closed, below, while `content` still holds them.
    zip_source_t* source = zip_source_buffer(archive, content.empty() ? nullptr : content.data(), content.size(), 0);
    ASSERT_EQ(zip_file_replace(archive, static_cast<zip_uint64_t>(index), source, 0), 0);
    ASSERT_EQ(zip_close(archive), 0);
}

TEST_F(MaterialUses, DamagedAssetBytesFailTheOpenAsCorrupt)
{
    KxTest::TempDir folder;
    DocumentFile::save(document, folder / "good.kxd");
    struct Case {
        const char* name;
        std::function<void(std::vector<std::uint8_t>&)> damage;
    };
    const Case cases[] = {
        {"header flipped", [](std::vector<std::uint8_t>& bytes) { bytes[0] ^= 0xFF; }},
        {"every 97th byte flipped",
            [](std::vector<std::uint8_t>& bytes) {
                for (std::size_t i = 100; i < bytes.size(); i += 97)
                    bytes[i] ^= 0x5A;
            }},
        {"cut in half", [](std::vector<std::uint8_t>& bytes) { bytes.resize(bytes.size() / 2); }},
        {"emptied", [](std::vector<std::uint8_t>& bytes) { bytes.clear(); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::filesystem::path damaged = folder / (std::string(c.name) + ".kxd");
        std::filesystem::copy_file(folder / "good.kxd", damaged);
        damageAssetPart(damaged, c.damage);
        try {
            std::unique_ptr<Document> opened = DocumentFile::open(damaged);
            ADD_FAILURE() << "a document with damaged assets opened";
        } catch (const Exception& exception) {
            // The manifest's size check or the asset reader, whichever meets the damage first.
            EXPECT_NE(toUTF8(exception.userText()).find("corrupt"), std::string::npos) << toUTF8(exception.userText());
        }
    }
}

} // namespace
} // namespace Kx
