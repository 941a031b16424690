#pragma once

#include <exception>
#include <string>

namespace Kx {

// The failure of saving or loading: a text the user may be shown, and a technical detail for logs.
class Exception : public std::exception {
public:
    explicit Exception(std::wstring userText, std::string detail = {});

    [[nodiscard]] const std::wstring& userText() const noexcept { return m_userText; }
    [[nodiscard]] const std::string& detail() const noexcept { return m_detail; }
    // The user text in UTF-8, followed by ": " and the detail when there is one; the user text's
    // closing punctuation is then left out, so that one line reads "… aborted: bad.kxd: …".
    [[nodiscard]] const char* what() const noexcept override { return m_what.c_str(); }

private:
    std::wstring m_userText;
    std::string m_detail;
    std::string m_what;
};

} // namespace Kx
