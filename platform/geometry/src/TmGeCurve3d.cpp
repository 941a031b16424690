#include <geometry/TmGeCurve3d.h>

#include "Quadrature.h"

#include <cmath>
#include <limits>
#include <utility>

TmGePoint3d TmGeCurve3d::evalPoint(double param) const noexcept
{
    TmGePoint3d point;
    (void)evaluate(param, 0, point, nullptr);
    return point;
}

TmGeVector3d TmGeCurve3d::evalDerivative(double param, int order) const noexcept
{
    if (order < 1 || order > kMaxDerivative)
        return {};
    TmGePoint3d point;
    TmGeVector3d derivs[kMaxDerivative];
    if (evaluate(param, order, point, derivs) != Tmk::ErrorStatus::eOk)
        return {};
    return derivs[order - 1];
}

double TmGeCurve3d::length(double fromParam, double toParam, double tol) const noexcept
{
    if (fromParam > toParam)
        std::swap(fromParam, toParam);
    if (!(fromParam < toParam))
        return 0.0;
    if (!std::isfinite(fromParam) || !std::isfinite(toParam))
        return std::numeric_limits<double>::infinity();
    const auto speed = [this](double t) {
        TmGePoint3d point;
        TmGeVector3d d;
        (void)evaluate(t, 1, point, &d);
        return d.length();
    };
    return TmGeInternal::integrate(speed, fromParam, toParam, tol);
}

double TmGeCurve3d::length() const noexcept
{
    const TmGeInterval range = interval();
    return length(range.lowerBound(), range.upperBound());
}

bool TmGeCurve3d::hasStartPoint(TmGePoint3d& point) const noexcept
{
    const TmGeInterval range = interval();
    if (!range.isBoundedBelow())
        return false;
    point = evalPoint(range.lowerBound());
    return true;
}

bool TmGeCurve3d::hasEndPoint(TmGePoint3d& point) const noexcept
{
    const TmGeInterval range = interval();
    if (!range.isBoundedAbove())
        return false;
    point = evalPoint(range.upperBound());
    return true;
}

bool TmGeCurve3d::isClosed(const TmGeTol& tol) const noexcept
{
    TmGePoint3d start;
    TmGePoint3d end;
    if (!hasStartPoint(start) || !hasEndPoint(end))
        return false;
    return start.isEqualTo(end, tol);
}
