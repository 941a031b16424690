#pragma once

#include <geometry/TmGePlane.h>

// A parallelogram: origin + s * uVector + t * vVector for s, t in [0, 1]. The edge vectors are
// kept as given; a degenerate one (parallel or zero edges) is stored too and reported by
// isDegenerate().
class TmGeBoundedPlane {
public:
    TmGeBoundedPlane() noexcept; // the unit square at the origin in XY
    TmGeBoundedPlane(const TmGePoint3d& origin, const TmGeVector3d& uVector, const TmGeVector3d& vVector) noexcept;

    TmGeBoundedPlane& set(const TmGePoint3d& origin, const TmGeVector3d& uVector, const TmGeVector3d& vVector) noexcept;

    [[nodiscard]] const TmGePoint3d& origin() const noexcept { return m_origin; }
    [[nodiscard]] const TmGeVector3d& uVector() const noexcept { return m_u; }
    [[nodiscard]] const TmGeVector3d& vVector() const noexcept { return m_v; }
    // uVector x vVector made unit; the zero vector when degenerate.
    [[nodiscard]] TmGeVector3d normal(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isDegenerate(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // The unbounded plane carrying it (the XY plane when degenerate).
    [[nodiscard]] TmGePlane plane() const noexcept;

    [[nodiscard]] TmGePoint3d evalPoint(double s, double t) const noexcept;
    // Corners in order origin, origin + u, origin + u + v, origin + v.
    void getCorners(TmGePoint3d corners[4]) const noexcept;
    [[nodiscard]] double area() const noexcept;
    // On the carrying plane and inside the parallelogram, edges included, within tolerance.
    [[nodiscard]] bool isOn(const TmGePoint3d& point, const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    TmGeBoundedPlane& transformBy(const TmGeMatrix3d& m) noexcept;
    [[nodiscard]] bool isEqualTo(const TmGeBoundedPlane& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool operator==(const TmGeBoundedPlane& other) const noexcept { return isEqualTo(other); }

private:
    TmGePoint3d m_origin;
    TmGeVector3d m_u{1.0, 0.0, 0.0};
    TmGeVector3d m_v{0.0, 1.0, 0.0};
};
