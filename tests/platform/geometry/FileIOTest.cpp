#include <geometry/TmGe.h>

#include "GeometryTestUtil.h"
#include "MemoryFiler.h"

#include <functional>
#include <numbers>
#include <string>
#include <vector>

namespace {

using KxTest::MemoryFiler;
using Tmk::ErrorStatus;

const TmGeLibVersion kOld = TmGeLibVersion::kTmGeLibVersion3_0;
const TmGeLibVersion kCurrent = TmGeLibVersion::kTmGeLibVersion3_2;
const TmGeTol kTight(1e-14, 1e-14);

// One value of one class: how to write it, and how to read it back into a target that starts as
// `sentinel`, reporting whether the target then equals what the layout can carry.
struct Case {
    std::string name;
    std::function<ErrorStatus(TmGeFiler*, const TmGeLibVersion&)> write;
    // Reads into a fresh target; `matches` says whether it equals the expected value for the
    // layout, `untouched` whether it still equals the sentinel.
    std::function<ErrorStatus(TmGeFiler*, const TmGeLibVersion&, bool& matches, bool& untouched)> read;
};

template <class T>
Case makeCase(std::string name, T value, T sentinel, T expectedInOldLayout)
{
    Case c;
    c.name = std::move(name);
    c.write = [value](TmGeFiler* filer, const TmGeLibVersion& version) {
        return TmGeFileIO::outFields(filer, value, version);
    };
    c.read = [value, sentinel, expectedInOldLayout](TmGeFiler* filer, const TmGeLibVersion& version, bool& matches,
                                                    bool& untouched) {
        T target = sentinel;
        const ErrorStatus status = TmGeFileIO::inFields(filer, target, version);
        matches = target.isEqualTo(version < kCurrent ? expectedInOldLayout : value, kTight);
        untouched = target.isEqualTo(sentinel, kTight);
        return status;
    };
    return c;
}

template <class T>
Case makeCase(std::string name, T value, T sentinel)
{
    return makeCase(std::move(name), value, sentinel, value);
}

TmGeLineSeg3d segmentWithInterval()
{
    TmGeLineSeg3d seg(TmGePoint3d(1, 2, 3), TmGePoint3d(-4, 5, 6));
    (void)seg.setInterval({-2.0, 7.5});
    return seg;
}

TmGeNurbCurve3d periodicCubic()
{
    std::vector<double> knots;
    for (int i = 0; i < 10; ++i)
        knots.push_back(0.5 * i);
    return {3,
            knots,
            {{1, 0, 0}, {0, 1, 0}, {-1, 0, 1}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 1}},
            {2.0, 1.0, 0.5, 2.0, 1.0, 0.5},
            true};
}

TmGeNurbCurve3d withoutPeriodicFlag(const TmGeNurbCurve3d& c)
{
    return {c.degree(), c.knots(), c.controlPoints(), c.weights(), false};
}

