#pragma once

#include <geometry/TmGeCurve2d.h>

class TmGeCircArc2d;

// An elliptical arc in the plane: center + majorRadius * cos(a) * majorAxis
// + minorRadius * sin(a) * minorAxis for a in [startAng, endAng]. The axes are unit and
// perpendicular; the arc is clockwise when minorAxis is majorAxis turned by -pi/2.
class TmGeEllipArc2d : public TmGeCurve2d {
public:
    TmGeEllipArc2d() noexcept;
    TmGeEllipArc2d(const TmGePoint2d& center, const TmGeVector2d& majorAxis, const TmGeVector2d& minorAxis,
                   double majorRadius, double minorRadius, double startAngle = 0.0,
                   double endAngle = 6.283185307179586) noexcept;
    explicit TmGeEllipArc2d(const TmGeCircArc2d& arc) noexcept;

    Tmk::ErrorStatus set(const TmGePoint2d& center, const TmGeVector2d& majorAxis, const TmGeVector2d& minorAxis,
                         double majorRadius, double minorRadius, double startAngle, double endAngle,
                         const TmGeTol& tol = TmGeContext::gTol) noexcept;
    Tmk::ErrorStatus setAngles(double startAngle, double endAngle) noexcept;

    [[nodiscard]] const TmGePoint2d& center() const noexcept { return m_center; }
    [[nodiscard]] const TmGeVector2d& majorAxis() const noexcept { return m_majorAxis; }
    [[nodiscard]] const TmGeVector2d& minorAxis() const noexcept { return m_minorAxis; }
    [[nodiscard]] double majorRadius() const noexcept { return m_majorRadius; }
    [[nodiscard]] double minorRadius() const noexcept { return m_minorRadius; }
    [[nodiscard]] double startAng() const noexcept { return m_startAng; }
    [[nodiscard]] double endAng() const noexcept { return m_endAng; }
    [[nodiscard]] bool isClockWise() const noexcept { return m_majorAxis.crossProduct(m_minorAxis) < 0.0; }
    [[nodiscard]] TmGePoint2d startPoint() const noexcept { return evalPoint(m_startAng); }
    [[nodiscard]] TmGePoint2d endPoint() const noexcept { return evalPoint(m_endAng); }
    [[nodiscard]] bool isCircular(const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    [[nodiscard]] Tmk::EEntityKind type() const noexcept override { return Tmk::EEntityKind::eEllipArc2d; }
    [[nodiscard]] TmGeInterval interval() const noexcept override { return {m_startAng, m_endAng}; }
    Tmk::ErrorStatus evaluate(double param, int numDeriv, TmGePoint2d& point,
                              TmGeVector2d* derivs) const noexcept override;
    [[nodiscard]] double length(double fromParam, double toParam,
                                double tol = TmGeContext::gTol.equalPoint()) const noexcept override;
    using TmGeCurve2d::length;
    [[nodiscard]] bool isClosed(const TmGeTol& tol = TmGeContext::gTol) const noexcept override;

    // Any affine matrix (see TmGeEllipArc3d::transformBy).
    Tmk::ErrorStatus transformBy(const TmGeMatrix2d& m) noexcept override;
    [[nodiscard]] bool isEqualTo(const TmGeCurve2d& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept override;
    [[nodiscard]] std::unique_ptr<TmGeCurve2d> clone() const override;

private:
    TmGePoint2d m_center;
    TmGeVector2d m_majorAxis{1.0, 0.0};
    TmGeVector2d m_minorAxis{0.0, 1.0};
    double m_majorRadius = 1.0;
    double m_minorRadius = 1.0;
    double m_startAng = 0.0;
    double m_endAng = 6.283185307179586;
};
