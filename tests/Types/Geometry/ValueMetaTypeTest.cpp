// The meta type contract, checked once for every registered value type: a type added to the
// registration list is covered here the day it is registered.

#include <Types/Geometry/ValueMetaTypes.h>

#include <base/Strings.h>
#include <datamodel/DataModelCallback.h>
#include <datamodel/MemberSet.h>
#include <datamodel/MetaTypeRegistry.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace Kx {
namespace {

template <class T>
class ValueMetaTypeContract : public ::testing::Test {};

using AllValueTypes = ::testing::Types<Point2, Size2, Rect2, Border4, Float2, Float3, Point2f, Point3f, Vector2f,
    Vector3f, BRect, BBox, Color, GlobalizedString>;
TYPED_TEST_SUITE(ValueMetaTypeContract, AllValueTypes);

TYPED_TEST(ValueMetaTypeContract, IdentityMatchesTheRegistrationRecord)
{
    using Traits = ValueTraits<TypeParam>;
    auto* metaType = TValueMetaType<TypeParam>::get();
    ASSERT_NE(metaType, nullptr);
    EXPECT_EQ(metaType, TValueMetaType<TypeParam>::get());
    EXPECT_EQ(metaType, TypeParam::s_metaType());
    EXPECT_EQ(TValueMetaType<TypeParam>::s_metaTypeId(), std::string(Traits::id));
    EXPECT_EQ(metaType->metaTypeId().size(), 36u);
    EXPECT_EQ(metaType->metaTypeName(), std::string(Traits::name) + "ValueMetaType");
    EXPECT_EQ(metaType->typeName(), std::string(Traits::name));
    EXPECT_EQ(metaType->version(), Traits::version);
    EXPECT_EQ(MetaTypeRegistry::get().find(metaType->metaTypeId()), metaType);
}

TYPED_TEST(ValueMetaTypeContract, ConstructsDefaultValuesAndAnswersTheFixedQueries)
{
    auto* metaType = TValueMetaType<TypeParam>::get();
    const VisitorContext context;
    void* value = metaType->construct();
    ASSERT_NE(value, nullptr);
    EXPECT_TRUE(metaType->equals(value, &static_cast<const TypeParam&>(TypeParam())));
    EXPECT_EQ(metaType->sizeInBytes(context), sizeof(TypeParam));
    EXPECT_EQ(metaType->toString(value, context), static_cast<TypeParam*>(value)->toString());

    EXPECT_EQ(metaType->queryMTInterface(value), value);
    const MetaType* other = metaType == Point2::s_metaType() ? static_cast<MetaType*>(Size2::s_metaType())
                                                             : static_cast<MetaType*>(Point2::s_metaType());
    EXPECT_EQ(static_cast<TypeParam*>(value)->queryMTInterface(other), nullptr);

    EXPECT_EQ(metaType->migrationHelper(value), nullptr);
    EXPECT_EQ(metaType->createMigrationHelper(value, context), nullptr);
    EXPECT_FALSE(metaType->deleteMigrationHelper(value, context));
    EXPECT_EQ(metaType->migratingVersion(value, context), 0u);
    metaType->migratingVersion(value, 7, context);
    EXPECT_EQ(metaType->migratingVersion(value, context), 7u);
    EXPECT_EQ(metaType->postMigrate(value, 3, context), eMigrationDone);
    EXPECT_EQ(metaType->migratingVersion(value, context), 7u) << "onPostMigrate must not touch the value";
    metaType->destruct(value);

    alignas(TypeParam) unsigned char storage[sizeof(TypeParam)];
    void* placed = metaType->construct(storage, context);
    EXPECT_EQ(placed, storage);
    static_cast<TypeParam*>(placed)->~TypeParam();
}

TYPED_TEST(ValueMetaTypeContract, MemberSetListsTheFieldsInDeclarationOrderWithTheCallbackAttached)
{
    using Traits = ValueTraits<TypeParam>;
    auto* metaType = TValueMetaType<TypeParam>::get();
    const MemberSet& members = metaType->currentMemberSet();
    ASSERT_TRUE(members.isComplete());
    EXPECT_EQ(members.typeName(), std::string(Traits::name));
    ASSERT_EQ(members.members().size(), std::tuple_size_v<decltype(Traits::fields)>);
    std::size_t previousOffset = 0;
    forEachField(Traits::fields, [&](const auto& field, auto index) {
        const Member& member = members.members()[index];
        EXPECT_EQ(ToIString(member.name), std::wstring(field.key));
        EXPECT_GT(member.offset, index == 0 ? sizeof(Value) - 1 : previousOffset) << "fields follow the value header";
        previousOffset = member.offset;
    });
    EXPECT_EQ(metaType->dataModelCallback() != nullptr, Traits::hasCallback);
    if (DataModelCallback* callback = metaType->dataModelCallback()) {
        TypeParam value;
        EXPECT_TRUE(callback->doIncludeJSON(&value, nullptr, VisitorContext()));
        EXPECT_FALSE(callback->doIncludeJSON(nullptr, nullptr, VisitorContext()));
        EXPECT_TRUE(callback->doImplementJSON());
    }
}

TEST(ValueMetaTypeRegistry, EveryRegisteredTypeIsInTheDataModelRegistryInOrder)
{
    const auto& names = registeredValueTypeNames();
    const std::vector<std::string_view> ownTypes{"Point2", "Size2", "Rect2", "Border4", "Float2", "Float3", "Point2f",
        "Point3f", "Vector2f", "Vector3f", "BRect", "BBox", "Color", "GlobalizedString"};
    ASSERT_GE(names.size(), ownTypes.size());
    EXPECT_EQ(std::vector<std::string_view>(names.begin(), names.begin() + ownTypes.size()), ownTypes)
        << "the library's own types register first, in this order";
    std::size_t previous = 0;
    const auto all = MetaTypeRegistry::get().all();
    for (std::string_view name : names) {
        SCOPED_TRACE(std::string(name));
        const auto found = std::find_if(all.begin(), all.end(), [&](MetaType* type) { return type->typeName() == name; });
        ASSERT_NE(found, all.end());
        const auto position = static_cast<std::size_t>(found - all.begin());
        EXPECT_GE(position, previous) << "types register in start-up order";
        previous = position;
    }
}

TEST(ValueMetaTypeRegistry, IdentifierIsComparedExactlyAsWritten)
{
    EXPECT_NE(MetaTypeRegistry::get().find("1666C0B1-46B3-45b7-8AA1-C618F7CFA703"), nullptr);
    EXPECT_EQ(MetaTypeRegistry::get().find("1666C0B1-46B3-45B7-8AA1-C618F7CFA703"), nullptr);
}

} // namespace
} // namespace Kx
