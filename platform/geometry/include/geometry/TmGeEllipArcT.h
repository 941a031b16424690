#pragma once

#include <geometry/TmGeEntityKind.h>
#include <geometry/TmGeInterval.h>
#include <geometry/TmGeTol.h>
#include <geometry/TmkErrorStatus.h>

// The data and members TmGeEllipArc2d and TmGeEllipArc3d share, written once over a traits struct
// naming the curve base, point and vector types of the plane or of space, the dimension, the
// entity kind and the default axes. Use the concrete classes; see them for what the data mean.
// Instantiated for both dimensions in the kernel only.
template <class Traits>
class TmGeEllipArcT : public Traits::Curve {
protected:
    using Curve = typename Traits::Curve;
    using Point = typename Traits::Point;
    using Vector = typename Traits::Vector;

public:
    TmGeEllipArcT() noexcept = default;
    TmGeEllipArcT(const Point& center, const Vector& majorAxis, const Vector& minorAxis, double majorRadius,
                  double minorRadius, double startAngle = 0.0, double endAngle = kTmGeTwoPi) noexcept;

    // eInvalidInput: zero or non-perpendicular axes (within tol.equalVector() on the unit
    // axes), negative or non-finite radii or angles. The arc is unchanged on failure.
    Tmk::ErrorStatus set(const Point& center, const Vector& majorAxis, const Vector& minorAxis, double majorRadius,
                         double minorRadius, double startAngle, double endAngle,
                         const TmGeTol& tol = TmGeContext::gTol) noexcept;
    Tmk::ErrorStatus setAngles(double startAngle, double endAngle) noexcept;

    [[nodiscard]] const Point& center() const noexcept { return m_center; }
    [[nodiscard]] const Vector& majorAxis() const noexcept { return m_majorAxis; }
    [[nodiscard]] const Vector& minorAxis() const noexcept { return m_minorAxis; }
    [[nodiscard]] double majorRadius() const noexcept { return m_majorRadius; }
    [[nodiscard]] double minorRadius() const noexcept { return m_minorRadius; }
    [[nodiscard]] double startAng() const noexcept { return m_startAng; }
    [[nodiscard]] double endAng() const noexcept { return m_endAng; }
    [[nodiscard]] Point startPoint() const noexcept { return this->evalPoint(m_startAng); }
    [[nodiscard]] Point endPoint() const noexcept { return this->evalPoint(m_endAng); }
    [[nodiscard]] bool isCircular(const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    [[nodiscard]] Tmk::EEntityKind type() const noexcept override { return Traits::kKind; }
    [[nodiscard]] TmGeInterval interval() const noexcept override { return {m_startAng, m_endAng}; }
    Tmk::ErrorStatus evaluate(double param, int numDeriv, Point& point, Vector* derivs) const noexcept override;
    // Exact for a circle; otherwise adaptive quadrature of the speed.
    [[nodiscard]] double length(double fromParam, double toParam,
                                double tol = TmGeContext::gTol.equalPoint()) const noexcept override;
    using Curve::length;
    [[nodiscard]] bool isClosed(const TmGeTol& tol = TmGeContext::gTol) const noexcept override;

    [[nodiscard]] bool isEqualTo(const Curve& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept override;

private:
    Point m_center;
    Vector m_majorAxis = Traits::kMajorAxis;
    Vector m_minorAxis = Traits::kMinorAxis;
    double m_majorRadius = 1.0;
    double m_minorRadius = 1.0;
    double m_startAng = 0.0;
    double m_endAng = kTmGeTwoPi;
};
