// Every object reader against its own writer's document, taken apart member by member: a member
// dropped, of the wrong kind, or a nested point missing a coordinate must fail the read (output
// untouched) exactly when the member is required, and be ignored when it is optional.

#include <kx/GeLib.h>

#include <geometry/TmGe.h>

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Kx::Types;
using Kx::JSONNode;

// The writer's text of a value: equal texts mean equal values, bit for bit (numbers are written
// in shortest round-trip form).
template <class T>
using Writer = void (*)(const T&, JSONNode&, const char*);
template <class T>
using Reader = bool (*)(const JSONNode&, T&, const char*);

template <class T>
std::string textOf(Writer<T> write, const T& value)
{
    JSONNode node;
    write(value, node, nullptr);
    return node.stringify();
}

struct ReaderCase {
    std::string name;
    boost::json::object document; // a whole value, as its writer writes it
    std::set<std::string> optional;
    std::string untouched; // the text of the output before reading
    // Reads into a fresh copy of the untouched output; answers the result and the output's text.
    std::function<std::pair<bool, std::string>(const JSONNode&, const char*)> read;
};

template <class T>
ReaderCase readerCase(std::string name, Writer<T> write, Reader<T> read, const T& sample, const T& untouched,
                      std::set<std::string> optional = {})
{
    JSONNode document;
    write(sample, document, nullptr);
    return {std::move(name), document.value().as_object(), std::move(optional), textOf(write, untouched),
            [=](const JSONNode& node, const char* key) {
                T out = untouched;
                const bool answer = read(node, out, key);
                return std::pair{answer, textOf(write, out)};
            }};
}

std::vector<ReaderCase> allReaders()
{
    const TmGePoint3d a(1.5, -2, 3), b(4, 5, -6.25);
    return {
        readerCase<TmGePoint2d>("Point2d", &Point2dToJSON, &JSONToPoint2d, {1.5, -2}, {7, 8}),
        readerCase<TmGeVector2d>("Vector2d", &Vector2dToJSON, &JSONToVector2d, {0.25, 3}, {7, 8}),
        readerCase<TmGePoint3d>("Point3d", &Point3dToJSON, &JSONToPoint3d, a, b),
        readerCase<TmGeVector3d>("Vector3d", &Vector3dToJSON, &JSONToVector3d, {0, 0.5, -1}, {7, 8, 9}),
        readerCase<TmGeLine3d>("Line3d", &Line3dToJSON, &JSONToLine3d, TmGeLine3d(a, b), TmGeLine3d()),
        readerCase<TmGeLineSeg3d>("LineSeg3d", &LineSeg3dToJSON, &JSONToLineSeg3d, TmGeLineSeg3d(a, b), TmGeLineSeg3d()),
        readerCase<TmGePlane>("Plane", &PlaneToJSON, &JSONToPlane, TmGePlane(a, TmGeVector3d(0, 1, 0)), TmGePlane()),
        readerCase<TmGeCircArc2d>("CircArc2d", &CircArc2dToJSON, &JSONToCircArc2d,
                                  TmGeCircArc2d({1, 2}, 3, 0.5, 2, {0, 1}, true), TmGeCircArc2d(),
                                  {"startAngle", "endAngle", "refVec", "isClockwise"}),
        readerCase<TmGeCircArc3d>("CircArc3d", &CircArc3dToJSON, &JSONToCircArc3d,
                                  TmGeCircArc3d(a, {1, 0, 0}, {0, 0, 1}, 2, 0.5, 2), TmGeCircArc3d(),
                                  {"normal", "refVec", "startAngle", "endAngle"}),
        readerCase<TmGeEllipArc2d>("EllipArc2d", &EllipArc2dToJSON, &JSONToEllipArc2d,
                                   TmGeEllipArc2d({1, 2}, {0, 1}, {-1, 0}, 3, 2, 0.5, 2), TmGeEllipArc2d(),
                                   {"startAngle", "endAngle"}),
        readerCase<TmGeEllipArc3d>("EllipArc3d", &EllipArc3dToJSON, &JSONToEllipArc3d,
                                   TmGeEllipArc3d(a, {0, 0, 1}, {1, 0, 0}, 3, 2, 0.5, 2), TmGeEllipArc3d(),
                                   {"startAngle", "endAngle"}),
    };
}

struct Mutation {
    std::string name;
    std::string member; // the member it damages
    boost::json::object document;
};

