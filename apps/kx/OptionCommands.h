#pragma once

#include <iosfwd>

namespace CLI {
class App;
}

namespace Kx::Console {

// Adds `kx options` (every option group with its values and choices) and
// `kx options set GROUP OPTION VALUE`.
void addOptionCommands(CLI::App& app);
// Runs the option command the command line chose, printing to `out`; false when none was chosen.
bool runOptionCommand(std::ostream& out);

} // namespace Kx::Console
