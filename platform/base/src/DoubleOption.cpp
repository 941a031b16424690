#include "base/DoubleOption.h"

#include <charconv>
#include <cmath>

namespace Kx {

std::string DoubleOption::toText() const
{
    char text[64];
    const auto written = std::to_chars(text, text + sizeof text, value());
    return std::string(text, written.ptr);
}

bool DoubleOption::fromText(const std::string& text)
{
    double parsed = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) {
        return false;
    }
    return setValue(parsed);
}

bool DoubleOption::accepts(const double& candidate) const
{
    return std::isfinite(candidate);
}

} // namespace Kx
