#pragma once

#include <cstdint>
#include <limits>

namespace CLI {
class Validator;
}

namespace Kx::Console {

// The transform of a count, a limit or an entity id on the command line: decimal digits only, no sign,
// at most `max`. Left to itself CLI11 reads "-1" into a 64-bit unsigned by wrapping it to
// 18446744073709551615 and takes "0x10" and "010" as hexadecimal and octal; a user typing an id
// means none of that, so such text is a usage error. Leading zeros are dropped ("010" is ten).
[[nodiscard]] CLI::Validator wholeNumber(std::uint64_t max = std::numeric_limits<std::uint32_t>::max());

} // namespace Kx::Console
