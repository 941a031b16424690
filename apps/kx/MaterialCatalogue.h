#pragma once

#include <filesystem>
#include <iosfwd>

namespace Kx {
class AmbrelManager;
}

namespace Kx::Console {

// Writes a static catalogue of every open library into `folder` (created when missing): index.html,
// one page per library with a table a click on a header sorts, a PNG swatch of every appearance, one
// style sheet and one small script of our own. Nothing is fetched from a network. A line per library
// goes to `progress`. Throws Kx::Exception when the folder or a file cannot be written; every file
// is written beside its place and renamed, so none is ever left half-written.
void writeCatalogue(AmbrelManager& manager, const std::filesystem::path& folder, std::ostream& progress);

} // namespace Kx::Console
