// The document material registry: references from one counter, use counts, document materials
// added and deleted as undoable steps, and the maps' invariants after every one of them.

#include "MaterialTestSupport.h"

#include <Types/Appearance/AmbrelAssetManager.h>
#include <Types/Appearance/MaterialEvent.h>
#include <Types/Appearance/MaterialEventSite.h>
#include <Types/Appearance/PhysicalMaterial.h>
#include <Types/Appearance/VisualMaterial.h>

#include <base/Assert.h>
#include <datamodel/Document.h>
#include <datamodel/Segment.h>
#include <datamodel/TransactionManager.h>

namespace Kx {
namespace {

using namespace MaterialTest;

// A use the host knows of and the segment's values do not show.
class HostUse final : public MaterialEventSite {
public:
    explicit HostUse(AmbrelAssetManager::IAssetInstance* used) : m_used(used) {}
    void onWhereUsed(MaterialEvent* event) override
    {
        if (event->visualMaterial().assetInstance() == m_used || event->physicalMaterial().assetInstance() == m_used)
            event->addRefCount();
    }
    void onReplaceMaterial(MaterialEvent*) override {}
    void onSelectEntityWithMat(MaterialEvent*) override {}
    void onGetCompsWithPMMatRef(MaterialEvent*) override {}

private:
    AmbrelAssetManager::IAssetInstance* m_used;
};

class DocumentRegistry : public ::testing::Test {
protected:
    DocumentRegistry()
    {
        segment = document.createSegment("main");
        registry = AmbrelAssetManager::findOrMake(segment);
        document.transactions().clear();
    }

    // The registry's state as one comparable text: references, kinds and counts.
    std::wstring state() const
    {
        std::wstring text = L"P";
        for (std::size_t i = 0; i < registry->physicalMaterialAssetReferences().size(); ++i) {
            text += L" " + registry->physicalMaterialAssetReferences()[i] + L":"
                + std::to_wstring(registry->physicalMaterialRefCountVector()[i]);
        }
        text += L" V";
        for (std::size_t i = 0; i < registry->visualMaterialAssetReferences().size(); ++i) {
            text += L" " + registry->visualMaterialAssetReferences()[i] + L":"
                + std::to_wstring(registry->visualMaterialRefCountVector()[i]);
        }
        return text;
    }

    void expectValid(const char* when) const
    {
        SCOPED_TRACE(when);
        ScopedAssertionCapture capture;
        EXPECT_TRUE(registry->validate());
        EXPECT_EQ(capture.count(), 0u);
        // Every reference maps back to the instance that maps to it.
        for (const std::wstring& reference : registry->physicalMaterialAssetReferences()) {
            IAssetInstance* instance = registry->physicalMaterialAssetInstance(reference);
            ASSERT_NE(instance, nullptr);
            EXPECT_EQ(registry->physicalMaterialAssetReference(instance), reference);
        }
        for (const std::wstring& reference : registry->visualMaterialAssetReferences()) {
            IAssetInstance* instance = registry->visualMaterialAssetInstance(reference);
            ASSERT_NE(instance, nullptr);
            EXPECT_EQ(registry->visualMaterialAssetReference(instance), reference);
        }
    }

    std::wstring physicalId(std::size_t index = 0) const
    {
        return firstId(manager().GetPhysicalMaterialsByLibrary(manager().GetPhysicalLibraryID()), index);
    }
    std::wstring visualId(std::size_t index = 0) const
    {
        return firstId(manager().GetVisualMaterialsByLibrary(manager().GetVisualLibraryID()), index);
    }

