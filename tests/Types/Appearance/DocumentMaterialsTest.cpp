// Documents with materials: saved and opened in both stream forms with their registry intact; opened
// on a machine that lacks the library a material came from (the document carries the asset); with a
// material found nowhere (the default stands in, and the document reports it); and damaged.

#include "MaterialTestSupport.h"

#include <Types/Appearance/AmbrelAssetManager.h>
#include <Types/Appearance/DocumentMissingMaterialRecordMgr.h>
#include <Types/Appearance/DefaultMaterialOptions.h>
#include <Types/Testors/AppearanceTestor.h>

#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <base/Exception.h>
#include <base/FaultInjection.h>
#include <datamodel/CloningContext.h>
#include <datamodel/CloningStream.h>
#include <datamodel/Document.h>
#include <datamodel/TransactionManager.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/Segment.h>
#include <support/TestSupport.h>

#include <fstream>
#include <iterator>

namespace Kx {
namespace {

using namespace MaterialTest;
using telvarin::platform::core::toUTF8;

struct Body {
    std::wstring physicalId;
    std::wstring visualId;
};

// A document of bodies whose materials are registered in the segment's registry.
std::unique_ptr<Document> documentWith(const std::vector<Body>& bodies)
{
    auto document = std::make_unique<Document>();
    Segment* segment = document->createSegment("main");
    StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::findOrMake(segment);
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        StrongRef<AppearanceTestor> body = segment->add(StrongRefCreator<AppearanceTestor>::create());
        body->name = L"body " + std::to_wstring(i);
        body->physical = PhysicalMaterial(bodies[i].physicalId, L"");
        body->visual = VisualMaterial(bodies[i].visualId, L"");
        (void)registry->registerMaterial(body->physical);
        (void)registry->registerMaterial(body->visual);
    }
    return document;
}

std::vector<AppearanceTestor*> bodiesOf(const Document& document)
{
    std::vector<AppearanceTestor*> bodies;
    for (EntityId id = 1; id < document.nextEntityId(); ++id) {
        if (auto* body = dynamic_cast<AppearanceTestor*>(document.resolveEntity(id))) {
            bodies.push_back(body);
        }
    }
    return bodies;
}

// The registry as comparable text: per reference its kind, material id and use count.
std::wstring registryState(const Document& document)
{
    StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(&document);
    if (!registry) {
        return L"no registry";
    }
    std::wstring text;
    std::vector<IAssetInstance*> instances;
    registry->getAllRegisteredPhysicalMaterials(instances);
    for (IAssetInstance* instance : instances) {
        text += L"P" + registry->physicalMaterialAssetReference(instance) + L"=" + manager().GetAssetInstanceMaterialID(instance)
            + L":" + std::to_wstring(registry->useCount(instance)) + L" ";
    }
    instances.clear();
    registry->getAllRegisteredVisualMaterials(instances);
    for (IAssetInstance* instance : instances) {
        text += L"V" + registry->visualMaterialAssetReference(instance) + L"=" + manager().GetAssetInstanceMaterialID(instance)
            + L":" + std::to_wstring(registry->useCount(instance)) + L" ";
    }
    return text;
}

class DocumentMaterials : public ::testing::Test {
protected:
    std::wstring physicalId(std::size_t index) const { return standardPhysicalId(index); }
    std::wstring visualId(std::size_t index) const
    {
        return firstId(manager().GetVisualMaterialsByLibrary(manager().GetVisualLibraryID()), index);
    }
    std::filesystem::path file(const char* name) const { return m_folder.path() / name; }