// Each member dropped or replaced by text; each nested point without its last coordinate or with
// a coordinate that is text.
std::vector<Mutation> mutationsOf(const boost::json::object& document)
{
    std::vector<Mutation> mutations;
    for (const auto& member : document) {
        const std::string key(member.key());
        auto damaged = [&](const std::string& how, auto change) {
            boost::json::object copy = document;
            change(copy);
            mutations.push_back({key + " " + how, key, std::move(copy)});
        };
        damaged("dropped", [&](boost::json::object& o) { o.erase(key); });
        damaged("as text", [&](boost::json::object& o) { o[key] = "1"; });
        damaged("as array", [&](boost::json::object& o) { o[key] = boost::json::array{1, 2, 3}; });
        if (member.value().is_object()) {
            damaged("without its last coordinate", [&](boost::json::object& o) {
                auto& point = o[key].as_object();
                point.erase(point.size() == 3 ? "z" : "y");
            });
            damaged("with x as text", [&](boost::json::object& o) { o[key].as_object()["x"] = "1"; });
        }
    }
    return mutations;
}

TEST(GeJSONReadersTest, DamagedMembersFailExactlyWhenRequired)
{
    for (const ReaderCase& reader : allReaders()) {
        for (const Mutation& mutation : mutationsOf(reader.document)) {
            SCOPED_TRACE(reader.name + ": " + mutation.name);
            const bool optional = reader.optional.count(mutation.member) != 0;
            JSONNode wrapped;
            wrapped["g"] = JSONNode::fromValue(mutation.document);
            for (const auto& [node, key] : {std::pair{JSONNode::fromValue(mutation.document), (const char*)nullptr},
                                            std::pair{wrapped, "g"}}) {
                const auto [answer, out] = reader.read(node, key);
                EXPECT_EQ(answer, optional);
                if (!optional) {
                    EXPECT_EQ(out, reader.untouched);
                }
            }
        }
    }
}

TEST(GeJSONReadersTest, WholeDocumentsReadBackUnderAnyKey)
{
    for (const ReaderCase& reader : allReaders()) {
        SCOPED_TRACE(reader.name);
        const std::string written = JSONNode::fromValue(reader.document).stringify();
        JSONNode wrapped;
        wrapped["g"] = JSONNode::fromValue(reader.document);
        wrapped["other"] = 1;

        EXPECT_EQ(reader.read(JSONNode::fromValue(reader.document), nullptr), std::pair(true, written));
        EXPECT_EQ(reader.read(wrapped, "g"), std::pair(true, written));
        // A key given but absent fails at once, also when the document itself would read.
        EXPECT_EQ(reader.read(JSONNode::fromValue(reader.document), "g"), std::pair(false, reader.untouched));
        EXPECT_EQ(reader.read(wrapped, "G"), std::pair(false, reader.untouched));
    }
}

TEST(GeJSONReadersTest, DocumentsOfTheWrongKindFail)
{
    const char* const notObjects[] = {"null", "true", "3", "\"{}\"", "[]", "[1,2,3]", "{}", "{\"g\":{}}"};
    for (const ReaderCase& reader : allReaders()) {
        for (const char* text : notObjects) {
            SCOPED_TRACE(reader.name + ": " + text);
            const JSONNode node(text);
            EXPECT_EQ(reader.read(node, nullptr), std::pair(false, reader.untouched));
            EXPECT_EQ(reader.read(node, "g"), std::pair(false, reader.untouched));
        }
    }
}

TEST(GeJSONReadersTest, ScalarReadersAreStrictAboutKinds)
{
    const JSONNode node(R"({"n":-0.5,"i":3,"t":true,"s":"1","z":null,"a":[1]})");
    struct Case {
        const char* key;
        bool isNumber;
        double number; // after the read, from 42
        bool isFlag;
    };
    for (const Case& c : {Case{"n", true, -0.5, false}, Case{"i", true, 3, false}, Case{"t", false, 42, true},
                          Case{"s", false, 42, false}, Case{"z", false, 42, false}, Case{"a", false, 42, false},
                          Case{"missing", false, 42, false}}) {
        SCOPED_TRACE(c.key);
        double number = 42;
        bool flag = false;
        EXPECT_EQ(JSONToDouble(node, number, c.key), c.isNumber);
        EXPECT_EQ(JSONToBool(node, flag, c.key), c.isFlag);
        EXPECT_EQ(number, c.number);
        EXPECT_EQ(flag, c.isFlag);
    }
    EXPECT_EQ(node.ref().keys().size(), 6u) << "reading must not insert the missing member";
}

} // namespace