std::vector<Case> allCases()
{
    TmGeMatrix2d m2 = TmGeMatrix2d::rotation(0.3, TmGePoint2d(1, 2));
    m2.entry[2][0] = 0.25;
    TmGeMatrix3d m3 = TmGeMatrix3d::rotation(1.2, {1, 2, 3}, {4, 5, 6});
    m3.entry[3][1] = -0.5;
    const TmGeNurbCurve3d periodic = periodicCubic();
    const TmGeNurbCurve2d nurbs2(2, {0, 0, 0, 1, 2, 2, 2}, {{0, 0}, {1, 2}, {3, 1}, {4, 4}});
    const TmGeNurbCurve3d polynomial(1, {0, 0, 1, 1}, {{0, 0, 0}, {1, 1, 1}});
    TmGeCurve3dVec mixed;
    mixed.append(TmGeLine3d(TmGePoint3d(1, 1, 1), TmGeVector3d(0, 2, 0)));
    mixed.append(segmentWithInterval());
    mixed.append(TmGeCircArc3d(TmGePoint3d(0, 0, 1), TmGeVector3d(1, 1, 1), 3.0));
    mixed.append(TmGeEllipArc3d(TmGePoint3d(), TmGeVector3d::kYAxis, TmGeVector3d::kZAxis, 3, 1, 0.5, 2.0));
    mixed.append(periodic);
    mixed.append(TmGePolyline3d({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}));
    TmGeCurve3dVec mixedOld;
    mixedOld.append(TmGeLine3d(TmGePoint3d(1, 1, 1), TmGeVector3d(0, 2, 0)));
    mixedOld.append(TmGeLineSeg3d(TmGePoint3d(1, 2, 3), TmGePoint3d(-4, 5, 6)));
    mixedOld.append(TmGeCircArc3d(TmGePoint3d(0, 0, 1), TmGeVector3d(1, 1, 1), 3.0));
    mixedOld.append(TmGeEllipArc3d(TmGePoint3d(), TmGeVector3d::kYAxis, TmGeVector3d::kZAxis, 3, 1, 0.5, 2.0));
    mixedOld.append(withoutPeriodicFlag(periodic));
    mixedOld.append(TmGePolyline3d({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}));

    return {
        makeCase("Point2d", TmGePoint2d(1.5, -2.25), TmGePoint2d(9, 9)),
        makeCase("Point3d", TmGePoint3d(1.5, -2.25, 1e300), TmGePoint3d(9, 9, 9)),
        makeCase("Vector2d", TmGeVector2d(-0.1, 0.2), TmGeVector2d(9, 9)),
        makeCase("Vector3d", TmGeVector3d(-0.1, 0.2, -0.3), TmGeVector3d(9, 9, 9)),
        makeCase("Matrix2d", m2, TmGeMatrix2d()),
        makeCase("Matrix3d", m3, TmGeMatrix3d()),
        makeCase("Line3d", TmGeLine3d(TmGePoint3d(1, 2, 3), TmGeVector3d(0, 0, 4)), TmGeLine3d()),
        makeCase("LineSeg3d", segmentWithInterval(), TmGeLineSeg3d(),
                 TmGeLineSeg3d(TmGePoint3d(1, 2, 3), TmGePoint3d(-4, 5, 6))),
        makeCase("Plane", TmGePlane(TmGePoint3d(1, 2, 3), TmGeVector3d(1, -1, 2)), TmGePlane()),
        makeCase("BoundedPlane", TmGeBoundedPlane(TmGePoint3d(1, 2, 3), TmGeVector3d(1, 0, 1), TmGeVector3d(0, 3, 0)),
                 TmGeBoundedPlane()),
        makeCase("CircArc2d", TmGeCircArc2d(TmGePoint2d(1, 2), 3.0, 0.25, 2.5, TmGeVector2d(0, -1), true), TmGeCircArc2d()),
        makeCase("CircArc3d",
                 TmGeCircArc3d(TmGePoint3d(1, 2, 3), TmGeVector3d(0, 1, 0), TmGeVector3d(1, 0, 1), 2.0, -1.0, 1.0),
                 TmGeCircArc3d()),
        makeCase("EllipArc2d", TmGeEllipArc2d(TmGePoint2d(1, 2), TmGeVector2d(0, 1), TmGeVector2d(1, 0), 4.0, 2.0, 0.1, 3.0),
                 TmGeEllipArc2d()),
        makeCase("EllipArc3d",
                 TmGeEllipArc3d(TmGePoint3d(1, 2, 3), TmGeVector3d(0, 0, 1), TmGeVector3d(1, 0, 0), 4.0, 2.0, 0.1, 3.0),
                 TmGeEllipArc3d()),
        makeCase("NurbCurve2d", nurbs2, TmGeNurbCurve2d()),
        makeCase("NurbCurve3d periodic rational", periodic, polynomial, withoutPeriodicFlag(periodic)),
        makeCase("NurbCurve3d polynomial", polynomial, periodic),
        makeCase("NurbCurve3d empty", TmGeNurbCurve3d(), polynomial),
        makeCase("Polyline3d", TmGePolyline3d({{0, 0, 0}, {1, 2, 3}, {4, 5, 6}}), TmGePolyline3d()),
        makeCase("Polyline3d empty", TmGePolyline3d(), TmGePolyline3d({{1, 1, 1}})),
        makeCase("Curve3dVec", mixed, TmGeCurve3dVec(), mixedOld),
    };
}

