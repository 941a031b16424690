#pragma once

// What the circular and elliptical arcs compute alike in the plane and in space, written once
// over the point and vector types.

#include <geometry/TmGeTol.h>
#include <geometry/TmkErrorStatus.h>

#include "ArcAngles.h"

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
    double a = std::fmod(angle - startAng, kTmGeTwoPi);
    if (a < 0.0)
        a += kTmGeTwoPi;
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

} // namespace TmGeInternal
