#pragma once

#include <string>

namespace Kx {

// An element or attribute name made once (usually at start-up, from a wide literal) and then used
// as a key for every value written or read, so the UTF-8 conversion is not repeated per value.
class XMLString {
public:
    XMLString(const wchar_t* text);

    [[nodiscard]] const std::wstring& wide() const { return m_wide; }
    [[nodiscard]] const std::string& utf8() const { return m_utf8; }
    [[nodiscard]] const char* c_str() const { return m_utf8.c_str(); }

private:
    std::wstring m_wide;
    std::string m_utf8;
};

} // namespace Kx
