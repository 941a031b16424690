#include "base/Exception.h"

#include <core/Strings.h>

namespace Kx {

Exception::Exception(std::wstring userText, std::string detail)
    : m_userText(std::move(userText))
    , m_detail(std::move(detail))
    , m_what(telvarin::platform::core::toUTF8(m_userText))
{
    if (!m_detail.empty()) {
        m_what += ": " + m_detail;
    }
}

} // namespace Kx
