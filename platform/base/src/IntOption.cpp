#include "base/IntOption.h"

#include <charconv>

namespace Kx {

std::string IntOption::toText() const
{
    return std::to_string(value());
}

bool IntOption::fromText(const std::string& text)
{
    std::int64_t parsed = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) {
        return false;
    }
    return setValue(parsed);
}

} // namespace Kx
