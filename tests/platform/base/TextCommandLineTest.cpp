#include <base/TextCommandLine.h>
#include <base/TextCommandRegistry.h>

#include <gtest/gtest.h>

#include <cmath>

#include <string>
#include <vector>

namespace Kx {
namespace {

struct LineCase {
    const char* name;
    std::string line;
    std::wstring command;
    std::vector<std::wstring> parameters;
    std::vector<std::wstring> flags;
};

void expectParsed(const LineCase& c)
{
    SCOPED_TRACE(c.name);
    const TextCommandLine parsed = parseTextCommandLine(c.line);
    ASSERT_EQ(parsed.error, L"");
    EXPECT_EQ(parsed.command, c.command);
    ASSERT_EQ(parsed.parameters.parameters(), c.parameters.size());
    for (std::size_t i = 0; i < c.parameters.size(); ++i)
        EXPECT_EQ(parsed.parameters[i], c.parameters[i]) << "parameter " << i;
    EXPECT_EQ(parsed.parameters.flags(), c.flags);
}

TEST(TextCommandLine, ReadsEveryKindOfArgument)
{
    const LineCase cases[] = {
        {"blank line", "  \t ", L"", {}, {}},
        {"name only", "Matrix.Identity", L"Matrix.Identity", {}, {}},
        {"two bare JSON objects", R"(Geometry.DotProduct {"x":1,"y":0,"z":0} {"x":0, "y":1, "z":0})", L"Geometry.DotProduct",
            {LR"({"x":1,"y":0,"z":0})", LR"({"x":0, "y":1, "z":0})"}, {}},
        {"nested arrays", "Matrix.Multiply [[1,0],[0,[1]]] [ ]", L"Matrix.Multiply", {L"[[1,0],[0,[1]]]", L"[ ]"}, {}},
        {"brackets inside JSON strings", R"(A.B {"a":"}]{[","b":"\"}"})", L"A.B", {LR"({"a":"}]{[","b":"\"}"})"}, {}},
        {"number and words", "Geometry.Vector3dMultiply -2.5e1 -physical", L"Geometry.Vector3dMultiply", {L"-2.5e1", L"-physical"}, {}},
        {"quoted with escapes", R"~(A.B "Steel (generic)" "say \"hi\"" "C:\dir\\" "")~", L"A.B",
            {L"Steel (generic)", L"say \"hi\"", L"C:\\dir\\", L""}, {}},
        {"flags apart from parameters", "Materials.FindPhysical /ById Steel /raw", L"Materials.FindPhysical", {L"Steel"}, {L"ById", L"raw"}},
        {"a path is no flag", "A.B /tmp/a.txt /x.y /", L"A.B", {L"/tmp/a.txt", L"/x.y", L"/"}, {}},
        {"UTF-8 words", "A.B Stahl\xC3\xA4 \"\xE2\x82\xAC 1\"", L"A.B", {L"Stahl\u00E4", L"\u20AC 1"}, {}},
    };
    for (const LineCase& c : cases)
        expectParsed(c);
}

TEST(TextCommandLine, FlagsCompareWithoutCase)
{
    const TextCommandLine parsed = parseTextCommandLine("A.B /ById");
    EXPECT_TRUE(parsed.parameters.hasFlag(L"byid"));
    EXPECT_TRUE(parsed.parameters.hasFlag(L"ById"));
    EXPECT_FALSE(parsed.parameters.hasFlag(L"Raw"));
}

TEST(TextCommandLine, ParameterAsDoubleTakesOnlyWholeNumbers)
{
    const TextCommandParameters parameters({L"1.5", L"+2", L"-1e-3", L"1.5x", L"", L"0x10", L" 1", L"inf"}, {});
    EXPECT_EQ(parameters.parameterAsDouble(0), 1.5);
    EXPECT_EQ(parameters.parameterAsDouble(1), 2.0);
    EXPECT_EQ(parameters.parameterAsDouble(2), -0.001);
    for (std::size_t i : {3u, 4u, 5u, 6u, 99u}) {
        SCOPED_TRACE(i);
        EXPECT_FALSE(parameters.parameterAsDouble(i).has_value());
    }
    EXPECT_TRUE(std::isinf(*parameters.parameterAsDouble(7)));
    EXPECT_EQ(parameters.parameter(99), L"");
}

