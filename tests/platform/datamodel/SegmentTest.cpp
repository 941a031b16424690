// Segments: ids, roots and the references between entities, and what a closing document releases.

#include "DocumentTestTypes.h"

#include <datamodel/Document.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/Segment.h>
#include <datamodel/TransactionManager.h>

#include <base/Assert.h>

#include <gtest/gtest.h>

namespace Kx {
namespace {

using DocumentTest::liveEntities;

Node& addNode(Segment& segment, const wchar_t* label)
{
    StrongRef<Node> node = segment.add(StrongRefCreator<Node>::create());
    node->label = label;
    return *node;
}

TEST(Segment, IdsAreUniqueInTheDocumentAndNeverReused)
{
    Document document;
    Segment& first = *document.createSegment("first");
    Segment& second = *document.createSegment("second");
    Node& a = addNode(first, L"a");
    Node& b = addNode(second, L"b");
    EXPECT_NE(a.id(), b.id());
    EXPECT_EQ(b.segment(), &second);
    EXPECT_EQ(b.asset(), &document);

    const EntityId erasedId = a.id();
    EXPECT_FALSE(second.erase(a)) << "a belongs to the other segment";
    EXPECT_TRUE(first.erase(a));
    Node& c = addNode(first, L"c");
    EXPECT_GT(c.id(), b.id());
    EXPECT_EQ(document.resolveEntity(erasedId), nullptr);
    EXPECT_EQ(document.resolveEntity(b.id()), &b);
    EXPECT_EQ(first.resolveEntity(b.id()), &b) << "a segment finds the entities of its document";
}

TEST(Segment, ARootIdNamesOneEntityAndGoesWithIt)
{
    Document document;
    Segment& segment = *document.createSegment("main");
    Node& plain = addNode(segment, L"plain");
    const StrongRef<Node> registry(new Node());
    ASSERT_TRUE(segment.addRoot("Registry", *registry));
    EXPECT_EQ(segment.root("Registry"), registry.get());
    EXPECT_EQ(segment.rootIdOf(*registry), "Registry");
    EXPECT_EQ(segment.inHookOrder(), (std::vector<Entity*>{registry.get(), &plain})) << "roots come first";

    {
        ScopedAssertionCapture capture;
        const StrongRef<Node> second(new Node());
        EXPECT_FALSE(segment.addRoot("Registry", *second));
        EXPECT_FALSE(segment.addRoot("", *second));
        EXPECT_EQ(second->segment(), nullptr);
        EXPECT_EQ(capture.count(), 2u);
    }

    ASSERT_TRUE(segment.erase(*registry));
    EXPECT_EQ(segment.root("Registry"), nullptr);
    const StrongRef<Node> replacement(new Node());
    EXPECT_TRUE(segment.addRoot("Registry", *replacement));
}

TEST(Segment, AnErasedEntityLivesWhileSomethingRefersToIt)
{
    const int before = liveEntities();
    {
        Document document;
        Segment& segment = *document.createSegment("main");
        Node& head = addNode(segment, L"head");
        Node& tail = addNode(segment, L"tail");
        head.next = StrongRef<Node>(&tail);
        ASSERT_TRUE(segment.erase(tail));
        document.transactions().clear();
        EXPECT_EQ(liveEntities(), before + 2);
        EXPECT_EQ(head.next->label, L"tail");
        head.next = nullptr;
        EXPECT_EQ(liveEntities(), before + 1);
    }
    EXPECT_EQ(liveEntities(), before);
}

TEST(Segment, ClosingADocumentBreaksReferenceCycles)
{
    const int before = liveEntities();
    {
        Document document;
        Segment& first = *document.createSegment("first");
        Segment& second = *document.createSegment("second");
        Node& a = addNode(first, L"a");
        Node& b = addNode(second, L"b");
        a.next = StrongRef<Node>(&b);
        b.next = StrongRef<Node>(&a);
        Node& self = addNode(first, L"self");
        self.next = StrongRef<Node>(&self);
        // An erased pair that refers to each other, held only by the undo history.
        Node& c = addNode(first, L"c");
        Node& d = addNode(first, L"d");
        c.next = StrongRef<Node>(&d);
        d.next = StrongRef<Node>(&c);
        first.erase(c);
        first.erase(d);
        EXPECT_EQ(liveEntities(), before + 5);
    }
    EXPECT_EQ(liveEntities(), before);
}

TEST(Segment, StrongRefAssignmentKeepsTheEntityAliveThroughoutAndConverts)
{
    const int before = liveEntities();
    {
        StrongRef<Node> only(new Node());
        only = only;
        EXPECT_EQ(only->referenceCount(), 1u);
        StrongRef<Entity> general = only;
        EXPECT_EQ(only->referenceCount(), 2u);
        StrongRef<Node> back = StrongRef<Node>::cast(general.get());
        EXPECT_EQ(back, only);
        EXPECT_FALSE(StrongRef<Shape>::cast(general.get()));
        StrongRef<Node> moved = std::move(back);
        EXPECT_FALSE(back);
        EXPECT_EQ(only->referenceCount(), 3u);
    }
    EXPECT_EQ(liveEntities(), before);
}

TEST(Segment, AReferenceIsSetFromJSONByIdWithinTheDocument)
{
    Document document;
    Segment& segment = *document.createSegment("main");
    Node& from = addNode(segment, L"from");
    Node& to = addNode(segment, L"to");
    const StrongRef<Shape> shape = segment.add(StrongRefCreator<Shape>::create());
    const std::string json = "{\"next\":" + std::to_string(to.id()) + "}";
    EXPECT_EQ(entityFromJSON(from, json), 1u);
    EXPECT_EQ(from.next.get(), &to);
    EXPECT_NE(entityToJSON(from).find("\"next\":" + std::to_string(to.id())), std::string::npos);

    const struct {
        const char* name;
        std::string json;
    } refused[] = {
        {"unknown id", R"({"next":999})"},
        {"an entity of another class", "{\"next\":" + std::to_string(shape->id()) + "}"},
        {"not a number", R"({"next":"2"})"},
    };
    for (const auto& input : refused) {
        SCOPED_TRACE(input.name);
        EXPECT_EQ(entityFromJSON(from, input.json), 0u);
        EXPECT_EQ(from.next.get(), &to);
        const EntityJSONSetReport report = entityFromJSONWithReport(from, input.json);
        EXPECT_EQ(report.refusedMembers, std::vector<std::string>{"next"});
        EXPECT_EQ(from.next.get(), &to);
    }
    EXPECT_EQ(entityFromJSON(from, R"({"next":null})"), 1u);
    EXPECT_FALSE(from.next);
}

} // namespace
} // namespace Kx
