#include "datamodel/CloningStream.h"

#include "datamodel/CloningContext.h"
#include "datamodel/EntityMetaType.h"
#include "datamodel/Segment.h"
#include "datamodel/ValueMetaType.h"
#include "datamodel/VisitorContext.h"
#include "internal/MemberVisitor.h"

#include <base/Assert.h>
#include <base/Exception.h>

#include <algorithm>

namespace Kx {

CloningStream::CloningStream(CloningContext& context) : m_context(context)
{
    m_context.m_stream = this;
}

bool CloningStream::copy(Entity& source)
{
    KX_ASSERT(!m_pasted);
    Segment* segment = source.segment();
    const bool copyable = !m_pasted && segment != nullptr && m_context.targetOf(segment) != nullptr;
    KX_ASSERT(copyable);
    if (!copyable)
        return false;
    if (!m_copiedSources.insert(&source).second)
        return true;

    const VisitorContext context = VisitorContext(eVisitSave | eVisitClone, &source).withSegment(segment).withCloningContext(&m_context);
    EntityMetaType& metaType = source.entityMetaType();
    metaType.preCloneCopy(source, context);
    MemberVisitor::visitValues(&source, metaType.memberSet(),
        [&](const ValueMetaType& valueType, void* value) { valueType.preCloneCopy(value, context.withEntity(&source, XMLNode())); });

    const std::size_t offset = m_stream.size();
    (void)metaType.save(source, &m_stream, context);
    m_copied.push_back(Copied{StrongRef<Entity>(&source), segment->rootIdOf(source), offset, m_stream.size() - offset});
    return true;
}

std::vector<Entity*> CloningStream::paste()
{
    KX_ASSERT(!m_pasted);
    std::vector<Entity*> copies;
    if (m_pasted)
        return copies;
    m_pasted = true;

    // Every copy exists before any is read, so references between copies find each other
    // whatever their order.
    std::vector<StrongRef<Entity>> made;
    made.reserve(m_copied.size());
    for (const Copied& copied : m_copied) {
        Segment* target = m_context.targetOf(copied.source->segment());
        StrongRef<Entity> copy(copied.source->entityMetaType().create());
        if (!copied.rootId.empty() && target->root(copied.rootId) == nullptr)
            (void)target->addRoot(copied.rootId, *copy);
        else
            (void)target->add(*copy);
        m_context.m_clones[copied.source->id()] = copy.get();
        m_context.m_sources[copy.get()] = copied.source.get();
        made.push_back(copy);
    }

    const std::span<const std::uint8_t> bytes = m_stream.bytes();
    const VisitorContext reading =
        VisitorContext(eVisitLoad | eVisitClone).withResolver(&m_context).withCloningContext(&m_context);
    for (std::size_t index = 0; index < m_copied.size(); ++index) {
        Entity& copy = *made[index];
        const BinaryReadStream stream(bytes.subspan(m_copied[index].offset, m_copied[index].length));
        (void)copy.entityMetaType().load(copy, &stream, reading.withSegment(copy.segment()));
    }

    const VisitorContext pasting = VisitorContext(eVisitLoad | eVisitClone).withCloningContext(&m_context);
    for (const StrongRef<Entity>& copy : made) {
        const VisitorContext context = pasting.withSegment(copy->segment()).withEntity(copy.get(), XMLNode());
        EntityMetaType& metaType = copy->entityMetaType();
        metaType.postClonePaste(*copy, context);
        MemberVisitor::visitValues(copy.get(), metaType.memberSet(),
            [&](const ValueMetaType& valueType, void* value) { valueType.postClonePaste(value, context); });
        copies.push_back(copy.get());
    }
    return copies;
}

} // namespace Kx
