#include "base/DoubleOption.h"

#include "base/NumberText.h"

#include <cmath>

namespace Kx {

std::string DoubleOption::toText() const
{
    return shortestText(value());
}

bool DoubleOption::fromText(const std::string& text)
{
    double parsed = 0;
    return parseWhole(text, parsed) && setValue(parsed);
}

bool DoubleOption::accepts(const double& candidate) const
{
    return std::isfinite(candidate);
}

} // namespace Kx
