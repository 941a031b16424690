#include "Lint.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <map>

namespace Kx::Content {

namespace {

// Columns: density kg/m^3, Young's modulus Pa, Poisson's ratio, yield strength Pa, tensile strength
// Pa, thermal conductivity W/(m*K), linear expansion 1/K, specific heat J/(kg*K). Wide enough for
// every real member of the category, narrow enough to catch a wrong unit prefix (a factor of 1000).
constexpr CategoryRanges s_ranges[] = {
    {"Metal", {{{1500, 22600}, {40e9, 450e9}, {0.2, 0.45}, {1e7, 3e9}, {5e7, 3e9}, {5, 430}, {5e-7, 3.5e-5}, {100, 1100}}}},
    {"Plastic", {{{800, 2300}, {1e8, 1.5e10}, {0.3, 0.5}, {5e6, 2.5e8}, {5e6, 2.5e8}, {0.1, 0.6}, {1e-5, 2.5e-4}, {800, 2500}}}},
    {"Wood", {{{100, 1400}, {1e9, 2.5e10}, {0.0, 0.6}, {1e6, 2e8}, {1e6, 2e8}, {0.04, 0.5}, {1e-6, 6e-5}, {1000, 2800}}}},
    {"Glass", {{{2000, 6000}, {40e9, 100e9}, {0.15, 0.3}, {1e7, 6e9}, {1e7, 6e9}, {0.5, 1.5}, {5e-7, 1.2e-5}, {600, 1000}}}},
    {"Ceramic", {{{1500, 6100}, {50e9, 500e9}, {0.1, 0.35}, {1e7, 3e9}, {1e7, 3e9}, {1, 300}, {1e-6, 1.5e-5}, {400, 1300}}}},
    {"Concrete", {{{1500, 3000}, {15e9, 50e9}, {0.1, 0.25}, {1e6, 1e8}, {1e6, 1e7}, {0.5, 3}, {6e-6, 1.5e-5}, {750, 1100}}}},
    {"Composite", {{{1000, 2500}, {5e9, 3e11}, {0.2, 0.4}, {5e7, 3.5e9}, {5e7, 3.5e9}, {0.1, 100}, {-2e-6, 6e-5}, {700, 1500}}}},
    {"Stone", {{{1500, 3500}, {5e9, 1e11}, {0.1, 0.35}, {1e6, 3e8}, {1e6, 3e7}, {1, 7}, {3e-6, 1.5e-5}, {600, 1100}}}},
    {"Rubber", {{{850, 1600}, {1e5, 1e8}, {0.45, 0.5}, {1e5, 5e7}, {1e5, 5e7}, {0.1, 0.5}, {5e-5, 3e-4}, {1200, 2200}}}},
    {"Other", {{{500, 23000}, {1e9, 1.2e12}, {0.0, 0.5}, {1e6, 5e9}, {1e6, 5e9}, {0.01, 2000}, {-1e-5, 1e-4}, {100, 3000}}}},
};

bool sameValue(double left, double right)
{
    return std::abs(left - right) <= 1e-9 * std::max(std::abs(left), std::abs(right));
}

// Texts are joined by appending: GCC 12 warns falsely (-Wrestrict) about a literal prefixed to a
// temporary string.
std::string join(std::initializer_list<std::string_view> parts)
{
    std::string text;
    for (std::string_view part : parts) {
        text += part;
    }
    return text;
}

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

const char* actionName(EFindingAction action)
{
    switch (action) {
    case EFindingAction::eCorrected:
        return "corrected";
    case EFindingAction::eWithdrawn:
        return "withdrawn";
    case EFindingAction::eFamily:
        return "family value";
    case EFindingAction::eClamped:
        return "clamped";
    case EFindingAction::eKept:
        return "kept";
    }
    return "";
}

} // namespace

std::size_t LintResult::count(EFindingAction action) const
{
    return static_cast<std::size_t>(
        std::count_if(findings.begin(), findings.end(), [&](const Finding& finding) { return finding.action == action; }));
}

const Range* plausibleRange(std::string_view category, EPhysicalProperty property)
{
    const auto ranges = std::find_if(std::begin(s_ranges), std::end(s_ranges),
        [&](const CategoryRanges& entry) { return entry.category == category; });
    return ranges == std::end(s_ranges) ? nullptr : &ranges->ranges[static_cast<std::size_t>(property)];
}

namespace {

const char* columnName(EPhysicalProperty property)
{
    return s_physicalColumns[static_cast<std::size_t>(property)].column;
}

void applyCorrections(std::vector<PhysicalRecord>& records, const std::vector<Correction>& corrections,
    LintResult& result)
{
    for (const Correction& correction : corrections) {
        const std::string what = correction.id + " " + columnName(correction.property);
        const auto record = std::find_if(records.begin(), records.end(),
            [&](const PhysicalRecord& candidate) { return candidate.id == correction.id; });
        if (record == records.end()) {
            result.errors.push_back(what + ": the data has no such material");
            continue;
        }
        std::optional<double>& value = record->value(correction.property);
        if (!value || !sameValue(*value, correction.found)) {
            result.errors.push_back(what + ": the correction expects " + number(correction.found) +
                                    " but the data holds " + (value ? number(*value) : std::string("nothing")));
            continue;
        }
        const EFindingAction action = correction.value ? EFindingAction::eCorrected : EFindingAction::eWithdrawn;
        result.findings.push_back({action, record->id, columnName(correction.property), *value,
            correction.value.value_or(0.0), correction.reference});
        const std::string_view unit = s_physicalColumns[static_cast<std::size_t>(correction.property)].unit;
        record->notes[static_cast<std::size_t>(correction.property)] = ValueNote{
            correction.value ? EValueOrigin::eCorrected : EValueOrigin::eWithdrawn,
            join({correction.value ? "corrected from " : "withdrawn; the source gives ", number(*value),
                unit.empty() ? "" : " ", unit, " (", correction.reference, ")"})};
        value = correction.value;
    }
    for (const PhysicalRecord& record : records) {
        for (const std::string& column : record.doubtfulColumns) {
            if (!record.notes[static_cast<std::size_t>(physicalProperty(column))]) {
                result.errors.push_back(record.id + " " + column + ": a doubtful value without a correction");
            }
        }
    }
}

void applyFamilyValues(std::vector<PhysicalRecord>& records, const std::vector<FamilyValue>& families,
    LintResult& result)
{
    for (const FamilyValue& family : families) {
        bool matched = false;
        for (PhysicalRecord& record : records) {
            const bool member = std::any_of(family.members.begin(), family.members.end(),
                [&](const std::string& name) { return name == record.id || name == record.subcategory; });
            matched = matched || member;
            std::optional<double>& value = record.value(family.property);
            // A source's own figure always wins over its family's.
            if (!member || value || record.notes[static_cast<std::size_t>(family.property)]) {
                continue;
            }
            value = family.value;
            record.notes[static_cast<std::size_t>(family.property)] =
                ValueNote{EValueOrigin::eFamily, join({"family value, ", family.family, " (", family.reference, ")"})};
            result.findings.push_back({EFindingAction::eFamily, record.id, columnName(family.property), family.value,
                family.value, family.family});
        }
        if (!matched) {
            result.errors.push_back("family value " + family.family + " " + columnName(family.property) +
                                    ": no material of the data is a member");
        }
    }
}

} // namespace

void lintPhysical(std::vector<PhysicalRecord>& records, const std::vector<Correction>& corrections,
    const std::vector<FamilyValue>& families, LintResult& result)
{
    applyCorrections(records, corrections, result);
    applyFamilyValues(records, families, result);
    for (PhysicalRecord& record : records) {
        if (plausibleRange(record.category, EPhysicalProperty::eDensity) == nullptr) {
            result.errors.push_back(record.id + ": no plausible ranges for category \"" + record.category + "\"");
            continue;
        }
        for (const PhysicalColumn& column : s_physicalColumns) {
            const std::optional<double>& value = record.value(column.property);
            if (!value) {
                continue;
            }
            ++result.checked;
            const Range range = *plausibleRange(record.category, column.property);
            if (*value >= range.minimum && *value <= range.maximum) {
                continue;
            }
            const std::string where = join({"outside [", number(range.minimum), ", ", number(range.maximum), "] ",
                column.unit, " for ", record.category});
            if (record.notes[static_cast<std::size_t>(column.property)]) {
                result.errors.push_back(record.id + " " + column.column + ": the value " + number(*value) +
                                        " put in its place is " + where);
            } else {
                result.findings.push_back({EFindingAction::eKept, record.id, column.column, *value, *value, where});
            }
        }
        const auto& yield = record.value(EPhysicalProperty::eYieldStrength);
        const auto& tensile = record.value(EPhysicalProperty::eTensileStrength);
        if (yield && tensile && *yield > *tensile) {
            result.findings.push_back({EFindingAction::eKept, record.id, "yield_strength_pa", *yield, *yield,
                join({"above the tensile strength ", number(*tensile), " Pa, as the card gives it"})});
        }
    }
}

void lintAppearance(std::vector<AppearanceRecord>& records, LintResult& result)
{
    for (AppearanceRecord& record : records) {
        const auto clampColour = [&](Rgb& colour, const std::string& prefix) {
            for (auto [component, name] : {std::pair{&colour.r, "_r"}, std::pair{&colour.g, "_g"}, std::pair{&colour.b, "_b"}}) {
                ++result.checked;
                const double clamped = std::clamp(*component, 0.0, 1.0);
                if (clamped != *component) {
                    result.findings.push_back({EFindingAction::eClamped, record.id, prefix + name, *component, clamped,
                        "a colour component outside [0, 1]"});
                    *component = clamped;
                }
            }
        };
        clampColour(record.base, "base");
        if (record.specular) {
            clampColour(*record.specular, "specular");
        }
        const auto unitInterval = [&](std::optional<double> value, const char* name) {
            if (!value) {
                return;
            }
            ++result.checked;
            if (*value < 0.0 || *value > 1.0) {
                result.findings.push_back({EFindingAction::eKept, record.id, name, *value, *value, "outside [0, 1]"});
            }
        };
        unitInterval(record.metalness, "metalness");
        unitInterval(record.roughness, "roughness");
        unitInterval(record.transmission, "transmission");
        if (record.ior) {
            ++result.checked;
            if (*record.ior < 1.0 || *record.ior > 3.0) {
                result.findings.push_back({EFindingAction::eKept, record.id, "ior", *record.ior, *record.ior,
                    "outside [1, 3] for a dielectric"});
            }
        }
    }
}

std::string formatReport(const LintResult& result)
{
    std::string text;
    // A family value fills many materials at once: one line per family and column.
    std::map<std::pair<std::string, std::string>, std::pair<double, std::size_t>> families;
    for (const Finding& finding : result.findings) {
        if (finding.action == EFindingAction::eFamily) {
            auto& [value, count] = families[{finding.detail, finding.property}];
            value = finding.result;
            ++count;
            continue;
        }
        text += "lint: " + finding.id + " " + finding.property + " = " + number(finding.found) + ": " + finding.detail +
                " -> " + actionName(finding.action);
        if (finding.action == EFindingAction::eCorrected || finding.action == EFindingAction::eClamped) {
            text += join({" to ", number(finding.result)});
        }
        text += '\n';
    }
    for (const auto& [key, entry] : families) {
        text += join({"lint: family value ", key.first, " ", key.second, " = ", number(entry.first), " for ",
            std::to_string(entry.second), " materials the sources leave without it\n"});
    }
    for (const std::string& error : result.errors) {
        text += "lint error: " + error + '\n';
    }
    text += join({"lint: ", std::to_string(result.checked), " values checked, ",
        std::to_string(result.count(EFindingAction::eCorrected)), " corrected, ",
        std::to_string(result.count(EFindingAction::eWithdrawn)), " withdrawn, ",
        std::to_string(result.count(EFindingAction::eFamily)), " family values, ",
        std::to_string(result.count(EFindingAction::eClamped)), " clamped, ",
        std::to_string(result.count(EFindingAction::eKept)), " kept with a warning, ",
        std::to_string(result.errors.size()), " errors\n"});
    return text;
}

} // namespace Kx::Content
