#pragma once

#include "MaterialData.h"

#include <string>
#include <string_view>
#include <vector>

// Checks every value of the data against a plausible range for its category and unit before it
// goes into a library. A value outside its range is either corrected by an entry of the
// corrections table (which documents why) or kept and reported; appearance colours above 1 are
// clamped, as the data's README suggests. Nothing is changed silently: every change and every
// doubt is a finding in the report printed at build time.
namespace Kx::Content {

struct Range {
    double minimum = 0.0;
    double maximum = 0.0;
};

// Plausible ranges of the physical columns, per category (content/data/README.md shows the table).
struct CategoryRanges {
    std::string_view category;
    std::array<Range, s_physicalPropertyCount> ranges;
};

// A value the data is known to get wrong. It applies only while the data still holds `found`; a
// correction whose value has changed in the data is an error, so it is reviewed, not re-applied.
struct Correction {
    std::string_view id;
    EPhysicalProperty property;
    double found;
    double corrected;
    std::string_view reason;
};

enum class EFindingAction { eCorrected, eClamped, eKept };

struct Finding {
    EFindingAction action = EFindingAction::eKept;
    std::string id;
    std::string property;
    double found = 0.0;
    double result = 0.0;
    std::string detail;
};

struct LintResult {
    std::size_t checked = 0;
    std::vector<Finding> findings;
    // Problems that stop the generation (a stale correction, a correction that leaves its range).
    std::vector<std::string> errors;

    [[nodiscard]] std::size_t count(EFindingAction action) const;
};

void lintPhysical(std::vector<PhysicalRecord>& records, LintResult& result);
void lintAppearance(std::vector<AppearanceRecord>& records, LintResult& result);
[[nodiscard]] std::string formatReport(const LintResult& result);

} // namespace Kx::Content
