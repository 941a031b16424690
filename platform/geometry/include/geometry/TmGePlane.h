#pragma once

#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector3d.h>
#include <geometry/TmkErrorStatus.h>

class TmGeLine3d;
class TmGeMatrix3d;

// An unbounded plane: a point on it and a unit normal. Constructors that cannot build a plane
// (zero normal, collinear points) give the XY plane; the set() forms report that instead.
class TmGePlane {
public:
    static const TmGePlane kXYPlane;
    static const TmGePlane kYZPlane;
    static const TmGePlane kZXPlane;

    TmGePlane() noexcept; // the XY plane through the origin, normal +Z
    // The normal is made unit with TmGeContext::gTol.
    TmGePlane(const TmGePoint3d& point, const TmGeVector3d& normal) noexcept;
    // The plane a*x + b*y + c*z + d = 0; its point is the foot of the perpendicular from the origin.
    TmGePlane(double a, double b, double c, double d) noexcept;
    // Through three points; the normal is (p2 - p1) x (p3 - p1) made unit.
    TmGePlane(const TmGePoint3d& p1, const TmGePoint3d& p2, const TmGePoint3d& p3) noexcept;
    // Through `origin`, spanned by two non-parallel vectors; the normal is uAxis x vAxis made unit.
    TmGePlane(const TmGePoint3d& origin, const TmGeVector3d& uAxis, const TmGeVector3d& vAxis) noexcept;

    // Each returns eDegenerateGeometry and leaves the plane unchanged when no plane results.
    Tmk::ErrorStatus set(const TmGePoint3d& point, const TmGeVector3d& normal, const TmGeTol& tol = TmGeContext::gTol) noexcept;
    Tmk::ErrorStatus set(double a, double b, double c, double d, const TmGeTol& tol = TmGeContext::gTol) noexcept;
    Tmk::ErrorStatus set(const TmGePoint3d& p1, const TmGePoint3d& p2, const TmGePoint3d& p3,
                         const TmGeTol& tol = TmGeContext::gTol) noexcept;
    Tmk::ErrorStatus set(const TmGePoint3d& origin, const TmGeVector3d& uAxis, const TmGeVector3d& vAxis,
                         const TmGeTol& tol = TmGeContext::gTol) noexcept;

    [[nodiscard]] const TmGePoint3d& pointOnPlane() const noexcept { return m_point; }
    [[nodiscard]] const TmGeVector3d& normal() const noexcept { return m_normal; }
    // The equation a*x + b*y + c*z + d = 0 with (a, b, c) the unit normal.
    void getCoefficients(double& a, double& b, double& c, double& d) const noexcept;
    // The plane's own right-handed system: origin = pointOnPlane(), uAxis = normal().perpVector(),
    // vAxis = normal() x uAxis; both axes unit. The same plane always yields the same axes.
    void get(TmGePoint3d& origin, TmGeVector3d& uAxis, TmGeVector3d& vAxis) const noexcept;

    // Positive on the side the normal points to.
    [[nodiscard]] double signedDistanceTo(const TmGePoint3d& point) const noexcept;
    [[nodiscard]] double distanceTo(const TmGePoint3d& point) const noexcept;
    [[nodiscard]] TmGePoint3d closestPointTo(const TmGePoint3d& point) const noexcept;
    [[nodiscard]] bool isOn(const TmGePoint3d& point, const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    [[nodiscard]] bool isParallelTo(const TmGePlane& plane, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isParallelTo(const TmGeLine3d& line, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isPerpendicularTo(const TmGePlane& plane, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // The same point set: normals parallel (either sense) and each plane's point on the other.
    [[nodiscard]] bool isCoplanarTo(const TmGePlane& plane, const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    // False for a line parallel to the plane (lying in it or not).
    bool intersectWith(const TmGeLine3d& line, TmGePoint3d& point, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // The line of two non-parallel planes; its direction is this normal x the other normal.
    bool intersectWith(const TmGePlane& plane, TmGeLine3d& line, const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    TmGePlane& reverseNormal() noexcept;
    // The normal follows the inverse transpose of the linear part, so the side the normal points
    // to stays the same set of points, mirrors included. A transformation that flattens the
    // plane leaves it unchanged.
    TmGePlane& transformBy(const TmGeMatrix3d& m) noexcept;

    // Entity equality: the same stored point and normal (see isCoplanarTo for the point set).
    [[nodiscard]] bool isEqualTo(const TmGePlane& plane, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool operator==(const TmGePlane& plane) const noexcept { return isEqualTo(plane); }

private:
    struct Exact {};
    constexpr TmGePlane(Exact, const TmGePoint3d& point, const TmGeVector3d& unitNormal) noexcept
        : m_point(point), m_normal(unitNormal) {}

    TmGePoint3d m_point;
    TmGeVector3d m_normal{0.0, 0.0, 1.0};
};

inline constexpr TmGePlane TmGePlane::kXYPlane{Exact{}, TmGePoint3d::kOrigin, TmGeVector3d::kZAxis};
inline constexpr TmGePlane TmGePlane::kYZPlane{Exact{}, TmGePoint3d::kOrigin, TmGeVector3d::kXAxis};
inline constexpr TmGePlane TmGePlane::kZXPlane{Exact{}, TmGePoint3d::kOrigin, TmGeVector3d::kYAxis};
