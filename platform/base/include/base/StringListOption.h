#pragma once

#include "base/Option.h"

#include <string>
#include <vector>

namespace Kx {

// A list of texts. The text form is the grouped list of Strings::groupStrings ("(a, "b, c")");
// in an option file every item is a child element <Item Value="..."/>, in order.
class StringListOption : public ValueOption<std::vector<std::string>> {
public:
    explicit StringListOption(std::string id, std::vector<std::string> defaultValue = {})
        : ValueOption(std::move(id), std::move(defaultValue))
    {
    }

    [[nodiscard]] std::string toText() const override;
    bool fromText(const std::string& text) override;
    void save(XMLNode element) const override;
    bool load(const XMLNode& element) override;
};

} // namespace Kx
