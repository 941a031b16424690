#pragma once

#include <geometry/TmGeCurve3d.h>

#include <vector>

// Straight segments through a list of vertices. Vertex i sits at parameter i, so the interval
// is [0, n - 1]; parameters outside it are clamped. An empty polyline evaluates to the origin.
class TmGePolyline3d : public TmGeCurve3d {
public:
    TmGePolyline3d() noexcept = default;
    explicit TmGePolyline3d(std::vector<TmGePoint3d> points) noexcept;

    TmGePolyline3d& set(std::vector<TmGePoint3d> points) noexcept;

    [[nodiscard]] int numPoints() const noexcept { return static_cast<int>(m_points.size()); }
    [[nodiscard]] const std::vector<TmGePoint3d>& points() const noexcept { return m_points; }

    // The point at arc length `distance` from the first vertex, clamped to the polyline.
    [[nodiscard]] TmGePoint3d evalPointAtDistance(double distance) const noexcept;
    // The parameter at arc length `distance` from the first vertex, clamped to the interval.
    [[nodiscard]] double paramAtDistance(double distance) const noexcept;

    [[nodiscard]] Tmk::EEntityKind type() const noexcept override { return Tmk::EEntityKind::ePolyline3d; }
    [[nodiscard]] TmGeInterval interval() const noexcept override;
    // At a vertex the derivative is that of the following segment (of the last one at the end);
    // the second derivative is zero.
    Tmk::ErrorStatus evaluate(double param, int numDeriv, TmGePoint3d& point,
                              TmGeVector3d* derivs) const noexcept override;
    [[nodiscard]] double length(double fromParam, double toParam,
                                double tol = TmGeContext::gTol.equalPoint()) const noexcept override;
    using TmGeCurve3d::length;

    // Moves the vertices (a perspective matrix is applied to each vertex).
    Tmk::ErrorStatus transformBy(const TmGeMatrix3d& m) noexcept override;
    [[nodiscard]] bool isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept override;
    [[nodiscard]] std::unique_ptr<TmGeCurve3d> clone() const override;

private:
    std::vector<TmGePoint3d> m_points;
};
