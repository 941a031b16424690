#include "PythonTestSupport.h"

#include <python/PythonTypes.h>

#include <sstream>
#include <thread>
#include <vector>

namespace {

using Kx::PythonInterpreter;

TEST(PythonInterpreterTest, ErrorsNameTheScriptLineAndTheExceptionType)
{
    struct Case {
        const char* name;
        const char* source;
        const char* error; // empty: succeeds
    };
    const Case cases[] = {
        {"raised on a line", "x = 1\n\nraise ValueError('no good')\n", "s.py:3: ValueError: no good"},
        {"raised in a function, blamed where defined", "def f():\n    return {}['k']\n\nf()\n", "s.py:2: KeyError: 'k'"},
        {"raised in a library, blamed on the call", "import json\njson.loads('{')\n", "s.py:2: json.decoder.JSONDecodeError: "
                                                                                        "Expecting property name enclosed in double quotes: line 1 column 2 (char 1)"},
        {"syntax", "print(1)\nif x\n", "s.py:2: SyntaxError: expected ':' (s.py, line 2)"},
        {"the platform's own error", "raise TarvelBasicPythonTypes.TextCommandError('bad')\n", "s.py:1: TarvelBasicPythonTypes.TextCommandError: bad"},
        {"exit without status", "import sys\nsys.exit()\n", ""},
        {"exit 0", "raise SystemExit(0)\n", ""},
        {"exit 3", "raise SystemExit(3)\n", "s.py: exit status 3"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::ostringstream printed;
        PythonInterpreter interpreter(printed);
        const PythonInterpreter::Result result = interpreter.run(c.source, "s.py");
        EXPECT_EQ(result.ok, *c.error == '\0');
        EXPECT_EQ(result.text, c.error);
    }
}

TEST(PythonInterpreterTest, NamesStayForTheNextRunOfTheSameInterpreterOnly)
{
    std::ostringstream printed;
    PythonInterpreter first(printed);
    PythonInterpreter second(printed);
    ASSERT_TRUE(first.run("kept = 41\n", "a.py").ok);
    EXPECT_TRUE(first.run("print(kept + 1)\n", "b.py").ok);
    const PythonInterpreter::Result other = second.run("print(kept)\n", "c.py");
    EXPECT_EQ(other.text, "c.py:1: NameError: name 'kept' is not defined");
    EXPECT_TRUE(first.runLine("kept * 2").ok);
    EXPECT_EQ(printed.str(), "42\n82\n");
}

// The GIL is taken and given back around every run and every command: scripts on several threads
// all finish, and the host thread can take the GIL afterwards.
TEST(PythonInterpreterTest, ScriptsRunOnSeveralThreadsAtOnce)
{
    PythonInterpreter::ensureStarted();
    std::vector<std::thread> threads;
    std::vector<std::string> outputs(4);
    std::vector<PythonInterpreter::Result> results(4);
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        threads.emplace_back([i, &outputs, &results] {
            std::ostringstream printed;
            PythonInterpreter interpreter(printed);
            results[i] = interpreter.run("total = 0\nfor n in range(20000):\n    total += n\nprint(total)\n", "t.py");
            outputs[i] = printed.str();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        EXPECT_TRUE(results[i].ok) << results[i].text;
        EXPECT_EQ(outputs[i], "199990000\n");
    }
    const PyGILState_STATE gil = PyGILState_Ensure();
    EXPECT_NE(Kx::PythonTypes::get().module(), nullptr);
    PyGILState_Release(gil);
}

} // namespace
