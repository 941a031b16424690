// Transactions: named steps of entity changes, additions and erasures, undone and redone; aborts;
// and the visitor contexts that tell callbacks which of these is running.

#include "DocumentTestTypes.h"

#include <datamodel/Document.h>
#include <datamodel/DocumentAdapter.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/Segment.h>
#include <datamodel/TransactionManager.h>
#include <datamodel/VisitorContext.h>

#include <gtest/gtest.h>

namespace Kx {
namespace {

using DocumentTest::hookLog;
using DocumentTest::snapshot;

struct RecordingAdapter final : IDocumentAdapter {
    void onTransactionEnded(Document&, const std::wstring& name, ETransactionEnd how) override
    {
        ended.emplace_back(name, how);
    }
    std::vector<std::pair<std::wstring, ETransactionEnd>> ended;
};

class Transactions : public ::testing::Test {
protected:
    Transactions()
    {
        document.adapter(&adapter);
        segment = document.createSegment("main");
        first = segment->add(StrongRefCreator<Node>::create()).get();
        first->label = L"first";
        first->mark.number = 1;
        registry = StrongRef<Node>(new Node());
        segment->addRoot("Registry", *registry);
        first->next = registry;
        document.transactions().clear();
        adapter.ended.clear();
        hookLog().clear();
    }

    // The modes the value hook `name` ran with since the log was cleared.
    std::vector<std::uint32_t> modesOf(const std::string& name) const
    {
        std::vector<std::uint32_t> modes;
        for (const auto& hook : hookLog()) {
            if (hook.name == name)
                modes.push_back(hook.mode);
        }
        return modes;
    }

