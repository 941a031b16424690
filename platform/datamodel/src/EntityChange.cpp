#include "datamodel/EntityChange.h"

#include "datamodel/Entity.h"
#include "datamodel/EntityCodec.h"
#include "datamodel/VisitorContext.h"

#include <base/AppLogMgr.h>
#include <base/Strings.h>

#include <exception>

namespace Kx {

EntityChange::EntityChange(Entity* entity, unsigned kind, unsigned memberIndex, unsigned scope, unsigned, bool notify)
    : m_entity(entity)
    , m_kind(kind)
    , m_memberIndex(memberIndex)
    , m_scope(scope)
    , m_notify(notify)
{
    // The before-image costs a save of the entity; take it only when someone can undo and has no
    // image of the entity yet. The save is made for undo, and says so to the callbacks that check
    // what a save is for.
    const IEntityChangeSink* sink = m_entity != nullptr ? m_entity->changeSink() : nullptr;
    if (sink != nullptr && (m_scope & eChangeUndoable) != 0 && sink->needsBeforeImage(*m_entity)) {
        const VisitorContext context = VisitorContext(eVisitSave | eVisitUndo).withSegment(m_entity->segment());
        m_beforeImage = saveEntityBinary(*m_entity, context);
    }
}

EntityChange::~EntityChange()
{
    if (m_entity == nullptr)
        return;
    m_entity->m_changeCount.fetch_add(1, std::memory_order_relaxed);
    IEntityChangeSink* sink = m_entity->changeSink();
    if (sink == nullptr)
        return;
    try {
        sink->onEntityChanged(*m_entity, std::move(m_beforeImage), m_notify && (m_scope & eChangeNotifies) != 0);
    } catch (const std::exception& error) {
        // A change has already happened; a listener that fails must not turn it into a crash.
        AppLogMgr::appLogEx(ELogLevel::eError, L"Entity change listener failed: " + ToIString(error.what()));
    }
}

} // namespace Kx
