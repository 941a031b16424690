// The matrix readers are the one place where a failed read leaves a partial result: the shape is
// checked first (nothing written), then entries are stored one by one until one is not a number.

#include <kx/GeLib.h>

#include <geometry/TmGeMatrix2d.h>
#include <geometry/TmGeMatrix3d.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace Kx::Types;
using Kx::JSONNode;

// Rows of `order` entries numbered 1, 2, 3 ... row by row; entry `bad` (if any) replaced by `with`.
std::string rows(unsigned rowCount, unsigned order, int bad = -1, const char* with = "\"x\"")
{
    std::string text = "[";
    for (unsigned i = 0; i < rowCount; ++i) {
        text += i ? ",[" : "[";
        for (unsigned j = 0; j < order; ++j) {
            const int k = static_cast<int>(i * order + j);
            text += (j ? "," : "") + (k == bad ? std::string(with) : std::to_string(k + 1));
        }
        text += "]";
    }
    return text + "]";
}

TEST(GeJSONMatricesTest, ShapeAndEntriesDecideWhatIsWritten)
{
    struct Case {
        const char* name;
        std::string json;
        bool answer;
        int written; // entries overwritten with their number, row by row from the first
    };
    const Case cases[] = {
        {"4x4 numbers", rows(4, 4), true, 16},
        {"last entry text", rows(4, 4, 15), false, 15},
        {"first entry null", rows(4, 4, 0, "null"), false, 0},
        {"entry 6 an array", rows(4, 4, 6, "[1]"), false, 6},
        {"entry 9 a boolean", rows(4, 4, 9, "true"), false, 9},
        {"3x3", rows(3, 3), false, 0},
        {"5 rows", rows(5, 4), false, 0},
        {"rows of 5", rows(4, 5), false, 0},
        {"last row short", R"([[1,2,3,4],[5,6,7,8],[9,10,11,12],[13,14,15]])", false, 0},
        {"a row that is an object of 4 members",
         R"([[1,2,3,4],{"a":1,"b":2,"c":3,"d":4},[9,10,11,12],[13,14,15,16]])", false, 4},
        {"an object, not an array", R"({"a":1,"b":2,"c":3,"d":4})", false, 0},
        {"empty", "[]", false, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (const char* key : {static_cast<const char*>(nullptr), "m"}) {
            const JSONNode node(key ? "{\"m\":" + c.json + "}" : c.json);
            TmGeMatrix3d matrix = TmGeMatrix3d::scaling(-1);
            EXPECT_EQ(JSONToMatrix3d(node, matrix, key), c.answer);
            for (int k = 0; k < 16; ++k) {
                EXPECT_EQ(matrix(k / 4, k % 4), k < c.written ? k + 1 : TmGeMatrix3d::scaling(-1)(k / 4, k % 4)) << k;
            }
        }
    }
}

TEST(GeJSONMatricesTest, Matrix2dReadsThreeByThreeOnly)
{
    TmGeMatrix2d matrix;
    EXPECT_FALSE(JSONToMatrix2d(JSONNode(rows(4, 4)), matrix, nullptr));
    EXPECT_TRUE(matrix.isIdentity(TmGeTol(0, 0)));

    EXPECT_FALSE(JSONToMatrix2d(JSONNode(rows(3, 3, 4)), matrix, nullptr));
    EXPECT_EQ(matrix(0, 2), 3);
    EXPECT_EQ(matrix(1, 0), 4);
    EXPECT_EQ(matrix(1, 1), 1) << "entry 4 failed: from there on the matrix is as it was";

    EXPECT_TRUE(JSONToMatrix2d(JSONNode(rows(3, 3)), matrix, nullptr));
    EXPECT_EQ(matrix(2, 2), 9);
    EXPECT_FALSE(JSONToMatrix2d(JSONNode(R"({"m":[]})"), matrix, "absent"));
}

} // namespace