    RecordingAdapter adapter;
    Document document;
    Segment* segment = nullptr;
    Node* first = nullptr;
    StrongRef<Node> registry;
};

TEST_F(Transactions, ANamedTransactionUndoesAndRedoesAsOneStep)
{
    const std::string before = snapshot(document);
    const EntityId registryId = registry->id();
    TransactionManager& transactions = document.transactions();
    {
        Transaction edit(document, L"Edit");
        DocumentTest::setLabel(*first, L"changed");
        DocumentTest::setLabel(*first, L"changed twice");
        EXPECT_EQ(entityFromJSON(*first, R"({"mark":{"number":5}})"), 1u);
        StrongRef<Node> added = segment->add(StrongRefCreator<Node>::create());
        DocumentTest::setLabel(*added, L"added");
        EXPECT_EQ(entityFromJSON(*first, "{\"next\":" + std::to_string(added->id()) + "}"), 1u);
        segment->erase(*registry);
        EXPECT_TRUE(edit.commit());
    }
    const std::string after = snapshot(document);
    ASSERT_NE(after, before);
    EXPECT_EQ(transactions.undoNames(), std::vector<std::wstring>{L"Edit"});

    ASSERT_TRUE(transactions.undo());
    EXPECT_EQ(snapshot(document), before);
    EXPECT_EQ(segment->root("Registry"), registry.get()) << "the erased root is back under its root id";
    EXPECT_EQ(registry->id(), registryId);
    EXPECT_EQ(first->next.get(), registry.get());
    EXPECT_EQ(transactions.redoNames(), std::vector<std::wstring>{L"Edit"});

    ASSERT_TRUE(transactions.redo());
    EXPECT_EQ(snapshot(document), after);
    ASSERT_TRUE(transactions.undo());
    EXPECT_EQ(snapshot(document), before);

    using End = ETransactionEnd;
    const std::vector<std::pair<std::wstring, End>> expected{
        {L"Edit", End::eCommitted}, {L"Edit", End::eUndone}, {L"Edit", End::eRedone}, {L"Edit", End::eUndone}};
    EXPECT_EQ(adapter.ended, expected);
}

TEST_F(Transactions, AJSONSetOutsideATransactionIsAStepOfItsOwn)
{
    const std::string before = snapshot(document);
    EXPECT_EQ(entityFromJSON(*first, R"({"label":"set","mark":{"number":1}})"), 1u) << "an equal mark changes nothing";
    EXPECT_EQ(document.transactions().undoNames(), std::vector<std::wstring>{L"Modify Node"});
    const std::string after = snapshot(document);
    EXPECT_EQ(first->label, L"set");

    ASSERT_TRUE(document.transactions().undo());
    EXPECT_EQ(snapshot(document), before);
    EXPECT_FALSE(document.transactions().canUndo());
    ASSERT_TRUE(document.transactions().redo());
    EXPECT_EQ(snapshot(document), after);

    EXPECT_EQ(entityFromJSON(*first, R"({"label":"set"})"), 0u);
    EXPECT_EQ(document.transactions().undoNames().size(), 1u) << "no change, no step";
}

TEST_F(Transactions, ANewChangeForgetsWhatCouldBeRedone)
{
    DocumentTest::setLabel(*first, L"one");
    ASSERT_TRUE(document.transactions().undo());
    ASSERT_TRUE(document.transactions().canRedo());
    DocumentTest::setLabel(*first, L"two");
    EXPECT_FALSE(document.transactions().canRedo());
    EXPECT_FALSE(document.transactions().redo());
}

TEST_F(Transactions, NestedLevelsBelongToTheOutermostAndNothingIsUndoneWhileOneIsOpen)
{
    TransactionManager& transactions = document.transactions();
    transactions.begin(L"Outer");
    transactions.begin(L"Inner");
    DocumentTest::setLabel(*first, L"inner");
    ASSERT_TRUE(transactions.commit());
    EXPECT_FALSE(transactions.canUndo());
    EXPECT_FALSE(transactions.undo());
    DocumentTest::setLabel(*first, L"outer");
    ASSERT_TRUE(transactions.commit());
    EXPECT_FALSE(transactions.commit());
    EXPECT_EQ(transactions.undoNames(), std::vector<std::wstring>{L"Outer"});
    ASSERT_TRUE(transactions.undo());
    EXPECT_EQ(first->label, L"first") << "the first before-image of the transaction is the one restored";
}

TEST_F(Transactions, ATransactionLeftUncommittedIsRolledBack)
{
    const std::string before = snapshot(document);
    {
        Transaction edit(document, L"Abandoned");
        DocumentTest::setLabel(*first, L"gone");
        EXPECT_EQ(entityFromJSON(*first, R"({"mark":{"number":9}})"), 1u);
        segment->add(StrongRefCreator<Node>::create());
        segment->erase(*registry);
    }
    EXPECT_EQ(snapshot(document), before);
    EXPECT_FALSE(document.transactions().canUndo());
    EXPECT_FALSE(document.transactions().isInTransaction());
    ASSERT_FALSE(adapter.ended.empty());
    EXPECT_EQ(adapter.ended.back(), std::make_pair(std::wstring(L"Abandoned"), ETransactionEnd::eAborted));
}

TEST_F(Transactions, AnAbortInsideOuterLevelsRollsBackAndTheOuterLevelsGoOn)
{
    TransactionManager& transactions = document.transactions();
    transactions.begin(L"Outer");
    DocumentTest::setLabel(*first, L"rolled back");
    transactions.begin(L"Inner");
    ASSERT_TRUE(transactions.abort());
    EXPECT_EQ(first->label, L"first");
    EXPECT_TRUE(transactions.isInTransaction());
    DocumentTest::setLabel(*first, L"kept");
    ASSERT_TRUE(transactions.commit());
    EXPECT_EQ(transactions.undoNames(), std::vector<std::wstring>{L"Outer"});
    ASSERT_TRUE(transactions.undo());
    EXPECT_EQ(first->label, L"first");
}

TEST_F(Transactions, CallbacksAreToldWhetherAnUndoARedoOrAnAbortIsRunning)
{
    EXPECT_EQ(entityFromJSON(*first, R"({"mark":{"number":2}})"), 1u);
    const std::vector<std::uint32_t> imageModes = modesOf("value.preSave");
    ASSERT_EQ(imageModes.size(), 1u) << "the before-image is a save";
    EXPECT_EQ(imageModes[0], eVisitSave | eVisitUndo);

    const struct {
        const char* name;
        std::function<void()> run;
        std::uint32_t expected;
    } cases[] = {
        {"undo", [&] { document.transactions().undo(); }, eVisitLoad | eVisitUndo},
        {"redo", [&] { document.transactions().redo(); }, eVisitLoad | eVisitRedo},
        {"abort", [&] {
             Transaction edit(document, L"Abort");
             DocumentTest::setLabel(*first, L"x");
         }, eVisitLoad | eVisitAbort},
    };
    for (const auto& step : cases) {
        SCOPED_TRACE(step.name);
        hookLog().clear();
        step.run();
        const std::vector<std::uint32_t> modes = modesOf("value.preLoad");
        ASSERT_EQ(modes.size(), 1u);
        EXPECT_EQ(modes[0], step.expected);
        VisitorContext context(modes[0]);
        EXPECT_TRUE(context.isUndoRedoOrAbort());
    }
    EXPECT_EQ(first->mark.number, 2);
}

TEST_F(Transactions, UndoRestoresTheChangeCountsViewsWatch)
{
    const std::uint64_t before = first->changeCount();
    DocumentTest::setLabel(*first, L"x");
    document.transactions().undo();
    document.transactions().redo();
    EXPECT_EQ(first->changeCount(), before + 3) << "the change and both replays are published";
}

} // namespace
} // namespace Kx
