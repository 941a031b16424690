#include <geometry/TmGeCurve2d.h>

#include "Quadrature.h"

#include <cmath>
#include <limits>
#include <utility>

TmGePoint2d TmGeCurve2d::evalPoint(double param) const noexcept
{
    TmGePoint2d point;
    (void)evaluate(param, 0, point, nullptr);
    return point;
}

TmGeVector2d TmGeCurve2d::evalDerivative(double param, int order) const noexcept
{
    if (order < 1 || order > kMaxDerivative)
        return {};
    TmGePoint2d point;
    TmGeVector2d derivs[kMaxDerivative];
    if (evaluate(param, order, point, derivs) != Tmk::ErrorStatus::eOk)
        return {};
    return derivs[order - 1];
}

double TmGeCurve2d::length(double fromParam, double toParam, double tol) const noexcept
{
    if (fromParam > toParam)
        std::swap(fromParam, toParam);
    if (!(fromParam < toParam))
        return 0.0;
    if (!std::isfinite(fromParam) || !std::isfinite(toParam))
        return std::numeric_limits<double>::infinity();
    const auto speed = [this](double t) {
        TmGePoint2d point;
        TmGeVector2d d;
        (void)evaluate(t, 1, point, &d);
        return d.length();
    };
    return TmGeInternal::integrate(speed, fromParam, toParam, tol);
}

double TmGeCurve2d::length() const noexcept
{
    const TmGeInterval range = interval();
    return length(range.lowerBound(), range.upperBound());
}

bool TmGeCurve2d::hasStartPoint(TmGePoint2d& point) const noexcept
{
    const TmGeInterval range = interval();
    if (!range.isBoundedBelow())
        return false;
    point = evalPoint(range.lowerBound());
    return true;
}

bool TmGeCurve2d::hasEndPoint(TmGePoint2d& point) const noexcept
{
    const TmGeInterval range = interval();
    if (!range.isBoundedAbove())
        return false;
    point = evalPoint(range.upperBound());
    return true;
}

bool TmGeCurve2d::isClosed(const TmGeTol& tol) const noexcept
{
    TmGePoint2d start;
    TmGePoint2d end;
    if (!hasStartPoint(start) || !hasEndPoint(end))
        return false;
    return start.isEqualTo(end, tol);
}
