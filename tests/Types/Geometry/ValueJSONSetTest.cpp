// Setting values from JSON: all keys or no change, an equal value records nothing, and a change is
// published on the entity with a before-image that restores it.

#include <Types/Geometry/ValueMetaTypes.h>
#include <Types/Testors/GeometryTestor.h>

#include <base/Exception.h>
#include <datamodel/EntityCodec.h>

#include <gtest/gtest.h>

namespace Kx {
namespace {

struct RecordingSink final : IEntityChangeSink {
    void onEntityChanged(Entity&, std::vector<std::uint8_t> beforeImage, bool notify) override
    {
        beforeImages.push_back(std::move(beforeImage));
        notified.push_back(notify);
    }
    std::vector<std::vector<std::uint8_t>> beforeImages;
    std::vector<bool> notified;
};

class JSONSet : public ::testing::Test {
protected:
    JSONSet()
    {
        entity.point = Point2(1, 2);
        entity.color = Color(0.5f, 0.5f, 0.5f, 1.0f);
        entity.changeSink(&sink);
    }

    GeometryTestor entity;
    RecordingSink sink;
};

TEST_F(JSONSet, IncompleteOrMistypedValuesChangeNothingAndCountNothing)
{
    const struct {
        const char* name;
        const char* json;
    } cases[] = {
        {"only x", R"({"point":{"x":5}})"},
        {"y of the wrong kind", R"({"point":{"x":5,"y":"6"}})"},
        {"y null", R"({"point":{"x":5,"y":null}})"},
        {"y fractional", R"({"point":{"x":5,"y":6.5}})"},
        {"y beyond 32 bits", R"({"point":{"x":5,"y":2147483648}})"},
        {"not an object", R"({"point":[5,6]})"},
        {"color without alpha", R"({"color":{"red":1,"green":0,"blue":0}})"},
        {"label missing a member", R"({"label":{"value":"x","module":"","id":"","defaultValue":"","globalized":false}})"},
        {"top level not an object", R"([1,2])"},
    };
    for (const auto& input : cases) {
        SCOPED_TRACE(input.name);
        const auto before = saveEntityBinary(entity);
        EXPECT_EQ(entityFromJSON(entity, input.json), 0u);
        EXPECT_EQ(saveEntityBinary(entity), before);
    }
    EXPECT_EQ(entity.changeCount(), 0u);
    EXPECT_TRUE(sink.beforeImages.empty());
}

// A user's edit must not pass a refusal unseen: the report names each member whose JSON could not
// be taken and each key that names no member, while the rest of the object is still set.
TEST_F(JSONSet, TheReportNamesRefusedMembersAndUnknownKeys)
{
    const struct {
        const char* name;
        const char* json;
        std::vector<std::string> refused;
        std::vector<std::string> unknown;
        unsigned updated;
    } cases[] = {
        {"value incomplete", R"({"point":{"x":5}})", {"point"}, {}, 0},
        {"value of the wrong kind", R"({"point":[5,6]})", {"point"}, {}, 0},
        {"integer as text", R"({"count":"7"})", {"count"}, {}, 0},
        {"integer beyond 32 bits", R"({"count":2147483648})", {"count"}, {}, 0},
        {"integer fractional", R"({"count":1.5})", {"count"}, {}, 0},
        {"string as number", R"({"name":5})", {"name"}, {}, 0},
        {"null for a value", R"({"rect":null})", {"rect"}, {}, 0},
        {"unknown keys in text order", R"({"zeta":1,"count":3,"alpha":2})", {}, {"zeta", "alpha"}, 1},
        {"member names are case-sensitive", R"({"Count":3})", {}, {"Count"}, 0},
        {"refused and unknown together", R"({"name":"ok","color":{"red":1},"nope":0})", {"color"}, {"nope"}, 1},
        {"an equal value is no refusal", R"({"point":{"x":1,"y":2}})", {}, {}, 0},
        {"empty object", R"({})", {}, {}, 0},
    };
    for (const auto& input : cases) {
        SCOPED_TRACE(input.name);
        GeometryTestor target;
        target.point = Point2(1, 2);
        const EntityJSONSetReport report = entityFromJSONWithReport(target, input.json);
        EXPECT_EQ(report.refusedMembers, input.refused);
        EXPECT_EQ(report.unknownMembers, input.unknown);
        EXPECT_EQ(report.updated, input.updated);
        EXPECT_EQ(report.complete(), input.refused.empty() && input.unknown.empty());
    }
    for (const char* text : {"[1,2]", "7", "\"count\"", "{\"count\":", ""}) {
        SCOPED_TRACE(text);
        const auto before = saveEntityBinary(entity);
        EXPECT_THROW((void)entityFromJSONWithReport(entity, text), Exception);
        EXPECT_EQ(saveEntityBinary(entity), before);
    }
}

TEST_F(JSONSet, AnEqualValueRecordsNoChange)
{
    EXPECT_EQ(entityFromJSON(entity, R"({"point":{"x":1,"y":2}})"), 0u);
    // Within the colour tolerance (strictly less than 0.0001 per channel) counts as equal.
    EXPECT_EQ(entityFromJSON(entity, R"({"color":{"red":0.50005,"green":0.5,"blue":0.5,"alpha":1}})"), 0u);
    EXPECT_EQ(entityFromJSON(entity, R"({"count":0,"name":""})"), 0u);
    EXPECT_EQ(entity.changeCount(), 0u);
    EXPECT_TRUE(sink.beforeImages.empty());
}

TEST_F(JSONSet, EachChangedMemberIsCountedAndPublishedWithItsBeforeImage)
{
    const auto original = saveEntityBinary(entity);
    EXPECT_EQ(entityFromJSON(entity, R"({"point":{"x":5,"y":6},"color":{"red":0.5,"green":0.5,"blue":0.5,"alpha":1},
                                         "rect":{"left":1,"top":2,"right":3,"bottom":4},"count":9,"unknown":1})"),
        3u);
    EXPECT_EQ(entity.point, Point2(5, 6));
    EXPECT_EQ(entity.rect, Rect2(1, 2, 3, 4));
    EXPECT_EQ(entity.count, 9);
    EXPECT_EQ(entity.changeCount(), 3u);
    ASSERT_EQ(sink.beforeImages.size(), 3u);
    EXPECT_EQ(sink.beforeImages.front(), original);
    EXPECT_TRUE(sink.notified.front());

