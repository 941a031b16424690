#pragma once

#include <geometry/TmGeCurve3d.h>

// An infinite line: pointOnLine() + t * direction(). The direction is kept as given (not made
// unit), so a line built through two points evaluates to them at parameters 0 and 1.
class TmGeLine3d : public TmGeCurve3d {
public:
    TmGeLine3d() noexcept; // the x axis
    TmGeLine3d(const TmGePoint3d& point, const TmGeVector3d& direction) noexcept;
    TmGeLine3d(const TmGePoint3d& p1, const TmGePoint3d& p2) noexcept;

    TmGeLine3d& set(const TmGePoint3d& point, const TmGeVector3d& direction) noexcept;
    TmGeLine3d& set(const TmGePoint3d& p1, const TmGePoint3d& p2) noexcept;

    [[nodiscard]] const TmGePoint3d& pointOnLine() const noexcept { return m_point; }
    [[nodiscard]] const TmGeVector3d& direction() const noexcept { return m_direction; }

    [[nodiscard]] Tmk::EEntityKind type() const noexcept override { return Tmk::EEntityKind::eLine3d; }
    [[nodiscard]] TmGeInterval interval() const noexcept override { return {}; }
    Tmk::ErrorStatus evaluate(double param, int numDeriv, TmGePoint3d& point,
                              TmGeVector3d* derivs) const noexcept override;
    [[nodiscard]] double length(double fromParam, double toParam,
                                double tol = TmGeContext::gTol.equalPoint()) const noexcept override;
    using TmGeCurve3d::length;
    [[nodiscard]] bool isClosed(const TmGeTol& = TmGeContext::gTol) const noexcept override { return false; }

    // Parameter of the foot of the perpendicular from `point` (0 for a zero direction).
    [[nodiscard]] double paramOf(const TmGePoint3d& point) const noexcept;
    [[nodiscard]] TmGePoint3d closestPointTo(const TmGePoint3d& point) const noexcept;
    [[nodiscard]] double distanceTo(const TmGePoint3d& point) const noexcept;
    [[nodiscard]] bool isOn(const TmGePoint3d& point, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isParallelTo(const TmGeLine3d& line, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isPerpendicularTo(const TmGeLine3d& line, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // The same point set: parallel, and each line's point lies on the other.
    [[nodiscard]] bool isColinearTo(const TmGeLine3d& line, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // True when the lines meet (closest approach within tol.equalPoint()) and are not parallel.
    bool intersectWith(const TmGeLine3d& line, TmGePoint3d& point, const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    Tmk::ErrorStatus transformBy(const TmGeMatrix3d& m) noexcept override;
    // Entity equality: the same point and the same direction vector.
    [[nodiscard]] bool isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept override;
    [[nodiscard]] std::unique_ptr<TmGeCurve3d> clone() const override;

private:
    TmGePoint3d m_point;
    TmGeVector3d m_direction;
};
