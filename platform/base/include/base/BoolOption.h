#pragma once

#include "base/Option.h"

namespace Kx {

// Text form "1"/"0"; "true" and "false" are read as well.
class BoolOption : public ValueOption<bool> {
public:
    BoolOption(std::string id, bool defaultValue)
        : ValueOption(std::move(id), defaultValue)
    {
    }

    [[nodiscard]] std::string toText() const override;
    bool fromText(const std::string& text) override;
};

} // namespace Kx
