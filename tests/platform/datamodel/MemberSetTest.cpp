#include <datamodel/IntrinsicMetaType.h>
#include <datamodel/MemberSet.h>

#include <base/Assert.h>

#include <gtest/gtest.h>

#include <cstddef>

namespace Kx {
namespace {

struct Owner {
    std::int32_t first = 0;
    double second = 0;
};

TEST(MemberSet, MembersKeepDeclarationOrderAndTheirOffsets)
{
    Owner owner;
    MemberSet members(0);
    MemberSet::initialize(&members, &owner, "Owner");
    members.addNewMember("first", &owner.first, "int", IntrinsicMetaType<std::int32_t>::get());
    members.addNewMember("second", &owner.second, "double", IntrinsicMetaType<double>::get());
    ASSERT_EQ(members.members().size(), 2u);
    EXPECT_EQ(members.members()[0].offset, offsetof(Owner, first));
    EXPECT_EQ(members.members()[1].offset, offsetof(Owner, second));
    EXPECT_EQ(members.find("second"), &members.members()[1]);
    EXPECT_EQ(members.find("third"), nullptr);
    EXPECT_EQ(members.initializationCount(), 1u);
}

TEST(MemberSet, NamesThatAreNotKeysInEveryEncodingAreReported)
{
    Owner owner;
    MemberSet members(0);
    MemberSet::initialize(&members, &owner, "Owner");
    members.addNewMember("first", &owner.first, "int", IntrinsicMetaType<std::int32_t>::get());
    for (const char* name : {"_version", "1st", "with space", "", "first"}) {
        SCOPED_TRACE(name);
        ScopedAssertionCapture capture;
        members.addNewMember(name, &owner.second, "double", IntrinsicMetaType<double>::get());
        ASSERT_EQ(capture.reports().size(), 1u);
        const std::string& condition = capture.reports().front().condition;
        EXPECT_EQ(condition, std::string(name) == "first" ? "find(name) == nullptr" : "isMemberName(name)");
    }
}

} // namespace
} // namespace Kx
