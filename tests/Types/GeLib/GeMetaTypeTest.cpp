// The geometry kernel's types as data-model values: the meta type contract for all of them, whole
// GeLibTestor entities through every stream, and the matrix and version rules.

#include "GeLibSamples.h"

#include <Types/GeLib/GeMetaTypes.h>

#include "support/TestSupport.h"

#include <base/Exception.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/MetaTypeRegistry.h>

#include <gtest/gtest.h>

namespace Kx {
namespace {

template <class T>
class GeometryMetaTypeContract : public ::testing::Test {};

using GeometryTypes = ::testing::Types<TmGePoint2d, TmGePoint3d, TmGeVector2d, TmGeVector3d, TmGeMatrix2d,
    TmGeMatrix3d, TmGeLine3d, TmGeLineSeg3d, TmGePlane, TmGeBoundedPlane, TmGeCircArc2d, TmGeCircArc3d,
    TmGeEllipArc2d, TmGeEllipArc3d, TmGeNurbCurve2d, TmGeNurbCurve3d, TmGePolyline3d, TmGeCurve3dVec>;
TYPED_TEST_SUITE(GeometryMetaTypeContract, GeometryTypes);

TYPED_TEST(GeometryMetaTypeContract, AnswersLikeEveryValueMetaType)
{
    using Traits = ValueTraits<TypeParam>;
    auto* metaType = TValueMetaType<TypeParam>::get();
    EXPECT_EQ(metaType, TValueMetaType<TypeParam>::get());
    EXPECT_EQ(metaType->metaTypeId(), std::string(Traits::id));
    EXPECT_EQ(metaType->metaTypeName(), std::string(Traits::name) + "ValueMetaType");
    EXPECT_EQ(metaType->version(), Traits::version);
    EXPECT_EQ(MetaTypeRegistry::get().find(metaType->metaTypeId()), metaType);

    const VisitorContext context;
    void* value = metaType->construct();
    ASSERT_NE(value, nullptr);
    EXPECT_TRUE(metaType->equals(value, &static_cast<const TypeParam&>(TypeParam())));
    EXPECT_EQ(metaType->sizeInBytes(context), sizeof(TypeParam));
    EXPECT_EQ(metaType->queryMTInterface(value), value);
    EXPECT_EQ(metaType->migrationHelper(value), nullptr);
    EXPECT_FALSE(metaType->deleteMigrationHelper(value, context));
    EXPECT_EQ(metaType->migratingVersion(value, context), 0u);
    EXPECT_EQ(metaType->postMigrate(value, 0, context), eMigrationDone);
    EXPECT_NE(metaType->dataModelCallback(), nullptr);
    metaType->destruct(value);
}

TEST(GeometryValues, AWholeEntitySurvivesBinaryAndXmlExactly)
{
    GeLibTestor original;
    KxTest::fillGeLibTestor(original);

    GeLibTestor fromBinary;
    loadEntityBinary(fromBinary, saveEntityBinary(original));
    KxTest::expectSameGeometry(fromBinary, original);

    GeLibTestor fromXml;
    loadEntityXml(fromXml, saveEntityXml(original));
    KxTest::expectSameGeometry(fromXml, original);
}

TEST(GeometryValues, GoldenFilesOfAWholeEntity)
{
    GeLibTestor original;
    KxTest::fillGeLibTestor(original);
    KxTest::expectGoldenBytes("gelib/gelib_testor.bin", saveEntityBinary(original));
    KxTest::expectGoldenText("gelib/gelib_testor.xml", saveEntityXml(original));

    GeLibTestor fromBinary;
    loadEntityBinary(fromBinary, KxTest::readBytes(KxTest::dataPath("gelib/gelib_testor.bin")));
    KxTest::expectSameGeometry(fromBinary, original);
    GeLibTestor fromXml;
    loadEntityXml(fromXml, KxTest::readText(KxTest::dataPath("gelib/gelib_testor.xml")));
    KxTest::expectSameGeometry(fromXml, original);
}

TEST(GeometryValues, EveryTruncationOfTheBinaryFormIsRefused)
{
    GeLibTestor original;
    KxTest::fillGeLibTestor(original);
    const auto bytes = saveEntityBinary(original);
    for (std::size_t length = 0; length < bytes.size(); length += 7) {
        SCOPED_TRACE(length);
        GeLibTestor target;
        EXPECT_THROW(loadEntityBinary(target, std::span(bytes.data(), length)), Exception);
    }
}

TEST(GeometryValues, AnIdentityMatrixIsStoredAsItsKeyAlone)
{
    GeLibTestor entity;
    const std::string xml = saveEntityXml(entity);
    EXPECT_NE(xml.find(R"(<matrix3d Identity="1" />)"), std::string::npos) << xml;
    EXPECT_NE(xml.find(R"(<matrix2d Identity="1" />)"), std::string::npos) << xml;

    entity.matrix3d = TmGeMatrix3d::translation(TmGeVector3d(1, 2, 3));
    GeLibTestor read;
    read.matrix3d = TmGeMatrix3d::translation(TmGeVector3d(9, 9, 9));
    loadEntityXml(read, saveEntityXml(entity));
    EXPECT_EQ(read.matrix3d, entity.matrix3d);
    loadEntityXml(read, saveEntityXml(GeLibTestor()));
    EXPECT_TRUE(read.matrix3d.isIdentity());
}

TEST(GeometryValues, StoredVersionsMapToKernelLayouts)
{
    EXPECT_EQ(metaTypeVersionToGeLibVersion(1, 1), TmGeLibVersion::kTmGeLibVersion3_2);
    EXPECT_EQ(metaTypeVersionToGeLibVersion(0, 0), TmGeLibVersion::kTmGeLibVersion3_2);
    EXPECT_EQ(metaTypeVersionToGeLibVersion(0, 1), TmGeLibVersion::kTmGeLibVersion3_0);
}

TEST(GeometryValues, DataTheKernelRefusesIsADamagedFile)
{
    GeLibTestor entity;
    entity.nurbCurve2d = TmGeNurbCurve2d(1, {0, 0, 1, 1}, {{0, 0}, {1, 1}});
    std::string xml = saveEntityXml(entity);
    // Make the knots decrease: the kernel refuses such a curve.
    const auto knots = xml.find("<nurbCurve2d");
    ASSERT_NE(knots, std::string::npos);
    const auto lastKnot = xml.find(R"(Value="1")", knots);
    ASSERT_NE(lastKnot, std::string::npos);
    xml.replace(lastKnot, 9, R"(Value="-5")");
    GeLibTestor read;
    EXPECT_THROW(loadEntityXml(read, xml), Exception);
}

TEST(GeometryValues, TypesWithoutAJsonFormAreLeftOutOfTheEntityJson)
{
    GeLibTestor entity;
    KxTest::fillGeLibTestor(entity);
    const std::string json = entityToJSON(entity);
    for (const char* member : {"nurbCurve2d", "nurbCurve3d", "polyline", "boundedPlane", "curves"}) {
        SCOPED_TRACE(member);
        EXPECT_EQ(json.find(std::string("\"") + member + "\""), std::string::npos);
    }
    // Every type with a JSON form comes back exactly, but for the infinite line: its JSON names two
    // points, and the direction is their difference again, within the kernel's tolerance.
    GeLibTestor read;
    EXPECT_EQ(entityFromJSON(read, json), 21u);
    EXPECT_TRUE(read.line.isEqualTo(entity.line));
    read.line = entity.line;
    read.nurbCurve2d = entity.nurbCurve2d;
    read.nurbCurve3d = entity.nurbCurve3d;
    read.polyline = entity.polyline;
    read.boundedPlane = entity.boundedPlane;
    read.curves = entity.curves;
    KxTest::expectSameGeometry(read, entity);

    // Setting the same JSON again changes nothing.
    EXPECT_EQ(entityFromJSON(read, json), 0u);
}

TEST(GeometryValues, TextFormsNameTheValue)
{
    const VisitorContext context;
    const TmGePoint3d point(1, 0.5, -2);
    EXPECT_EQ(TmGePoint3dValueMetaType::get()->toString(&point, context), L"(1, 0.5, -2)");
}

} // namespace
} // namespace Kx
