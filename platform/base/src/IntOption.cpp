#include "base/IntOption.h"

#include "base/NumberText.h"

namespace Kx {

std::string IntOption::toText() const
{
    return std::to_string(value());
}

bool IntOption::fromText(const std::string& text)
{
    std::int64_t parsed = 0;
    return parseWhole(text, parsed) && setValue(parsed);
}

} // namespace Kx
