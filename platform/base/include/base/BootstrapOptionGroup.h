#pragma once

#include "base/OptionGroup.h"

#include <string>

namespace Kx {

class BoolOption;
class StringOption;

// The options the application needs before anything else: the user's language (a tag such as
// "en-US", "de-DE") and pseudo-localisation, which marks every user-visible text so untranslated
// ones stand out. Loaded by Application::initialize().
class BootstrapOptionGroup : public OptionGroup {
public:
    [[nodiscard]] static BootstrapOptionGroup& get();

    // Defaults to the environment variable KX_LANG when set, otherwise "en-US".
    [[nodiscard]] std::string userLanguage() const;
    // Also drops the string tables read so far, so texts follow the new language.
    void userLanguage(const std::string& language);
    [[nodiscard]] bool pseudoLocalize() const;
    void pseudoLocalize(bool on);

private:
    BootstrapOptionGroup();
    void onOptionChanged(Option& option) override;
    void onLoaded() override;

    StringOption& m_userLanguage;
    BoolOption& m_pseudoLocalize;
};

} // namespace Kx
