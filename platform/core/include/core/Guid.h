#pragma once

#include <string>

namespace telvarin::platform::core {

// A new random identifier: a version 4 GUID with the RFC 4122 variant, as upper-case text without
// braces ("8A3F52C1-6D0E-4B7A-9C15-2E84F7D3A601"). Each thread draws from its own generator.
[[nodiscard]] std::string newGuid();

} // namespace telvarin::platform::core
