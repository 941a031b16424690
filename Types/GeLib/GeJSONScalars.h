#pragma once

// The numbers and flags of geometry held in JSON, read as strictly as everything else here: a
// number must be a JSON number and a flag a JSON boolean. False, with `out` unchanged, otherwise
// and when `node` has no member `key`.

#include <base/JSONNode.h>

#include <string>

namespace Kx::Types {

[[nodiscard]] bool JSONToDouble(const JSONNode& node, double& out, const std::string& key);
[[nodiscard]] bool JSONToBool(const JSONNode& node, bool& out, const std::string& key);

} // namespace Kx::Types
