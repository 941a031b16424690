#include "base/StringListOption.h"

#include "base/Strings.h"
#include "base/XMLNode.h"

namespace Kx {

std::string StringListOption::toText() const
{
    return Strings::groupStrings(value());
}

bool StringListOption::fromText(const std::string& text)
{
    std::vector<std::string> items;
    return Strings::ungroupStrings(text, items) && setValue(std::move(items));
}

void StringListOption::save(XMLNode element) const
{
    for (const auto& item : value()) {
        element.appendChild("Item")["Value"] = item;
    }
}

bool StringListOption::load(const XMLNode& element)
{
    std::vector<std::string> items;
    for (XMLNode child = element.firstChild(); child; child = child.nextSibling()) {
        const auto item = child["Value"];
        if (child.name() != "Item" || !item.exists()) {
            return false;
        }
        items.push_back(item.asString());
    }
    return setValue(std::move(items));
}

} // namespace Kx
