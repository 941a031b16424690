#pragma once

#include <iosfwd>

namespace CLI {
class App;
}

namespace Kx::Console {

// Adds `kx library favorites add|remove|list`, `kx library open PATH`, `kx library close NAME` and
// `kx library history`.
void addLibraryCommands(CLI::App& app);
// Runs the library command the command line chose, printing to `out`; false when none was chosen.
bool runLibraryCommand(std::ostream& out);

} // namespace Kx::Console
