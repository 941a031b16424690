#pragma once

#include <geometry/TmGeCurve3d.h>
#include <geometry/TmGePlane.h>

class TmGeCircArc3d;

// An elliptical arc: center + majorRadius * cos(a) * majorAxis + minorRadius * sin(a) * minorAxis
// for a in [startAng, endAng]. The axes are unit and perpendicular; the normal is
// majorAxis x minorAxis. Angles are normalised as for TmGeCircArc3d. Constructors given
// arguments that set() rejects leave the default full unit circle in XY.
class TmGeEllipArc3d : public TmGeCurve3d {
public:
    TmGeEllipArc3d() noexcept;
    TmGeEllipArc3d(const TmGePoint3d& center, const TmGeVector3d& majorAxis, const TmGeVector3d& minorAxis,
                   double majorRadius, double minorRadius, double startAngle = 0.0,
                   double endAngle = 6.283185307179586) noexcept;
    explicit TmGeEllipArc3d(const TmGeCircArc3d& arc) noexcept;

    // eInvalidInput: zero or non-perpendicular axes (within tol.equalVector() on the unit
    // axes), negative or non-finite radii or angles. The arc is unchanged on failure.
    Tmk::ErrorStatus set(const TmGePoint3d& center, const TmGeVector3d& majorAxis, const TmGeVector3d& minorAxis,
                         double majorRadius, double minorRadius, double startAngle, double endAngle,
                         const TmGeTol& tol = TmGeContext::gTol) noexcept;
    Tmk::ErrorStatus setAngles(double startAngle, double endAngle) noexcept;

    [[nodiscard]] const TmGePoint3d& center() const noexcept { return m_center; }
    [[nodiscard]] const TmGeVector3d& majorAxis() const noexcept { return m_majorAxis; }
    [[nodiscard]] const TmGeVector3d& minorAxis() const noexcept { return m_minorAxis; }
    [[nodiscard]] double majorRadius() const noexcept { return m_majorRadius; }
    [[nodiscard]] double minorRadius() const noexcept { return m_minorRadius; }
    [[nodiscard]] double startAng() const noexcept { return m_startAng; }
    [[nodiscard]] double endAng() const noexcept { return m_endAng; }
    [[nodiscard]] TmGeVector3d normal() const noexcept { return m_majorAxis.crossProduct(m_minorAxis); }
    [[nodiscard]] TmGePoint3d startPoint() const noexcept { return evalPoint(m_startAng); }
    [[nodiscard]] TmGePoint3d endPoint() const noexcept { return evalPoint(m_endAng); }
    [[nodiscard]] TmGePlane plane() const noexcept { return {m_center, normal()}; }
    [[nodiscard]] bool isCircular(const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    [[nodiscard]] Tmk::EEntityKind type() const noexcept override { return Tmk::EEntityKind::eEllipArc3d; }
    [[nodiscard]] TmGeInterval interval() const noexcept override { return {m_startAng, m_endAng}; }
    Tmk::ErrorStatus evaluate(double param, int numDeriv, TmGePoint3d& point,
                              TmGeVector3d* derivs) const noexcept override;
    // Exact for a circle; otherwise adaptive quadrature of the speed.
    [[nodiscard]] double length(double fromParam, double toParam,
                                double tol = TmGeContext::gTol.equalPoint()) const noexcept override;
    using TmGeCurve3d::length;
    [[nodiscard]] bool isClosed(const TmGeTol& tol = TmGeContext::gTol) const noexcept override;

    // Any affine matrix: the image of an ellipse is an ellipse, whose principal axes are found
    // again (the parameter shifts so that every point keeps its parameter's image). eInvalidInput
    // for a perspective matrix.
    Tmk::ErrorStatus transformBy(const TmGeMatrix3d& m) noexcept override;
    [[nodiscard]] bool isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept override;
    [[nodiscard]] std::unique_ptr<TmGeCurve3d> clone() const override;

private:
    TmGePoint3d m_center;
    TmGeVector3d m_majorAxis{1.0, 0.0, 0.0};
    TmGeVector3d m_minorAxis{0.0, 1.0, 0.0};
    double m_majorRadius = 1.0;
    double m_minorRadius = 1.0;
    double m_startAng = 0.0;
    double m_endAng = 6.283185307179586;
};