    Document document;
    Segment* segment = nullptr;
    StrongRef<AmbrelAssetManager> registry;
};

TEST_F(DocumentRegistry, OneRegistryPerSegmentFoundFromTheSegmentAndTheDocument)
{
    EXPECT_EQ(AmbrelAssetManager::find(segment), registry);
    EXPECT_EQ(AmbrelAssetManager::find(&document), registry);
    EXPECT_EQ(AmbrelAssetManager::findOrMake(segment), registry);
    ScopedAssertionCapture capture;
    StrongRefCreator<AmbrelAssetManager> second = AmbrelAssetManager::make(segment);
    ASSERT_GE(capture.count(), 1u);
    EXPECT_EQ(capture.reports().front().condition, "!AmbrelAssetManager::find(pSeg)");
    EXPECT_EQ(AmbrelAssetManager::find(segment), registry) << "the first registry stays the segment's";
}

TEST_F(DocumentRegistry, ReferencesComeFromOneCounterAndUsesAreCounted)
{
    PhysicalMaterial steel(physicalId(), manager().GetPhysicalLibraryID());
    PhysicalMaterial sameSteel(physicalId(), manager().GetPhysicalLibraryID());
    VisualMaterial paint(visualId(), manager().GetVisualLibraryID());
    ASSERT_NE(steel.assetInstance(), nullptr);
    ASSERT_NE(paint.assetInstance(), nullptr);

    EXPECT_EQ(registry->registerMaterial(steel), L"0");
    EXPECT_EQ(registry->registerMaterial(paint), L"1") << "physical and visual share the counter";
    EXPECT_EQ(registry->registerMaterial(sameSteel), L"0") << "the same asset, the same reference";
    EXPECT_EQ(state(), L"P 0:2 V 1:1");
    expectValid("after registering");

    EXPECT_EQ(registry->registerMaterial(steel), L"0");
    EXPECT_EQ(state(), L"P 0:2 V 1:1") << "a value registered twice is counted once";
    EXPECT_EQ(steel.ambrelAssetManager(), registry);
    EXPECT_EQ(steel.assetReference(), L"0");

    EXPECT_TRUE(registry->unregisterMaterial(sameSteel));
    EXPECT_EQ(state(), L"P 0:1 V 1:1");
    EXPECT_TRUE(sameSteel.assetReference().empty());
    EXPECT_FALSE(sameSteel.ambrelAssetManager());
    steel.unregister();
    EXPECT_EQ(state(), L"P 0:0 V 1:1") << "an unused material stays in the document";
    EXPECT_TRUE(registry->containsMaterial(steel.assetInstance()));
    EXPECT_FALSE(registry->isMaterialUsed(steel.assetInstance()));
    std::vector<IAssetInstance*> unused;
    registry->getUnusedPhysicalMaterials(unused);
    EXPECT_EQ(unused, std::vector<IAssetInstance*>{steel.assetInstance()});
    expectValid("after unregistering");

    PhysicalMaterial loose(physicalId(), manager().GetPhysicalLibraryID());
    EXPECT_FALSE(registry->unregisterMaterial(loose)) << "a value of no registry has nothing to give back";
}

TEST_F(DocumentRegistry, AValueResolvesThroughItsRegistryFirst)
{
    PhysicalMaterial steel(physicalId(), manager().GetPhysicalLibraryID());
    ASSERT_FALSE(registry->registerMaterial(steel).empty());
    IAssetInstance* registered = registry->physicalMaterialAssetInstance(steel.assetReference());
    PhysicalMaterial copy(steel);
    EXPECT_EQ(copy.assetReference(), steel.assetReference()) << "a copy inside the document keeps the reference";
    copy.m_materialId = physicalId(1);
    copy.assetInstance(nullptr);
    EXPECT_EQ(copy.assetInstance(), registered) << "the registry answers before the libraries";
    EXPECT_EQ(registry->physicalMaterialAssetInstance(L"99"), nullptr);
}

TEST_F(DocumentRegistry, DocumentMaterialsAreAddedAndDeletedAsUndoableSteps)
{
    InstancePtr metal(manager().GetAssetInstance(telvarin::platform::core::toUTF8(physicalId()),
        manager().GetPhysicalLibraryID(), MaterialTweak{}));
    InstancePtr paint(manager().GetAssetInstance(telvarin::platform::core::toUTF8(visualId()),
        manager().GetVisualLibraryID(), MaterialTweak{}));
    ASSERT_NE(metal, nullptr);
    ASSERT_NE(paint, nullptr);
    TransactionManager& history = document.transactions();

    ASSERT_TRUE(registry->addMaterial(metal.get()));
    EXPECT_FALSE(registry->addMaterial(metal.get())) << "registered already";
    ASSERT_TRUE(registry->addMaterial(paint.get()));
    EXPECT_EQ(state(), L"P 0:0 V 1:0");
    EXPECT_EQ(history.undoNames(), (std::vector<std::wstring>{L"Add Document Material", L"Add Document Material"}));
    expectValid("after adding");

    VisualMaterial user(visualId(), manager().GetVisualLibraryID());
    ASSERT_EQ(registry->registerMaterial(user), L"1");
    {
        // A counted use nobody reports is stale: the listeners decide, and a host reports this one.
        HostUse host(paint.get());
        registry->materialEventSource().subscribe(&host);
        EXPECT_FALSE(registry->deleteMaterial(paint.get())) << "a used material is not deleted";
        registry->materialEventSource().unsubscribe(&host);
    }
    EXPECT_EQ(state(), L"P 0:0 V 1:1");
    ASSERT_TRUE(registry->unregisterMaterial(user));

    ASSERT_TRUE(registry->deleteMaterial(metal.get()));
    EXPECT_FALSE(registry->containsMaterial(metal.get()));
    EXPECT_FALSE(registry->deleteMaterial(metal.get())) << "not registered any more";
    EXPECT_EQ(state(), L"P V 1:0");
    expectValid("after deleting");

    struct Step {
        const char* name;
        bool (TransactionManager::*act)();
        const wchar_t* state;
    };
    const Step steps[] = {
        {"undo delete", &TransactionManager::undo, L"P 0:0 V 1:0"},
        {"undo unregister", &TransactionManager::undo, L"P 0:0 V 1:1"},
        {"redo unregister", &TransactionManager::redo, L"P 0:0 V 1:0"},
        {"redo delete", &TransactionManager::redo, L"P V 1:0"},
        {"undo delete again", &TransactionManager::undo, L"P 0:0 V 1:0"},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        ASSERT_TRUE((history.*step.act)());
        EXPECT_EQ(state(), step.state);
        expectValid(step.name);
    }
    EXPECT_TRUE(registry->containsMaterial(metal.get()));
    EXPECT_EQ(registry->physicalMaterialAssetReference(metal.get()), L"0") << "undo brings back the same reference";

    // Undoing every step empties the registry; redoing them all brings it back.
    while (history.undo()) {
    }
    EXPECT_EQ(state(), L"P V");
    EXPECT_FALSE(registry->containsMaterial(paint.get()));
    while (history.redo()) {
    }
    EXPECT_EQ(state(), L"P V 1:0");
    expectValid("after redoing everything");
    ASSERT_TRUE(registry->addMaterial(metal.get()));
    EXPECT_NE(registry->physicalMaterialAssetReference(metal.get()), L"1") << "a new reference never reuses one in use";
    expectValid("after adding again");
}

TEST_F(DocumentRegistry, OnlyPhysicalMaterialsAndAppearancesAreRegistered)
{
    InstancePtr metal(manager().GetAssetInstance(telvarin::platform::core::toUTF8(physicalId()),
        manager().GetPhysicalLibraryID(), MaterialTweak{}));
    ASSERT_NE(metal, nullptr);
    InstancePtr structural(manager().GetConnectedAssetInstance(metal.get(), PhysicalMaterial::StructuralAspect));
    ASSERT_NE(structural, nullptr);
    EXPECT_FALSE(registry->addMaterial(structural.get())) << "an aspect is neither kind";
    EXPECT_FALSE(registry->containsMaterial(structural.get()));
    EXPECT_FALSE(registry->addMaterial(nullptr));
    EXPECT_FALSE(registry->deleteMaterial(nullptr));
    EXPECT_EQ(registry->getEquivalentMaterial(structural.get(), false), nullptr);
    EXPECT_EQ(state(), L"P V");
}

TEST_F(DocumentRegistry, EquivalentMaterialIsFoundByContent)
{
    InstancePtr paint(manager().GetAssetInstance(telvarin::platform::core::toUTF8(visualId()),
        manager().GetVisualLibraryID(), MaterialTweak{}));
    ASSERT_NE(paint, nullptr);
    InstancePtr clone(paint->Clone());
    ASSERT_TRUE(registry->addMaterial(paint.get()));
    EXPECT_EQ(registry->getEquivalentMaterial(clone.get(), false), paint.get());
    EXPECT_EQ(registry->getEquivalentMaterial(paint.get(), true), nullptr) << "the flag leaves the instance itself out";
    InstancePtr other(manager().GetAssetInstance(telvarin::platform::core::toUTF8(visualId(1)),
        manager().GetVisualLibraryID(), MaterialTweak{}));
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(registry->getEquivalentMaterial(other.get(), false), nullptr);
}

TEST_F(DocumentRegistry, PrintedState)
{
    PhysicalMaterial steel(physicalId(), manager().GetPhysicalLibraryID());
    ASSERT_EQ(registry->registerMaterial(steel), L"0");
    const std::wstring text = registry->onToString();
    EXPECT_EQ(text.rfind(L"AmbrelAssetManager (base ", 0), 0u) << text;
    EXPECT_NE(text.find(L"# of physical materials: 1, # of visual materials: 0, Fully Baked: 1.\n"), std::wstring::npos)
        << text;
    EXPECT_NE(text.find(L" [AmbrelID: " + physicalId() + L", Asset Reference: 0, Ref Count: 1, Density: "),
        std::wstring::npos)
        << text;
}

} // namespace
} // namespace Kx
