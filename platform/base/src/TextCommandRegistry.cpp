#include <base/TextCommandRegistry.h>

#include <base/TextCommandLine.h>

#include <algorithm>
#include <cwctype>
#include <set>

namespace Kx {

namespace {

std::wstring lowerCase(std::wstring_view text)
{
    std::wstring lower(text);
    for (wchar_t& c : lower)
        c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    return lower;
}

// Levenshtein distance, two rows: names are short, and the typed text is cut before it is compared
// so that a megabyte of garbage does not cost a megabyte times every name.
std::size_t editDistance(std::wstring_view a, std::wstring_view b)
{
    std::vector<std::size_t> previous(b.size() + 1);
    std::vector<std::size_t> current(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        previous[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        current[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j)
            current[j] = std::min({previous[j] + 1, current[j - 1] + 1, previous[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
        std::swap(previous, current);
    }
    return previous[b.size()];
}

} // namespace

TextCommandRegistry& TextCommandRegistry::instance()
{
    static TextCommandRegistry s_registry;
    return s_registry;
}

bool TextCommandRegistry::add(std::unique_ptr<TextCommand> command)
{
    if (!command)
        return false;
    return m_commands.try_emplace(lowerCase(command->fullName()), std::move(command)).second;
}

const TextCommand* TextCommandRegistry::find(std::wstring_view fullName) const
{
    const auto found = m_commands.find(lowerCase(fullName));
    return found == m_commands.end() ? nullptr : found->second.get();
}

std::vector<const TextCommand*> TextCommandRegistry::commands() const
{
    std::vector<const TextCommand*> all;
    all.reserve(m_commands.size());
    for (const auto& [key, command] : m_commands)
        all.push_back(command.get());
    std::sort(all.begin(), all.end(), [](const TextCommand* a, const TextCommand* b) {
        return std::tie(a->subjectArea(), a->name()) < std::tie(b->subjectArea(), b->name());
    });
    return all;
}

std::vector<std::wstring> TextCommandRegistry::subjectAreas() const
{
    std::set<std::wstring> areas;
    for (const auto& [key, command] : m_commands)
        areas.insert(command->subjectArea());
    return {areas.begin(), areas.end()};
}

std::vector<std::wstring> TextCommandRegistry::closestNames(std::wstring_view typed, std::size_t count) const
{
    const std::wstring lower = lowerCase(typed.substr(0, 128));
    std::vector<std::pair<std::size_t, std::wstring>> near;
    for (const auto& [key, command] : m_commands) {
        // Either the full name or the name alone may be what the user meant ("DotProdct").
        const std::size_t distance = std::min(editDistance(lower, key), editDistance(lower, lowerCase(command->name())));
        const std::size_t shorter = std::min(lower.size(), key.size());
        if (distance <= std::max<std::size_t>(2, shorter / 3))
            near.emplace_back(distance, command->fullName());
    }
    std::sort(near.begin(), near.end());
    std::vector<std::wstring> names;
    for (std::size_t i = 0; i < near.size() && i < count; ++i)
        names.push_back(near[i].second);
    return names;
}

TextCommandOutcome TextCommandRegistry::run(std::wstring_view fullName, const TextCommandParameters& parameters) const
{
    TextCommandOutcome outcome;
    const TextCommand* command = find(fullName);
    if (!command) {
        outcome.status = TextCommandOutcome::EStatus::eFailed;
        outcome.text = L"Unknown command \"" + std::wstring(fullName.substr(0, 128)) + L'"';
        const std::vector<std::wstring> names = closestNames(fullName);
        for (std::size_t i = 0; i < names.size(); ++i)
            outcome.text += (i == 0 ? L"; did you mean " : L", ") + names[i];
        outcome.text += names.empty() ? L"; \"help\" lists the commands" : L"?";
        return outcome;
    }
    TextCommand::clearFailure();
    outcome.text = command->execute(parameters);
    if (TextCommand::failed())
        outcome.status = TextCommandOutcome::EStatus::eFailed;
    TextCommand::clearFailure();
    return outcome;
}

TextCommandOutcome TextCommandRegistry::runLine(std::string_view line) const
{
    TextCommandLine parsed = parseTextCommandLine(line);
    if (!parsed.error.empty())
        return {std::move(parsed.error), TextCommandOutcome::EStatus::eFailed};
    if (parsed.command.empty())
        return {{}, TextCommandOutcome::EStatus::eNoCommand};
    return run(parsed.command, parsed.parameters);
}

std::wstring TextCommandRegistry::help() const
{
    std::wstring text;
    std::wstring area;
    for (const TextCommand* command : commands()) {
        if (command->subjectArea() != area) {
            area = command->subjectArea();
            text += (text.empty() ? L"" : L"\n") + area + L'\n';
        }
        text += L"  " + command->fullName() + L"  " + command->description() + L'\n';
    }
    return text;
}

std::wstring TextCommandRegistry::help(std::wstring_view fullName) const
{
    if (const TextCommand* command = find(fullName))
        return command->fullName() + L"  " + command->description() + L'\n';
    return {};
}

} // namespace Kx
