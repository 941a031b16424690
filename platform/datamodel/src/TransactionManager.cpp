#include "datamodel/TransactionManager.h"

#include "datamodel/Document.h"
#include "datamodel/EntityChange.h"
#include "datamodel/EntityCodec.h"
#include "datamodel/EntityMetaType.h"
#include "datamodel/Segment.h"
#include "datamodel/VisitorContext.h"
#include "internal/MemberVisitor.h"

#include <base/Assert.h>
#include <base/Strings.h>

#include <algorithm>

namespace Kx {

namespace {

// Sets a flag for the length of a scope, also when a restore throws.
class ReplayScope {
public:
    explicit ReplayScope(bool& flag) : m_flag(flag) { m_flag = true; }
    ~ReplayScope() { m_flag = false; }
    ReplayScope(const ReplayScope&) = delete;
    ReplayScope& operator=(const ReplayScope&) = delete;

private:
    bool& m_flag;
};

std::wstring implicitName(const wchar_t* verb, const Entity& entity)
{
    return std::wstring(verb) + L" " + ToIString(entity.entityMetaType().typeName());
}

} // namespace

TransactionManager::TransactionManager(Document& document) : m_document(document) {}

TransactionManager::~TransactionManager()
{
    clear();
}

void TransactionManager::begin(std::wstring name)
{
    if (m_depth++ == 0) {
        m_open = Step{std::move(name), {}};
        m_imaged.clear();
    }
}

bool TransactionManager::commit()
{
    if (m_depth == 0)
        return false;
    if (--m_depth != 0)
        return true;
    Step step = std::move(m_open);
    m_open = Step{};
    m_imaged.clear();
    if (step.records.empty())
        return true;
    const std::wstring name = step.name;
    m_undo.push_back(std::move(step));
    releaseAll(m_redo);
    notifyAdapter(name, ETransactionEnd::eCommitted);
    return true;
}

bool TransactionManager::abort()
{
    if (m_depth == 0)
        return false;
    Step aborted = std::move(m_open);
    m_open = Step{};
    m_imaged.clear();
    {
        ReplayScope replaying(m_replaying);
        rollBack(aborted, eVisitAbort);
    }
    // Outer levels go on under the transaction's name.
    if (--m_depth != 0)
        m_open.name = aborted.name;
    const std::wstring name = aborted.name;
    std::vector<Step> dropped;
    dropped.push_back(std::move(aborted));
    releaseAll(dropped);
    notifyAdapter(name, ETransactionEnd::eAborted);
    return true;
}

bool TransactionManager::undo()
{
    if (!canUndo())
        return false;
    Step step = std::move(m_undo.back());
    m_undo.pop_back();
    {
        ReplayScope replaying(m_replaying);
        rollBack(step, eVisitUndo);
    }
    const std::wstring name = step.name;
    m_redo.push_back(std::move(step));
    notifyAdapter(name, ETransactionEnd::eUndone);
    return true;
}

bool TransactionManager::redo()
{
    if (!canRedo())
        return false;
    Step step = std::move(m_redo.back());
    m_redo.pop_back();
    {
        ReplayScope replaying(m_replaying);
        replay(step);
    }
    const std::wstring name = step.name;
    m_undo.push_back(std::move(step));
    notifyAdapter(name, ETransactionEnd::eRedone);
    return true;
}

std::vector<std::wstring> TransactionManager::undoNames() const
{
    std::vector<std::wstring> names;
    for (auto step = m_undo.rbegin(); step != m_undo.rend(); ++step)
        names.push_back(step->name);
    return names;
}

std::vector<std::wstring> TransactionManager::redoNames() const
{
    std::vector<std::wstring> names;
    for (auto step = m_redo.rbegin(); step != m_redo.rend(); ++step)
        names.push_back(step->name);
    return names;
}

void TransactionManager::clear()
{
    releaseAll(m_undo);
    releaseAll(m_redo);
    std::vector<Step> open;
    open.push_back(std::move(m_open));
    releaseAll(open);
    m_open = Step{};
    m_imaged.clear();
}

void TransactionManager::onEntityChanged(Entity& entity, std::vector<std::uint8_t> beforeImage, bool)
{
    // An empty image is a change nobody can undo (the change said so); restores are not recorded.
    if (m_replaying || beforeImage.empty())
        return;
    if (m_depth != 0 && !m_imaged.insert(&entity).second)
        return;
    record(Record{ERecord::eModified, StrongRef<Entity>(&entity), entity.segment(), {}, std::move(beforeImage), {}}, L"Modify");
}

bool TransactionManager::needsBeforeImage(const Entity& entity) const
{
    // Within a transaction the first image of an entity is the one undo restores.
    return !m_replaying && (m_depth == 0 || !m_imaged.contains(&entity));
}

void TransactionManager::onEntityAdded(Entity& entity, Segment& segment, const std::string& rootId)
{
    if (m_replaying)
        return;
    // Changes after the addition need no image: undoing the addition takes the entity away whole.
    if (m_depth != 0)
        m_imaged.insert(&entity);
    record(Record{ERecord::eAdded, StrongRef<Entity>(&entity), &segment, rootId, {}, {}}, L"Add");
}

void TransactionManager::onEntityErased(Entity& entity, Segment& segment, const std::string& rootId)
{
    if (m_replaying)
        return;
    record(Record{ERecord::eErased, StrongRef<Entity>(&entity), &segment, rootId, {}, {}}, L"Erase");
}

void TransactionManager::record(Record change, const wchar_t* implicitVerb)
{
    if (m_depth != 0) {
        m_open.records.push_back(std::move(change));
        return;
    }
    Step step{implicitName(implicitVerb, *change.entity), {}};
    step.records.push_back(std::move(change));
    const std::wstring name = step.name;
    m_undo.push_back(std::move(step));
    releaseAll(m_redo);
    notifyAdapter(name, ETransactionEnd::eCommitted);
}

void TransactionManager::rollBack(Step& step, std::uint32_t mode)
{
    // In phases rather than record by record: an image is read only once every entity it may
    // refer to is back in its segment, whatever the order the changes were made in.
    auto& records = step.records;
    if (mode == eVisitUndo) {
        for (Record& record : records) {
            if (record.kind == ERecord::eModified) {
                const VisitorContext saving = VisitorContext(eVisitSave | mode).withSegment(record.segment);
                record.afterImage = saveEntityBinary(*record.entity, saving);
            }
        }
    }
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        if (record->kind == ERecord::eErased) {
            const bool attached = record->segment->attach(*record->entity, record->entity->id(), record->rootId);
            KX_ASSERT(attached);
        }
    }
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        if (record->kind == ERecord::eModified)
            restore(*record->entity, record->segment, record->beforeImage, mode);
    }
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        if (record->kind == ERecord::eAdded)
            record->segment->detach(*record->entity);
    }
}

