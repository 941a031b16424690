#include "Arguments.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <string>

namespace Kx::Console {

CLI::Validator wholeNumber(std::uint64_t max)
{
    return CLI::Validator(
        [max](std::string& text) -> std::string {
            std::uint64_t value = 0;
            const char* end = text.data() + text.size();
            const auto [stop, error] = std::from_chars(text.data(), end, value);
            const bool digitsOnly = !text.empty() && text.front() >= '0' && text.front() <= '9';
            if (!digitsOnly || stop != end)
                return "not a whole number: \"" + text + "\"";
            if (error != std::errc() || value > max)
                return "more than " + std::to_string(max) + ": " + text;
            // CLI11 converts what passed with strtoull in base 0, which would read "010" as 8.
            text = std::to_string(value);
            return {};
        },
        "NUMBER");
}

} // namespace Kx::Console
