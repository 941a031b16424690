#pragma once

#include <iosfwd>

namespace CLI {
class App;
}

namespace Kx {
class AmbrelManager;
}

namespace Kx::Console {

// The loaded library manager. Each library that could not be opened is a warning line on standard
// error (the commands go on with the others); without the mandatory appearance library nothing
// works, and the failure names it with its reason.
AmbrelManager& loadedManager();

// Adds the commands on the material libraries: `kx materials libraries|list …`.
void addMaterialCommands(CLI::App& app);
// Runs the material command the command line chose, printing to `out`; false when none was chosen.
bool runMaterialCommand(std::ostream& out);
// The tour's part on materials: the open libraries and a few physical materials with their
// density, Young's modulus and colour.
void printMaterialTour(std::ostream& out);

} // namespace Kx::Console
