#pragma once

// The non-virtual members TmGeCurve2d and TmGeCurve3d share, written once over the base class
// and its point and vector types. Everything goes through the curve's public, virtual interface.

#include <geometry/TmGeTol.h>
#include <geometry/TmkErrorStatus.h>

#include "Quadrature.h"

#include <cmath>
#include <limits>
#include <utility>

namespace TmGeInternal {

template <class Point, class Curve>
Point pointAt(const Curve& curve, double param) noexcept
{
    Point point;
    (void)curve.evaluate(param, 0, point, nullptr);
    return point;
}

// The zero vector for an order out of range or a failed evaluation.
template <class Point, class Vector, class Curve>
Vector derivativeAt(const Curve& curve, double param, int order) noexcept
{
    if (order < 1 || order > Curve::kMaxDerivative)
        return {};
    Point point;
    Vector derivs[Curve::kMaxDerivative];
    if (curve.evaluate(param, order, point, derivs) != Tmk::ErrorStatus::eOk)
        return {};
    return derivs[order - 1];
}

// The integral of the speed, for curves without a closed form of their length.
template <class Point, class Vector, class Curve>
double integratedLength(const Curve& curve, double fromParam, double toParam, double tol) noexcept
{
    if (fromParam > toParam)
        std::swap(fromParam, toParam);
    if (!(fromParam < toParam))
        return 0.0;
    if (!std::isfinite(fromParam) || !std::isfinite(toParam))
        return std::numeric_limits<double>::infinity();
    const auto speed = [&curve](double t) {
        Point point;
        Vector d;
        (void)curve.evaluate(t, 1, point, &d);
        return d.length();
    };
    return integrate(speed, fromParam, toParam, tol);
}

// The point at one end of the interval; false (and the output untouched) at an unbounded end.
template <class Point, class Curve>
bool endPointOf(const Curve& curve, bool atStart, Point& point) noexcept
{
    const TmGeInterval range = curve.interval();
    if (!(atStart ? range.isBoundedBelow() : range.isBoundedAbove()))
        return false;
    point = curve.evalPoint(atStart ? range.lowerBound() : range.upperBound());
    return true;
}

template <class Point, class Curve>
bool endsMeet(const Curve& curve, const TmGeTol& tol) noexcept
{
    Point start;
    Point end;
    if (!curve.hasStartPoint(start) || !curve.hasEndPoint(end))
        return false;
    return start.isEqualTo(end, tol);
}

} // namespace TmGeInternal
