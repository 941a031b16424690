#pragma once

#include <iosfwd>

namespace CLI {
class App;
}

namespace Kx::Console {

// Adds `kx library publish LIBFILES... --out DIR`, `kx library serve DIR` (to the `library`
// command, which must exist) and `kx download material|texture|thumbnail ID`,
// `kx download categories [PARENT]`, `kx download content [CATEGORY]`.
void addOnlineCommands(CLI::App& app);
// Runs the online-library command the command line chose; false when none was chosen.
bool runOnlineCommand(std::ostream& out);

} // namespace Kx::Console
