#include <base/Exception.h>
#include <base/JSONNode.h>

#include <boost/json/serialize.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <cmath>
#include <cstring>
#include <random>
#include <limits>
#include <string>

namespace {

using Kx::JSONNode;
using Kx::JSONRef;

// What each typed read makes of one JSON value: the value read, or nothing when refused.
struct ReadCase {
    const char* name;
    const char* json;
    std::optional<std::int64_t> asInt32;
    std::optional<std::int64_t> asUInt32;
    std::optional<std::int64_t> asInt64;
    std::optional<double> asDouble;
};

TEST(JSONRef, IntegerReadsAreStrictAboutKindAndRange)
{
    const auto none = std::nullopt;
    const ReadCase cases[] = {
        {"small", "42", 42, 42, 42, 42.0},
        {"negative", "-7", -7, none, -7, -7.0},
        {"int32 max", "2147483647", 2147483647, 2147483647, 2147483647, 2147483647.0},
        {"int32 max + 1", "2147483648", none, 2147483648, 2147483648, 2147483648.0},
        {"int32 min", "-2147483648", INT32_MIN, none, INT32_MIN, -2147483648.0},
        {"int32 min - 1", "-2147483649", none, none, -2147483649, -2147483649.0},
        {"uint32 max + 1", "4294967296", none, none, 4294967296, 4294967296.0},
        {"integral double", "3.0", 3, 3, 3, 3.0},
        {"exponent", "1e3", 1000, 1000, 1000, 1000.0},
        {"fraction", "2.5", none, none, none, 2.5},
        {"2^63 as double", "9223372036854775808.0", none, none, none, 9223372036854775808.0},
        {"uint64 beyond int64", "18446744073709551615", none, none, none, 18446744073709551615.0},
        {"string", "\"5\"", none, none, none, none},
        {"bool", "true", none, none, none, none},
        {"null", "null", none, none, none, none},
        {"array", "[1]", none, none, none, none},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const JSONNode node(c.json);
        const JSONRef ref = node.ref();

        std::int32_t i32 = -99;
        EXPECT_EQ(ref.get(i32), c.asInt32.has_value());
        EXPECT_EQ(i32, c.asInt32.value_or(-99));
        std::uint32_t u32 = 99;
        EXPECT_EQ(ref.get(u32), c.asUInt32.has_value());
        EXPECT_EQ(u32, c.asUInt32.value_or(99));
        std::int64_t i64 = -99;
        EXPECT_EQ(ref.get(i64), c.asInt64.has_value());
        EXPECT_EQ(i64, c.asInt64.value_or(-99));
        double d = -0.5;
        EXPECT_EQ(ref.get(d), c.asDouble.has_value());
        EXPECT_EQ(d, c.asDouble.value_or(-0.5));
    }
}

TEST(JSONRef, UnsignedSixtyFourBitRange)
{
    std::uint64_t value = 1;
    EXPECT_TRUE(JSONNode("18446744073709551615").ref().get(value));
    EXPECT_EQ(value, std::numeric_limits<std::uint64_t>::max());
    EXPECT_FALSE(JSONNode("-1").ref().get(value));
    EXPECT_FALSE(JSONNode("1.8446744073709552e19").ref().get(value)); // 2^64, one past the range
    EXPECT_EQ(value, std::numeric_limits<std::uint64_t>::max());
}

TEST(JSONRef, AbsentPathsAndOtherKindsReadNothing)
{
    const JSONNode node(R"({"name": "Gr\u00fcn", "flag": false, "list": [1, "two"], "big": 1e300})");
    std::string text = "unchanged";
    std::wstring wide = L"unchanged";
    bool flag = true;
    float single = 7.0f;

    EXPECT_FALSE(node["missing"].exists());
    EXPECT_FALSE(node["name"]["deeper"].exists());
    EXPECT_FALSE(node["list"][2].exists());
    EXPECT_FALSE(node.ref()[0].exists());
    EXPECT_FALSE(node["missing"].get(text));
    EXPECT_FALSE(node["flag"].get(text));
    EXPECT_FALSE(node["name"].get(flag));
    EXPECT_FALSE(node["big"].get(single)); // beyond the float range
    EXPECT_EQ(text, "unchanged");
    EXPECT_TRUE(flag);
    EXPECT_EQ(single, 7.0f);

    EXPECT_TRUE(node["name"].get(wide));
    EXPECT_EQ(wide, L"Gr\u00fcn");
    EXPECT_TRUE(node["list"][1].get(text));
    EXPECT_EQ(text, "two");
    EXPECT_TRUE(node["flag"].get(flag));
    EXPECT_FALSE(flag);
    EXPECT_EQ(node["list"].size(), 2u);
    EXPECT_EQ(node.ref().keys(), (std::vector<std::string>{"name", "flag", "list", "big"}));
}

TEST(JSONNode, FloatsAreWrittenInTheirShortestForm)
{
    const float values[] = {0.1f, 1.0f / 3.0f, 3.4028235e38f, 1e-45f, -2.5f, 16777217.0f};
    for (const float value : values) {
        SCOPED_TRACE(value);
        JSONNode node;
        node["f"] = value;
        float back = 0;
        ASSERT_TRUE(JSONNode(node.stringify()).ref()["f"].get(back));
        EXPECT_EQ(back, value);
    }
    JSONNode node;
    node["f"] = 0.1f;
    node["d"] = 0.1;
    node["one"] = 1.0;
    node["big"] = 1e300;
    node["nan"] = std::numeric_limits<double>::quiet_NaN();
    node["negativeZero"] = -0.0;
    EXPECT_EQ(node.stringify(), R"({"f":0.1,"d":0.1,"one":1,"big":1e+300,"nan":null,"negativeZero":-0.0})");
    double negativeZero = 1;
    ASSERT_TRUE(JSONNode(node.stringify()).ref()["negativeZero"].get(negativeZero));
    EXPECT_TRUE(negativeZero == 0 && std::signbit(negativeZero));
}

// Every double written in its shortest form reads back to the same bits: the parser rounds
// correctly where the library's own one may be a unit in the last place off.
TEST(JSONNode, DoublesSurviveTextExactly)
{
    std::mt19937_64 random(11);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value))
            continue;
        JSONNode node;
        node["v"] = value;
        double back = 0;
        ASSERT_TRUE(JSONNode(node.stringify()).ref()["v"].get(back));
        ASSERT_EQ(std::memcmp(&back, &value, sizeof value), 0) << node.stringify();
    }
    double third = 0;
    ASSERT_TRUE(JSONNode("[0.9504844339512095]").ref()[std::size_t{0}].get(third));
    EXPECT_EQ(third, 0.9504844339512095);
}

