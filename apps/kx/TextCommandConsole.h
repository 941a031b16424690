#pragma once
// The console's text-command forms:
//   kx 'Geometry.DotProduct {"x":1,"y":0,"z":0} {"x":0,"y":1,"z":0}'   one command, its answer printed
//   kx                         on a terminal: an interactive prompt; otherwise commands from stdin
//   kx --script FILE           one command per line
//   kx --js FILE               a JavaScript file with the script namespaces
// Answers go to standard output, failures to standard error as one line "kx: ...". The exit
// status is that of the console: 0 done, 1 a command failed, 2 a line that is no command.
#include <iosfwd>
#include <string>
#include <vector>

namespace Kx::Console {

// Whether the first argument of kx names a text command ("Geometry.DotProduct ..." or "help"),
// rather than a subcommand or an option.
[[nodiscard]] bool isTextCommandLine(const std::string& firstArgument);
// The command line the arguments make: one argument is the whole line; further ones are added as
// separate arguments (quoted unless they are JSON written bare).
[[nodiscard]] std::string joinCommandArguments(const std::vector<std::string>& arguments);

[[nodiscard]] int runTextCommandLine(const std::string& line, std::ostream& out, std::ostream& err);
// Lines of a script or of standard input; `name` names the source in failures ("FILE:LINE: ...").
[[nodiscard]] int runTextCommandLines(std::istream& in, const std::string& name, bool keepGoing, std::ostream& out, std::ostream& err);
[[nodiscard]] int runTextCommandScript(const std::string& path, bool keepGoing, std::ostream& out, std::ostream& err);
[[nodiscard]] int runJavaScriptFile(const std::string& path, std::ostream& out, std::ostream& err);
// The interactive prompt over libedit, with history in the user directory.
[[nodiscard]] int runInteractivePrompt(std::ostream& out, std::ostream& err);

} // namespace Kx::Console