void TransactionManager::replay(Step& step)
{
    for (Record& record : step.records) {
        if (record.kind == ERecord::eAdded) {
            const bool attached = record.segment->attach(*record.entity, record.entity->id(), record.rootId);
            KX_ASSERT(attached);
        }
    }
    for (Record& record : step.records) {
        if (record.kind == ERecord::eModified)
            restore(*record.entity, record.segment, record.afterImage, eVisitRedo);
    }
    for (Record& record : step.records) {
        if (record.kind == ERecord::eErased)
            record.segment->detach(*record.entity);
    }
}

void TransactionManager::restore(Entity& entity, Segment* segment, const std::vector<std::uint8_t>& image, std::uint32_t mode)
{
    // Published (the change count moves, views refresh) but not recorded: the manager is replaying.
    EntityChange change(&entity, eEntityModified, kAnyMember, 0, 0, false);
    loadEntityBinary(entity, image, VisitorContext(eVisitLoad | mode).withSegment(segment));
}

void TransactionManager::notifyAdapter(const std::wstring& name, ETransactionEnd how)
{
    if (IDocumentAdapter* adapter = m_document.adapter())
        adapter->onTransactionEnded(m_document, name, how);
}

void TransactionManager::releaseAll(std::vector<Step>& steps)
{
    // Entities that only a dropped step still holds are out of the document for good; their
    // references go first, so two of them that refer to each other do not keep each other alive.
    for (Step& step : steps) {
        for (Record& record : step.records) {
            Entity* entity = record.entity.get();
            if (entity != nullptr && entity->segment() == nullptr)
                MemberVisitor::clearReferences(entity, entity->entityMetaType().memberSet());
        }
    }
    steps.clear();
}

Transaction::Transaction(Document& document, std::wstring name) : m_manager(document.transactions())
{
    m_manager.begin(std::move(name));
}

Transaction::~Transaction()
{
    if (m_open)
        (void)m_manager.abort();
}

bool Transaction::commit()
{
    if (!m_open)
        return false;
    m_open = false;
    return m_manager.commit();
}

bool Transaction::abort()
{
    if (!m_open)
        return false;
    m_open = false;
    return m_manager.abort();
}

} // namespace Kx
