// The host types that events carry: selections, object paths and components.

#include "DocumentTestTypes.h"

#include <datamodel/Comp/Component.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/MetaTypeRegistry.h>
#include <datamodel/ObjectPath.h>
#include <datamodel/Segment.h>
#include <datamodel/Selection.h>
#include <datamodel/TransactionManager.h>

#include <support/TestSupport.h>

#include <gtest/gtest.h>

namespace Kx {
namespace {

TEST(HostTypes, SelectionHoldsWhatWasPickedAliveAndOnce)
{
    Document document;
    Segment& segment = *document.createSegment("main");
    const StrongRef<Selection> selection = segment.add(StrongRefCreator<Selection>::create(L"picked"));
    StrongRef<Node> node = segment.add(StrongRefCreator<Node>::create());
    Node* picked = node.get();
    node->label = L"picked node";
    const int liveBefore = DocumentTest::liveEntities();

    EXPECT_TRUE(selection->add(picked));
    EXPECT_FALSE(selection->add(picked)) << "picked twice is selected once";
    EXPECT_FALSE(selection->add(nullptr));
    EXPECT_TRUE(selection->contains(picked));
    EXPECT_EQ(selection->size(), 1u);

    // Erased from the document and no longer referenced elsewhere, the node lives on in the selection.
    node.reset();
    ASSERT_TRUE(segment.erase(*picked));
    document.transactions().clear();
    EXPECT_EQ(DocumentTest::liveEntities(), liveBefore);
    EXPECT_EQ(selection->entities().front()->id(), picked->id());
    EXPECT_TRUE(selection->remove(picked));
    EXPECT_EQ(DocumentTest::liveEntities(), liveBefore - 1) << "the selection held the last reference";
    EXPECT_FALSE(selection->remove(picked));
    EXPECT_TRUE(selection->empty());
}

TEST(HostTypes, TypesAreKnownByIdentifierAndComponentsKeepTheirDefinitionInAFile)
{
    for (EntityMetaType* type : {&Selection::s_metaType(), &Comp::Component::s_metaType()})
        EXPECT_EQ(MetaTypeRegistry::get().find(type->metaTypeId()), type) << type->typeName();

    KxTest::TempDir directory;
    Document document;
    Segment& segment = *document.createSegment("main");
    StrongRef<Node> body = segment.add(StrongRefCreator<Node>::create());
    body->label = L"body";
    const StrongRef<Comp::Component> wheel = segment.add(StrongRefCreator<Comp::Component>::create(L"Wheel", body));
    const StrongRef<Selection> wheels = segment.add(StrongRefCreator<Selection>::create(L"Wheels"));
    wheels->add(wheel.get());
    EXPECT_TRUE(wheel->references(body.get()));

    for (const EStreamMode mode : {EStreamMode::eBinary, EStreamMode::eXML}) {
        SCOPED_TRACE(mode == EStreamMode::eBinary ? "binary" : "XML");
        DocumentFile::save(document, directory / "parts.kxd", mode);
        const std::unique_ptr<Document> opened = DocumentFile::open(directory / "parts.kxd");
        Segment& read = *opened->segments().front();
        auto* component = dynamic_cast<Comp::Component*>(read.find(wheel->id()));
        ASSERT_NE(component, nullptr);
        EXPECT_EQ(component->name(), L"Wheel");
        auto* definition = dynamic_cast<Node*>(component->definition().get());
        ASSERT_NE(definition, nullptr);
        EXPECT_EQ(definition->label, L"body");
        EXPECT_EQ(definition->segment(), &read);
        auto* selection = dynamic_cast<Selection*>(read.find(wheels->id()));
        ASSERT_NE(selection, nullptr);
        EXPECT_EQ(selection->name(), L"Wheels");
        EXPECT_TRUE(selection->empty()) << "what was picked is not kept in the file";
    }
}

TEST(HostTypes, ObjectPathsPrintReadBackAndResolveStepByStep)
{
    Document document;
    Segment& segment = *document.createSegment("main");
    const EntityId assembly = segment.add(StrongRefCreator<Node>::create()).id();
    const EntityId body = segment.add(StrongRefCreator<Node>::create()).id();

    ObjectPath path;
    path.append(assembly).append(kNoEntityId).append(body);
    EXPECT_EQ(path.depth(), 2u);
    EXPECT_EQ(path.root(), assembly);
    EXPECT_EQ(path.leaf(), body);
    EXPECT_EQ(path.resolve(segment), segment.find(body));
    EXPECT_TRUE(path.startsWith(path.parent()));
    EXPECT_FALSE(path.parent().startsWith(path));
    EXPECT_EQ(path.parent().parent(), ObjectPath());
    EXPECT_EQ(ObjectPath().resolve(segment), nullptr);
    EXPECT_EQ(ObjectPath({assembly, 999, body}).resolve(segment), nullptr) << "a missing step finds nothing";

    const std::vector<std::pair<ObjectPath, std::wstring>> printed{
        {ObjectPath(), L""}, {ObjectPath({7}), L"7"}, {ObjectPath({3, 18446744073709551615u, 12}), L"3/18446744073709551615/12"}};
    for (const auto& [value, text] : printed) {
        EXPECT_EQ(value.toString(), text);
        ObjectPath read({1});
        EXPECT_TRUE(ObjectPath::fromString(text, read));
        EXPECT_EQ(read, value);
    }
    for (const std::wstring bad : {L"/3", L"3/", L"3//4", L"-3", L"+3", L" 3", L"0", L"3/0", L"03", L"3/x",
             L"18446744073709551616"}) {
        ObjectPath kept({5});
        EXPECT_FALSE(ObjectPath::fromString(bad, kept)) << std::string(bad.begin(), bad.end());
        EXPECT_EQ(kept, ObjectPath({5}));
    }
}

} // namespace
} // namespace Kx
