#pragma once

#include "base/Option.h"

namespace Kx {

// Any UTF-8 text; the text form is the text itself.
class StringOption : public ValueOption<std::string> {
public:
    StringOption(std::string id, std::string defaultValue)
        : ValueOption(std::move(id), std::move(defaultValue))
    {
    }

    [[nodiscard]] std::string toText() const override { return value(); }
    bool fromText(const std::string& text) override { return setValue(text); }
};

} // namespace Kx
