#pragma once

#include <geometry/TmGeCurve3d.h>
#include <geometry/TmGePlane.h>

// A circular arc in space: center + radius * (cos(a) * refVec + sin(a) * (normal x refVec)) for
// the angle a in [startAng, endAng]. The parameter is the angle in radians.
//
// Angles are normalised on entry so that startAng <= endAng <= startAng + 2pi: an end below the
// start is raised by whole turns, and a sweep beyond one turn is cut to one turn. normal and
// refVec are unit and perpendicular (refVec is projected into the plane of the arc).
// Constructors given arguments that set() rejects leave the default full unit circle in XY.
class TmGeCircArc3d : public TmGeCurve3d {
public:
    TmGeCircArc3d() noexcept;
    // A full circle; refVec = normal.perpVector().
    TmGeCircArc3d(const TmGePoint3d& center, const TmGeVector3d& normal, double radius) noexcept;
    TmGeCircArc3d(const TmGePoint3d& center, const TmGeVector3d& normal, const TmGeVector3d& refVec,
                  double radius, double startAngle, double endAngle) noexcept;
    // The arc that starts at `start`, passes through `middle` and ends at `end`.
    TmGeCircArc3d(const TmGePoint3d& start, const TmGePoint3d& middle, const TmGePoint3d& end) noexcept;

    // eInvalidInput: a negative or non-finite radius or angle, a zero normal, a refVec parallel
    // to the normal. The arc is unchanged on failure.
    Tmk::ErrorStatus set(const TmGePoint3d& center, const TmGeVector3d& normal, const TmGeVector3d& refVec,
                         double radius, double startAngle, double endAngle) noexcept;
    // eDegenerateGeometry for coincident or collinear points.
    Tmk::ErrorStatus set(const TmGePoint3d& start, const TmGePoint3d& middle, const TmGePoint3d& end,
                         const TmGeTol& tol = TmGeContext::gTol) noexcept;
    Tmk::ErrorStatus setRadius(double radius) noexcept;
    Tmk::ErrorStatus setAngles(double startAngle, double endAngle) noexcept;

    [[nodiscard]] const TmGePoint3d& center() const noexcept { return m_center; }
    [[nodiscard]] const TmGeVector3d& normal() const noexcept { return m_normal; }
    [[nodiscard]] const TmGeVector3d& refVec() const noexcept { return m_refVec; }
    // The second axis of the arc's plane, normal x refVec: the direction at a quarter turn.
    [[nodiscard]] TmGeVector3d sideVec() const noexcept { return m_normal.crossProduct(m_refVec); }
    [[nodiscard]] double radius() const noexcept { return m_radius; }
    [[nodiscard]] double startAng() const noexcept { return m_startAng; }
    [[nodiscard]] double endAng() const noexcept { return m_endAng; }
    [[nodiscard]] TmGePoint3d startPoint() const noexcept { return evalPoint(m_startAng); }
    [[nodiscard]] TmGePoint3d endPoint() const noexcept { return evalPoint(m_endAng); }
    [[nodiscard]] TmGePlane plane() const noexcept { return {m_center, m_normal}; }
    // The angle of the projection of `point` into the arc's plane, in [startAng, startAng + 2pi).
    [[nodiscard]] double paramOf(const TmGePoint3d& point) const noexcept;
    [[nodiscard]] bool isOn(const TmGePoint3d& point, const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    [[nodiscard]] Tmk::EEntityKind type() const noexcept override { return Tmk::EEntityKind::eCircArc3d; }
    [[nodiscard]] TmGeInterval interval() const noexcept override { return {m_startAng, m_endAng}; }
    Tmk::ErrorStatus evaluate(double param, int numDeriv, TmGePoint3d& point,
                              TmGeVector3d* derivs) const noexcept override;
    [[nodiscard]] double length(double fromParam, double toParam,
                                double tol = TmGeContext::gTol.equalPoint()) const noexcept override;
    using TmGeCurve3d::length;
    // A full turn (the sweep is 2pi within tol.equalVector()).
    [[nodiscard]] bool isClosed(const TmGeTol& tol = TmGeContext::gTol) const noexcept override;

    // Needs a uniformly scaled orthogonal matrix (mirrors allowed).
    Tmk::ErrorStatus transformBy(const TmGeMatrix3d& m) noexcept override;
    [[nodiscard]] bool isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept override;
    [[nodiscard]] std::unique_ptr<TmGeCurve3d> clone() const override;

private:
    TmGePoint3d m_center;
    TmGeVector3d m_normal{0.0, 0.0, 1.0};
    TmGeVector3d m_refVec{1.0, 0.0, 0.0};
    double m_radius = 1.0;
    double m_startAng = 0.0;
    double m_endAng = kTmGeTwoPi;
};
