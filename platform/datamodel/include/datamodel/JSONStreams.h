#pragma once

#include <base/JSONNode.h>
#include <datamodel/EntityChange.h>

#include <string>
#include <string_view>
#include <vector>

namespace Kx {

class Entity;

// Collects the JSON text of the values visited, in order. Owners write the punctuation around
// their members; a value's callback appends its own complete JSON text.
class JSONGetStream {
public:
    void addText(std::string_view text) { m_text.append(text); }
    // The text collected so far, for a value that writes its JSON straight into it.
    [[nodiscard]] std::string& textToAppendTo() noexcept { return m_text; }
    [[nodiscard]] const std::string& text() const noexcept { return m_text; }
    [[nodiscard]] std::string takeText() noexcept { return std::move(m_text); }
    void clear() noexcept { m_text.clear(); }

private:
    std::string m_text;
};

// Carries a parsed JSON document into the values it sets. The data model points the current
// reference at the JSON of the member being visited; callbacks read from it, open an EntityChange
// on the last visited entity for what they change, and count the members they updated.
class JSONSetStream {
public:
    explicit JSONSetStream(JSONNode document, bool notifyOfChange = true);
    // References point into the document the stream owns.
    JSONSetStream(const JSONSetStream&) = delete;
    JSONSetStream& operator=(const JSONSetStream&) = delete;

    [[nodiscard]] JSONRef currentJSONRef() const;
    [[nodiscard]] Entity* lastVisitedEntity() const noexcept { return m_lastVisitedEntity; }
    [[nodiscard]] bool notifyOfChange() const noexcept { return m_notifyOfChange; }
    void incrementMembersUpdated() noexcept { ++m_membersUpdated; }
    // One member set from JSON: `assign` runs inside an undoable, notifying change of the entity
    // being set, and the member is counted as updated.
    template <class Assign>
    void recordChange(Assign&& assign)
    {
        EntityChange change(m_lastVisitedEntity, eEntityModified, kAnyMember, eChangeUndoable | eChangeNotifies, 0,
            m_notifyOfChange);
        assign();
        ++m_membersUpdated;
    }
    [[nodiscard]] unsigned membersUpdated() const noexcept { return m_membersUpdated; }
    [[nodiscard]] const JSONNode& document() const noexcept { return m_document; }
    // A value whose JSON is of the wrong kind, out of its range or names nothing it could hold
    // says so here and stays as it was; the data model then reports the member being set as refused.
    void refuseValue() noexcept { ++m_valuesRefused; }
    [[nodiscard]] unsigned valuesRefused() const noexcept { return m_valuesRefused; }
    // The entity's members whose JSON was refused, and the keys of the JSON object that name no
    // member of the entity's type, each in document order.
    [[nodiscard]] const std::vector<std::string>& refusedMembers() const noexcept { return m_refusedMembers; }
    [[nodiscard]] const std::vector<std::string>& unknownMembers() const noexcept { return m_unknownMembers; }
    void addRefusedMember(std::string name) { m_refusedMembers.push_back(std::move(name)); }
    void addUnknownMember(std::string name) { m_unknownMembers.push_back(std::move(name)); }

    // Used by the data model while it walks entities and members.
    void visitEntity(Entity* entity) noexcept { m_lastVisitedEntity = entity; }
    void pushRef(JSONRef ref) { m_refs.push_back(ref); }
    void popRef() { m_refs.pop_back(); }

private:
    JSONNode m_document;
    std::vector<JSONRef> m_refs;
    Entity* m_lastVisitedEntity = nullptr;
    unsigned m_membersUpdated = 0;
    unsigned m_valuesRefused = 0;
    std::vector<std::string> m_refusedMembers;
    std::vector<std::string> m_unknownMembers;
    bool m_notifyOfChange;
};

// Pushes a reference for the length of a scope.
class ScopedJSONRef {
public:
    ScopedJSONRef(JSONSetStream& stream, JSONRef ref) : m_stream(stream) { m_stream.pushRef(ref); }
    ~ScopedJSONRef() { m_stream.popRef(); }
    ScopedJSONRef(const ScopedJSONRef&) = delete;
    ScopedJSONRef& operator=(const ScopedJSONRef&) = delete;

private:
    JSONSetStream& m_stream;
};

} // namespace Kx
