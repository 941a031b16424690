#include "base/Strings.h"

namespace Kx::Strings {

namespace {

template <class Char>
constexpr bool isBlank(Char c)
{
    return c == Char(' ') || c == Char('\t') || c == Char('\n') || c == Char('\r') || c == Char('\v')
        || c == Char('\f');
}

template <class Char>
constexpr bool isSpecial(Char c)
{
    return c == Char(',') || c == Char('(') || c == Char(')') || c == Char('"');
}

template <class Char>
bool needsQuotes(std::basic_string_view<Char> item)
{
    if (item.empty() || isBlank(item.front()) || isBlank(item.back())) {
        return true;
    }
    for (const Char c : item) {
        if (isSpecial(c)) {
            return true;
        }
    }
    return false;
}

template <class Char>
std::basic_string<Char> group(const std::vector<std::basic_string<Char>>& items)
{
    std::basic_string<Char> text(1, Char('('));
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i != 0) {
            text += Char(',');
            text += Char(' ');
        }
        const std::basic_string_view<Char> item = items[i];
        if (!needsQuotes(item)) {
            text += item;
            continue;
        }
        text += Char('"');
        for (const Char c : item) {
            if (c == Char('"')) {
                text += Char('"');
            }
            text += c;
        }
        text += Char('"');
    }
    text += Char(')');
    return text;
}

// A cursor over the text with the grammar of the list form; every reader answers false on the
// first character that does not fit.
template <class Char>
class ListReader {
public:
    explicit ListReader(std::basic_string_view<Char> text)
        : m_text(text)
    {
    }

    bool read(std::vector<std::basic_string<Char>>& items)
    {
        skipBlanks();
        if (!take(Char('('))) {
            return false;
        }
        skipBlanks();
        if (take(Char(')'))) {
            return finish();
        }
        while (true) {
            std::basic_string<Char> item;
            if (!readItem(item)) {
                return false;
            }
            items.push_back(std::move(item));
            if (take(Char(','))) {
                continue;
            }
            if (take(Char(')'))) {
                return finish();
            }
            return false;
        }
    }

private:
    // Leaves the cursor on the ',' or ')' that ends the item.
    bool readItem(std::basic_string<Char>& item)
    {
        skipBlanks();
        if (take(Char('"'))) {
            if (!readQuoted(item)) {
                return false;
            }
            skipBlanks();
            return atEndOfItem();
        }
        const std::size_t start = m_pos;
        while (m_pos < m_text.size() && m_text[m_pos] != Char(',') && m_text[m_pos] != Char(')')) {
            if (m_text[m_pos] == Char('(') || m_text[m_pos] == Char('"')) {
                return false;
            }
            ++m_pos;
        }
        std::size_t end = m_pos;
        while (end > start && isBlank(m_text[end - 1])) {
            --end;
        }
        // An empty unquoted item is a typo ("(3,,4)"); groupStrings always quotes empty items.
        if (end == start || !atEndOfItem()) {
            return false;
        }
        item.assign(m_text.substr(start, end - start));
        return true;
    }

    bool readQuoted(std::basic_string<Char>& item)
    {
        while (m_pos < m_text.size()) {
            const Char c = m_text[m_pos++];
            if (c != Char('"')) {
                item += c;
            } else if (take(Char('"'))) {
                item += Char('"');
            } else {
                return true;
            }
        }
        return false;
    }

    bool atEndOfItem() const
    {
        return m_pos < m_text.size() && (m_text[m_pos] == Char(',') || m_text[m_pos] == Char(')'));
    }

    bool finish()
    {
        skipBlanks();
        return m_pos == m_text.size();
    }

    bool take(Char c)
    {
        if (m_pos < m_text.size() && m_text[m_pos] == c) {
            ++m_pos;
            return true;
        }
        return false;
    }

    void skipBlanks()
    {
        while (m_pos < m_text.size() && isBlank(m_text[m_pos])) {
            ++m_pos;
        }
    }

    std::basic_string_view<Char> m_text;
    std::size_t m_pos = 0;
};

template <class Char>
bool ungroup(const std::basic_string<Char>& text, std::vector<std::basic_string<Char>>& items)
{
    std::vector<std::basic_string<Char>> parsed;
    if (!ListReader<Char>(text).read(parsed)) {
        return false;
    }
    items = std::move(parsed);
    return true;
}

} // namespace

std::wstring groupStrings(const std::vector<std::wstring>& items)
{
    return group(items);
}

std::string groupStrings(const std::vector<std::string>& items)
{
    return group(items);
}

bool ungroupStrings(const std::wstring& text, std::vector<std::wstring>& items)
{
    return ungroup(text, items);
}

bool ungroupStrings(const std::string& text, std::vector<std::string>& items)
{
    return ungroup(text, items);
}

} // namespace Kx::Strings
