#pragma once

// What the circular and elliptical arcs compute alike in the plane and in space, written once
// over the point and vector types.

#include <geometry/TmGeTol.h>
#include <geometry/TmkErrorStatus.h>

#include "ArcAngles.h"
#include "Quadrature.h"

#include <cmath>
#include <utility>

namespace TmGeInternal {

// The angles are stored only when they normalise.
inline Tmk::ErrorStatus storeArcAngles(double startAngle, double endAngle, double& startAng, double& endAng) noexcept
{
    if (!normalizeArcAngles(startAngle, endAngle))
        return Tmk::ErrorStatus::eInvalidInput;
    startAng = startAngle;
    endAng = endAngle;
    return Tmk::ErrorStatus::eOk;
}

inline Tmk::ErrorStatus storeRadius(double radius, double& stored) noexcept
{
    if (!std::isfinite(radius) || radius < 0.0)
        return Tmk::ErrorStatus::eInvalidInput;
    stored = radius;
    return Tmk::ErrorStatus::eOk;
}

// The parameter in [startAng, startAng + 2pi) of the direction at `angle` from the reference axis.
inline double paramAtAngle(double angle, double startAng) noexcept
{
    double a = std::fmod(angle - startAng, kTwoPi);
    if (a < 0.0)
        a += kTwoPi;
    return startAng + a;
}

// isOn of a circular arc once the point is known to lie on its full circle: inside the sweep, with
// the tolerance turned into an angle, or at the start where the parameter wraps.
template <class Arc, class Point>
bool isWithinSweep(const Arc& arc, const Point& point, const TmGeTol& tol) noexcept
{
    if (arc.isClosed(tol))
        return true;
    const double angleTol = arc.radius() > 0.0 ? tol.equalPoint() / arc.radius() : 0.0;
    return arc.paramOf(point) <= arc.endAng() + angleTol || point.isEqualTo(arc.startPoint(), tol);
}

// center + radial(t), its tangent and, as for every conic around its center, -radial(t) as the
// second derivative.
template <class Point, class Vector, class Radial, class Tangent>
Tmk::ErrorStatus evaluateConicArc(const Point& center, Radial&& radialAt, Tangent&& tangentAt, double param,
                                  int numDeriv, int maxDerivative, Point& point, Vector* derivs) noexcept
{
    if (numDeriv < 0 || numDeriv > maxDerivative || (numDeriv > 0 && derivs == nullptr))
        return Tmk::ErrorStatus::eInvalidInput;
    const double c = std::cos(param);
    const double s = std::sin(param);
    const Vector radial = radialAt(c, s);
    point = center + radial;
    if (numDeriv >= 1)
        derivs[0] = tangentAt(c, s);
    if (numDeriv >= 2)
        derivs[1] = -radial;
    return Tmk::ErrorStatus::eOk;
}

// A circle of the given radius around center, angles measured from ref towards side.
template <class Point, class Vector>
Tmk::ErrorStatus evaluateCircle(const Point& center, const Vector& ref, const Vector& side, double radius,
                                double param, int numDeriv, int maxDerivative, Point& point, Vector* derivs) noexcept
{
    return evaluateConicArc(
        center, [&](double c, double s) { return (ref * c + side * s) * radius; },
        [&](double c, double s) { return (side * c - ref * s) * radius; }, param, numDeriv, maxDerivative, point,
        derivs);
}

template <class Arc, class Point, class Vector>
Tmk::ErrorStatus evaluateEllipse(const Arc& arc, double param, int numDeriv, int maxDerivative, Point& point,
                                 Vector* derivs) noexcept
{
    const Vector& major = arc.majorAxis();
    const Vector& minor = arc.minorAxis();
    const double a = arc.majorRadius();
    const double b = arc.minorRadius();
    return evaluateConicArc(
        arc.center(), [&](double c, double s) { return major * (a * c) + minor * (b * s); },
        [&](double c, double s) { return minor * (b * c) - major * (a * s); }, param, numDeriv, maxDerivative, point,
        derivs);
}

// The arc length of an ellipse with semi-axes a and b between two parameters.
inline double ellipseLength(double a, double b, double fromParam, double toParam, double tol) noexcept
{
    if (a == b)
        return a * std::fabs(toParam - fromParam);
    if (fromParam > toParam)
        std::swap(fromParam, toParam);
    const auto speed = [a, b](double t) { return std::hypot(a * std::sin(t), b * std::cos(t)); };
    return integrate(speed, fromParam, toParam, tol);
}

// The axes an elliptical arc stores: both unit, the minor one made exactly perpendicular to the
// major one. False for radii or axes that describe no ellipse, or axes further from
// perpendicular than tol.equalVector().
template <class Vector>
bool ellipseAxes(const Vector& majorAxis, const Vector& minorAxis, double majorRadius, double minorRadius,
                 const TmGeTol& tol, Vector& major, Vector& minor) noexcept
{
    if (!std::isfinite(majorRadius) || !std::isfinite(minorRadius) || majorRadius < 0.0 || minorRadius < 0.0
        || !std::isfinite(majorAxis.length()) || !std::isfinite(minorAxis.length()) || majorAxis.isZeroLength(tol)
        || minorAxis.isZeroLength(tol))
        return false;
    major = unitOrSelf(majorAxis);
    minor = unitOrSelf(minorAxis);
    const double along = major.dotProduct(minor);
    if (std::fabs(along) > tol.equalVector())
        return false;
    if (along != 0.0)
        minor = unitOrSelf(minor - major * along);
    return true;
}

// The images of the two semi-axes are conjugate semi-diameters A and B of the new ellipse; its
// principal axes are A cos t0 + B sin t0 and its quarter-turn partner, where t0 makes them
// perpendicular. The caller has refused matrices that do not keep ellipses ellipses.
template <class Arc, class Matrix>
Tmk::ErrorStatus transformEllipse(Arc& arc, const Matrix& m) noexcept
{
    auto a = arc.majorAxis() * arc.majorRadius();
    auto b = arc.minorAxis() * arc.minorRadius();
    a.transformBy(m);
    b.transformBy(m);
    const double t0 = 0.5 * std::atan2(2.0 * a.dotProduct(b), a.lengthSqrd() - b.lengthSqrd());
    const double c = std::cos(t0);
    const double s = std::sin(t0);
    const auto major = a * c + b * s;
    const auto minor = b * c - a * s;
    auto center = arc.center();
    center.transformBy(m);
    // Perpendicular by construction up to rounding, so set() checks that loosely; a flattened
    // ellipse (zero minor axis) is refused there.
    const TmGeTol loose(TmGeContext::gTol.equalPoint(), 1e-9);
    return arc.set(center, major, minor, major.length(), minor.length(), arc.startAng() - t0, arc.endAng() - t0,
                   loose);
}

template <class Arc>
bool ellipArcsEqual(const Arc& a, const Arc& b, const TmGeTol& tol) noexcept
{
    return a.center().isEqualTo(b.center(), tol) && a.majorAxis().isEqualTo(b.majorAxis(), tol)
        && a.minorAxis().isEqualTo(b.minorAxis(), tol)
        && std::fabs(a.majorRadius() - b.majorRadius()) <= tol.equalPoint()
        && std::fabs(a.minorRadius() - b.minorRadius()) <= tol.equalPoint()
        && std::fabs(a.startAng() - b.startAng()) <= tol.equalVector()
        && std::fabs(a.endAng() - b.endAng()) <= tol.equalVector();
}

} // namespace TmGeInternal
