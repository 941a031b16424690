#include "base/ChoiceOption.h"

#include "base/Strings.h"

#include <algorithm>

namespace Kx {

ChoiceOption::ChoiceOption(std::string id, std::string defaultValue, std::vector<Choice> choices)
    : ValueOption(std::move(id), std::move(defaultValue))
    , m_choices(std::move(choices))
{
}

std::vector<ChoiceOption::Choice> ChoiceOption::choices() const
{
    std::lock_guard lock(mutex());
    return m_choices;
}

bool ChoiceOption::hasChoice(const std::string& value) const
{
    std::lock_guard lock(mutex());
    return std::any_of(m_choices.begin(), m_choices.end(), [&](const Choice& choice) { return choice.value == value; });
}

void ChoiceOption::addChoice(std::string value, std::wstring text)
{
    if (text.empty()) {
        text = ToIString(value);
    }
    std::lock_guard lock(mutex());
    m_choices.push_back({std::move(value), std::move(text)});
}

bool ChoiceOption::removeChoice(const std::string& value)
{
    std::lock_guard lock(mutex());
    const auto removed = std::erase_if(m_choices, [&](const Choice& choice) { return choice.value == value; });
    return removed != 0;
}

void ChoiceOption::clearChoices()
{
    std::lock_guard lock(mutex());
    m_choices.clear();
}

} // namespace Kx
