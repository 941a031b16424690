#pragma once

#include "base/Option.h"

#include <cstdint>

namespace Kx {

// A whole number; the text form is plain decimal, read strictly (no blanks, no '+').
class IntOption : public ValueOption<std::int64_t> {
public:
    IntOption(std::string id, std::int64_t defaultValue)
        : ValueOption(std::move(id), defaultValue)
    {
    }

    [[nodiscard]] std::string toText() const override;
    bool fromText(const std::string& text) override;
};

} // namespace Kx
