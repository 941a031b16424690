#include "base/Strings.h"

#include <core/Strings.h>

namespace Kx {

std::wstring ToIString(std::string_view utf8)
{
    return telvarin::platform::core::toWide(utf8);
}

std::string ToUTF8(std::wstring_view text)
{
    return telvarin::platform::core::toUTF8(text);
}

} // namespace Kx
