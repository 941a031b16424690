#include <Types/TextCommands/GeometryTextCommands.h>

#include <base/JSONNode.h>
#include <base/Strings.h>
#include <base/TextCommandRegistry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

namespace Kx {
namespace {

const std::wstring X = LR"({"x":1,"y":0,"z":0})";
const std::wstring Y = LR"({"x":0,"y":1,"z":0})";
const std::wstring Zero = LR"({"x":0,"y":0,"z":0})";
const std::wstring Identity = L"[[1,0,0,0],[0,1,0,0],[0,0,1,0],[0,0,0,1]]";
const std::wstring Move123 = L"[[1,0,0,1],[0,1,0,2],[0,0,1,3],[0,0,0,1]]";
const std::wstring Move100 = L"[[1,0,0,1],[0,1,0,0],[0,0,1,0],[0,0,0,1]]";
const std::wstring Scale2 = L"[[2,0,0,0],[0,2,0,0],[0,0,2,0],[0,0,0,1]]";
const std::wstring Flat = L"[[1,0,0,0],[0,1,0,0],[0,0,0,0],[0,0,0,1]]";
const std::wstring XYPlane = LR"({"pointOnPlane":{"x":0,"y":0,"z":0},"normal":{"x":0,"y":0,"z":1}})";
const std::wstring XAxis = LR"({"startPoint":{"x":0,"y":0,"z":0},"endPoint":{"x":1,"y":0,"z":0}})";

struct CommandCase {
    const char* name;
    std::wstring command;
    std::vector<std::wstring> parameters;
    std::wstring answer;
    bool failed = false;
};

void expectAnswers(const std::vector<CommandCase>& cases)
{
    for (const CommandCase& c : cases) {
        SCOPED_TRACE(c.name);
        const TextCommandOutcome outcome = TextCommandRegistry::instance().run(c.command, TextCommandParameters(c.parameters, {}));
        EXPECT_EQ(outcome.text, c.answer);
        EXPECT_EQ(!outcome.ok(), c.failed);
    }
}

TEST(GeometryTextCommands, VectorAndPointArithmetic)
{
    expectAnswers({
        {"point plus vector", L"Geometry.AddVector3dToPoint3d", {LR"({"x":1,"y":2,"z":3})", LR"({"x":0.5,"y":-2,"z":4})"}, LR"({"x":1.5,"y":0,"z":7})"},
        {"opposite vectors add to zero", L"Geometry.AddVector3ds", {LR"({"x":1,"y":2,"z":3})", LR"({"x":-1,"y":-2,"z":-3})"}, Zero},
        {"point minus point", L"Geometry.SubtractPoint3dFromPoint3d", {LR"({"x":5,"y":5,"z":5})", LR"({"x":1,"y":2,"z":3})"}, LR"({"x":4,"y":3,"z":2})"},
        {"vector minus vector", L"Geometry.SubtractVector3ds", {X, Y}, LR"({"x":1,"y":-1,"z":0})"},
        {"x cross y is z", L"Geometry.CrossProduct", {X, Y}, LR"({"x":0,"y":0,"z":1})"},
        {"y cross x is -z", L"Geometry.CrossProduct", {Y, X}, LR"({"x":0,"y":0,"z":-1})"},
        {"parallel vectors cross to zero", L"Geometry.CrossProduct", {LR"({"x":2,"y":0,"z":0})", LR"({"x":4,"y":0,"z":0})"}, Zero},
        {"perpendicular dot", L"Geometry.DotProduct", {X, Y}, L"0"},
        {"dot with 17 digits", L"Geometry.DotProduct", {X, LR"({"x":0.1,"y":0,"z":0})"}, L"0.10000000000000001"},
        {"dot 1*4+2*5+3*6", L"Geometry.DotProduct", {LR"({"x":1,"y":2,"z":3})", LR"({"x":4,"y":5,"z":6})"}, L"32"},
        {"zero vector dot", L"Geometry.DotProduct", {Zero, X}, L"0"},
        {"scaled vector", L"Geometry.Vector3dMultiply", {LR"({"x":1,"y":-2,"z":3})", L"2.5"}, LR"({"x":2.5,"y":-5,"z":7.5})"},
        {"scaled by zero", L"Geometry.Vector3dMultiply", {X, L"0"}, Zero},
    });
}

TEST(GeometryTextCommands, EqualityTests)
{
    expectAnswers({
        {"points within tolerance", L"Geometry.ArePoint3dEqual", {LR"({"x":1,"y":2,"z":3})", LR"({"x":1,"y":2,"z":3.000000000001})"}, L"1"},
        {"points apart", L"Geometry.ArePoint3dEqual", {LR"({"x":1,"y":2,"z":3})", LR"({"x":1,"y":2,"z":3.001})"}, L"0"},
        {"equal vectors", L"Geometry.AreVector3dEqual", {X, LR"({"x":1.0,"y":0,"z":-0.0})"}, L"1"},
        {"opposite vectors", L"Geometry.AreVector3dEqual", {X, LR"({"x":-1,"y":0,"z":0})"}, L"0"},
        {"the same line", L"Geometry.AreLine3dsEqual", {XAxis, XAxis}, L"1"},
        // Entity equality, not co-linearity: the same axis from other points is another line.
        {"co-linear line from other points", L"Geometry.AreLine3dsEqual",
            {XAxis, LR"({"startPoint":{"x":2,"y":0,"z":0},"endPoint":{"x":3,"y":0,"z":0}})"}, L"0"},
        {"co-planar planes with other points", L"Geometry.ArePlanesEqual",
            {XYPlane, LR"({"pointOnPlane":{"x":5,"y":7,"z":0},"normal":{"x":0,"y":0,"z":-2}})"}, L"1"},
        {"parallel planes apart", L"Geometry.ArePlanesEqual",
            {XYPlane, LR"({"pointOnPlane":{"x":0,"y":0,"z":1},"normal":{"x":0,"y":0,"z":1}})"}, L"0"},
        {"equal matrices", L"Matrix.AreMatricesEqual", {Identity, L"[[1,0,0,0],[0,1,0,0],[0,0,1,0],[0,0,0,1.0]]"}, L"1"},
        {"different matrices", L"Matrix.AreMatricesEqual", {Identity, Move100}, L"0"},
    });
}

TEST(GeometryTextCommands, LineAndPlaneBuilders)
{
    const std::wstring line123to456 = LR"({"startPoint":{"x":1,"y":2,"z":3},"endPoint":{"x":4,"y":5,"z":6}})";
    expectAnswers({
        {"line from its points", L"Geometry.Line3dCreate", {line123to456}, line123to456},
        {"line from start and vector", L"Geometry.Line3dCreate", {LR"({"startPoint":{"x":1,"y":1,"z":1},"vector":{"x":0,"y":0,"z":2}})"},
            LR"({"startPoint":{"x":1,"y":1,"z":1},"endPoint":{"x":1,"y":1,"z":3}})"},
        {"line from six numbers", L"Geometry.Line3dCreate", {LR"({"x0":1,"y0":2,"z0":3,"x1":4,"y1":5,"z1":6})"}, line123to456},
        {"points win over six numbers", L"Geometry.Line3dCreate",
            {LR"({"x0":9,"y0":9,"z0":9,"x1":8,"y1":8,"z1":8,"startPoint":{"x":1,"y":2,"z":3},"endPoint":{"x":4,"y":5,"z":6}})"}, line123to456},
        {"line without properties", L"Geometry.Line3dCreate", {}, L"No properties specified to create line3d", true},
        {"line from text that is no JSON", L"Geometry.Line3dCreate", {L"startPoint"}, L"Invalid JSON specified for properties to create line3d", true},
        {"line from five numbers", L"Geometry.Line3dCreate", {LR"({"x0":1,"y0":2,"z0":3,"x1":4,"y1":5})"},
            L"Invalid properties to create line3d - use either startPoint+endPoint or startPoint+vector or x0+y0+z0+x1+y1+z1", true},
        {"line from an array", L"Geometry.Line3dCreate", {L"[1,2,3]"},
            L"Invalid properties to create line3d - use either startPoint+endPoint or startPoint+vector or x0+y0+z0+x1+y1+z1", true},
        {"plane from point and normal", L"Geometry.PlaneCreate", {LR"({"pointOnPlane":{"x":1,"y":1,"z":2},"normal":{"x":0,"y":0,"z":5}})"},
            LR"({"pointOnPlane":{"x":1,"y":1,"z":2},"normal":{"x":0,"y":0,"z":1}})"},
        // 2z - 4 = 0 is z = 2; its point is the foot of the perpendicular from the origin.
        {"plane from coefficients", L"Geometry.PlaneCreate", {LR"({"a":0,"b":0,"c":2,"d":-4})"},
            LR"({"pointOnPlane":{"x":0,"y":0,"z":2},"normal":{"x":0,"y":0,"z":1}})"},
        {"plane from six numbers", L"Geometry.PlaneCreate", {LR"({"x0":1,"y0":2,"z0":3,"x1":0,"y1":-3,"z1":0})"},
            LR"({"pointOnPlane":{"x":1,"y":2,"z":3},"normal":{"x":0,"y":-1,"z":0}})"},
        {"plane from a zero normal is the XY plane", L"Geometry.PlaneCreate", {LR"({"x0":1,"y0":2,"z0":3,"x1":0,"y1":0,"z1":0})"}, XYPlane},
        {"plane without properties", L"Geometry.PlaneCreate", {}, L"No properties specified to create plane", true},
        {"plane from text that is no JSON", L"Geometry.PlaneCreate", {L"{a:1}"}, L"Invalid JSON specified for properties to create plane", true},
        {"plane from coefficients as text", L"Geometry.PlaneCreate", {LR"({"a":"0","b":0,"c":1,"d":0})"},
            L"Invalid properties to create plane - use either pointOnPlane+normal or a+b+c+d or x0+y0+z0+x1+y1+z1", true},
    });
}

TEST(GeometryTextCommands, PropertiesReaders)
{
    const TextCommandOutcome line = TextCommandRegistry::instance().run(L"Geometry.Line3dProperties",
        TextCommandParameters({LR"({"startPoint":{"x":1,"y":2,"z":3},"endPoint":{"x":4,"y":6,"z":3}})"}, {}));
    ASSERT_TRUE(line.ok()) << ToUTF8(line.text);
    const JSONNode lineProperties(ToUTF8(line.text));
    EXPECT_EQ(lineProperties["startPoint"].stringify(), R"({"x":1,"y":2,"z":3})");
    EXPECT_EQ(lineProperties["vector"].stringify(), R"({"x":3,"y":4,"z":0})");
    double length = 0.0;
    ASSERT_TRUE(lineProperties["length"].get(length));
    EXPECT_NEAR(length, 5.0, 1e-12);

    const TextCommandOutcome plane = TextCommandRegistry::instance().run(L"Geometry.PlaneProperties",
        TextCommandParameters({LR"({"pointOnPlane":{"x":0,"y":0,"z":2},"normal":{"x":0,"y":0,"z":3}})"}, {}));
    ASSERT_TRUE(plane.ok()) << ToUTF8(plane.text);
    const JSONNode planeProperties(ToUTF8(plane.text));
    EXPECT_EQ(planeProperties["pointOnPlane"].stringify(), R"({"x":0,"y":0,"z":2})");
    EXPECT_EQ(planeProperties["normal"].stringify(), R"({"x":0,"y":0,"z":1})");
    EXPECT_EQ(planeProperties["coefficients"].stringify(), R"({"a":0,"b":0,"c":1,"d":-2})");
    // The second in-plane axis: unit and in the plane.
    double v[3] = {};
    ASSERT_TRUE(planeProperties["vdir"]["x"].get(v[0]) && planeProperties["vdir"]["y"].get(v[1]) && planeProperties["vdir"]["z"].get(v[2]));
    EXPECT_NEAR(v[0] * v[0] + v[1] * v[1], 1.0, 1e-12);
    EXPECT_EQ(v[2], 0.0);
}

TEST(GeometryTextCommands, Matrices)
{
    const std::wstring pushedBack = L"[[2,0,0,1],[0,2,0,0],[0,0,2,0],[0,0,0,1]]";  // move after scaling
    const std::wstring pushedFront = L"[[2,0,0,2],[0,2,0,0],[0,0,2,0],[0,0,0,1]]"; // scale after moving
    expectAnswers({
        {"identity", L"Matrix.Identity", {}, Identity},
        {"translation", L"Matrix.SetToTranslation", {LR"({"x":1,"y":2,"z":3})"}, Move123},
        {"product of translations", L"Matrix.Multiply", {Move123, Move100}, L"[[1,0,0,2],[0,1,0,2],[0,0,1,3],[0,0,0,1]]"},
        {"left times right", L"Matrix.Multiply", {Move100, Scale2}, pushedBack},
        {"leaf added on the local side", L"Matrix.PushBack", {Move100, Scale2}, pushedBack},
        {"root added on the world side", L"Matrix.PushFront", {Move100, Scale2}, pushedFront},
        {"leaf removed again", L"Matrix.PopBack", {pushedBack, Scale2}, Move100},
        {"root removed again", L"Matrix.PopFront", {pushedFront, Scale2}, Move100},
        {"a singular leaf cannot be removed", L"Matrix.PopBack", {Move100, Flat}, L"The matrix to remove is singular: it cannot have been added", true},
        {"a singular root cannot be removed", L"Matrix.PopFront", {Move100, Flat}, L"The matrix to remove is singular: it cannot have been added", true},
        {"rotation without axis", L"Matrix.SetToRotation", {L"1.5"}, L"No angle and axis parameter specified", true},
        {"rotation without anything", L"Matrix.SetToRotation", {}, L"No angle and axis parameter specified", true},
        {"rotation by no number", L"Matrix.SetToRotation", {L"quarter", L"{}"}, L"Invalid number for the rotation angle (radians)", true},
        {"rotation about no vector", L"Matrix.SetToRotation", {L"1", LR"({"x":1})"}, L"Invalid json for vector", true},
        {"rotation about no point", L"Matrix.SetToRotation", {L"1", X, L"[]"}, L"Invalid json for Point", true},
        // A zero axis gives the identity rather than a failure: the kernel's rule.
        {"rotation about a zero axis", L"Matrix.SetToRotation", {L"1", Zero}, Identity},
    });
}

TEST(GeometryTextCommands, RotationsAreAboutTheGivenAxisAndPoint)
{
    auto run = [](const std::wstring& command, std::vector<std::wstring> parameters) {
        const TextCommandOutcome outcome = TextCommandRegistry::instance().run(command, TextCommandParameters(std::move(parameters), {}));
        EXPECT_TRUE(outcome.ok()) << ToUTF8(outcome.text);
        return outcome.text;
    };
    struct Case {
        const char* name;
        std::vector<std::wstring> rotation;
        std::wstring point;
        double expected[3];
    };
    const std::wstring halfTurn = std::to_wstring(std::numbers::pi);
    const Case cases[] = {
        {"quarter turn about z", {L"1.5707963267948966", LR"({"x":0,"y":0,"z":1})"}, X, {0, 1, 0}},
        {"quarter turn about -z", {L"1.5707963267948966", LR"({"x":0,"y":0,"z":-7})"}, X, {0, -1, 0}},
        {"half turn about z through (1,1,0)", {L"3.141592653589793", LR"({"x":0,"y":0,"z":1})", LR"({"x":1,"y":1,"z":0})"},
            LR"({"x":2,"y":1,"z":5})", {0, 1, 5}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::wstring matrix = run(L"Matrix.SetToRotation", c.rotation);
        const JSONNode point(ToUTF8(run(L"LocalToWorld.Point3d", {matrix, c.point})));
        double xyz[3] = {};
        ASSERT_TRUE(point["x"].get(xyz[0]) && point["y"].get(xyz[1]) && point["z"].get(xyz[2]));
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(xyz[i], c.expected[i], 1e-12) << "coordinate " << i;
        // World to local undoes it.
        const std::wstring back = run(L"WorldToLocal.Point3d", {matrix, ToIString(point.stringify())});
        EXPECT_EQ(run(L"Geometry.ArePoint3dEqual", {back, c.point}), L"1");
    }
}

TEST(GeometryTextCommands, LocalAndWorld)
{
    expectAnswers({
        {"point moved", L"LocalToWorld.Point3d", {Move123, LR"({"x":1,"y":1,"z":1})"}, LR"({"x":2,"y":3,"z":4})"},
        {"vector not moved", L"LocalToWorld.Vector3d", {Move123, LR"({"x":1,"y":1,"z":1})"}, LR"({"x":1,"y":1,"z":1})"},
        {"vector scaled", L"LocalToWorld.Vector3d", {Scale2, LR"({"x":1,"y":1,"z":1})"}, LR"({"x":2,"y":2,"z":2})"},
        {"line moved", L"LocalToWorld.Line3d", {Move123, XAxis}, LR"({"startPoint":{"x":1,"y":2,"z":3},"endPoint":{"x":2,"y":2,"z":3}})"},
        {"plane moved", L"LocalToWorld.Plane", {Move123, XYPlane}, LR"({"pointOnPlane":{"x":1,"y":2,"z":3},"normal":{"x":0,"y":0,"z":1}})"},
        {"point back", L"WorldToLocal.Point3d", {Move123, LR"({"x":2,"y":3,"z":4})"}, LR"({"x":1,"y":1,"z":1})"},
        {"vector back", L"WorldToLocal.Vector3d", {Scale2, LR"({"x":2,"y":4,"z":6})"}, LR"({"x":1,"y":2,"z":3})"},
        {"line back", L"WorldToLocal.Line3d", {Move123, LR"({"startPoint":{"x":1,"y":2,"z":3},"endPoint":{"x":2,"y":2,"z":3}})"}, XAxis},
        {"plane back", L"WorldToLocal.Plane", {Move123, LR"({"pointOnPlane":{"x":1,"y":2,"z":3},"normal":{"x":0,"y":0,"z":1}})"}, XYPlane},
        {"a flattening chain has no inverse", L"WorldToLocal.Point3d", {Flat, X}, L"The local to world matrix is singular and has no inverse", true},
    });
}

// Every command that reads geometry answers a missing or unreadable argument with the word of its
// kind; a matrix is checked before the argument after it.
TEST(GeometryTextCommands, MissingAndMalformedArguments)
{
    const std::wstring notJSON = L"{\"x\":1,";
    expectAnswers({
        {"dot without vectors", L"Geometry.DotProduct", {}, L"No parameter for the vector", true},
        {"dot with one vector", L"Geometry.DotProduct", {X}, L"No parameter for the vector", true},
        {"dot with a partial vector", L"Geometry.DotProduct", {X, LR"({"x":1,"y":0})"}, L"Invalid json for vector", true},
        {"dot with text numbers", L"Geometry.DotProduct", {LR"({"x":"1","y":0,"z":0})", X}, L"Invalid json for vector", true},
        {"cross with no JSON", L"Geometry.CrossProduct", {notJSON, X}, L"Invalid json for vector", true},
        {"add to no point", L"Geometry.AddVector3dToPoint3d", {}, L"No parameter for the Point", true},
        {"add to a bad point", L"Geometry.AddVector3dToPoint3d", {L"[1,2,3]", X}, L"Invalid json for Point", true},
        {"add a bad vector", L"Geometry.AddVector3dToPoint3d", {X, L"null"}, L"Invalid json for vector", true},
        {"subtract from no point", L"Geometry.SubtractPoint3dFromPoint3d", {X}, L"No parameter for the Point", true},
        {"add no vectors", L"Geometry.AddVector3ds", {L""}, L"Invalid json for vector", true},
        {"subtract an array", L"Geometry.SubtractVector3ds", {L"[1,0,0]", X}, L"Invalid json for vector", true},
        {"multiply without scalar", L"Geometry.Vector3dMultiply", {X}, L"No scalar (double) specified", true},
        {"multiply by text", L"Geometry.Vector3dMultiply", {X, L"two"}, L"No scalar (double) specified", true},
        {"multiply a bad vector", L"Geometry.Vector3dMultiply", {L"2", L"2"}, L"Invalid json for vector", true},
        {"points equal without points", L"Geometry.ArePoint3dEqual", {}, L"No parameter for the Point", true},
        {"vectors equal with a bad one", L"Geometry.AreVector3dEqual", {X, L"{}"}, L"Invalid json for vector", true},
        {"lines equal without lines", L"Geometry.AreLine3dsEqual", {}, L"No parameter for the line", true},
        {"lines equal with a point", L"Geometry.AreLine3dsEqual", {XAxis, X}, L"Invalid json for line", true},
        {"planes equal without planes", L"Geometry.ArePlanesEqual", {XYPlane}, L"No parameter for the plane", true},
        {"planes equal with a line", L"Geometry.ArePlanesEqual", {XAxis, XYPlane}, L"Invalid json for plane", true},
        {"line properties without line", L"Geometry.Line3dProperties", {}, L"No parameter for the line", true},
        {"plane properties of no JSON", L"Geometry.PlaneProperties", {notJSON}, L"Invalid json for plane", true},
        {"matrices equal without matrices", L"Matrix.AreMatricesEqual", {}, L"No parameter for the matrix", true},
        {"multiply a 3x4 matrix", L"Matrix.Multiply", {L"[[1,0,0,0],[0,1,0,0],[0,0,1,0]]", Identity}, L"Invalid json for matrix", true},
        {"multiply a matrix of text", L"Matrix.Multiply", {Identity, L"[[\"1\",0,0,0],[0,1,0,0],[0,0,1,0],[0,0,0,1]]"}, L"Invalid json for matrix", true},
        {"push without leaf", L"Matrix.PushBack", {Identity}, L"No parameter for the matrix", true},
        {"push front a point", L"Matrix.PushFront", {Identity, X}, L"Invalid json for matrix", true},
        {"pop without chain", L"Matrix.PopBack", {}, L"No parameter for the matrix", true},
        {"pop front of no JSON", L"Matrix.PopFront", {notJSON, Identity}, L"Invalid json for matrix", true},
        {"translation without vector", L"Matrix.SetToTranslation", {}, L"No parameter for the vector", true},
        {"matrix checked before the point", L"LocalToWorld.Point3d", {X}, L"Invalid json for matrix", true},
        {"local point missing", L"LocalToWorld.Point3d", {Identity}, L"No parameter for the Point", true},
        {"local vector bad", L"LocalToWorld.Vector3d", {Identity, XYPlane}, L"Invalid json for vector", true},
        {"local line missing", L"LocalToWorld.Line3d", {Identity}, L"No parameter for the line", true},
        {"local plane bad", L"LocalToWorld.Plane", {Identity, XAxis}, L"Invalid json for plane", true},
        {"world matrix missing", L"WorldToLocal.Plane", {}, L"No parameter for the matrix", true},
        {"world matrix before a bad line", L"WorldToLocal.Line3d", {L"[]", L"[]"}, L"Invalid json for matrix", true},
        {"world point bad", L"WorldToLocal.Point3d", {Identity, L"1"}, L"Invalid json for Point", true},
        {"world vector missing", L"WorldToLocal.Vector3d", {Identity}, L"No parameter for the vector", true},
    });
}

// The classes are usable on their own, as a host that registers them elsewhere would.
TEST(GeometryTextCommands, ClassesAnswerWithoutTheRegistry)
{
    const TextCmdGeometryDotProduct dot(L"Geometry", L"DotProduct", L"");
    EXPECT_EQ(dot.execute(TextCommandParameters({LR"({"x":1,"y":2,"z":0})", LR"({"x":3,"y":-1,"z":9})"}, {})), L"1");
    EXPECT_EQ(dot.fullName(), L"Geometry.DotProduct");
}

TEST(GeometryTextCommands, HelpShowsTheTexts)
{
    const TextCommandRegistry& registry = TextCommandRegistry::instance();
    EXPECT_EQ(registry.help(L"Matrix.SetToRotation"),
        L"Matrix.SetToRotation  <RotationAngle> <RotationAxis> [<RotationPoint>] Sets a matrix to perform the specifed rotation\n");
    EXPECT_EQ(registry.help(L"Geometry.PlaneCreate"),
        L"Geometry.PlaneCreate  <Properties> Create a plane from properties {pointOnPlane, normal}, {x0,y0,z0,x1,y1,z1} or {a,b,c,d}\n");
    EXPECT_EQ(registry.subjectAreas(),
        (std::vector<std::wstring>{L"Geometry", L"LocalToWorld", L"Materials", L"Matrix", L"WorldToLocal"}));
    EXPECT_EQ(registry.commands().size(), 49u);
    // The line a user types, end to end.
    EXPECT_EQ(registry.runLine(R"(Geometry.DotProduct {"x":1,"y":0,"z":0} {"x":0,"y":1,"z":0})").text, L"0");
    EXPECT_EQ(registry.runLine("Geometry.DotProdcut {} {}").text, L"Unknown command \"Geometry.DotProdcut\"; did you mean Geometry.DotProduct, Geometry.CrossProduct?");
}

} // namespace
} // namespace Kx
