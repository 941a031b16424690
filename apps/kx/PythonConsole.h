#pragma once
// The console's Python forms:
//   kx --python FILE    a Python script in the embedded interpreter, with the script namespaces
//                       (trvGeometry, trvModeling) and TarvelBasicPythonTypes imported
//   python              at the interactive prompt: Python lines until "exit()" or Ctrl-D
// Failures go to standard error as one line "kx: FILE:LINE: Type: message"; exit status 1.
#include <iosfwd>
#include <string>

namespace Kx::Console {

[[nodiscard]] int runPythonFile(const std::string& path, std::ostream& out, std::ostream& err);
// Reads lines with the prompt "py> " and runs each; back to the text commands at "exit()" or Ctrl-D.
void runPythonPrompt(std::ostream& out, std::ostream& err);

} // namespace Kx::Console
