// The JSON text the writers produce (golden strings, member order included), the defaults the
// readers fill in, and round trips of every type through text.

#include <kx/GeLib.h>

#include <geometry/TmGe.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using namespace Kx::Types;
using Kx::JSONNode;

constexpr double s_fullTurn = 6.283185307179586;
// Values that a writer or reader with fewer than 17 digits, or a lossy number path, would change.
constexpr double s_hard[] = {0.1, 1.0 / 3, 1e-300, 5e-324, 1.7976931348623157e308, -2.5e-8, 123456789.123};

TEST(GeJSONWritersTest, WriteTheDocumentedText)
{
    struct Case {
        const char* name;
        std::function<void(JSONNode&)> write;
        const char* expected;
    };
    const Case cases[] = {
        {"3d point, no key", [](JSONNode& n) { Point3dToJSON({1, 0.1, -2.5}, n, nullptr); }, R"({"x":1,"y":0.1,"z":-2.5})"},
        {"2d point, no key, beside other members",
         [](JSONNode& n) {
             n["id"] = 7;
             Point2dToJSON({3, 4}, n, nullptr);
         },
         R"({"id":7,"x":3,"y":4})"},
        {"2d vector under a key",
         [](JSONNode& n) {
             n["id"] = 7;
             Vector2dToJSON({0, -1}, n, "v");
         },
         R"({"id":7,"v":{"x":0,"y":-1}})"},
        {"3d vector in point form", [](JSONNode& n) { Vector3dToJSON({0, 0, 1}, n, "n"); }, R"({"n":{"x":0,"y":0,"z":1}})"},
        {"2d matrix, row-major", [](JSONNode& n) { Matrix2dToJSON(TmGeMatrix2d::translation({5, -6}), n, nullptr); },
         "[[1,0,5],[0,1,-6],[0,0,1]]"},
        {"3d matrix under a key",
         [](JSONNode& n) { Matrix3dToJSON(TmGeMatrix3d::translation({1, 2, 3}), n, "m"); },
         R"({"m":[[1,0,0,1],[0,1,0,2],[0,0,1,3],[0,0,0,1]]})"},
        {"matrix without a key replaces the node",
         [](JSONNode& n) {
             n["id"] = 7;
             Matrix2dToJSON(TmGeMatrix2d(), n, nullptr);
         },
         "[[1,0,0],[0,1,0],[0,0,1]]"},
        {"unbounded line as its points at 0 and 1",
         [](JSONNode& n) { Line3dToJSON(TmGeLine3d({1, 2, 3}, TmGeVector3d(0, 0, 2)), n, nullptr); },
         R"({"startPoint":{"x":1,"y":2,"z":3},"endPoint":{"x":1,"y":2,"z":5}})"},
        {"segment", [](JSONNode& n) { LineSeg3dToJSON(TmGeLineSeg3d({0, 0, 0}, TmGePoint3d(1, 1, 1)), n, nullptr); },
         R"({"startPoint":{"x":0,"y":0,"z":0},"endPoint":{"x":1,"y":1,"z":1}})"},
        {"plane with its unit normal", [](JSONNode& n) { PlaneToJSON(TmGePlane({0, 0, 1}, {0, 0, 5}), n, nullptr); },
         R"({"pointOnPlane":{"x":0,"y":0,"z":1},"normal":{"x":0,"y":0,"z":1}})"},
        {"3d circular arc",
         [](JSONNode& n) { CircArc3dToJSON(TmGeCircArc3d({0, 0, 0}, {0, 0, 1}, {1, 0, 0}, 2, 0, 3.14159), n, nullptr); },
         R"({"center":{"x":0,"y":0,"z":0},"normal":{"x":0,"y":0,"z":1},"refVec":{"x":1,"y":0,"z":0},"radius":2,"startAngle":0,"endAngle":3.14159})"},
        {"2d clockwise arc",
         [](JSONNode& n) { CircArc2dToJSON(TmGeCircArc2d({1, 2}, 3, 0.5, 2, {0, 1}, true), n, nullptr); },
         R"({"center":{"x":1,"y":2},"radius":3,"startAngle":0.5,"endAngle":2,"refVec":{"x":0,"y":1},"isClockwise":true})"},
        {"2d elliptical arc", [](JSONNode& n) { EllipArc2dToJSON(TmGeEllipArc2d({0, 0}, {1, 0}, {0, 1}, 3, 1), n, nullptr); },
         R"({"center":{"x":0,"y":0},"majorAxis":{"x":1,"y":0},"minorAxis":{"x":0,"y":1},"majorRadius":3,"minorRadius":1,"startAngle":0,"endAngle":6.283185307179586})"},
        {"3d elliptical arc under a key",
         [](JSONNode& n) { EllipArc3dToJSON(TmGeEllipArc3d({0, 0, 1}, {0, 1, 0}, {-1, 0, 0}, 2, 1, 1, 2), n, "e"); },
         R"({"e":{"center":{"x":0,"y":0,"z":1},"majorAxis":{"x":0,"y":1,"z":0},"minorAxis":{"x":-1,"y":0,"z":0},"majorRadius":2,"minorRadius":1,"startAngle":1,"endAngle":2}})"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        JSONNode node;
        c.write(node);
        EXPECT_EQ(node.stringify(), c.expected);
    }
}

TEST(GeJSONWritersTest, ReadersFillInTheDefaultsOfOptionalMembers)
{
    TmGeCircArc2d arc2d({9, 9}, 1, 1, 2, {0, 1}, true);
    ASSERT_TRUE(JSONToCircArc2d(JSONNode(R"({"center":{"x":1,"y":2},"radius":3})"), arc2d, nullptr));
    EXPECT_EQ(arc2d.center(), TmGePoint2d(1, 2));
    EXPECT_EQ(arc2d.radius(), 3);
    EXPECT_EQ(arc2d.startAng(), 0);
    EXPECT_EQ(arc2d.endAng(), s_fullTurn);
    EXPECT_EQ(arc2d.refVec(), TmGeVector2d(1, 0));
    EXPECT_FALSE(arc2d.isClockWise());

    // Optional members of the wrong kind are ignored, not refused.
    ASSERT_TRUE(JSONToCircArc2d(
        JSONNode(R"({"center":{"x":1,"y":2},"radius":3,"refVec":{"x":0},"isClockwise":1,"startAngle":"1","endAngle":3})"),
        arc2d, nullptr));
    EXPECT_EQ(arc2d.refVec(), TmGeVector2d(1, 0));
    EXPECT_FALSE(arc2d.isClockWise());
    EXPECT_EQ(arc2d.startAng(), 0);
    EXPECT_EQ(arc2d.endAng(), 3);

    TmGeCircArc3d arc3d;
    ASSERT_TRUE(JSONToCircArc3d(JSONNode(R"({"c":{"center":{"x":1,"y":2,"z":3},"radius":2}})"), arc3d, "c"));
    EXPECT_EQ(arc3d.center(), TmGePoint3d(1, 2, 3));
    EXPECT_EQ(arc3d.normal(), TmGeVector3d::kZAxis);
    EXPECT_EQ(arc3d.refVec(), TmGeVector3d::kXAxis);
    EXPECT_EQ(arc3d.radius(), 2);
    EXPECT_EQ(arc3d.endAng() - arc3d.startAng(), s_fullTurn);

    TmGeEllipArc3d ellipse;
    ASSERT_TRUE(JSONToEllipArc3d(JSONNode(R"({"center":{"x":0,"y":0,"z":0},"majorAxis":{"x":0,"y":0,"z":1},
        "minorAxis":{"x":1,"y":0,"z":0},"majorRadius":4,"minorRadius":2})"), ellipse, nullptr));
    EXPECT_EQ(ellipse.startAng(), 0);
    EXPECT_EQ(ellipse.endAng(), s_fullTurn);
    EXPECT_EQ(ellipse.majorRadius(), 4);

    TmGePlane plane;
    ASSERT_TRUE(JSONToPlane(JSONNode(R"({"pointOnPlane":{"x":0,"y":0,"z":7},"normal":{"x":0,"y":0,"z":5}})"), plane, nullptr));
    EXPECT_EQ(plane.normal().z, 1.0);
    EXPECT_EQ(plane.pointOnPlane().z, 7.0);
}

// Through JSON text and back. Numbers keep every bit except the sign of zero: the JSON library
// writes -0.0 as "-0", which it reads back as the integer 0.
template <class T>
T throughText(void (*write)(const T&, JSONNode&, const char*), bool (*read)(const JSONNode&, T&, const char*),
              const T& value, T out = T())
{
    JSONNode node;
    write(value, node, "v");
    EXPECT_TRUE(read(JSONNode(node.stringify()), out, "v"));
    return out;
}

TEST(GeJSONWritersTest, ValuesRoundTripThroughText)
{
    constexpr std::size_t n = std::size(s_hard);
    for (std::size_t i = 0; i < n; ++i) {
        const double a = s_hard[i], b = -s_hard[(i + 1) % n], c = s_hard[(i + 2) % n];
        SCOPED_TRACE(testing::Message() << a << ", " << b << ", " << c);

        const TmGePoint3d p = throughText(&Point3dToJSON, &JSONToPoint3d, {a, b, c});
        EXPECT_TRUE(p.x == a && p.y == b && p.z == c);
        const TmGeVector2d v = throughText(&Vector2dToJSON, &JSONToVector2d, {a, b});
        EXPECT_TRUE(v.x == a && v.y == b);

        TmGeMatrix3d m3;
        TmGeMatrix2d m2;
        for (unsigned k = 0; k < 16; ++k) {
            m3(k / 4, k % 4) = s_hard[(i + k) % n] * (k % 2 ? -1 : 1);
            m2(k / 3, k % 3) = m3(k / 4, k % 4);
        }
        const TmGeMatrix3d m3Read = throughText(&Matrix3dToJSON, &JSONToMatrix3d, m3);
        const TmGeMatrix2d m2Read = throughText(&Matrix2dToJSON, &JSONToMatrix2d, m2);
        for (unsigned k = 0; k < 16; ++k) {
            EXPECT_EQ(m3Read(k / 4, k % 4), m3(k / 4, k % 4)) << k;
            EXPECT_EQ(m2Read(k / 3, k % 3), m2(k / 3, k % 3)) << k;
        }
    }

    const TmGeCircArc2d arc2d({0.1, 1.0 / 3}, 1e-3, 0.1, 1.0 / 3, {0, -1}, true);
    EXPECT_TRUE(throughText(&CircArc2dToJSON, &JSONToCircArc2d, arc2d).isEqualTo(arc2d, TmGeTol(0, 0)));
    const TmGeCircArc3d arc3d({1e-300, 0.1, 1.0 / 3}, {0, -1, 0}, {0, 0, 1}, 1e300, 0.1, 6);
    EXPECT_TRUE(throughText(&CircArc3dToJSON, &JSONToCircArc3d, arc3d).isEqualTo(arc3d, TmGeTol(0, 0)));
    const TmGeEllipArc2d ellipse2d({0.1, 1.0 / 3}, {0, 1}, {1, 0}, 1.0 / 3, 0.1, 1, 2);
    EXPECT_TRUE(throughText(&EllipArc2dToJSON, &JSONToEllipArc2d, ellipse2d).isEqualTo(ellipse2d, TmGeTol(0, 0)));
    const TmGeEllipArc3d ellipse3d({0.1, 1.0 / 3, 1e-300}, {0, 0, -1}, {1, 0, 0}, 1e10, 1.0 / 3);
    EXPECT_TRUE(throughText(&EllipArc3dToJSON, &JSONToEllipArc3d, ellipse3d).isEqualTo(ellipse3d, TmGeTol(0, 0)));
    const TmGePlane plane({0.1, 1.0 / 3, 1e-300}, {0, 1, 0});
    EXPECT_TRUE(throughText(&PlaneToJSON, &JSONToPlane, plane).isEqualTo(plane, TmGeTol(0, 0)));
    const TmGeLineSeg3d segment({0.1, 1.0 / 3, 1e-300}, TmGePoint3d(4, 0.5, -2));
    EXPECT_TRUE(throughText(&LineSeg3dToJSON, &JSONToLineSeg3d, segment).isEqualTo(segment, TmGeTol(0, 0)));
    // A line keeps a point and a direction; rebuilding it from two points costs a rounding.
    const TmGeLine3d line({0.1, 1.0 / 3, 1e-300}, TmGeVector3d(1e3, -0.1, 2.0 / 3));
    EXPECT_TRUE(throughText(&Line3dToJSON, &JSONToLine3d, line).isEqualTo(line, TmGeTol(1e-12, 1e-12)));
}

} // namespace
