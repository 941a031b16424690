// The exact encodings of the value types (binary bytes, XML attributes, JSON text), golden files
// of a whole entity, and what readers do with damaged input.

#include <Types/Geometry/ValueMetaTypes.h>
#include <Types/Testors/GeometryTestor.h>

#include "support/TestSupport.h"

#include <base/Exception.h>
#include <base/JSONNode.h>
#include <datamodel/BinaryStreams.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/JSONStreams.h>
#include <datamodel/XmlBulkStream.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>

namespace Kx {
namespace {

template <class T>
std::vector<std::uint8_t> binaryOf(const T& value)
{
    BinaryWriteStream stream;
    T::s_metaType()->save(&value, &stream, VisitorContext(eVisitSave));
    return stream.takeBytes();
}

template <class T>
T fromBinary(const std::vector<std::uint8_t>& bytes)
{
    BinaryReadStream stream(bytes);
    T value;
    T::s_metaType()->load(&value, T::s_metaType()->version(), &stream, VisitorContext(eVisitLoad));
    EXPECT_TRUE(stream.atEnd());
    return value;
}

template <class T>
std::string xmlOf(const T& value)
{
    XmlWriteStream stream;
    XMLNode root = stream.root();
    XMLNode element = root.appendChild("value");
    T::s_metaType()->save(&value, &stream, VisitorContext(eVisitSave).withEntity(nullptr, element));
    return stream.toString(false);
}

template <class T>
T fromXml(const std::string& xml)
{
    XmlReadStream stream(xml);
    T value;
    const XMLNode element = stream.root().child("value");
    T::s_metaType()->load(&value, T::s_metaType()->version(), &stream, VisitorContext(eVisitLoad).withEntity(nullptr, element));
    return value;
}

template <class T>
std::string jsonOf(const T& value)
{
    JSONGetStream stream;
    T::s_metaType()->getJSON(&value, &stream, VisitorContext(eVisitJSON));
    return stream.takeText();
}

std::vector<std::uint8_t> littleEndian(std::initializer_list<std::int32_t> words)
{
    std::vector<std::uint8_t> bytes;
    for (std::int32_t word : words)
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(word) >> shift));
    return bytes;
}

std::vector<std::uint8_t> floatBytes(std::initializer_list<float> values)
{
    std::vector<std::uint8_t> bytes(values.size() * 4);
    std::memcpy(bytes.data(), values.begin(), bytes.size());
    return bytes;
}

TEST(ValueEncoding, BinaryIsTheFieldsInDeclarationOrderWithNothingBetween)
{
    constexpr auto kMin = std::numeric_limits<std::int32_t>::min();
    constexpr auto kMax = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(binaryOf(Point2(3, -4)), littleEndian({3, -4}));
    EXPECT_EQ(binaryOf(Size2(kMin, kMax)), littleEndian({kMin, kMax}));
    EXPECT_EQ(binaryOf(Rect2(1, 2, 3, 4)), littleEndian({1, 2, 3, 4}));
    // Border4 keeps its own order, top, bottom, left, right, not Rect2's edge order.
    EXPECT_EQ(binaryOf(Border4(1, 2, 3, 4)), littleEndian({1, 2, 3, 4}));
    EXPECT_EQ(binaryOf(Color(0.25f, 0.5f, 0.75f, 1.0f)), floatBytes({0.25f, 0.5f, 0.75f, 1.0f}));

    EXPECT_EQ(fromBinary<Point2>(littleEndian({kMin, kMax})), Point2(kMin, kMax));
    EXPECT_EQ(fromBinary<Border4>(littleEndian({1, 2, 3, 4})), Border4(1, 2, 3, 4));
    EXPECT_EQ(fromBinary<Color>(floatBytes({0.25f, 0.5f, 0.75f, 1.0f})), Color(0.25f, 0.5f, 0.75f, 1.0f));
}

TEST(ValueEncoding, XmlIsOneAttributePerFieldUnderItsKey)
{
    EXPECT_EQ(xmlOf(Point2(3, -4)), R"(<?xml version="1.0"?><KxData><value x="3" y="-4"/></KxData>)");
    EXPECT_EQ(xmlOf(Size2(5, 6)), R"(<?xml version="1.0"?><KxData><value width="5" height="6"/></KxData>)");
    EXPECT_EQ(xmlOf(Rect2(1, 2, 3, 4)),
        R"(<?xml version="1.0"?><KxData><value left="1" top="2" right="3" bottom="4"/></KxData>)");
    EXPECT_EQ(xmlOf(Border4(1, 2, 3, 4)),
        R"(<?xml version="1.0"?><KxData><value top="1" bottom="2" left="3" right="4"/></KxData>)");
    EXPECT_EQ(xmlOf(Color(0.1f, 0.5f, 0.0f, 1.0f)),
        R"(<?xml version="1.0"?><KxData><value red="0.1" green="0.5" blue="0" alpha="1"/></KxData>)");

    EXPECT_EQ(fromXml<Rect2>(xmlOf(Rect2(-1, -2, 3, 4))), Rect2(-1, -2, 3, 4));
    EXPECT_EQ(fromXml<Color>(xmlOf(Color(0.1f, 0.2f, 0.3f, 0.4f))), Color(0.1f, 0.2f, 0.3f, 0.4f));
    // A missing attribute reads as the attribute proxy's absent value, 0; no error.
    EXPECT_EQ(fromXml<Point2>(R"(<KxData><value x="7"/></KxData>)"), Point2(7, 0));
    EXPECT_EQ(fromXml<Point2>(R"(<KxData><value x="seven" y="2"/></KxData>)"), Point2(0, 2));
}