    // The first before-image is all an undo needs.
    loadEntityBinary(entity, sink.beforeImages.front());
    EXPECT_EQ(entity.point, Point2(1, 2));
    EXPECT_EQ(entity.count, 0);
}

TEST_F(JSONSet, ChangesCanBeMadeWithoutNotification)
{
    EXPECT_EQ(entityFromJSON(entity, R"({"size":{"width":3,"height":4}})", /*notifyOfChange=*/false), 1u);
    ASSERT_EQ(sink.notified.size(), 1u);
    EXPECT_FALSE(sink.notified.front());
}

TEST_F(JSONSet, AValueWithoutCallbackIsSetWholeFromAllItsMembers)
{
    EXPECT_EQ(entityFromJSON(entity, R"({"label":{"value":"Hello","module":"M","id":"K","defaultValue":"D",
                                         "globalized":false,"globalizedValueInitialize":false}})"),
        1u);
    EXPECT_EQ(entity.label.value(), L"Hello");
    EXPECT_TRUE(entity.label.wasGlobalized());
    EXPECT_EQ(entity.changeCount(), 1u);
}

TEST_F(JSONSet, TextThatIsNotJSONIsAnError)
{
    EXPECT_THROW(entityFromJSON(entity, R"({"point":{"x":1,)"), Exception);
    EXPECT_THROW(entityFromJSON(entity, ""), Exception);
    EXPECT_EQ(entity.changeCount(), 0u);
}

} // namespace
} // namespace Kx