TEST(TmGeFileIOTest, EveryClassRoundTripsInBothLayouts)
{
    for (const Case& c : allCases())
        for (const TmGeLibVersion& version : {kOld, kCurrent}) {
            SCOPED_TRACE(testing::Message() << c.name << " in layout " << version.majorVersion() << "."
                                            << version.minorVersion());
            MemoryFiler filer;
            ASSERT_EQ(c.write(&filer, version), ErrorStatus::eOk);
            filer.rewind();
            bool matches = false;
            bool untouched = false;
            ASSERT_EQ(c.read(&filer, version, matches, untouched), ErrorStatus::eOk);
            EXPECT_TRUE(matches);
            EXPECT_TRUE(filer.atEnd()) << "the reader left fields of the writer unread";
        }
}

TEST(TmGeFileIOTest, TheLayoutsReallyDiffer)
{
    const auto recordCount = [](const auto& value, const TmGeLibVersion& version) {
        MemoryFiler filer;
        EXPECT_EQ(TmGeFileIO::outFields(&filer, value, version), ErrorStatus::eOk);
        return filer.records().size();
    };
    EXPECT_EQ(recordCount(segmentWithInterval(), kCurrent), recordCount(segmentWithInterval(), kOld) + 2);
    EXPECT_EQ(recordCount(periodicCubic(), kCurrent), recordCount(periodicCubic(), kOld) + 1);
    EXPECT_EQ(recordCount(TmGePlane(), kCurrent), recordCount(TmGePlane(), kOld));

    // A version between two layouts uses the older one.
    MemoryFiler filer;
    ASSERT_EQ(TmGeFileIO::outFields(&filer, segmentWithInterval(), TmGeLibVersion(3, 1)), ErrorStatus::eOk);
    filer.rewind();
    TmGeLineSeg3d seg;
    ASSERT_EQ(TmGeFileIO::inFields(&filer, seg, kOld), ErrorStatus::eOk);
    EXPECT_TRUE(filer.atEnd());
    EXPECT_EQ(seg.interval().upperBound(), 1.0);
}

TEST(TmGeFileIOTest, FailuresPropagateAndLeaveTheTargetUntouched)
{
    for (const Case& c : allCases())
        for (const TmGeLibVersion& version : {kOld, kCurrent}) {
            SCOPED_TRACE(c.name);
            MemoryFiler written;
            ASSERT_EQ(c.write(&written, version), ErrorStatus::eOk);
            const std::size_t writes = written.operations();
            ASSERT_GT(writes, 0u);
            for (std::size_t failAt = 0; failAt < writes; ++failAt) {
                MemoryFiler sink;
                sink.failAt(failAt);
                EXPECT_EQ(c.write(&sink, version), ErrorStatus::eEndOfFile);
                EXPECT_EQ(sink.operations(), failAt + 1) << "writes went on after a failure";

                MemoryFiler source = written;
                source.rewind();
                source.failAt(failAt);
                bool matches = true;
                bool untouched = false;
                EXPECT_EQ(c.read(&source, version, matches, untouched), ErrorStatus::eEndOfFile);
                EXPECT_TRUE(untouched) << "failing at operation " << failAt;
            }
            // Truncated data: the last field is missing.
            MemoryFiler truncated = written;
            truncated.records().pop_back();
            truncated.rewind();
            bool matches = true;
            bool untouched = false;
            EXPECT_EQ(c.read(&truncated, version, matches, untouched), ErrorStatus::eEndOfFile);
            EXPECT_TRUE(untouched);
        }
}