    KxTest::TempDir m_folder;
};

TEST_F(DocumentMaterials, SavedAndOpenedWithEveryBodyAndUseCount)
{
    const std::vector<Body> bodies{{physicalId(0), visualId(0)}, {physicalId(1), visualId(0)}, {physicalId(0), visualId(1)},
        {physicalId(2), visualId(2)}};
    std::unique_ptr<Document> original = documentWith(bodies);
    InstancePtr unused(manager().GetAssetInstance(toUTF8(visualId(3)), manager().GetVisualLibraryID(), MaterialTweak{}));
    ASSERT_TRUE(AmbrelAssetManager::find(original.get())->addMaterial(unused.get()));
    const std::wstring before = registryState(*original);
    ASSERT_NE(before.find(L":2 "), std::wstring::npos) << before;

    for (const EStreamMode mode : {EStreamMode::eBinary, EStreamMode::eXML}) {
        SCOPED_TRACE(mode == EStreamMode::eBinary ? "binary" : "XML");
        const std::filesystem::path path = file(mode == EStreamMode::eBinary ? "binary.kxd" : "xml.kxd");
        DocumentFile::save(*original, path, mode);
        std::unique_ptr<Document> opened = DocumentFile::open(path);
        ASSERT_NE(opened, nullptr);
        EXPECT_EQ(registryState(*opened), before);
        StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(opened.get());
        ASSERT_TRUE(registry);
        EXPECT_TRUE(registry->validate());
        const std::vector<AppearanceTestor*> read = bodiesOf(*opened);
        ASSERT_EQ(read.size(), bodies.size());
        for (std::size_t i = 0; i < read.size(); ++i) {
            SCOPED_TRACE(i);
            EXPECT_EQ(read[i]->physical.ambrelAssetManager(), registry);
            EXPECT_EQ(read[i]->physical.assetInstance(), registry->physicalMaterialAssetInstance(read[i]->physical.assetReference()))
                << "the body uses the document's own asset";
            EXPECT_EQ(read[i]->visual.assetInstance(), registry->visualMaterialAssetInstance(read[i]->visual.assetReference()));
            EXPECT_EQ(read[i]->physical.ambrelMaterialID(), bodies[i].physicalId);
            EXPECT_DOUBLE_EQ(read[i]->physical.density(), storedStructural(read[i]->physical.assetInstance(), L"structural_Density"));
        }
        // Saved again, the document reads back the same: the part is made afresh on every save.
        DocumentFile::save(*opened, path, mode);
        std::unique_ptr<Document> again = DocumentFile::open(path);
        EXPECT_EQ(registryState(*again), before);
    }
}

// The colleague's machine: the document was saved with a material of a library this machine does
// not have. The asset travels in the document, with the values it had there.
TEST_F(DocumentMaterials, OpenedWithoutTheLibraryTheMaterialCameFrom)
{
    AmbrelManager& libraries = manager();
    Assets::IAssetLibraryManager& assets = *libraries.GetAssetLibMgr();
    const std::filesystem::path libraryFile = m_folder.path() / "Colleague.tvrnlib";
    const std::wstring libraryId = L"7A0C5E21-3B4D-4F6A-8C9E-1D2F3A4B5C6D";
    {
        Assets::AssetError error;
        Assets::IAssetLibrary* library = assets.CreateAssetLibrary(libraryFile.wstring(), Assets::eUserLibrary, libraryId, &error);
        ASSERT_NE(library, nullptr) << error.message;
        Assets::IWritableAssetLibrary* writable = assets.GetWritableAssetLibrary(library, &error);
        ASSERT_NE(writable, nullptr) << error.message;
        IAssetInstance* material = assets.CreateAssetInstance(L"physicalmaterial");
        IAssetInstance* structural = assets.CreateAssetInstance(L"structural");
        EXPECT_TRUE(structural->SetDoubleValue(L"structural_Density", 4321.0));
        EXPECT_TRUE(material->SetConnectedAsset(L"Structural", structural));
        structural->Release();
        material->SetName("eng", L"Colleague's alloy");
        EXPECT_TRUE(writable->CreateNewAssetPreset(material, Assets::AssetPresetInfo{"COLLEAGUE-ALLOY", {}, 1, 0, {}, {}, L"Metal", {}}, &error))
            << error.message;
        material->Release();
        EXPECT_TRUE(assets.CommitAssetLibrary(writable, &error)) << error.message;
        assets.ReleaseWritableAssetLibrary(writable);
        EXPECT_TRUE(assets.SaveAssetLibrary(library, &error)) << error.message;
        EXPECT_TRUE(assets.ReleaseAssetLibrary(library));
    }
    std::wstring displayName;
    ASSERT_TRUE(libraries.LoadUserLib(libraryFile.wstring(), displayName));
    const std::filesystem::path path = file("alloy.kxd");
    {
        auto document = std::make_unique<Document>();
        Segment* segment = document->createSegment("main");
        StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::findOrMake(segment);
        StrongRef<AppearanceTestor> body = segment->add(StrongRefCreator<AppearanceTestor>::create());
        body->physical = PhysicalMaterial(L"COLLEAGUE-ALLOY", libraryId);
        ASSERT_NE(body->physical.assetInstance(), nullptr);
        ASSERT_EQ(registry->registerMaterial(body->physical), L"0");
        DocumentFile::save(*document, path);
    }
    ASSERT_TRUE(libraries.UnloadUserLib(displayName));
    std::filesystem::remove(libraryFile);
    ASSERT_EQ(libraries.GetLibraryByIdentifier(libraryId), nullptr) << "the library is gone from this machine";
    ASSERT_EQ(PhysicalMaterial(L"COLLEAGUE-ALLOY", libraryId).assetInstance(), nullptr);

    std::unique_ptr<Document> opened = DocumentFile::open(path);
    ASSERT_NE(opened, nullptr);
    const std::vector<AppearanceTestor*> bodies = bodiesOf(*opened);
    ASSERT_EQ(bodies.size(), 1u);
    ASSERT_NE(bodies[0]->physical.assetInstance(), nullptr) << "the asset came with the document";
    EXPECT_DOUBLE_EQ(bodies[0]->physical.density(), 4321.0);
    EXPECT_EQ(bodies[0]->physical.name(), L"Colleague's alloy");
    EXPECT_EQ(libraries.GetAssetInstanceLibraryID(bodies[0]->physical.assetInstance()), libraryId)
        << "the asset keeps the identity it was saved with";
    EXPECT_TRUE(DocumentMissingMaterialRecordMgr::get().missingMaterials(opened->identifier()).empty());
}

TEST_F(DocumentMaterials, AMaterialFoundNowhereOpensAsTheDefaultAndIsReported)
{
    const std::filesystem::path path = file("missing.kxd");
    std::string identifier;
    {
        std::unique_ptr<Document> document = documentWith({{physicalId(0), visualId(0)}});
        identifier = document->identifier();
        StrongRef<AppearanceTestor> lost = document->segment("main")->add(StrongRefCreator<AppearanceTestor>::create());
        lost->physical = PhysicalMaterial(L"NO-SUCH-MATERIAL", manager().GetPhysicalLibraryID());
        lost->visual = VisualMaterial(L"NO-SUCH-APPEARANCE", manager().GetVisualLibraryID());
        DocumentFile::save(*document, path);
    }
    DocumentMissingMaterialRecordMgr::get().clear(identifier);
    std::unique_ptr<Document> opened = DocumentFile::open(path);
    ASSERT_NE(opened, nullptr);
    const auto missing = DocumentMissingMaterialRecordMgr::get().missingMaterials(opened->identifier());
    ASSERT_EQ(missing.size(), 2u);
    EXPECT_EQ(missing[0].materialId, L"NO-SUCH-MATERIAL");
    EXPECT_EQ(missing[0].kind, DocumentMissingMaterialRecordMgr::EKind::ePhysical);
    EXPECT_EQ(missing[1].materialId, L"NO-SUCH-APPEARANCE");

    DefaultMaterialOptionGroup* defaults = DefaultMaterialOptionGroup::get();
    ASSERT_NE(defaults, nullptr);
    const std::vector<AppearanceTestor*> bodies = bodiesOf(*opened);
    ASSERT_EQ(bodies.size(), 2u);
    AppearanceTestor* replaced = bodies[1];
    ASSERT_NE(replaced->physical.assetInstance(), nullptr);
    EXPECT_EQ(manager().GetAssetInstanceMaterialID(replaced->physical.assetInstance()), defaults->PhysicalMaterialID());
    ASSERT_NE(replaced->visual.assetInstance(), nullptr);
    EXPECT_EQ(replaced->visual.ambrelMaterialID(), defaults->VisualMaterialID());
    EXPECT_TRUE(AmbrelAssetManager::find(opened.get())->validate());
    EXPECT_TRUE(AmbrelAssetManager::find(opened.get())->containsMaterial(replaced->physical.assetInstance()))
        << "the default is counted like any other material";
}

TEST_F(DocumentMaterials, ADamagedAssetPartFailsTheOpenCleanly)
{
    const std::filesystem::path path = file("damaged.kxd");
    DocumentFile::save(*documentWith({{physicalId(0), visualId(0)}}), path);
    struct Case {
        const char* name;
        std::function<void()> prepare;
    };
    const Case cases[] = {
        {"fault while the assets are read",
            [] { FaultInjection::arm("AmbrelAssetManager::syncToBlobAfterLoad - Simulated Exception"); }},
        {"fault while the document's assets are written, then opened as left",
            [&] {
                FaultInjection::arm("Kx::AmbrelAssetsBlobSerializer::doSave - Simulated Exception");
                EXPECT_THROW(DocumentFile::save(*documentWith({{standardPhysicalId(1), L""}}), path), Exception);
                FaultInjection::disarmAll();
                FaultInjection::arm("AmbrelAssetManager::syncToBlobAfterLoad - Simulated Exception");
            }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        c.prepare();
        try {
            std::unique_ptr<Document> opened = DocumentFile::open(path);
            ADD_FAILURE() << "a damaged document opened";
        } catch (const Exception& exception) {
            const std::wstring text = exception.userText();
            EXPECT_TRUE(text.find(L"The file you are trying to open is corrupt!") != std::wstring::npos
                || text.find(L"Simulated Exception") != std::wstring::npos)
                << toUTF8(text);
        }
        FaultInjection::disarmAll();
    }
}

} // namespace
} // namespace Kx

