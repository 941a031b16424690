#include "PythonTestSupport.h"

#include <python/PythonTextCommandBridge.h>

#include <base/TextCommandRegistry.h>
#include <base/V8JavaScriptFunctionWrapper.h>

#include <memory>
#include <sstream>

namespace {

using Kx::PythonInterpreter;
using Kx::PythonTextCommandBridge;

// Answers its parameters joined by "|", and whether it ran without the GIL (the bridge lets go of it
// while a command runs, so that other threads' scripts go on).
class EchoCommand final : public Kx::TextCommand {
public:
    using TextCommand::TextCommand;
    std::wstring execute(const Kx::TextCommandParameters& parameters) const override
    {
        std::wstring answer;
        for (std::size_t i = 0; i < parameters.parameters(); ++i)
            answer += parameters[i] + L"|";
        return answer + (PyGILState_Check() ? L"gil-held" : L"gil-free");
    }
};

// Answers its one parameter as it is, or fails with a command's message without one.
class AnswerCommand final : public Kx::TextCommand {
public:
    using TextCommand::TextCommand;
    std::wstring execute(const Kx::TextCommandParameters& parameters) const override
    {
        if (parameters.parameters() == 0)
            return failure(L"No parameter for the vector");
        return parameters[0];
    }
};

void registerTestCommands()
{
    auto& registry = Kx::TextCommandRegistry::instance();
    registry.add(std::make_unique<EchoCommand>(L"BridgeTest", L"Echo", L"<anything> answers its arguments"));
    registry.add(std::make_unique<AnswerCommand>(L"BridgeTest", L"Answer", L"<text> answers it"));
    for (const auto& [name, format] : {std::pair{"echoJJ", "%j%j"}, {"echoJF", "%j%f"}, {"echoFJJ", "%f%j%j"}, {"echoNone", ""},
             {"echoFourJ", "%j%j%j%j"}})
        Kx::V8JavaScriptFunctionWrapper::registerFunction("bridgeTests", name, L"BridgeTest.Echo", format);
    Kx::V8JavaScriptFunctionWrapper::registerFunction("bridgeTests", "answer", L"BridgeTest.Answer", "%j");
    Kx::V8JavaScriptFunctionWrapper::registerFunction("bridgeTests", "answerNothing", L"BridgeTest.Answer", "");
}

TEST(PythonTextCommandBridgeTest, TupleFormatsOfTheArgumentFormats)
{
    EXPECT_EQ(PythonTextCommandBridge::tupleFormat("%j%j"), "OO");
    EXPECT_EQ(PythonTextCommandBridge::tupleFormat("%j%f"), "Od");
    EXPECT_EQ(PythonTextCommandBridge::tupleFormat("%f%j%j"), "dO|O");
    EXPECT_EQ(PythonTextCommandBridge::tupleFormat("%j"), "O");
    EXPECT_EQ(PythonTextCommandBridge::tupleFormat(""), "");
    EXPECT_EQ(PythonTextCommandBridge::tupleFormat("%j%j%j%j"), "");
    EXPECT_EQ(PythonTextCommandBridge::tupleFormat("%x"), "");
}

// The bridge as scripts use it: every assertion is in the script, which fails with its line.
TEST(PythonTextCommandBridgeTest, ArgumentsAnswersFailuresAndReferenceCounts)
{
    registerTestCommands();
    std::ostringstream printed;
    PythonInterpreter interpreter(printed);
    const PythonInterpreter::Result result = interpreter.run(R"(
import sys
import bridgeTests as b
P = TarvelBasicPythonTypes.Point3
p = P(1, 2, 3)
rows = [[1, 0], [0, 1]]
point_refs, rows_refs = sys.getrefcount(p), sys.getrefcount(rows)

assert b.echoJJ(p, rows) == '{"x":1.0,"y":2.0,"z":3.0}|[[1,0],[0,1]]|gil-free', b.echoJJ(p, rows)
assert b.echoJF('{"x":1}', 0.1) == '{"x":1}|0.10000000000000001|gil-free'
assert b.echoJF('{}', 3) == '{}|3|gil-free'
assert b.echoFJJ(-2.5, p) == '-2.5|{"x":1.0,"y":2.0,"z":3.0}|gil-free'
assert b.echoFJJ(1e-300, p, rows) == '1e-300|{"x":1.0,"y":2.0,"z":3.0}|[[1,0],[0,1]]|gil-free'
assert b.echoNone() == 'gil-free'
assert not hasattr(b, 'echoFourJ'), 'a format the bridge cannot take is left out'
assert sys.getrefcount(p) == point_refs and sys.getrefcount(rows) == rows_refs

def raises(kind, call, *args):
    try:
        call(*args)
    except kind as error:
        return str(error)
    raise AssertionError('no %s from %s%r' % (kind.__name__, call.__name__, args))

assert raises(TypeError, b.echoFJJ, 1.0) == 'echoFJJ() takes at least 2 arguments (1 given)'
assert raises(TypeError, b.echoJJ, p, p, p) == 'echoJJ() takes exactly 2 arguments (3 given)'
assert 'must be real number' in raises(TypeError, b.echoJF, p, 'x')
assert raises(TypeError, b.echoJJ, p, object()) == 'echoJJ() argument 2: a object has no JSON form'
assert raises(TypeError, b.echoJJ, float('nan'), p).startswith('echoJJ() argument 1')
assert raises(TarvelBasicPythonTypes.TextCommandError, b.answerNothing) == 'No parameter for the vector'
assert sys.getrefcount(p) == point_refs and sys.getrefcount(rows) == rows_refs

answered = b.answer('{"x":1,"y":2,"z":3}')
assert answered == P(1, 2, 3) and sys.getrefcount(answered) == 2
assert b.answer('[[1,0],[0,1]]') == [[1, 0], [0, 1]]
assert b.answer('{"startPoint":{"x":0,"y":0,"z":0},"vector":{"x":1,"y":0,"z":0},"length":1}') == \
    {'startPoint': P(0, 0, 0), 'vector': P(1, 0, 0), 'length': 1}
assert b.answer('1') == 1 and b.answer('0.10000000000000001') == 0.1
assert b.answer('"not json"') == 'not json' and b.answer(' not json') == ' not json'
assert b.echoJJ.__doc__ == 'BridgeTest.Echo: <anything> answers its arguments'
print('ok')
)",
        "bridge.py");
    EXPECT_TRUE(result.ok) << result.text;
    EXPECT_EQ(printed.str(), "ok\n") << result.text;
}

} // namespace
