#pragma once

#include <boost/json/value.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace Kx::JSON {

// Parses one JSON document with every number read back to the double nearest its text (Boost's own
// parser may be one unit in the last place off, so a value written in its shortest form and read
// again would drift). Blanks may surround the document; anything else after it is an error.
[[nodiscard]] std::optional<boost::json::value> parsePrecisely(std::string_view text, std::string* error);

} // namespace Kx::JSON
