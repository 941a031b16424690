#pragma once

#include "base/Option.h"

#include <string>
#include <vector>

namespace Kx {

// A value picked from a list of choices, each a stored value with the text a dialog shows (a
// library's English name as value and its localised name as text, say). setValue and fromText
// refuse anything that is not one of the choices; the default is always allowed, so the list may
// be filled after construction.
class ChoiceOption : public ValueOption<std::string> {
public:
    struct Choice {
        std::string value;
        std::wstring text;
        bool operator==(const Choice&) const = default;
    };

    ChoiceOption(std::string id, std::string defaultValue, std::vector<Choice> choices = {});

    [[nodiscard]] std::vector<Choice> choices() const;
    [[nodiscard]] bool hasChoice(const std::string& value) const;
    // An empty text shows the value itself.
    void addChoice(std::string value, std::wstring text = {});
    bool removeChoice(const std::string& value);
    void clearChoices();

    [[nodiscard]] std::string toText() const override { return value(); }
    bool fromText(const std::string& text) override { return setValue(text); }

protected:
    [[nodiscard]] bool accepts(const std::string& candidate) const override { return hasChoice(candidate); }

private:
    std::vector<Choice> m_choices; // guarded by mutex()
};

} // namespace Kx
