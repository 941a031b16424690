#pragma once
// The embedded Python 3 interpreter of a host: started on first use (or the interpreter of the
// python3 process that loaded the platform), with TarvelBasicPythonTypes and the script namespaces
// of the text commands (trvGeometry, trvModeling) imported into every script's globals.
//
// The interpreter is never finalised: the platform's Python objects live until the process ends.
// Any thread may run scripts; each run takes the GIL for its duration.
#include <python/PythonObject.h>

#include <iosfwd>
#include <string>
#include <string_view>

namespace Kx {

class PythonInterpreter {
public:
    struct Result {
        bool ok = true;
        // Empty when done; "<file>:<line>: <exception type>: <message>" for an error.
        std::string text;
    };

    // What a script's print() writes goes to `printTo` (sys.stdout is the process's own).
    explicit PythonInterpreter(std::ostream& printTo);
    ~PythonInterpreter();
    PythonInterpreter(const PythonInterpreter&) = delete;
    PythonInterpreter& operator=(const PythonInterpreter&) = delete;

    // Runs a whole script; `fileName` names it in error messages. Names a script defines stay for
    // the next run of this interpreter object. SystemExit with status 0 or None is success.
    [[nodiscard]] Result run(std::string_view source, std::string_view fileName);
    // Runs one line typed at a prompt: the value of an expression is printed, as at python's own.
    [[nodiscard]] Result runLine(std::string_view line);

    // Starts the interpreter if the process has none yet; the calling thread does not keep the GIL.
    static void ensureStarted();

private:
    [[nodiscard]] Result evaluate(std::string_view source, std::string_view fileName, int startToken);

    std::ostream& m_out;
    PyObject* m_globals = nullptr; // the script's globals, a dict
    void* m_printTarget = nullptr; // owned by the capsule of the globals' print()
};

} // namespace Kx
