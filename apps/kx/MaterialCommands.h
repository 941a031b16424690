#pragma once

#include <iosfwd>

namespace CLI {
class App;
}

namespace Kx::Console {

// Adds the commands on the material libraries: `kx materials libraries|list …`.
void addMaterialCommands(CLI::App& app);
// Runs the material command the command line chose, printing to `out`; false when none was chosen.
bool runMaterialCommand(std::ostream& out);
// The tour's part on materials: the open libraries and a few physical materials with their
// density, Young's modulus and colour.
void printMaterialTour(std::ostream& out);

} // namespace Kx::Console
