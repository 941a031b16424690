#pragma once

#include "MaterialEntries.h"

#include <optional>
#include <string>
#include <vector>

// What `kx materials list` keeps and how it orders it.
namespace Kx::Console {

// "density<3000": a property, a comparison (<, <=, >, >=, =) and a value in the unit the property
// is shown in. A material without the value never satisfies it.
struct Condition {
    std::size_t property = 0;
    std::string comparison;
    double value = 0.0;

    [[nodiscard]] bool holds(const MaterialEntry& entry) const;
};

// None for text that is not PROPERTY<VALUE with a known property.
[[nodiscard]] std::optional<Condition> parseCondition(const std::string& text);
// The property keys, "density, modulus, …", for messages.
[[nodiscard]] std::string propertyKeys();
// An empty `wanted` keeps everything; otherwise the category or subcategory, any case.
[[nodiscard]] bool inCategory(const MaterialEntry& entry, const std::string& wanted);
// By "id", "name" (any case) or a property key; materials without the value last, either way.
void sortEntries(std::vector<MaterialEntry>& entries, const std::string& key, bool descending);

} // namespace Kx::Console
