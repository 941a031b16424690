#pragma once

#include "base/TempFile.h"

#include <filesystem>
#include <string>

// Where the application keeps its files. Each answer reads the environment again, so tests (and
// hosts) can redirect everything to their own folders at any time:
//   KX_USER_DIR     the user directory (default $HOME/.kx)
//   KX_CONTENT_DIR  the content root (string tables, standard libraries)
//   KX_EDITION      the application edition (default "desktop")
namespace Kx::Paths {

[[nodiscard]] std::filesystem::path userDirectory();
// userDirectory()/"options"; not created here (saving an option group creates it).
[[nodiscard]] std::filesystem::path optionsDirectory();
// KX_CONTENT_DIR; otherwise share/kx/content of the prefix libkx_base is installed in (found from
// the library's own file, so any host program linked to an installed copy finds it) when it
// exists; otherwise the content folder of the build tree, so programs run straight from a build.
[[nodiscard]] std::filesystem::path contentRoot();
// userDirectory()/"temp", created when asked for (a failure to create it shows at first use).
[[nodiscard]] std::filesystem::path tempDirectory();
[[nodiscard]] std::string edition();

} // namespace Kx::Paths