TEST(ValueEncoding, JsonIsOneMemberPerKey)
{
    EXPECT_EQ(jsonOf(Point2(3, -4)), R"({"x":3,"y":-4})");
    EXPECT_EQ(jsonOf(Size2(5, 6)), R"({"width":5,"height":6})");
    EXPECT_EQ(jsonOf(Rect2(1, 2, 3, 4)), R"({"left":1,"top":2,"right":3,"bottom":4})");
    EXPECT_EQ(jsonOf(Border4(1, 2, 3, 4)), R"({"top":1,"bottom":2,"left":3,"right":4})");
    EXPECT_EQ(jsonOf(Color(0.1f, 0.5f, 0.0f, 1.0f)), R"({"red":0.1,"green":0.5,"blue":0,"alpha":1})");
}

GeometryTestor& sampleTestor(GeometryTestor& entity)
{
    entity.point = Point2(3, -4);
    entity.size = Size2(640, 480);
    entity.rect = Rect2(-10, 20, 300, 400);
    entity.border = Border4(1, 2, 3, 4);
    entity.color = Color(0.25f, 0.5f, 0.75f, 1.0f);
    entity.label.set(std::make_tuple(std::string("KxTypes"), std::string("Sample"), std::string("Sample \"label\" <x>")));
    entity.count = -7;
    entity.name = L"Gr\u00fc\u00dfe, \u4e16\u754c";
    return entity;
}

void expectSameMembers(const GeometryTestor& actual, const GeometryTestor& expected)
{
    EXPECT_EQ(actual.point, expected.point);
    EXPECT_EQ(actual.size, expected.size);
    EXPECT_EQ(actual.rect, expected.rect);
    EXPECT_EQ(actual.border, expected.border);
    EXPECT_EQ(actual.color, expected.color);
    EXPECT_EQ(actual.label.isGlobalized(), expected.label.isGlobalized());
    EXPECT_EQ(actual.label.wasGlobalized(), expected.label.wasGlobalized());
    EXPECT_EQ(actual.label.toString(), expected.label.toString());
    EXPECT_EQ(actual.count, expected.count);
    EXPECT_EQ(actual.name, expected.name);
}

TEST(EntityEncoding, GoldenFilesOfAWholeEntityInEveryForm)
{
    GeometryTestor entity;
    sampleTestor(entity);
    KxTest::expectGoldenBytes("values/geometry_testor.bin", saveEntityBinary(entity));
    KxTest::expectGoldenText("values/geometry_testor.xml", saveEntityXml(entity));
    KxTest::expectGoldenText("values/geometry_testor.json", entityToJSON(entity));
}

TEST(EntityEncoding, GoldenFilesReadBackToTheSameEntity)
{
    GeometryTestor expected;
    sampleTestor(expected);

    GeometryTestor fromBinary;
    loadEntityBinary(fromBinary, KxTest::readBytes(KxTest::dataPath("values/geometry_testor.bin")));
    expectSameMembers(fromBinary, expected);

    GeometryTestor fromXml;
    loadEntityXml(fromXml, KxTest::readText(KxTest::dataPath("values/geometry_testor.xml")));
    expectSameMembers(fromXml, expected);

    GeometryTestor fromJSON;
    EXPECT_EQ(entityFromJSON(fromJSON, KxTest::readText(KxTest::dataPath("values/geometry_testor.json"))), 8u);
    expectSameMembers(fromJSON, expected);
}