namespace Kx {
namespace {

using namespace MaterialTest;

// Copies `bodies` of `from` into the segment "main" of `to`, as one undoable step of `to`.
std::vector<AppearanceTestor*> paste(Document& from, const std::vector<AppearanceTestor*>& bodies, Document& to)
{
    CloningContext context(SegmentMap{{from.segment("main"), to.segment("main")}});
    CloningStream stream(context);
    for (AppearanceTestor* body : bodies) {
        EXPECT_TRUE(stream.copy(*body));
    }
    Transaction step(to, L"Paste");
    std::vector<AppearanceTestor*> pasted;
    for (Entity* copy : stream.paste()) {
        pasted.push_back(dynamic_cast<AppearanceTestor*>(copy));
    }
    step.commit();
    return pasted;
}

class MaterialPaste : public ::testing::Test {
protected:
    static std::wstring physicalId(std::size_t index) { return standardPhysicalId(index); }
    static std::wstring visualId(std::size_t index)
    {
        return firstId(manager().GetVisualMaterialsByLibrary(manager().GetVisualLibraryID()), index);
    }
};

TEST_F(MaterialPaste, WithinADocumentTheMaterialIsCountedOnceMore)
{
    std::unique_ptr<Document> document = documentWith({{physicalId(0), visualId(0)}});
    document->transactions().clear();
    const std::vector<AppearanceTestor*> bodies = bodiesOf(*document);
    const std::wstring before = registryState(*document);
    const std::vector<AppearanceTestor*> pasted = paste(*document, bodies, *document);
    ASSERT_EQ(pasted.size(), 1u);
    StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(document.get());
    EXPECT_EQ(pasted[0]->physical.assetReference(), bodies[0]->physical.assetReference());
    EXPECT_EQ(pasted[0]->physical.assetInstance(), bodies[0]->physical.assetInstance());
    EXPECT_EQ(registry->useCount(bodies[0]->physical.assetInstance()), 2u);
    EXPECT_EQ(registry->useCount(bodies[0]->visual.assetInstance()), 2u);
    EXPECT_EQ(registry->registeredPhysicalMaterials(), 1u) << "registered once per document";
    EXPECT_TRUE(registry->validate());

    ASSERT_TRUE(document->transactions().undo());
    EXPECT_EQ(registryState(*document), before) << "undoing the paste gives the use back";
    ASSERT_TRUE(document->transactions().redo());
    EXPECT_EQ(registry->useCount(bodies[0]->physical.assetInstance()), 2u);
}

TEST_F(MaterialPaste, AcrossDocumentsTheTargetRegistryIsUsedAndEqualMaterialsShared)
{
    // The source's references "0"/"1" name other materials in the target, where "0" and "1" are
    // taken by its own bodies: a pasted body must still get its own material.
    std::unique_ptr<Document> source = documentWith({{physicalId(0), visualId(0)}, {physicalId(1), visualId(1)}});
    std::unique_ptr<Document> target = documentWith({{physicalId(2), visualId(2)}});
    StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(target.get());
    // The target holds, unused, a copy equal to the source's second physical material.
    InstancePtr library(manager().GetAssetInstance(toUTF8(physicalId(1)), manager().GetPhysicalLibraryID(), MaterialTweak{}));
    InstancePtr equal(library->Clone());
    ASSERT_TRUE(registry->addMaterial(equal.get()));

    const std::vector<AppearanceTestor*> sources = bodiesOf(*source);
    const std::vector<AppearanceTestor*> pasted = paste(*source, sources, *target);
    ASSERT_EQ(pasted.size(), 2u);
    for (std::size_t i = 0; i < pasted.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(pasted[i]->physical.ambrelAssetManager(), registry);
        EXPECT_EQ(manager().GetAssetInstanceMaterialID(pasted[i]->physical.assetInstance()), physicalId(i));
        EXPECT_EQ(manager().GetAssetInstanceMaterialID(pasted[i]->visual.assetInstance()), visualId(i));
        EXPECT_EQ(registry->physicalMaterialAssetInstance(pasted[i]->physical.assetReference()),
            pasted[i]->physical.assetInstance());
    }
    EXPECT_EQ(pasted[1]->physical.assetInstance(), equal.get()) << "the target's equal material is used";
    EXPECT_EQ(registry->useCount(equal.get()), 1u);
    EXPECT_EQ(registry->registeredPhysicalMaterials(), 3u);
    EXPECT_TRUE(registry->validate());
    EXPECT_EQ(AmbrelAssetManager::find(source.get())->useCount(sources[0]->physical.assetInstance()), 1u)
        << "the source is untouched";
}

} // namespace
} // namespace Kx

