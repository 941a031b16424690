#include "base/Exception.h"

#include <core/Strings.h>

namespace Kx {

namespace {

// The user text is a sentence or two ("… is corrupt! The current operation will be aborted!");
// followed by ": <detail>" its closing mark would double up ("aborted!: bad.kxd"), so the mark
// and any blanks before the colon are dropped. Without a detail the text stays as written.
std::string joined(const std::string& userText, const std::string& detail)
{
    if (detail.empty())
        return userText;
    const std::size_t end = userText.find_last_not_of(".!:; \t\r\n");
    return userText.substr(0, end == std::string::npos ? 0 : end + 1) + ": " + detail;
}

} // namespace

Exception::Exception(std::wstring userText, std::string detail)
    : m_userText(std::move(userText))
    , m_detail(std::move(detail))
    , m_what(joined(telvarin::platform::core::toUTF8(m_userText), m_detail))
{
}

} // namespace Kx
