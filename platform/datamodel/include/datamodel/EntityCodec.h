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
// Sets the entity from a JSON object; answers the number of members updated. Throws
// Kx::Exception when the text is not JSON.
unsigned entityFromJSON(Entity& entity, std::string_view json, bool notifyOfChange = true);

} // namespace Kx
