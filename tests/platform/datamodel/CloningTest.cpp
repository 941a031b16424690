// Copy and paste between segments and documents: copies refer to copies, roots are found again
// through the segment map, and the clone hooks run around it all.

#include "DocumentTestTypes.h"

#include <datamodel/CloningContext.h>
#include <datamodel/CloningStream.h>
#include <datamodel/Document.h>
#include <datamodel/Segment.h>
#include <datamodel/TransactionManager.h>
#include <datamodel/VisitorContext.h>

#include <base/Assert.h>

#include <gtest/gtest.h>

namespace Kx {
namespace {

using DocumentTest::hookLog;

template <class T>
T& add(Segment& segment)
{
    return *segment.add(StrongRefCreator<T>::create());
}

class Cloning : public ::testing::Test {
protected:
    Cloning()
    {
        source = sourceDocument.createSegment("main");
        sourceRegistry = StrongRef<Node>(new Node());
        sourceRegistry->label = L"source registry";
        source->addRoot("Registry", *sourceRegistry);
        outsider = &add<Node>(*source);
        outsider->label = L"outsider";

        a = &add<Node>(*source);
        b = &add<Node>(*source);
        shape = &add<Shape>(*source);
        a->label = L"a";
        a->mark.number = 7;
        b->label = L"b";
        shape->title = L"square";
        shape->area = 4;
        a->next = StrongRef<Node>(b);
        a->shape = StrongRef<Shape>(shape);
        b->next = sourceRegistry;
    }

