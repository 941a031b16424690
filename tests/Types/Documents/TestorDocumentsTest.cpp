// Documents of GeometryTestor and GeLibTestor entities: every value type of the library and of the
// geometry kernel through a document file, a JSON set undone and redone, and a copy into another
// document.

#include <Types/Geometry/ValueMetaTypes.h>
#include <Types/Testors/GeLibTestor.h>
#include <Types/Testors/GeometryTestor.h>

#include <datamodel/CloningContext.h>
#include <datamodel/CloningStream.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/Segment.h>
#include <datamodel/TransactionManager.h>

#include <support/TestSupport.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Kx {
namespace {

GeometryTestor& addGeometry(Segment& segment, std::int32_t seed)
{
    GeometryTestor& entity = *segment.add(StrongRefCreator<GeometryTestor>::create());
    entity.point = Point2(seed, -seed);
    entity.size = Size2(std::numeric_limits<std::int32_t>::max(), seed);
    entity.rect = Rect2(-seed, std::numeric_limits<std::int32_t>::min(), seed * 3, 7);
    entity.border = Border4(1, 2, 3, seed);
    entity.color = Color(0.1f, 1.0f / 3.0f, -0.0f, 1e-30f);
    entity.label = GlobalizedString(GlobalizedString::Reference{"KxTypes", "Sample", "Sample"});
    entity.count = -seed;
    entity.name = L"\u00C4\u00DF\u4E16 \U0001F600 #" + std::to_wstring(seed);
    return entity;
}

GeLibTestor& addGeometryKernel(Segment& segment)
{
    GeLibTestor& entity = *segment.add(StrongRefCreator<GeLibTestor>::create());
    const double third = 1.0 / 3.0;
    entity.point3d = TmGePoint3d(third, 1e-300, -7.0);
    entity.vector2d = TmGeVector2d(-0.0, 3.25);
    entity.matrix3d = TmGeMatrix3d::rotation(M_PI / 7, TmGeVector3d(1, 1, 0), TmGePoint3d(0.5, 0, 2));
    entity.circArc3d = TmGeCircArc3d(TmGePoint3d(0, 0, 1), TmGeVector3d(0, 0, 1), TmGeVector3d(1, 0, 0), 3, 0, M_PI);
    entity.nurbCurve3d
        = TmGeNurbCurve3d(3, {0, 0, 0, 0, 0.5, 1, 1, 1, 1}, {{0, 0, 0}, {1, 2, 0}, {2, -1, 1}, {3, 0, 2}, {4, 1, 0}});
    entity.polyline = TmGePolyline3d({{0, 0, 0}, {1, 0, 0}, {1, third, 0}});
    entity.curves.append(TmGeLineSeg3d(TmGePoint3d(0, 0, 0), TmGePoint3d(1, 0, 0)));
    entity.curves.append(entity.nurbCurve3d);
    return entity;
}

// The binary image of every entity by id: equal images mean equal members, exactly.
std::map<EntityId, std::vector<std::uint8_t>> images(const Segment& segment)
{
    std::map<EntityId, std::vector<std::uint8_t>> result;
    for (const auto& [id, entity] : segment.entities())
        result.emplace(id, saveEntityBinary(*entity));
    return result;
}

class TestorDocuments : public ::testing::TestWithParam<EStreamMode> {};

TEST_P(TestorDocuments, EveryValueTypeComesBackExactlyThroughADocumentFile)
{
    Document document;
    Segment& segment = *document.createSegment("testors");
    for (std::int32_t seed = 0; seed < 20; ++seed)
        addGeometry(segment, seed * 7919);
    addGeometryKernel(segment);
    KxTest::TempDir directory;
    DocumentFile::save(document, directory / "testors.kxd", GetParam());

    const std::unique_ptr<Document> opened = DocumentFile::open(directory / "testors.kxd");
    EXPECT_EQ(images(*opened->segment("testors")), images(segment));
}

INSTANTIATE_TEST_SUITE_P(BothStreams, TestorDocuments, ::testing::Values(EStreamMode::eBinary, EStreamMode::eXML),
    [](const auto& info) { return info.param == EStreamMode::eBinary ? std::string("Binary") : std::string("XML"); });

TEST(TestorDocuments, JSONSetsUndoAndRedoSingleOrAsANamedTransaction)
{
    Document document;
    Segment& segment = *document.createSegment("main");
    GeometryTestor& entity = addGeometry(segment, 5);
    document.transactions().clear();
    const auto original = saveEntityBinary(entity);

    EXPECT_EQ(entityFromJSON(entity, R"({"point":{"x":1,"y":2}})"), 1u);
    const auto afterSet = saveEntityBinary(entity);
    {
        Transaction edit(document, L"Edit testor");
        EXPECT_EQ(entityFromJSON(entity, R"({"size":{"width":3,"height":4},"count":9,"name":"renamed"})"), 3u);
        EXPECT_EQ(entityFromJSON(entity, R"({"color":{"red":1,"green":0,"blue":0,"alpha":1}})"), 1u);
        edit.commit();
    }
    const auto afterEdit = saveEntityBinary(entity);
    EXPECT_EQ(document.transactions().undoNames(), (std::vector<std::wstring>{L"Edit testor", L"Modify GeometryTestor"}));

    ASSERT_TRUE(document.transactions().undo());
    EXPECT_EQ(saveEntityBinary(entity), afterSet);
    ASSERT_TRUE(document.transactions().undo());
    EXPECT_EQ(saveEntityBinary(entity), original);
    ASSERT_TRUE(document.transactions().redo());
    ASSERT_TRUE(document.transactions().redo());
    EXPECT_EQ(saveEntityBinary(entity), afterEdit);
    EXPECT_EQ(entity.name, L"renamed");
}

TEST(TestorDocuments, CopiesIntoAnotherDocumentAreExactAndIndependent)
{
    Document source;
    Segment& from = *source.createSegment("main");
    addGeometry(from, 1);
    addGeometry(from, 2);
    addGeometryKernel(from);
    Document target;
    Segment& to = *target.createSegment("pasted");

    CloningContext context(SegmentMap{{&from, &to}});
    CloningStream stream(context);
    for (const auto& [id, entity] : from.entities())
        ASSERT_TRUE(stream.copy(*entity));
    const std::vector<Entity*> copies = stream.paste();
    ASSERT_EQ(copies.size(), 3u);
    std::vector<std::vector<std::uint8_t>> sourceImages;
    for (const auto& [id, image] : images(from))
        sourceImages.push_back(image);
    for (std::size_t index = 0; index < copies.size(); ++index)
        EXPECT_EQ(saveEntityBinary(*copies[index]), sourceImages[index]);

    static_cast<GeometryTestor&>(*copies[0]).count = 77;
    EXPECT_NE(static_cast<GeometryTestor&>(*from.entities().begin()->second).count, 77);
}

} // namespace
} // namespace Kx
