#pragma once

#include "MaterialData.h"

#include <string>
#include <string_view>
#include <vector>

// Checks every value of the data against a plausible range for its category and unit before it
// goes into a library. A value the data marks as doubtful is never shipped as it is: the
// corrections table replaces or withdraws it, citing why (and may correct other values a cited
// reference contradicts). Cells a family's sources leave empty get
// the family's cited value, labelled as such. Any other value outside its range is kept and reported; appearance colours above 1 are
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

enum class EFindingAction { eCorrected, eWithdrawn, eFamily, eClamped, eKept };

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
    // Problems that stop the generation (a stale correction, a doubtful value without one, a
    // corrected or family value outside its range).
    std::vector<std::string> errors;

    [[nodiscard]] std::size_t count(EFindingAction action) const;
};

void lintPhysical(std::vector<PhysicalRecord>& records, const std::vector<Correction>& corrections,
    const std::vector<FamilyValue>& families, LintResult& result);
// The plausible range of a column for a category; null for a category without ranges.
[[nodiscard]] const Range* plausibleRange(std::string_view category, EPhysicalProperty property);
void lintAppearance(std::vector<AppearanceRecord>& records, LintResult& result);
[[nodiscard]] std::string formatReport(const LintResult& result);

} // namespace Kx::Content