// Hand-edited or foreign XML: members, fields and attributes in another order, with elements and
// attributes this build does not know between them, read to the same entity.
TEST(EntityEncoding, XmlInAnyOrderReadsBackToTheSameEntity)
{
    GeometryTestor expected;
    sampleTestor(expected);
    const std::string shuffled = R"(<?xml version="1.0"?>
<KxEntities>
  <GeometryTestor name="Grüße, 世界" extra="1" count="-7" _version="0">
    <label globalizedValueInitialize="0" globalized="1" defaultValue="Sample &quot;label&quot; &lt;x>" id="Sample" module="KxTypes" value="" />
    <unknown a="1" />
    <color alpha="1" blue="0.75" green="0.5" red="0.25" />
    <border right="4" left="3" bottom="2" top="1" />
    <rect bottom="400" right="300" top="20" left="-10" />
    <size height="480" width="640" />
    <point y="-4" x="3" />
  </GeometryTestor>
</KxEntities>)";
    GeometryTestor fromXml;
    loadEntityXml(fromXml, shuffled);
    expectSameMembers(fromXml, expected);

    // A member named twice: the first is read, as a search by name finds it.
    GeometryTestor twice;
    loadEntityXml(twice, R"(<KxEntities><GeometryTestor _version="0"><point x="1" y="2"/><point x="5" y="6"/></GeometryTestor></KxEntities>)");
    EXPECT_EQ(twice.point, Point2(1, 2));
}

TEST(EntityEncoding, EveryTruncationOfTheBinaryFormIsRefused)
{
    GeometryTestor entity;
    const auto bytes = saveEntityBinary(sampleTestor(entity));
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        SCOPED_TRACE(length);
        GeometryTestor target;
        EXPECT_THROW(loadEntityBinary(target, std::span(bytes.data(), length)), Exception);
    }
}

TEST(EntityEncoding, HostileLengthsAndVersionsAreRefused)
{
    GeometryTestor entity;
    auto bytes = saveEntityBinary(sampleTestor(entity));
    struct Case {
        const char* name;
        std::size_t offset;
        std::uint32_t value;
    };
    // Offsets: 0 stored version, 4 member byte count, then the members (the label's value string
    // length sits after point, size, rect, border and color: 8 + 8 + 8 + 16 + 16 + 16).
    const Case cases[] = {
        {"newer version", 0, 1},
        {"member count beyond the data", 4, 0xFFFFFFFFu},
        {"string length beyond the data", 8 + 64, 0x7FFFFFFFu},
    };
    for (const Case& hostile : cases) {
        SCOPED_TRACE(hostile.name);
        auto damaged = bytes;
        std::memcpy(damaged.data() + hostile.offset, &hostile.value, sizeof hostile.value);
        GeometryTestor target;
        EXPECT_THROW(loadEntityBinary(target, damaged), Exception);
    }
}

TEST(EntityEncoding, DamagedXmlIsRefusedAndMissingMembersKeepTheirValues)
{
    GeometryTestor target;
    EXPECT_THROW(loadEntityXml(target, "<KxEntities><GeometryTestor"), Exception);
    EXPECT_THROW(loadEntityXml(target, "<KxEntities><Other/></KxEntities>"), Exception);
    EXPECT_THROW(loadEntityXml(target, R"(<KxEntities><GeometryTestor _version="9"/></KxEntities>)"), Exception);

    target.point = Point2(1, 1);
    loadEntityXml(target, R"(<KxEntities><GeometryTestor _version="0" count="5"><rect left="1" top="2" right="3" bottom="4"/></GeometryTestor></KxEntities>)");
    EXPECT_EQ(target.point, Point2(1, 1));
    EXPECT_EQ(target.rect, Rect2(1, 2, 3, 4));
    EXPECT_EQ(target.count, 5);
}

} // namespace
} // namespace Kx

namespace Kx {
namespace {

// The callbacks write their JSON text directly; it must stay the text a JSONNode of the same
// fields gives, for any value.
TEST(ValueEncoding, JsonTextIsWhatAJsonNodeOfTheFieldsWrites)
{
    std::mt19937 random(20261121);
    std::uniform_int_distribution<std::int32_t> anyInt(std::numeric_limits<std::int32_t>::min(),
        std::numeric_limits<std::int32_t>::max());
    std::uniform_int_distribution<std::uint32_t> anyBits;
    const auto anyFloat = [&] {
        const std::uint32_t bits = anyBits(random);
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    };
    for (int i = 0; i < 2000; ++i) {
        const Rect2 rect(anyInt(random), anyInt(random), anyInt(random), anyInt(random));
        JSONNode rectNode;
        rectNode["left"] = rect.left;
        rectNode["top"] = rect.top;
        rectNode["right"] = rect.right;
        rectNode["bottom"] = rect.bottom;
        EXPECT_EQ(jsonOf(rect), rectNode.stringify(false));

        const Color color(anyFloat(), i % 2 == 0 ? -0.0f : anyFloat(), anyFloat(), static_cast<float>(i) / 7.0f);
        JSONNode colorNode;
        colorNode["red"] = color.red();
        colorNode["green"] = color.green();
        colorNode["blue"] = color.blue();
        colorNode["alpha"] = color.alpha();
        EXPECT_EQ(jsonOf(color), colorNode.stringify(false));
    }
}

} // namespace
} // namespace Kx