    Document sourceDocument;
    Segment* source = nullptr;
    StrongRef<Node> sourceRegistry;
    Node* outsider = nullptr;
    Node* a = nullptr;
    Node* b = nullptr;
    Shape* shape = nullptr;
};

TEST_F(Cloning, CopiesIntoAnotherDocumentReferToCopiesAndToTheTargetsRoots)
{
    Document targetDocument;
    Segment& target = *targetDocument.createSegment("pasted");
    const StrongRef<Node> targetRegistry(new Node());
    target.addRoot("Registry", *targetRegistry);
    Node& c = add<Node>(*source);
    c.next = StrongRef<Node>(outsider);

    CloningContext context(SegmentMap{{source, &target}});
    CloningStream stream(context);
    for (Entity* entity : std::initializer_list<Entity*>{a, b, shape, &c})
        ASSERT_TRUE(stream.copy(*entity));
    EXPECT_TRUE(stream.copy(*a)) << "a second copy of the same entity is taken once";
    const std::vector<Entity*> copies = stream.paste();
    ASSERT_EQ(copies.size(), 4u);

    auto* aCopy = dynamic_cast<Node*>(copies[0]);
    auto* bCopy = dynamic_cast<Node*>(copies[1]);
    auto* shapeCopy = dynamic_cast<Shape*>(copies[2]);
    auto* cCopy = dynamic_cast<Node*>(copies[3]);
    ASSERT_TRUE(aCopy && bCopy && shapeCopy && cCopy);
    EXPECT_EQ(aCopy->segment(), &target);
    EXPECT_EQ(aCopy->label, L"a");
    EXPECT_EQ(aCopy->mark.number, 7);
    EXPECT_EQ(shapeCopy->area, 4);
    EXPECT_EQ(aCopy->next.get(), bCopy);
    EXPECT_EQ(aCopy->shape.get(), shapeCopy);
    EXPECT_EQ(bCopy->next.get(), targetRegistry.get()) << "a root is found again by its root id";
    EXPECT_FALSE(cCopy->next) << "an entity of another document that was not copied cannot be referred to";
    EXPECT_EQ(context.droppedReferences(), 1u);
    EXPECT_EQ(context.cloneOf(a->id()), aCopy);
    EXPECT_EQ(context.sourceOf(aCopy), a) << "a paste hook finds the segment the value came from";
    EXPECT_EQ(a->next.get(), b) << "the sources are untouched";
    EXPECT_EQ(target.size(), 5u);
}

TEST_F(Cloning, WithinADocumentReferencesToEntitiesNotCopiedStay)
{
    Segment& other = *sourceDocument.createSegment("other");
    CloningContext context(SegmentMap{{source, &other}});
    CloningStream stream(context);
    ASSERT_TRUE(stream.copy(*b));
    const std::vector<Entity*> copies = stream.paste();
    ASSERT_EQ(copies.size(), 1u);
    EXPECT_EQ(static_cast<Node*>(copies[0])->next.get(), sourceRegistry.get());
    EXPECT_EQ(context.droppedReferences(), 0u);
}

TEST_F(Cloning, ARootBecomesTheSameRootOfATargetThatHasNone)
{
    Document targetDocument;
    Segment& empty = *targetDocument.createSegment("empty");
    CloningContext context(SegmentMap{{source, &empty}});
    CloningStream stream(context);
    ASSERT_TRUE(stream.copy(*sourceRegistry));
    ASSERT_TRUE(stream.copy(*b));
    const std::vector<Entity*> copies = stream.paste();
    EXPECT_EQ(empty.root("Registry"), copies[0]);
    EXPECT_EQ(static_cast<Node*>(copies[1])->next.get(), copies[0]);
}

TEST_F(Cloning, CloneHooksRunAroundTheCopyAndAfterEveryCopyIsRead)
{
    Document targetDocument;
    Segment& target = *targetDocument.createSegment("main");
    CloningContext context(SegmentMap{{source, &target}});
    CloningStream stream(context);
    hookLog().clear();
    stream.copy(*a);
    stream.copy(*b);
    stream.paste();

    std::vector<std::string> sequence;
    for (const auto& hook : hookLog()) {
        if (hook.name.find("Clone") != std::string::npos || hook.name == "entity.postLoad") {
            sequence.push_back(hook.name);
            const bool copying = hook.name.find("preCloneCopy") != std::string::npos;
            EXPECT_EQ(hook.mode, (copying ? eVisitSave : eVisitLoad) | eVisitClone) << hook.name;
        }
    }
    const std::vector<std::string> expected{"entity.preCloneCopy", "value.preCloneCopy", "entity.preCloneCopy",
        "value.preCloneCopy", "entity.postLoad", "entity.postLoad", "entity.postClonePaste", "value.postClonePaste",
        "entity.postClonePaste", "value.postClonePaste"};
    EXPECT_EQ(sequence, expected);
}

TEST_F(Cloning, APasteInsideATransactionUndoesAsOneStep)
{
    Document targetDocument;
    Segment& target = *targetDocument.createSegment("main");
    {
        Transaction paste(targetDocument, L"Paste");
        CloningContext context(SegmentMap{{source, &target}});
        CloningStream stream(context);
        stream.copy(*a);
        stream.copy(*b);
        EXPECT_EQ(stream.paste().size(), 2u);
        paste.commit();
    }
    EXPECT_EQ(target.size(), 2u);
    ASSERT_TRUE(targetDocument.transactions().undo());
    EXPECT_TRUE(target.empty());
    ASSERT_TRUE(targetDocument.transactions().redo());
    ASSERT_EQ(target.size(), 2u);
    const auto* first = static_cast<Node*>(target.entities().begin()->second.get());
    EXPECT_EQ(first->next.get(), std::next(target.entities().begin())->second.get());
}

TEST_F(Cloning, AnEntityWhoseSegmentTheMapDoesNotNameIsRefused)
{
    Document targetDocument;
    Segment& target = *targetDocument.createSegment("main");
    Segment& unmapped = *sourceDocument.createSegment("unmapped");
    Node& stranger = add<Node>(unmapped);
    CloningContext context(SegmentMap{{source, &target}});
    CloningStream stream(context);
    ScopedAssertionCapture capture;
    EXPECT_FALSE(stream.copy(stranger));
    EXPECT_EQ(capture.count(), 1u);
    EXPECT_TRUE(stream.paste().empty());
}

} // namespace
} // namespace Kx
