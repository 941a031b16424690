#pragma once

#include <iosfwd>

namespace CLI {
class App;
}

namespace Kx::Console {

// Adds the host commands on documents of test entities: `kx doc create|open|dump|save|set …`.
void addDocumentCommands(CLI::App& app);
// Runs the document command the command line chose, printing to `out`; false when none was chosen.
// Throws Kx::Exception when a document cannot be opened or saved.
bool runDocumentCommand(std::ostream& out);

} // namespace Kx::Console
