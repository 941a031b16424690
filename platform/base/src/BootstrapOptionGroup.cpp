#include "base/BootstrapOptionGroup.h"
#include "base/OptionGroupInitializer.h"

#include "base/BoolOption.h"
#include "base/StringOption.h"
#include "base/StringTable.h"

#include <cstdlib>

namespace Kx {

namespace {

std::string defaultLanguage()
{
    const char* language = std::getenv("KX_LANG");
    return language != nullptr && *language != '\0' ? language : "en-US";
}

} // namespace

BootstrapOptionGroup& BootstrapOptionGroup::get()
{
    static BootstrapOptionGroup s_group;
    return s_group;
}

BootstrapOptionGroup::BootstrapOptionGroup()
    : OptionGroup("BootstrapOptionGroup")
    , m_userLanguage(add<StringOption>("UserLanguage", defaultLanguage()))
    , m_pseudoLocalize(add<BoolOption>("PseudoLocalize", false))
{
}

std::string BootstrapOptionGroup::userLanguage() const
{
    return m_userLanguage.value();
}

void BootstrapOptionGroup::userLanguage(const std::string& language)
{
    m_userLanguage.setValue(language);
}

bool BootstrapOptionGroup::pseudoLocalize() const
{
    return m_pseudoLocalize.value();
}

void BootstrapOptionGroup::pseudoLocalize(bool on)
{
    m_pseudoLocalize.setValue(on);
}

void BootstrapOptionGroup::onOptionChanged(Option& option)
{
    if (&option == &m_userLanguage) {
        StringTable::reload();
    }
}

void BootstrapOptionGroup::onLoaded()
{
    StringTable::reload();
}

namespace {

const OptionGroupInitializer s_initializer("BootstrapOptionGroupInitializer", [] { return &BootstrapOptionGroup::get(); });

} // namespace

} // namespace Kx
