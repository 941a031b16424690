#include "internal/MemberVisitor.h"

#include "datamodel/JSONStreams.h"
#include "datamodel/MemberMetaType.h"
#include "datamodel/MemberSet.h"
#include "datamodel/Streams.h"
#include "datamodel/ValueMetaType.h"
#include "datamodel/VisitorContext.h"

#include <base/Strings.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace Kx::MemberVisitor {

namespace {

// Finds the child elements of one element by name, trying first the element after the one it
// found last.
class XMLChildCursor {
public:
    explicit XMLChildCursor(const XMLNode& parent) : m_parent(parent.raw()) {}

    [[nodiscard]] XMLNode find(const char* name)
    {
        pugi::xml_node found = m_next && std::strcmp(m_next.name(), name) == 0 ? m_next : m_parent.child(name);
        if (found)
            m_next = found.next_sibling();
        return XMLNode(found);
    }

private:
    pugi::xml_node m_parent;
    pugi::xml_node m_next;
};

// In XML a scalar is an attribute of the owner's element and a value an element of its own.
XMLNode savedNodeOf(const Member& member, const VisitorContext& context)
{
    if (member.metaType->storedAsXmlAttribute())
        return context.xmlNode();
    XMLNode owner = context.xmlNode();
    return owner.appendChild(member.name);
}

} // namespace

void save(const void* owner, const MemberSet& members, IWriteStreamBase* stream, const VisitorContext& context)
{
    const bool binary = stream->isBinary();
    VisitorContext memberContext = context;
    for (const Member& member : members.members()) {
        memberContext.moveToMember(&member, binary ? XMLNode() : savedNodeOf(member, context));
        member.metaType->save(member.in(owner), stream, memberContext);
    }
}

void load(void* owner, const MemberSet& members, const IReadStreamBase* stream, const VisitorContext& context)
{
    if (stream->isBinary()) {
        VisitorContext memberContext = context;
        for (const Member& member : members.members()) {
            memberContext.moveToMember(&member, XMLNode());
            member.metaType->load(member.in(owner), context.storedVersionOf(*member.metaType), stream, memberContext);
        }
        return;
    }
    // Members are found by name, so documents written before a member was added still load (a
    // missing one keeps its value); in the order they were written, each is found at once.
    XMLAttributeCursor attributes(context.xmlNode().raw());
    XMLChildCursor children(context.xmlNode());
    for (const Member& member : members.members()) {
        const unsigned version = context.storedVersionOf(*member.metaType);
        if (member.metaType->storedAsXmlAttribute()) {
            member.metaType->load(member.in(owner), version, stream, context.forMember(&member, &attributes));
            continue;
        }
        const XMLNode node = children.find(member.name.c_str());
        if (!node.isNull())
            member.metaType->load(member.in(owner), version, stream, context.forMember(&member, node));
    }
}

void getJSON(const void* owner, const MemberSet& members, JSONGetStream* stream, const VisitorContext& context)
{
    stream->addText("{");
    bool first = true;
    for (const Member& member : members.members()) {
        const VisitorContext memberContext = context.forMember(&member, XMLNode());
        if (!member.metaType->includedInJSON(member.in(owner), memberContext))
            continue;
        if (!first)
            stream->addText(",");
        first = false;
        stream->addText("\"");
        stream->addText(member.name);
        stream->addText("\":");
        member.metaType->getJSON(member.in(owner), stream, memberContext);
    }
    stream->addText("}");
}

void setJSON(void* owner, const MemberSet& members, JSONSetStream* stream, const VisitorContext& context)
{
    const JSONRef object = stream->currentJSONRef();
    for (const Member& member : members.members()) {
        const JSONRef json = object[member.name];
        if (!json.exists())
            continue;
        ScopedJSONRef scope(*stream, json);
        const unsigned refusedBefore = stream->valuesRefused();
        member.metaType->setJSON(member.in(owner), stream, context.forMember(&member, XMLNode()));
        if (stream->valuesRefused() != refusedBefore)
            stream->addRefusedMember(member.name);
    }
    for (const std::string& key : object.keys()) {
        const auto& all = members.members();
        if (std::none_of(all.begin(), all.end(), [&](const Member& member) { return member.name == key; }))
            stream->addUnknownMember(key);
    }
}

bool readJSON(void* owner, const MemberSet& members, const JSONRef& json)
{
    if (!json.isObject())
        return false;
    for (const Member& member : members.members()) {
        if (!member.metaType->readJSON(member.in(owner), json[member.name]))
            return false;
    }
    return true;
}

std::wstring toString(const void* owner, const MemberSet& members, const VisitorContext& context)
{
    std::vector<std::wstring> items;
    items.reserve(members.members().size());
    for (const Member& member : members.members())
        items.push_back(member.metaType->toString(member.in(owner), context.forMember(&member, XMLNode())));
    return Strings::groupStrings(items);
}

void clearReferences(void* owner, const MemberSet& members)
{
    for (const Member& member : members.members())
        member.metaType->clearReferences(member.in(owner));
}

bool holdsReferences(const MemberSet& members)
{
    for (const Member& member : members.members()) {
        if (member.metaType->holdsReferences())
            return true;
    }
    return false;
}

void visitValues(void* owner, const MemberSet& members, const ValueVisit& visit)
{
    for (const Member& member : members.members()) {
        const ValueMetaType* metaType = member.metaType->asValueMetaType();
        if (metaType == nullptr)
            continue;
        void* value = member.in(owner);
        visit(*metaType, value);
        const MemberSet& nested = metaType->currentMemberSet();
        if (metaType->dataModelCallback() == nullptr)
            visitValues(value, nested, visit);
    }
}

namespace {

void collectValuesHearingDocumentHooks(const MemberSet& members, std::size_t base, std::vector<ValuePlace>& places)
{
    for (const Member& member : members.members()) {
        const ValueMetaType* metaType = member.metaType->asValueMetaType();
        if (metaType == nullptr)
            continue;
        if (metaType->hearsDocumentHooks())
            places.push_back({base + member.offset, metaType});
        if (metaType->dataModelCallback() == nullptr)
            collectValuesHearingDocumentHooks(metaType->currentMemberSet(), base + member.offset, places);
    }
}

} // namespace

std::vector<ValuePlace> valuesHearingDocumentHooks(const MemberSet& members)
{
    std::vector<ValuePlace> places;
    collectValuesHearingDocumentHooks(members, 0, places);
    return places;
}

} // namespace Kx::MemberVisitor
