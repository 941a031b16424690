#pragma once

#include <geometry/TmGeCurve2d.h>

// A circular arc in the plane: center + radius * (cos(a) * refVec + sin(a) * side) for the angle
// a in [startAng, endAng], where side is refVec turned by +pi/2, or by -pi/2 for a clockwise arc.
// Angles are normalised as for TmGeCircArc3d; refVec is unit. Constructors given arguments that
// set() rejects leave the default full unit circle.
class TmGeCircArc2d : public TmGeCurve2d {
public:
    TmGeCircArc2d() noexcept;
    TmGeCircArc2d(const TmGePoint2d& center, double radius) noexcept;
    TmGeCircArc2d(const TmGePoint2d& center, double radius, double startAngle, double endAngle,
                  const TmGeVector2d& refVec = TmGeVector2d::kXAxis, bool isClockwise = false) noexcept;
    TmGeCircArc2d(const TmGePoint2d& start, const TmGePoint2d& middle, const TmGePoint2d& end) noexcept;

    Tmk::ErrorStatus set(const TmGePoint2d& center, double radius, double startAngle, double endAngle,
                         const TmGeVector2d& refVec = TmGeVector2d::kXAxis, bool isClockwise = false) noexcept;
    Tmk::ErrorStatus set(const TmGePoint2d& start, const TmGePoint2d& middle, const TmGePoint2d& end,
                         const TmGeTol& tol = TmGeContext::gTol) noexcept;
    Tmk::ErrorStatus setRadius(double radius) noexcept;
    Tmk::ErrorStatus setAngles(double startAngle, double endAngle) noexcept;

    [[nodiscard]] const TmGePoint2d& center() const noexcept { return m_center; }
    [[nodiscard]] double radius() const noexcept { return m_radius; }
    [[nodiscard]] double startAng() const noexcept { return m_startAng; }
    [[nodiscard]] double endAng() const noexcept { return m_endAng; }
    [[nodiscard]] const TmGeVector2d& refVec() const noexcept { return m_refVec; }
    [[nodiscard]] bool isClockWise() const noexcept { return m_isClockwise; }
    // The second axis of the arc's plane: refVec turned by +pi/2, or by -pi/2 when clockwise.
    [[nodiscard]] TmGeVector2d sideVec() const noexcept;
    [[nodiscard]] TmGePoint2d startPoint() const noexcept { return evalPoint(m_startAng); }
    [[nodiscard]] TmGePoint2d endPoint() const noexcept { return evalPoint(m_endAng); }
    [[nodiscard]] double paramOf(const TmGePoint2d& point) const noexcept;
    [[nodiscard]] bool isOn(const TmGePoint2d& point, const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    [[nodiscard]] Tmk::EEntityKind type() const noexcept override { return Tmk::EEntityKind::eCircArc2d; }
    [[nodiscard]] TmGeInterval interval() const noexcept override { return {m_startAng, m_endAng}; }
    Tmk::ErrorStatus evaluate(double param, int numDeriv, TmGePoint2d& point,
                              TmGeVector2d* derivs) const noexcept override;
    [[nodiscard]] double length(double fromParam, double toParam,
                                double tol = TmGeContext::gTol.equalPoint()) const noexcept override;
    using TmGeCurve2d::length;
    [[nodiscard]] bool isClosed(const TmGeTol& tol = TmGeContext::gTol) const noexcept override;

    // Needs a uniformly scaled orthogonal matrix; a mirror flips the sense.
    Tmk::ErrorStatus transformBy(const TmGeMatrix2d& m) noexcept override;
    [[nodiscard]] bool isEqualTo(const TmGeCurve2d& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept override;
    [[nodiscard]] std::unique_ptr<TmGeCurve2d> clone() const override;

private:
    TmGePoint2d m_center;
    double m_radius = 1.0;
    double m_startAng = 0.0;
    double m_endAng = kTmGeTwoPi;
    TmGeVector2d m_refVec{1.0, 0.0};
    bool m_isClockwise = false;
};
