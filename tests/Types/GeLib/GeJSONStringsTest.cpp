// The JSON text wrappers that text commands use: exact text out, and any text in, refused
// cleanly unless it is JSON of the right shape.

#include <kx/GeLib.h>

#include <geometry/TmGe.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace Kx::Types;

TEST(GeJSONStringsTest, WritersAnswerCompactJSON)
{
    EXPECT_EQ(Point3dToJSONString({1, 0.5, -3}, "p"), LR"({"p":{"x":1,"y":0.5,"z":-3}})");
    EXPECT_EQ(Vector3dToJSONString({0, 0, 1}, nullptr), LR"({"x":0,"y":0,"z":1})");
    EXPECT_EQ(Line3dToJSONString(TmGeLine3d(), nullptr), LR"({"startPoint":{"x":0,"y":0,"z":0},"endPoint":{"x":1,"y":0,"z":0}})");
    EXPECT_EQ(PlaneToJSONString(TmGePlane(), "pl"), LR"({"pl":{"pointOnPlane":{"x":0,"y":0,"z":0},"normal":{"x":0,"y":0,"z":1}}})");
    EXPECT_EQ(Matrix3dToJSONString(TmGeMatrix3d(), nullptr), L"[[1,0,0,0],[0,1,0,0],[0,0,1,0],[0,0,0,1]]");
}

TEST(GeJSONStringsTest, ReadersRoundTripTheWriters)
{
    const TmGePoint3d point(0.1, 1.0 / 3, 1e-300);
    TmGePoint3d pointRead;
    ASSERT_TRUE(JSONStringToPoint3d(Point3dToJSONString(point, "p"), pointRead, "p"));
    EXPECT_TRUE(pointRead.x == point.x && pointRead.y == point.y && pointRead.z == point.z);

    TmGeVector3d vector;
    ASSERT_TRUE(JSONStringToVector3d(Vector3dToJSONString({-1, 2, 0.1}, nullptr), vector, nullptr));
    EXPECT_TRUE(vector.isEqualTo({-1, 2, 0.1}, TmGeTol(0, 0)));

    const TmGeLine3d line(point, TmGePoint3d(4, 5, 6));
    TmGeLine3d lineRead;
    ASSERT_TRUE(JSONStringToLine3d(Line3dToJSONString(line, nullptr), lineRead, nullptr));
    EXPECT_TRUE(lineRead.isEqualTo(line, TmGeTol(0, 0)));

    const TmGePlane plane(point, {0, -1, 0});
    TmGePlane planeRead;
    ASSERT_TRUE(JSONStringToPlane(PlaneToJSONString(plane, "pl"), planeRead, "pl"));
    EXPECT_TRUE(planeRead.isEqualTo(plane, TmGeTol(0, 0)));

    const TmGeMatrix3d matrix = TmGeMatrix3d::rotation(0.1, {1, 1, 0}, point);
    TmGeMatrix3d matrixRead;
    ASSERT_TRUE(JSONStringToMatrix3d(Matrix3dToJSONString(matrix, "m"), matrixRead, "m"));
    EXPECT_TRUE(matrixRead.isEqualTo(matrix, TmGeTol(0, 0)));
}

TEST(GeJSONStringsTest, HostileTextIsRefusedWithTheOutputUntouched)
{
    const std::wstring deep = std::wstring(100000, L'[') + std::wstring(100000, L']');
    std::wstring hugeArray = L"[0";
    for (int i = 0; i < 200000; ++i) {
        hugeArray += L",[1,2,3,4]";
    }
    hugeArray += L"]";
    struct Case {
        const char* name;
        std::wstring text;
    };
    const Case cases[] = {
        {"empty", L""},
        {"blank", L"  "},
        {"truncated", LR"({"x":1,"y":2,"z":)"},
        {"NaN is not JSON", LR"({"x":NaN,"y":0,"z":0})"},
        {"Infinity is not JSON", LR"({"x":Infinity,"y":0,"z":0})"},
        {"two values", LR"({"x":1,"y":2,"z":3} {})"},
        {"numbers as text", LR"({"x":"1","y":"2","z":"3"})"},
        {"deeply nested arrays", deep},
        {"huge array", hugeArray},
        {"nested garbage", LR"({"x":{"x":{"x":[{"y":null}]}},"y":[[[]]],"z":{"":""}})"},
        {"lone surrogate and control text", std::wstring(L"{\"x\":1,\"y\":2,\"\xD800\":\x01}")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TmGePoint3d point(7, 8, 9);
        EXPECT_FALSE(JSONStringToPoint3d(c.text, point, nullptr));
        EXPECT_TRUE(point.isEqualTo({7, 8, 9}, TmGeTol(0, 0)));
        TmGeVector3d vector(7, 8, 9);
        EXPECT_FALSE(JSONStringToVector3d(c.text, vector, "v"));
        EXPECT_TRUE(vector.isEqualTo({7, 8, 9}, TmGeTol(0, 0)));
        TmGeLine3d line;
        EXPECT_FALSE(JSONStringToLine3d(c.text, line, nullptr));
        EXPECT_TRUE(line.isEqualTo(TmGeLine3d(), TmGeTol(0, 0)));
        TmGePlane plane = TmGePlane::kYZPlane;
        EXPECT_FALSE(JSONStringToPlane(c.text, plane, nullptr));
        EXPECT_TRUE(plane.isEqualTo(TmGePlane::kYZPlane, TmGeTol(0, 0)));
        TmGeMatrix3d matrix;
        EXPECT_FALSE(JSONStringToMatrix3d(c.text, matrix, nullptr));
        EXPECT_TRUE(matrix.isIdentity(TmGeTol(0, 0)));
    }
}

} // namespace
