#pragma once

#include "base/Option.h"

namespace Kx {

// A finite number; written in its shortest form that reads back to the same double.
class DoubleOption : public ValueOption<double> {
public:
    DoubleOption(std::string id, double defaultValue)
        : ValueOption(std::move(id), defaultValue)
    {
    }

    [[nodiscard]] std::string toText() const override;
    bool fromText(const std::string& text) override;

protected:
    [[nodiscard]] bool accepts(const double& candidate) const override;
};

} // namespace Kx
