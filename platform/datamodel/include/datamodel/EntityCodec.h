#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

class Entity;
class VisitorContext;

// Whole-entity conversions over the data model's streams, for hosts, tools and tests. The forms
// without a context visit the entity as a plain save or load in the entity's own segment.
[[nodiscard]] std::vector<std::uint8_t> saveEntityBinary(const Entity& entity);
[[nodiscard]] std::vector<std::uint8_t> saveEntityBinary(const Entity& entity, const VisitorContext& context);
void loadEntityBinary(Entity& entity, std::span<const std::uint8_t> bytes);
void loadEntityBinary(Entity& entity, std::span<const std::uint8_t> bytes, const VisitorContext& context);
[[nodiscard]] std::string saveEntityXml(const Entity& entity);
void loadEntityXml(Entity& entity, std::string_view xml);
[[nodiscard]] std::string entityToJSON(const Entity& entity);
// Sets the entity from a JSON object; answers the number of members updated. Keys that name no
// member, and members whose JSON cannot be taken, are passed over. Throws Kx::Exception when the
// text is not JSON.
unsigned entityFromJSON(Entity& entity, std::string_view json, bool notifyOfChange = true);

// What a set from JSON did: the members it changed, the members it refused (their JSON was of the
// wrong kind, out of range, or referred to nothing; they kept their values) and the keys that name
// no member of the entity's type, in the order of the JSON text.
struct EntityJSONSetReport {
    unsigned updated = 0;
    std::vector<std::string> refusedMembers;
    std::vector<std::string> unknownMembers;

    [[nodiscard]] bool complete() const noexcept { return refusedMembers.empty() && unknownMembers.empty(); }
};
// As entityFromJSON, for callers that must not let a refusal pass unseen (a user's edit): the
// members that could be set are set, and the report says what was not. Run it inside a transaction
// and roll back when the report is not complete, to apply all or nothing. Throws Kx::Exception when
// the text is not JSON or not a JSON object.
[[nodiscard]] EntityJSONSetReport entityFromJSONWithReport(Entity& entity, std::string_view json, bool notifyOfChange = true);

} // namespace Kx
