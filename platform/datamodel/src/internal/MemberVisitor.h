#pragma once

#include <functional>
#include <vector>
#include <string>

namespace Kx {

class IReadStreamBase;
class IWriteStreamBase;
class JSONGetStream;
class JSONRef;
class JSONSetStream;
class MemberSet;
class ValueMetaType;
class VisitorContext;

// The walks over the members of an object (an entity, or a value saved member by member) that
// every encoding shares. `owner` is the address the member offsets are relative to.
namespace MemberVisitor {

void save(const void* owner, const MemberSet& members, IWriteStreamBase* stream, const VisitorContext& context);
void load(void* owner, const MemberSet& members, const IReadStreamBase* stream, const VisitorContext& context);
// Writes the members as one JSON object.
void getJSON(const void* owner, const MemberSet& members, JSONGetStream* stream, const VisitorContext& context);
// Sets each member named in the stream's current JSON object.
void setJSON(void* owner, const MemberSet& members, JSONSetStream* stream, const VisitorContext& context);
// Reads every member from a JSON object; false at the first one missing or unreadable.
[[nodiscard]] bool readJSON(void* owner, const MemberSet& members, const JSONRef& json);
[[nodiscard]] std::wstring toString(const void* owner, const MemberSet& members, const VisitorContext& context);
// Drops every reference the members hold (StrongRef members, also inside values).
void clearReferences(void* owner, const MemberSet& members);
// Whether any member may hold references (so that clearReferences has something to do).
[[nodiscard]] bool holdsReferences(const MemberSet& members);

using ValueVisit = std::function<void(const ValueMetaType& metaType, void* value)>;
// Calls `visit` for every member that is a value, outermost first, and for the values inside the
// values saved member by member (a value with a callback is opaque: its fields are its own).
void visitValues(void* owner, const MemberSet& members, const ValueVisit& visit);

// A value inside an owner of some type: where it lies from the owner's start, and its meta type.
struct ValuePlace {
    std::size_t offset;
    const ValueMetaType* metaType;
};
// The values visitValues would visit in any owner of the member set, found once from the set
// alone, keeping only the values whose types hear the document hooks.
[[nodiscard]] std::vector<ValuePlace> valuesHearingDocumentHooks(const MemberSet& members);

} // namespace MemberVisitor
} // namespace Kx
