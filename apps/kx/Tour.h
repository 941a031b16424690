#pragma once

#include <iosfwd>

namespace Kx::Console {

// Prints the meta types the library registered with the data model.
void printRegistry(std::ostream& out);
// A short walk through the value types: build, combine, print, encode and read back.
void runTour(std::ostream& out);

} // namespace Kx::Console
