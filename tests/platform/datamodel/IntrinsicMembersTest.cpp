// Scalar members of an entity through every encoding, and the entity frame around them.

#include <datamodel/EntityCodec.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/BinaryStreams.h>
#include <datamodel/IntrinsicMetaType.h>
#include <datamodel/MemberSet.h>
#include <datamodel/VisitorContext.h>

#include <base/Exception.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <typeinfo>

namespace Kx {
namespace {

class ScalarTestor final : public Entity {
public:
    ScalarTestor() : Entity(s_metaType()) {}

    static EntityMetaType& s_metaType()
    {
        static TEntityMetaType<ScalarTestor> metaType("5D1B7C3E-0000-4000-8000-00000000AB10", "ScalarTestor", 0);
        return metaType;
    }

    template <class T>
    void add(MemberSet* memberSet, const char* name, T& field)
    {
        memberSet->addNewMember(name, &field, typeid(T).name(), IntrinsicMetaType<T>::get());
    }

    void declareMembers(unsigned, MemberSet* memberSet)
    {
        add(memberSet, "flag", flag);
        add(memberSet, "small", small);
        add(memberSet, "unsignedSmall", unsignedSmall);
        add(memberSet, "big", big);
        add(memberSet, "unsignedBig", unsignedBig);
        add(memberSet, "single", single);
        add(memberSet, "real", real);
        add(memberSet, "text", text);
        add(memberSet, "wide", wide);
    }

    bool flag = false;
    std::int32_t small = 0;
    std::uint32_t unsignedSmall = 0;
    std::int64_t big = 0;
    std::uint64_t unsignedBig = 0;
    float single = 0;
    double real = 0;
    std::string text;
    std::wstring wide;
};

void fill(ScalarTestor& entity)
{
    entity.flag = true;
    entity.small = std::numeric_limits<std::int32_t>::min();
    entity.unsignedSmall = std::numeric_limits<std::uint32_t>::max();
    entity.big = std::numeric_limits<std::int64_t>::min();
    entity.unsignedBig = std::numeric_limits<std::uint64_t>::max();
    entity.single = 0.1f;
    entity.real = 1.0 / 3.0;
    entity.text = "quote \" and <tag> & \xF0\x9F\x98\x80";
    entity.wide = L"\u4e16\u754c \U0001F600";
}

void expectEqual(const ScalarTestor& a, const ScalarTestor& b)
{
    EXPECT_EQ(a.flag, b.flag);
    EXPECT_EQ(a.small, b.small);
    EXPECT_EQ(a.unsignedSmall, b.unsignedSmall);
    EXPECT_EQ(a.big, b.big);
    EXPECT_EQ(a.unsignedBig, b.unsignedBig);
    EXPECT_EQ(a.single, b.single);
    EXPECT_EQ(a.real, b.real);
    EXPECT_EQ(a.text, b.text);
    EXPECT_EQ(a.wide, b.wide);
}

TEST(IntrinsicMembers, ExtremeValuesSurviveEveryEncoding)
{
    ScalarTestor original;
    fill(original);

    ScalarTestor binary;
    loadEntityBinary(binary, saveEntityBinary(original));
    expectEqual(binary, original);

    ScalarTestor xml;
    loadEntityXml(xml, saveEntityXml(original));
    expectEqual(xml, original);

    ScalarTestor json;
    EXPECT_EQ(entityFromJSON(json, entityToJSON(original)), 9u);
    expectEqual(json, original);
}

TEST(IntrinsicMembers, JSONHasNoNaNSoItIsWrittenAsNullAndNotReadBack)
{
    ScalarTestor entity;
    entity.real = std::numeric_limits<double>::quiet_NaN();
    const std::string json = entityToJSON(entity);
    EXPECT_NE(json.find(R"("real":null)"), std::string::npos) << json;
    ScalarTestor target;
    target.real = 2.5;
    entityFromJSON(target, json);
    EXPECT_EQ(target.real, 2.5);
}

TEST(IntrinsicMembers, AnEntityReadsOnlyItsOwnBytes)
{
    ScalarTestor first;
    fill(first);
    auto bytes = saveEntityBinary(first);
    const auto firstSize = bytes.size();
    ScalarTestor second;
    second.small = 42;
    const auto secondBytes = saveEntityBinary(second);
    bytes.insert(bytes.end(), secondBytes.begin(), secondBytes.end());

    BinaryReadStream stream(bytes);
    ScalarTestor readFirst;
    ScalarTestor readSecond;
    ScalarTestor::s_metaType().load(readFirst, &stream, VisitorContext(eVisitLoad));
    EXPECT_EQ(stream.position(), firstSize);
    ScalarTestor::s_metaType().load(readSecond, &stream, VisitorContext(eVisitLoad));
    expectEqual(readFirst, first);
    EXPECT_EQ(readSecond.small, 42);
}

} // namespace
} // namespace Kx
