#include <datamodel/MetaType.h>
#include <datamodel/MetaTypeRegistry.h>

#include <base/Assert.h>

#include <gtest/gtest.h>

namespace Kx {
namespace {

TEST(MetaTypeRegistry, ASecondTypeUnderATakenIdentifierIsReportedAndRefused)
{
    const std::string id = "5D1B7C3E-0000-4000-8000-00000000AB01";
    MetaType first(id, "FirstMetaType", 0, "First");
    ScopedAssertionCapture capture;
    {
        MetaType second(id, "SecondMetaType", 0, "Second");
        EXPECT_EQ(MetaTypeRegistry::get().find(id), &first);
        ASSERT_EQ(capture.reports().size(), 1u);
        const AssertionReport& report = capture.reports().front();
        EXPECT_EQ(report.condition, "identifierIsFree");
        EXPECT_NE(report.function.find("MetaTypeRegistry::registerType"), std::string::npos) << report.function;
        EXPECT_EQ(report.module, "KxDataModel");
    }
    // The refused type leaving must not take the registered one with it.
    EXPECT_EQ(MetaTypeRegistry::get().find(id), &first);
}

TEST(MetaTypeRegistry, TypesLeaveTheRegistryWithTheirMetaType)
{
    const std::string id = "5D1B7C3E-0000-4000-8000-00000000AB02";
    {
        MetaType scoped(id, "ScopedMetaType", 3, "Scoped");
        EXPECT_EQ(MetaTypeRegistry::get().find(id), &scoped);
        EXPECT_EQ(MetaTypeRegistry::get().findByTypeName("Scoped"), &scoped);
    }
    EXPECT_EQ(MetaTypeRegistry::get().find(id), nullptr);
    EXPECT_EQ(MetaTypeRegistry::get().findByTypeName("Scoped"), nullptr);
}

TEST(MetaTypeRegistry, IntrinsicTypesAreRegisteredWhenTheDataModelLoads)
{
    for (const char* name : {"bool", "int32", "uint32", "int64", "uint64", "float", "double", "string", "wstring"}) {
        SCOPED_TRACE(name);
        EXPECT_NE(MetaTypeRegistry::get().findByTypeName(name), nullptr);
    }
}

} // namespace
} // namespace Kx
