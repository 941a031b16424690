#pragma once

#include <base/TempFile.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace Kx::Types {

// The whole file, or none when it cannot be read.
[[nodiscard]] std::optional<std::string> readWholeFile(const std::filesystem::path& file);
// Writes `bytes` to `target` through a temporary file beside it, so `target` is either as it was
// or complete. False when anything fails.
bool writeFileAtomically(const std::filesystem::path& target, std::span<const std::uint8_t> bytes);
bool writeFileAtomically(const std::filesystem::path& target, const std::string& text);
// Renames a temporary file over `target` (same file system) and stops owning it.
bool installTempFile(TempFile& file, const std::filesystem::path& target);

} // namespace Kx::Types
