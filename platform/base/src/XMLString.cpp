#include "base/XMLString.h"

#include <core/Strings.h>

namespace Kx {

XMLString::XMLString(const wchar_t* text)
    : m_wide(text != nullptr ? text : L"")
    , m_utf8(telvarin::platform::core::toUTF8(m_wide))
{
}

} // namespace Kx
