#include <base/TextCommand.h>

#include <core/Strings.h>

#include <algorithm>
#include <charconv>
#include <cwctype>

namespace Kx {

namespace {
thread_local bool t_failed = false;

bool equalIgnoringCase(std::wstring_view a, std::wstring_view b)
{
    return a.size() == b.size()
        && std::equal(a.begin(), a.end(), b.begin(),
            [](wchar_t x, wchar_t y) { return std::towlower(static_cast<wint_t>(x)) == std::towlower(static_cast<wint_t>(y)); });
}
} // namespace

TextCommandParameters::TextCommandParameters(std::vector<std::wstring> parameters, std::vector<std::wstring> flags)
    : m_parameters(std::move(parameters))
    , m_flags(std::move(flags))
{
}

const std::wstring& TextCommandParameters::parameter(std::size_t i) const noexcept
{
    static const std::wstring s_none;
    return i < m_parameters.size() ? m_parameters[i] : s_none;
}

bool TextCommandParameters::hasFlag(std::wstring_view name) const noexcept
{
    return std::any_of(m_flags.begin(), m_flags.end(), [name](const std::wstring& flag) { return equalIgnoringCase(flag, name); });
}

std::optional<double> TextCommandParameters::parameterAsDouble(std::size_t i) const
{
    if (i >= m_parameters.size())
        return std::nullopt;
    const std::string text = telvarin::platform::core::toUTF8(m_parameters[i]);
    // from_chars does not take a leading '+', which a user may well type.
    const std::size_t start = !text.empty() && text[0] == '+' && text.size() > 1 && text[1] != '-' ? 1 : 0;
    double value = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + start, end, value);
    if (text.size() == start || error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

TextCommand::TextCommand(std::wstring subjectArea, std::wstring name, std::wstring description)
    : m_subjectArea(std::move(subjectArea))
    , m_name(std::move(name))
    , m_description(std::move(description))
{
}

TextCommand::~TextCommand() = default;

std::wstring TextCommand::fullName() const
{
    return m_subjectArea + L'.' + m_name;
}

std::wstring TextCommand::failure(std::wstring message)
{
    t_failed = true;
    return message;
}

bool TextCommand::failed() noexcept
{
    return t_failed;
}

void TextCommand::clearFailure() noexcept
{
    t_failed = false;
}

} // namespace Kx
