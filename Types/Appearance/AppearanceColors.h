#pragma once

#include <span>
#include <string_view>

namespace Kx {

// How an appearance of one of the older schemas carries the colour a user chose. It is a tint,
// common to those schemas, counted while its toggle is on and, for schemas with a selector, while
// the selector holds the one value under which a colour is chosen at all (custom water, anodised
// aluminium). A rule without a toggle has a colour of its own instead of a tint (stone finishes).
struct TintRule {
    std::wstring_view schema;
    std::wstring_view toggle;
    std::wstring_view color;
    std::wstring_view selector;
    int selection = 0;
};

// The rule of `schema` (compared without regard to case); every older schema without a rule of its
// own has the common one.
[[nodiscard]] const TintRule& FindTintRule(std::wstring_view schema);

// The colour properties a user edits on an appearance of `schema`, its main colour first; empty
// for a schema without one.
[[nodiscard]] std::span<const std::wstring_view> ColorPropertiesOf(std::wstring_view schema);

} // namespace Kx
