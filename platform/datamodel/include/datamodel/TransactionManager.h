#pragma once

#include <datamodel/DocumentAdapter.h>
#include <datamodel/Entity.h>
#include <datamodel/StrongRef.h>

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace Kx {

class Document;
class Segment;

// The undo history of a document, fed by the changes of its entities (it is their change sink).
// A transaction groups the changes made between begin and commit under one name, the entry a user
// sees in the undo list. Transactions nest: an inner begin joins the outermost one. A change made
// while no transaction is open becomes a step of its own ("Modify <type>", "Add <type>",
// "Erase <type>"). Undo restores the entities' before-images, redo the after-images, with visitor
// contexts that say eVisitUndo, eVisitRedo or (for an abort) eVisitAbort.
// Not thread-safe: a document is changed from one thread at a time.
class TransactionManager final : public IEntityChangeSink {
public:
    explicit TransactionManager(Document& document);
    ~TransactionManager() override;
    TransactionManager(const TransactionManager&) = delete;
    TransactionManager& operator=(const TransactionManager&) = delete;

    // Opens a transaction, or a nested level of the open one (whose name then stays).
    void begin(std::wstring name);
    // Ends one level; ending the outermost records the transaction as an undo step (none when
    // nothing changed) and forgets the redo steps. False when no transaction is open.
    bool commit();
    // Rolls back everything the open transaction recorded and ends one level. Outer levels stay
    // open: what they change afterwards is recorded when the outermost commits. False when none is open.
    bool abort();
    [[nodiscard]] bool isInTransaction() const noexcept { return m_depth != 0; }
    // True while an undo, redo or abort restores entities.
    [[nodiscard]] bool isReplaying() const noexcept { return m_replaying; }

    // False when there is nothing to undo or redo, or a transaction is open.
    bool undo();
    bool redo();
    [[nodiscard]] bool canUndo() const noexcept { return m_depth == 0 && !m_undo.empty(); }
    [[nodiscard]] bool canRedo() const noexcept { return m_depth == 0 && !m_redo.empty(); }
    // Names of the steps, the next one to undo (or redo) first.
    [[nodiscard]] std::vector<std::wstring> undoNames() const;
    [[nodiscard]] std::vector<std::wstring> redoNames() const;
    // Forgets the whole history (and rolls back nothing).
    void clear();

    void onEntityChanged(Entity& entity, std::vector<std::uint8_t> beforeImage, bool notify) override;
    [[nodiscard]] bool needsBeforeImage(const Entity& entity) const override;
    void onEntityAdded(Entity& entity, Segment& segment, const std::string& rootId) override;
    void onEntityErased(Entity& entity, Segment& segment, const std::string& rootId) override;

private:
    enum class ERecord { eModified, eAdded, eErased };
    struct Record {
        ERecord kind;
        StrongRef<Entity> entity;
        Segment* segment;
        std::string rootId;
        std::vector<std::uint8_t> beforeImage;
        std::vector<std::uint8_t> afterImage;
    };
    struct Step {
        std::wstring name;
        std::vector<Record> records;
    };

    void record(Record record, const wchar_t* implicitVerb);
    // Plays a step back (undo, abort) or forward (redo).
    void rollBack(Step& step, std::uint32_t mode);
    void replay(Step& step);
    void restore(Entity& entity, Segment* segment, const std::vector<std::uint8_t>& image, std::uint32_t mode);
    void notifyAdapter(const std::wstring& name, ETransactionEnd how);
    static void releaseAll(std::vector<Step>& steps);

    Document& m_document;
    std::vector<Step> m_undo;
    std::vector<Step> m_redo;
    Step m_open;
    // The entities whose before-image the open transaction has: the first image is the one to keep.
    std::unordered_set<const Entity*> m_imaged;
    unsigned m_depth = 0;
    bool m_replaying = false;
};

// One named transaction for the length of a scope: rolled back unless committed.
class Transaction {
public:
    Transaction(Document& document, std::wstring name);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    bool commit();
    bool abort();

private:
    TransactionManager& m_manager;
    bool m_open = true;
};

} // namespace Kx
