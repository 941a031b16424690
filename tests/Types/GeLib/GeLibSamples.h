#pragma once

#include <Types/Testors/GeLibTestor.h>

#include <gtest/gtest.h>

#include <cmath>
#include <bit>
#include <cstdint>

namespace KxTest {

// A GeLibTestor whose every member differs from its default, with values that are not exact in
// decimal, so that any lossy encoding shows.
inline void fillGeLibTestor(Kx::GeLibTestor& entity)
{
    const double third = 1.0 / 3.0;
    entity.point2d = TmGePoint2d(0.1, -2.5);
    entity.point3d = TmGePoint3d(third, 1e-300, -7.0);
    entity.vector2d = TmGeVector2d(-0.0, 3.25);
    entity.vector3d = TmGeVector3d(1e300, -third, 0.2);
    entity.matrix2d = TmGeMatrix2d::rotation(0.3, TmGePoint2d(1, 2));
    entity.matrix3d = TmGeMatrix3d::rotation(M_PI / 7, TmGeVector3d(1, 1, 0), TmGePoint3d(0.5, 0, 2));
    entity.line = TmGeLine3d(TmGePoint3d(1, 2, 3), TmGeVector3d(0, third, 1));
    entity.lineSegment = TmGeLineSeg3d(TmGePoint3d(-1, 0, 0.1), TmGePoint3d(4, 5, 6));
    entity.plane = TmGePlane(TmGePoint3d(0, 0, 2), TmGeVector3d(0, 0.6, 0.8));
    entity.boundedPlane = TmGeBoundedPlane(TmGePoint3d(1, 1, 1), TmGeVector3d(2, 0, 0), TmGeVector3d(0, 3, 0));
    entity.circArc2d = TmGeCircArc2d(TmGePoint2d(1, 1), 2.5, 0.25, 2.0, TmGeVector2d(0, 1), true);
    entity.circArc3d = TmGeCircArc3d(TmGePoint3d(0, 0, 1), TmGeVector3d(0, 0, 1), TmGeVector3d(1, 0, 0), 3, 0, M_PI);
    entity.ellipArc2d = TmGeEllipArc2d(TmGePoint2d(0, 0), TmGeVector2d(1, 0), TmGeVector2d(0, 1), 4, 2, 0.5, 3.0);
    entity.ellipArc3d = TmGeEllipArc3d(TmGePoint3d(1, 2, 3), TmGeVector3d(0, 1, 0), TmGeVector3d(0, 0, 1), 5, 1, 0, 1);
    entity.nurbCurve2d = TmGeNurbCurve2d(2, {0, 0, 0, 1, 1, 1}, {{1, 0}, {1, 1}, {0, 1}}, {1, std::sqrt(0.5), 1});
    entity.nurbCurve3d
        = TmGeNurbCurve3d(3, {0, 0, 0, 0, 0.5, 1, 1, 1, 1}, {{0, 0, 0}, {1, 2, 0}, {2, -1, 1}, {3, 0, 2}, {4, 1, 0}});
    entity.polyline = TmGePolyline3d({{0, 0, 0}, {1, 0, 0}, {1, third, 0}, {2, 2, 2}});
    entity.curves.append(TmGeLineSeg3d(TmGePoint3d(0, 0, 0), TmGePoint3d(1, 0, 0)));
    entity.curves.append(TmGeCircArc3d(TmGePoint3d(1, 1, 0), TmGeVector3d(0, 0, 1), TmGeVector3d(0, -1, 0), 1, 0, M_PI / 2));
    entity.curves.append(entity.nurbCurve3d);
    entity.float2 = Kx::Float2(0.1f, -1e-30f);
    entity.float3 = Kx::Float3(1.0f / 3.0f, 2.5f, -0.0f);
    entity.point2f = Kx::Point2f(3.4e38f, 1e-45f);
    entity.point3f = Kx::Point3f(1, 2, 3);
    entity.vector2f = Kx::Vector2f(-7.25f, 0.2f);
    entity.vector3f = Kx::Vector3f(0, 0, 1.0f / 7.0f);
    entity.bounds2d = Kx::BRect(TmGePoint2d(-1, third), TmGePoint2d(2, 5));
    entity.bounds3d |= TmGePoint3d(0.1, 0.2, 0.3);
    entity.bounds3d |= TmGePoint3d(-4, 1e-300, 7);
}

// Float tuples compare within 1e-6; their encodings must be exact, so compare the bits.
template <class T>
void expectSameFloats(const T& actual, const T& expected)
{
    EXPECT_EQ(std::bit_cast<std::uint32_t>(actual.m_x), std::bit_cast<std::uint32_t>(expected.m_x));
    EXPECT_EQ(std::bit_cast<std::uint32_t>(actual.m_y), std::bit_cast<std::uint32_t>(expected.m_y));
    if constexpr (requires { expected.m_z; }) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(actual.m_z), std::bit_cast<std::uint32_t>(expected.m_z));
    }
}

// Exact equality of every member (the kernel's == is within tolerance; encodings must be exact).
inline void expectSameGeometry(const Kx::GeLibTestor& actual, const Kx::GeLibTestor& expected)
{
    const TmGeTol exact(0.0, 0.0);
    EXPECT_TRUE(actual.point2d.isEqualTo(expected.point2d, exact));
    EXPECT_TRUE(actual.point3d.isEqualTo(expected.point3d, exact));
    EXPECT_TRUE(actual.vector2d.isEqualTo(expected.vector2d, exact));
    EXPECT_TRUE(actual.vector3d.isEqualTo(expected.vector3d, exact));
    EXPECT_TRUE(actual.matrix2d.isEqualTo(expected.matrix2d, exact));
    EXPECT_TRUE(actual.matrix3d.isEqualTo(expected.matrix3d, exact));
    EXPECT_TRUE(actual.line.isEqualTo(expected.line, exact));
    EXPECT_TRUE(actual.lineSegment.isEqualTo(expected.lineSegment, exact));
    EXPECT_TRUE(actual.plane.isEqualTo(expected.plane, exact));
    EXPECT_TRUE(actual.boundedPlane.isEqualTo(expected.boundedPlane, exact));
    EXPECT_TRUE(actual.circArc2d.isEqualTo(expected.circArc2d, exact));
    EXPECT_TRUE(actual.circArc3d.isEqualTo(expected.circArc3d, exact));
    EXPECT_TRUE(actual.ellipArc2d.isEqualTo(expected.ellipArc2d, exact));
    EXPECT_TRUE(actual.ellipArc3d.isEqualTo(expected.ellipArc3d, exact));
    EXPECT_TRUE(actual.nurbCurve2d.isEqualTo(expected.nurbCurve2d, exact));
    EXPECT_TRUE(actual.nurbCurve3d.isEqualTo(expected.nurbCurve3d, exact));
    EXPECT_TRUE(actual.polyline.isEqualTo(expected.polyline, exact));
    EXPECT_TRUE(actual.curves.isEqualTo(expected.curves, exact));
    expectSameFloats(actual.float2, expected.float2);
    expectSameFloats(actual.float3, expected.float3);
    expectSameFloats(actual.point2f, expected.point2f);
    expectSameFloats(actual.point3f, expected.point3f);
    expectSameFloats(actual.vector2f, expected.vector2f);
    expectSameFloats(actual.vector3f, expected.vector3f);
    EXPECT_TRUE(actual.bounds2d == expected.bounds2d);
    EXPECT_TRUE(actual.bounds3d == expected.bounds3d);
}

} // namespace KxTest
