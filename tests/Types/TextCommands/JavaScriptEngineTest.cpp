#include <base/JavaScriptEngine.h>
#include <base/TextCommandRegistry.h>
#include <base/V8JavaScriptFunctionWrapper.h>

#include <gtest/gtest.h>

#include <sstream>

namespace Kx {
namespace {

struct ScriptCase {
    const char* name;
    const char* source;
    bool ok;
    std::string text;
};

void expectScripts(JavaScriptEngine& engine, const std::vector<ScriptCase>& cases)
{
    for (const ScriptCase& c : cases) {
        SCOPED_TRACE(c.name);
        const JavaScriptEngine::Result result = engine.evaluate(c.source, "case.js");
        EXPECT_EQ(result.ok, c.ok);
        EXPECT_EQ(result.text, c.text);
    }
}

TEST(JavaScriptEngine, GeometryNamespaceCallsTheTextCommands)
{
    std::ostringstream printed;
    JavaScriptEngine engine(printed);
    expectScripts(engine, {
        {"objects and JSON text alike", R"(trvGeometry.dotProduct({x:1,y:2,z:3}, '{"x":4,"y":5,"z":6}'))", true, "32"},
        {"a number comes back as a number", "typeof trvGeometry.dotProduct({x:1,y:0,z:0}, {x:0.5,y:0,z:0})", true, "number"},
        {"an object comes back as an object", "trvGeometry.crossProduct({x:1,y:0,z:0}, {x:0,y:1,z:0}).z", true, "1"},
        {"a number argument", "trvGeometry.multiplyVector3d({x:1,y:-2,z:0}, 1.5)", true, R"({"x":1.5,"y":-3,"z":0})"},
        {"a boolean answer is 1 or 0", "trvGeometry.arePoint3dsEqual({x:1,y:2,z:3}, {x:1,y:2,z:3})", true, "1"},
        {"a matrix is an array of rows", "trvGeometry.getTranslationMatrix({x:1,y:2,z:3})[2][3]", true, "3"},
        {"chained through script values",
            "var m = trvGeometry.getTranslationMatrix({x:1,y:0,z:0});\n"
            "trvGeometry.localToWorldPoint3d(m, trvGeometry.addVector3dToPoint3d({x:0,y:0,z:0}, {x:0,y:0,z:2}))",
            true, R"({"x":1,"y":0,"z":2})"},
        {"a failure is an Error at the calling line", "var a = 1;\n\ntrvGeometry.dotProduct({x:1});", false, "case.js:3: Invalid json for vector"},
        {"a failure can be caught", "try { trvGeometry.getRotationMatrix(1) } catch (e) { e.message }", true, "No angle and axis parameter specified"},
        {"a syntax error names the file and line", "var x = 1;\nvar = ;", false, "case.js:2: invalid variable declaration (line 2)"},
    });
    std::ostringstream unused;
    EXPECT_EQ(engine.evaluate("print('dot', trvGeometry.dotProduct({x:2,y:0,z:0}, {x:3,y:0,z:0}), {a:1})", "p.js").ok, true);
    EXPECT_EQ(printed.str(), "dot 6 {\"a\":1}\n");
}

class Echo final : public TextCommand {
public:
    using TextCommand::TextCommand;
    std::wstring execute(const TextCommandParameters& parameters) const override { return parameters[0]; }
};

// The material commands fill this namespace; any command registered in it is callable the same way.
TEST(JavaScriptEngine, ModelingNamespaceCallsWhatIsRegisteredInIt)
{
    std::ostringstream printed;
    {
        JavaScriptEngine engine(printed);
        EXPECT_EQ(engine.evaluate("typeof trvModeling", "m.js").text, "object");
    }
    ASSERT_TRUE(TextCommandRegistry::instance().add(std::make_unique<Echo>(L"Test", L"EchoModel", L"<Material Dictionary> Echo")));
    ASSERT_TRUE(V8JavaScriptFunctionWrapper::registerFunction("trvModeling", "echoModel", L"Test.EchoModel", "%j"));
    EXPECT_FALSE(V8JavaScriptFunctionWrapper::registerFunction("trvModeling", "echoModel", L"Test.Other", "%j"));
    JavaScriptEngine engine(printed);
    expectScripts(engine, {
        {"an object passes as its JSON", "trvModeling.echoModel({name:'Steel', ids:[1,2]}).ids[1]", true, "2"},
        {"text that is no JSON comes back as text", "trvModeling.echoModel('Steel (generic)')", true, "Steel (generic)"},
    });
}

} // namespace
} // namespace Kx
