#include "base/BoolOption.h"

namespace Kx {

std::string BoolOption::toText() const
{
    return value() ? "1" : "0";
}

bool BoolOption::fromText(const std::string& text)
{
    if (text == "1" || text == "true") {
        return setValue(true);
    }
    if (text == "0" || text == "false") {
        return setValue(false);
    }
    return false;
}

} // namespace Kx