TEST(TmGeFileIOTest, CorruptDataIsRefused)
{
    const auto corrupt = [](auto value, auto&& damage) {
        MemoryFiler filer;
        EXPECT_EQ(TmGeFileIO::outFields(&filer, value, kCurrent), ErrorStatus::eOk);
        damage(filer.records());
        filer.rewind();
        auto target = value;
        using T = decltype(value);
        const T before = target;
        const ErrorStatus status = TmGeFileIO::inFields(&filer, target, kCurrent);
        EXPECT_TRUE(target.isEqualTo(before, kTight));
        return status;
    };
    const TmGeNurbCurve3d cubic(3, {0, 0, 0, 0, 1, 2, 2, 2, 2}, {{0, 0, 0}, {1, 0, 0}, {2, 1, 0}, {3, 0, 0}, {4, 1, 1}});
    // NURBS records: degree, periodic, rational, knot count, 9 knots, point count, 5 points.
    EXPECT_EQ(corrupt(cubic, [](auto& r) { r[4 + 4].values[0] = -1.0; }), ErrorStatus::eCorruptData);
    EXPECT_EQ(corrupt(cubic, [](auto& r) { r[0].integer = 0; }), ErrorStatus::eCorruptData);
    EXPECT_EQ(corrupt(cubic, [](auto& r) { r[3].integer = 0xFFFFFFFFu; }), ErrorStatus::eCorruptData);
    // A count that lies but stays below the cap fails on the data that follow, not in an allocation.
    EXPECT_EQ(corrupt(cubic, [](auto& r) { r[3].integer = TmGeFileIO::kMaxCount; }), ErrorStatus::eCorruptData);
    EXPECT_EQ(corrupt(cubic, [](auto& r) { r[2].integer = 1; }), ErrorStatus::eEndOfFile); // weights promised
    EXPECT_EQ(corrupt(TmGePlane(), [](auto& r) { r[1].values[2] = 0.0; }), ErrorStatus::eCorruptData);
    EXPECT_EQ(corrupt(TmGeCircArc3d(), [](auto& r) { r[3].values[0] = -2.0; }), ErrorStatus::eCorruptData);
    EXPECT_EQ(corrupt(segmentWithInterval(), [](auto& r) { r[3].values[0] = -5.0; }), ErrorStatus::eCorruptData);

    TmGeCurve3dVec one;
    one.append(TmGeLine3d());
    EXPECT_EQ(corrupt(one, [](auto& r) { r[1].integer = 999; }), ErrorStatus::eCorruptData);
}

TEST(TmGeFileIOTest, CallsOutsideTheContractAreRefused)
{
    MemoryFiler filer;
    TmGePoint3d p(1, 2, 3);
    EXPECT_EQ(TmGeFileIO::outFields(nullptr, p), ErrorStatus::eNullFiler);
    EXPECT_EQ(TmGeFileIO::inFields(nullptr, p), ErrorStatus::eNullFiler);
    for (const TmGeLibVersion& version : {TmGeLibVersion(2, 9), TmGeLibVersion(3, 3), TmGeLibVersion(4, 0)}) {
        EXPECT_EQ(TmGeFileIO::outFields(&filer, p, version), ErrorStatus::eUnsupportedVersion);
        EXPECT_TRUE(filer.records().empty());
        EXPECT_EQ(TmGeFileIO::inFields(&filer, p, version), ErrorStatus::eUnsupportedVersion);
    }
    EXPECT_TRUE(TmGeLibVersion().isSupported());
    EXPECT_EQ(TmGeLibVersion(), TmGeLibVersion::kTmGeLibVersionCurrent);
}

TEST(TmGeFileIOTest, CurvesBehindTheirBaseClass)
{
    const TmGeCircArc2d arc(TmGePoint2d(1, 1), 2.0, 0.0, 1.0);
    MemoryFiler filer;
    ASSERT_EQ(TmGeFileIO::outCurve2d(&filer, arc), ErrorStatus::eOk);
    EXPECT_EQ(filer.records().front().integer, static_cast<int>(Tmk::EEntityKind::eCircArc2d));
    filer.rewind();
    std::unique_ptr<TmGeCurve2d> curve;
    ASSERT_EQ(TmGeFileIO::inCurve2d(&filer, curve), ErrorStatus::eOk);
    ASSERT_NE(curve, nullptr);
    EXPECT_TRUE(curve->isEqualTo(arc));
}

} // namespace