TEST(TextCommandLine, HostileLinesAreAnsweredWithAMessage)
{
    struct Case {
        const char* name;
        std::string line;
        std::wstring error;
    };
    const Case cases[] = {
        {"unclosed brace", R"(A.B {"x":1)", L"Unbalanced brackets: the JSON argument starting at column 5 is not closed"},
        {"closing the wrong bracket", "A.B {\"x\":[1}", L"Unbalanced brackets: '}' at column 12 does not close the '[' of the JSON argument starting at column 5"},
        {"unclosed string inside JSON", R"(A.B {"x:1})", L"Unbalanced quotes: a string inside the JSON argument starting at column 5 is not closed"},
        {"unclosed quote", R"(A.B "abc)", L"Unbalanced quotes: the quoted argument starting at column 5 is not closed"},
        {"escaped closing quote", R"(A.B "abc\")", L"Unbalanced quotes: the quoted argument starting at column 5 is not closed"},
        {"JSON run into a word", R"(A.B {}x)", L"The argument starting at column 5 runs into the text at column 7; separate arguments with a blank"},
        {"NUL byte", std::string("A.B x\0y", 7), L"The command line holds a NUL character at column 6"},
        {"invalid UTF-8", "A.B \xC3\x28", L"The command line is not valid UTF-8 text"},
        {"overlong UTF-8", "A.B \xC0\xAF", L"The command line is not valid UTF-8 text"},
        {"UTF-8 surrogate", "A.B \xED\xA0\x80", L"The command line is not valid UTF-8 text"},
        {"truncated UTF-8", "A.B \xE2\x82", L"The command line is not valid UTF-8 text"},
        {"JSON in place of a name", "{} A.B", L"A command line starts with the command's name, as Geometry.DotProduct"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(parseTextCommandLine(c.line).error, c.error);
    }
}

TEST(TextCommandLine, AMegabyteArgumentIsReadWhole)
{
    std::string json = "[";
    while (json.size() < (1u << 20))
        json += "[[1,2],{\"a\":\"]\"}],";
    json += "0]";
    const TextCommandLine parsed = parseTextCommandLine("A.B " + json + " tail");
    ASSERT_EQ(parsed.error, L"");
    ASSERT_EQ(parsed.parameters.parameters(), 2u);
    EXPECT_EQ(parsed.parameters[0].size(), json.size());
    EXPECT_EQ(parsed.parameters[1], L"tail");

    // Nesting a million deep is counted, not recursed into.
    const std::string deep = "A.B " + std::string(1u << 20, '[');
    EXPECT_EQ(parseTextCommandLine(deep).error, L"Unbalanced brackets: the JSON argument starting at column 5 is not closed");
}

class Echo final : public TextCommand {
public:
    using TextCommand::TextCommand;
    std::wstring execute(const TextCommandParameters& parameters) const override
    {
        if (parameters.parameters() == 0)
            return failure(L"nothing to echo");
        return parameters[0];
    }
};

TEST(TextCommandRegistry, RunsRegisteredCommandsAndNamesTheClosestForUnknownOnes)
{
    TextCommandRegistry& registry = TextCommandRegistry::instance();
    ASSERT_TRUE(registry.add(std::make_unique<Echo>(L"Test", L"EchoFirst", L"<text> Answers its first parameter")));
    ASSERT_TRUE(registry.add(std::make_unique<Echo>(L"Test", L"EchoSecond", L"<text> Answers its first parameter")));
    EXPECT_FALSE(registry.add(std::make_unique<Echo>(L"test", L"echofirst", L"a second command of the same name")));

    TextCommandOutcome done = registry.runLine("test.echofirst \"a b\"");
    EXPECT_EQ(done.text, L"a b");
    EXPECT_TRUE(done.ok());

    TextCommandOutcome failed = registry.runLine("Test.EchoFirst");
    EXPECT_EQ(failed.text, L"nothing to echo");
    EXPECT_FALSE(failed.ok());
    // The failure mark does not leak into the next command's answer.
    EXPECT_TRUE(registry.runLine("Test.EchoFirst x").ok());

    EXPECT_EQ(registry.runLine("Test.EchoFirts x").text, L"Unknown command \"Test.EchoFirts\"; did you mean Test.EchoFirst?");
    EXPECT_EQ(registry.runLine("EchoSecnd").text, L"Unknown command \"EchoSecnd\"; did you mean Test.EchoSecond?");
    EXPECT_EQ(registry.runLine("Nothing.Like.It.At.All x").text, L"Unknown command \"Nothing.Like.It.At.All\"; \"help\" lists the commands");
    EXPECT_FALSE(registry.runLine("Nothing x").ok());
    EXPECT_EQ(registry.runLine("   ").status, TextCommandOutcome::EStatus::eNoCommand);
    EXPECT_EQ(registry.runLine("Test.EchoFirst {").text, L"Unbalanced brackets: the JSON argument starting at column 16 is not closed");

    EXPECT_EQ(registry.help(L"TEST.ECHOSECOND"), L"Test.EchoSecond  <text> Answers its first parameter\n");
    EXPECT_NE(registry.help().find(L"Test\n  Test.EchoFirst  <text> Answers its first parameter\n  Test.EchoSecond  "), std::wstring::npos);
}

} // namespace
} // namespace Kx
