#include "Lint.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>

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

constexpr Correction s_corrections[] = {
    {"PM-OTHER-GRAPHITE", EPhysicalProperty::eYoungsModulus, 11.7e6, 11.7e9,
        "the card writes \"11.7 MPa\"; graphite's modulus is of the order of 10 GPa, so the prefix is taken to be G"},
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

void lintPhysical(std::vector<PhysicalRecord>& records, LintResult& result)
{
    for (const Correction& correction : s_corrections) {
        const bool present = std::any_of(records.begin(), records.end(), [&](const PhysicalRecord& record) {
            return record.id == correction.id && record.value(correction.property).has_value();
        });
        if (!present) {
            result.errors.push_back("correction for " + std::string(correction.id) + " " +
                                    s_physicalColumns[static_cast<std::size_t>(correction.property)].column +
                                    ": the data has no such value any more");
        }
    }
    for (PhysicalRecord& record : records) {
        const auto ranges = std::find_if(std::begin(s_ranges), std::end(s_ranges),
            [&](const CategoryRanges& entry) { return entry.category == record.category; });
        if (ranges == std::end(s_ranges)) {
            result.errors.push_back(record.id + ": no plausible ranges for category \"" + record.category + "\"");
            continue;
        }
        for (const PhysicalColumn& column : s_physicalColumns) {
            std::optional<double>& value = record.value(column.property);
            if (!value) {
                continue;
            }
            ++result.checked;
            const Range range = ranges->ranges[static_cast<std::size_t>(column.property)];
            const std::string where = join({"[", number(range.minimum), ", ", number(range.maximum), "] ", column.unit,
                " for ", record.category});
            const auto inRange = [&](double candidate) { return candidate >= range.minimum && candidate <= range.maximum; };
            const auto correction = std::find_if(std::begin(s_corrections), std::end(s_corrections),
                [&](const Correction& entry) { return entry.id == record.id && entry.property == column.property; });
            if (correction != std::end(s_corrections)) {
                if (!sameValue(*value, correction->found)) {
                    result.errors.push_back(record.id + " " + column.column + ": the correction expects " +
                                            number(correction->found) + " but the data holds " + number(*value));
                    continue;
                }
                if (!inRange(correction->corrected)) {
                    result.errors.push_back(record.id + " " + column.column + ": the corrected value " +
                                            number(correction->corrected) + " is outside " + where);
                }
                result.findings.push_back({EFindingAction::eCorrected, record.id, column.column, *value,
                    correction->corrected, "outside " + where + "; " + std::string(correction->reason)});
                *value = correction->corrected;
            } else if (!inRange(*value)) {
                result.findings.push_back(
                    {EFindingAction::eKept, record.id, column.column, *value, *value, "outside " + where});
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
    for (const Finding& finding : result.findings) {
        text += "lint: " + finding.id + " " + finding.property + " = " + number(finding.found) + ": " + finding.detail +
                " -> " + actionName(finding.action);
        if (finding.action != EFindingAction::eKept) {
            text += join({" to ", number(finding.result)});
        }
        text += '\n';
    }
    for (const std::string& error : result.errors) {
        text += "lint error: " + error + '\n';
    }
    text += join({"lint: ", std::to_string(result.checked), " values checked, ",
        std::to_string(result.count(EFindingAction::eCorrected)), " corrected, ",
        std::to_string(result.count(EFindingAction::eClamped)), " clamped, ",
        std::to_string(result.count(EFindingAction::eKept)), " kept with a warning, ",
        std::to_string(result.errors.size()), " errors\n"});
    return text;
}

} // namespace Kx::Content
