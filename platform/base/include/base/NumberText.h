#pragma once

#include <charconv>
#include <string>
#include <string_view>
#include <system_error>

namespace Kx {

// Numbers as every text format of the platform writes and reads them: the shortest text that reads
// back to the same number (integers in decimal), and a reading that takes the whole text or
// nothing (no blanks, no '+', no trailing characters).
template <class Number>
[[nodiscard]] std::string shortestText(Number value)
{
    char text[64];
    const auto written = std::to_chars(text, text + sizeof text, value);
    return std::string(text, written.ptr);
}

template <class Number>
[[nodiscard]] bool parseWhole(std::string_view text, Number& value)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && error == std::errc{} && end == text.data() + text.size();
}

} // namespace Kx
