#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Kx {

// UTF-8 <-> wide text, lossless for valid text (see core/Strings.h for invalid input).
[[nodiscard]] std::wstring ToIString(std::string_view utf8);
[[nodiscard]] std::string ToUTF8(std::wstring_view text);

} // namespace Kx

// The text form of a list of items, used by every value type's toString/fromString:
// "(a, b, c)". An item that is empty, holds ',' '(' ')' or '"', or starts or ends with a blank
// (space, tab, line break) is written in double quotes with inner quotes doubled, so that
// ungroupStrings(groupStrings(items)) gives the items back for any items.
namespace Kx::Strings {

[[nodiscard]] std::wstring groupStrings(const std::vector<std::wstring>& items);
[[nodiscard]] std::string groupStrings(const std::vector<std::string>& items);

// Reads the form above, more leniently: blanks are allowed around the whole text and around each
// item, and unquoted items are trimmed. "()" is the empty list. False, with `items` untouched, for
// missing parentheses, an unterminated quote, text after a closing quote, a parenthesis or quote
// inside an unquoted item, an empty unquoted item in a list of several, or text after the list.
[[nodiscard]] bool ungroupStrings(const std::wstring& text, std::vector<std::wstring>& items);
[[nodiscard]] bool ungroupStrings(const std::string& text, std::vector<std::string>& items);

} // namespace Kx::Strings
