#include "MaterialFilters.h"

#include <algorithm>
#include <cmath>
#include <regex>

namespace Kx::Console {

namespace {

const std::regex s_condition(R"(^\s*([a-z]+)\s*(<=|>=|<|>|=)\s*([-+]?[0-9]*\.?[0-9]+([eE][-+]?[0-9]+)?)\s*$)");

std::size_t indexOf(const MaterialProperty& property)
{
    return static_cast<std::size_t>(&property - s_materialProperties.data());
}

} // namespace

bool Condition::holds(const MaterialEntry& entry) const
{
    const std::optional<double> shown = entry.shown(property);
    if (!shown) {
        return false;
    }
    if (comparison == "<") {
        return *shown < value;
    }
    if (comparison == "<=") {
        return *shown <= value;
    }
    if (comparison == ">") {
        return *shown > value;
    }
    if (comparison == ">=") {
        return *shown >= value;
    }
    // Shown values are scaled SI values: "=" allows for the rounding of the scaling.
    return std::abs(*shown - value) <= 1e-9 * std::max(std::abs(*shown), std::abs(value));
}

std::optional<Condition> parseCondition(const std::string& text)
{
    std::smatch match;
    if (!std::regex_match(text, match, s_condition)) {
        return std::nullopt;
    }
    const MaterialProperty* property = findMaterialProperty(match[1].str());
    if (property == nullptr) {
        return std::nullopt;
    }
    return Condition{indexOf(*property), match[2].str(), std::stod(match[3].str())};
}

std::string propertyKeys()
{
    std::string keys;
    for (const MaterialProperty& property : s_materialProperties) {
        keys += (keys.empty() ? "" : ", ") + std::string(property.key);
    }
    return keys;
}

bool inCategory(const MaterialEntry& entry, const std::string& wanted)
{
    const std::string key = foldCase(wanted);
    return key.empty() || foldCase(entry.category) == key || foldCase(entry.subcategory) == key;
}

void sortEntries(std::vector<MaterialEntry>& entries, const std::string& key, bool descending)
{
    const MaterialProperty* property = findMaterialProperty(key);
    if (property == nullptr) {
        const auto text = [&](const MaterialEntry& entry) { return foldCase(key == "id" ? entry.id : entry.name); };
        std::stable_sort(entries.begin(), entries.end(), [&](const MaterialEntry& left, const MaterialEntry& right) {
            return descending ? text(right) < text(left) : text(left) < text(right);
        });
        return;
    }
    const std::size_t index = indexOf(*property);
    std::stable_sort(entries.begin(), entries.end(), [&](const MaterialEntry& left, const MaterialEntry& right) {
        const auto a = left.shown(index);
        const auto b = right.shown(index);
        if (!a || !b) {
            return a.has_value() && !b.has_value();
        }
        return descending ? *b < *a : *a < *b;
    });
}

} // namespace Kx::Console
