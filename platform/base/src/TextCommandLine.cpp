#include <base/TextCommandLine.h>

#include <core/Strings.h>

#include <string>
#include <vector>

namespace Kx {

namespace {

using telvarin::platform::core::toWide;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

bool isFlagCharacter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// Whether `text` is well-formed UTF-8 (no overlong forms, surrogates or code points past U+10FFFF).
bool isUTF8(std::string_view text)
{
    std::size_t i = 0;
    while (i < text.size()) {
        const auto c = static_cast<unsigned char>(text[i]);
        std::size_t length = 0;
        unsigned min = 0;
        unsigned codePoint = 0;
        if (c < 0x80) {
            ++i;
            continue;
        }
        if ((c & 0xE0) == 0xC0) {
            length = 2, min = 0x80, codePoint = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            length = 3, min = 0x800, codePoint = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            length = 4, min = 0x10000, codePoint = c & 0x07;
        } else {
            return false;
        }
        if (i + length > text.size())
            return false;
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80)
                return false;
            codePoint = (codePoint << 6) | (next & 0x3F);
        }
        if (codePoint < min || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
            return false;
        i += length;
    }
    return true;
}

std::wstring column(std::size_t offset)
{
    return std::to_wstring(offset + 1);
}

// Reads the JSON value starting at line[i] (an opening bracket) up to the bracket that balances
// it. Brackets are counted with a stack, not a depth, so "{]" is refused here rather than by a
// JSON reader later with a less helpful message.
bool readJSON(std::string_view line, std::size_t& i, std::string& out, std::wstring& error)
{
    const std::size_t start = i;
    std::string open;
    bool inString = false;
    for (; i < line.size(); ++i) {
        const char c = line[i];
        if (inString) {
            if (c == '\\')
                ++i; // the escaped character cannot end the string
            else if (c == '"')
                inString = false;
            continue;
        }
        if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            open.push_back(c);
        } else if (c == '}' || c == ']') {
            const char expected = c == '}' ? '{' : '[';
            if (open.back() != expected) {
                error = L"Unbalanced brackets: '" + std::wstring(1, static_cast<wchar_t>(c)) + L"' at column "
                    + column(i) + L" does not close the '" + std::wstring(1, static_cast<wchar_t>(open.back()))
                    + L"' of the JSON argument starting at column " + column(start);
                return false;
            }
            open.pop_back();
            if (open.empty()) {
                ++i;
                out.assign(line.substr(start, i - start));
                return true;
            }
        }
    }
    error = inString ? L"Unbalanced quotes: a string inside the JSON argument starting at column " + column(start) + L" is not closed"
                     : L"Unbalanced brackets: the JSON argument starting at column " + column(start) + L" is not closed";
    return false;
}

bool readQuoted(std::string_view line, std::size_t& i, std::string& out, std::wstring& error)
{
    const std::size_t start = i++;
    for (; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '"') {
            ++i;
            return true;
        }
        if (c == '\\' && i + 1 < line.size() && (line[i + 1] == '"' || line[i + 1] == '\\'))
            ++i;
        out.push_back(line[i]);
    }
    error = L"Unbalanced quotes: the quoted argument starting at column " + column(start) + L" is not closed";
    return false;
}

} // namespace

TextCommandLine parseTextCommandLine(std::string_view line)
{
    TextCommandLine result;
    if (line.find('\0') != std::string_view::npos) {
        result.error = L"The command line holds a NUL character at column " + column(line.find('\0'));
        return result;
    }
    if (!isUTF8(line)) {
        result.error = L"The command line is not valid UTF-8 text";
        return result;
    }
    std::vector<std::wstring> parameters;
    std::vector<std::wstring> flags;
    bool first = true;
    std::size_t i = 0;
    while (true) {
        while (i < line.size() && isBlank(line[i]))
            ++i;
        if (i == line.size())
            break;
        const std::size_t start = i;
        std::string token;
        bool isFlag = false;
        const char c = line[i];
        if (c == '"') {
            if (!readQuoted(line, i, token, result.error))
                return result;
        } else if (c == '{' || c == '[') {
            if (!readJSON(line, i, token, result.error))
                return result;
        } else {
            while (i < line.size() && !isBlank(line[i]))
                ++i;
            token.assign(line.substr(start, i - start));
            isFlag = token.size() > 1 && token[0] == '/';
            for (std::size_t k = 1; isFlag && k < token.size(); ++k)
                isFlag = isFlagCharacter(token[k]);
        }
        // An argument must be followed by a blank: "{...}x" or "\"a\"b" is a typing slip, not two
        // arguments.
        if (i < line.size() && !isBlank(line[i])) {
            result.error = L"The argument starting at column " + column(start) + L" runs into the text at column " + column(i)
                + L"; separate arguments with a blank";
            return result;
        }
        if (first) {
            if (c == '"' || c == '{' || c == '[' || isFlag) {
                result.error = L"A command line starts with the command's name, as Geometry.DotProduct";
                return result;
            }
            result.command = toWide(token);
            first = false;
        } else if (isFlag) {
            flags.push_back(toWide(std::string_view(token).substr(1)));
        } else {
            parameters.push_back(toWide(token));
        }
    }
    result.parameters = TextCommandParameters(std::move(parameters), std::move(flags));
    return result;
}

} // namespace Kx