namespace Kx {
namespace {

using namespace MaterialTest;

// Documents written with the older member sets, by hand, kept forever: every build must open them.
TEST(MaterialGoldenDocuments, OldestMemberSetsFindTheirMaterialByName)
{
    std::unique_ptr<Document> opened = DocumentFile::open(KxTest::dataPath("documents/materials-v0-xml.kxd"));
    ASSERT_NE(opened, nullptr);
    const std::vector<AppearanceTestor*> bodies = bodiesOf(*opened);
    ASSERT_EQ(bodies.size(), 2u);

    const PhysicalMaterial& named = bodies[0]->physical;
    EXPECT_EQ(named.ambrelMaterialID(), L"CorvexMaterial-138") << "found by its English name";
    EXPECT_EQ(named.safeName(), L"Concrete C25 (generic)");
    ASSERT_NE(named.assetInstance(), nullptr);
    EXPECT_DOUBLE_EQ(named.density(), 2400.0) << "the stored property is kept";
    const VisualMaterial& tinted = bodies[0]->visual;
    EXPECT_EQ(tinted.ambrelMaterialID(), L"Corvex-024");
    EXPECT_TRUE(tinted.useCustomizedColor());
    EXPECT_FLOAT_EQ(tinted.ambrelMaterialScale(), 2.0f);
    EXPECT_FLOAT_EQ(tinted.ambrelMaterialRotation(), 0.5f);
    EXPECT_EQ(tinted.customizedColor(), Color(1.0f, 0.0f, 0.0f, 1.0f));
    ASSERT_NE(tinted.assetInstance(), nullptr) << "the library id came later: the standard libraries are searched";

    EXPECT_TRUE(bodies[1]->physical.ambrelMaterialID().empty()) << "a name nobody knows stays a name";
    EXPECT_EQ(bodies[1]->physical.assetInstance(), nullptr);

    StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(opened.get());
    ASSERT_TRUE(registry) << "a document read without a registry gets one for its materials";
    EXPECT_EQ(registry->useCount(named.assetInstance()), 1u);
    EXPECT_EQ(registry->useCount(tinted.assetInstance()), 1u);
    EXPECT_TRUE(registry->validate());
}

TEST(MaterialGoldenDocuments, IdentitiesWithoutLibraryResolveOrFallBackToTheDefault)
{
    std::unique_ptr<Document> opened = DocumentFile::open(KxTest::dataPath("documents/materials-v1-xml.kxd"));
    ASSERT_NE(opened, nullptr);
    const std::vector<AppearanceTestor*> bodies = bodiesOf(*opened);
    ASSERT_EQ(bodies.size(), 2u);
    EXPECT_EQ(bodies[0]->physical.name(), L"My concrete");
    EXPECT_EQ(manager().GetAssetInstanceMaterialID(bodies[0]->physical.assetInstance()), L"CorvexMaterial-138");
    EXPECT_EQ(bodies[0]->physical.segmentLoadedFrom(), opened->segment("main"));

    const auto missing = DocumentMissingMaterialRecordMgr::get().missingMaterials(opened->identifier());
    ASSERT_EQ(missing.size(), 1u);
    EXPECT_EQ(missing[0].materialId, L"CorvexMaterial-NOT-SHIPPED");
    ASSERT_NE(bodies[1]->physical.assetInstance(), nullptr);
    EXPECT_EQ(manager().GetAssetInstanceMaterialID(bodies[1]->physical.assetInstance()),
        DefaultMaterialOptionGroup::get()->PhysicalMaterialID());
    EXPECT_TRUE(AmbrelAssetManager::find(opened.get())->validate());
}

} // namespace
} // namespace Kx
