#include "PythonConsole.h"

#include <Types/GeLib/GePythonConvertors.h>

#include <python/PythonInterpreter.h>

#include <editline/readline.h>

#include <cstdlib>
#include <fstream>
#include <ostream>
#include <sstream>

namespace Kx::Console {

namespace {

// The embedded interpreter with the geometry convertors of this library registered.
PythonInterpreter makeInterpreter(std::ostream& out)
{
    (void)Types::GeometryPythonTypeCodes();
    return PythonInterpreter(out);
}

} // namespace

int runPythonFile(const std::string& path, std::ostream& out, std::ostream& err)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        err << "kx: The script could not be read: " << path << '\n';
        return 1;
    }
    std::ostringstream source;
    source << in.rdbuf();
    PythonInterpreter interpreter = makeInterpreter(out);
    const PythonInterpreter::Result result = interpreter.run(source.str(), path);
    if (!result.ok) {
        err << "kx: " << result.text << '\n';
        return 1;
    }
    return 0;
}

void runPythonPrompt(std::ostream& out, std::ostream& err)
{
    PythonInterpreter interpreter = makeInterpreter(out);
    out << "kx: Python lines; exit() or Ctrl-D goes back to the text commands\n";
    while (char* typed = readline("py> ")) {
        const std::string line(typed);
        std::free(typed);
        if (line.find_first_not_of(" \t") == std::string::npos)
            continue;
        add_history(line.c_str());
        if (line == "exit()" || line == "quit()")
            break;
        const PythonInterpreter::Result result = interpreter.runLine(line);
        if (!result.ok)
            err << "kx: " << result.text << '\n';
        out.flush();
    }
}

} // namespace Kx::Console