TEST(JSONNode, BuildsObjectsInInsertionOrder)
{
    JSONNode inner;
    inner.append(std::int64_t{-1});
    inner.append(std::uint64_t{18446744073709551615u});
    inner.append(L"\u00e9");
    inner.append(true);

    JSONNode node;
    node["z"] = 1;
    node["a"]["b"] = "nested";
    node["list"] = inner;
    node["z"] = std::string("replaced");
    node["copy"] = node["a"];

    const std::string expected
        = R"({"z":"replaced","a":{"b":"nested"},"list":[-1,18446744073709551615,"é",true],"copy":{"b":"nested"}})";
    EXPECT_EQ(node.stringify(), expected);
    EXPECT_EQ(node.stringify(), boost::json::serialize(node.value()));
    EXPECT_EQ(JSONNode(node.stringify(true)).stringify(), expected);
}

TEST(JSONNode, PrettyFormIndentsByTwoSpaces)
{
    const JSONNode node(R"({"a":[1,{}],"b":{"c":null},"d":[]})");
    EXPECT_EQ(node.stringify(true), "{\n  \"a\": [\n    1,\n    {}\n  ],\n  \"b\": {\n    \"c\": null\n  },\n  \"d\": []\n}");
}

TEST(JSONNode, MalformedTextIsAnExceptionOrAnEmptyResult)
{
    const char* texts[] = {"", "{", "{\"a\":1,}", "[1 2]", "{\"a\":1} x", "nul", "\"unterminated", "// c\n1"};
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        std::string error;
        EXPECT_FALSE(JSONNode::parse(text, &error).has_value());
        EXPECT_FALSE(error.empty());
        try {
            JSONNode node(text);
            ADD_FAILURE() << "no exception";
        } catch (const Kx::Exception& exception) {
            EXPECT_EQ(exception.userText(), L"The JSON text is not valid.");
            EXPECT_EQ(exception.detail(), error);
            EXPECT_EQ(std::string(exception.what()), "The JSON text is not valid: " + error);
        }
    }
}

} // namespace
