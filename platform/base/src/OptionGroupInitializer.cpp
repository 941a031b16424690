#include "base/OptionGroupInitializer.h"

#include "base/OptionGroup.h"

namespace Kx {

namespace {

// Function-local: initialisers of other libraries may run before this file's statics.
std::vector<OptionGroupInitializer::Entry>& registry()
{
    static std::vector<OptionGroupInitializer::Entry> s_entries;
    return s_entries;
}

} // namespace

OptionGroupInitializer::OptionGroupInitializer(std::string name, Factory factory)
{
    registry().push_back({std::move(name), std::move(factory)});
}

const std::vector<OptionGroupInitializer::Entry>& OptionGroupInitializer::initializers()
{
    return registry();
}

std::vector<OptionGroup*> OptionGroupInitializer::groups()
{
    std::vector<OptionGroup*> made;
    for (const Entry& entry : registry()) {
        if (OptionGroup* group = entry.factory ? entry.factory() : nullptr) {
            made.push_back(group);
        }
    }
    return made;
}

} // namespace Kx
