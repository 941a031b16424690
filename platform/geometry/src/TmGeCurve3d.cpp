#include <geometry/TmGeCurve3d.h>

#include "CurveCore.h"

namespace {

using Point = TmGePoint3d;
using Vector = TmGeVector3d;

} // namespace

Point TmGeCurve3d::evalPoint(double param) const noexcept
{
    return TmGeInternal::pointAt<Point>(*this, param);
}

Vector TmGeCurve3d::evalDerivative(double param, int order) const noexcept
{
    return TmGeInternal::derivativeAt<Point, Vector>(*this, param, order);
}

double TmGeCurve3d::length(double fromParam, double toParam, double tol) const noexcept
{
    return TmGeInternal::integratedLength<Point, Vector>(*this, fromParam, toParam, tol);
}

double TmGeCurve3d::length() const noexcept
{
    const TmGeInterval range = interval();
    return length(range.lowerBound(), range.upperBound());
}

bool TmGeCurve3d::hasStartPoint(Point& point) const noexcept
{
    return TmGeInternal::endPointOf(*this, true, point);
}

bool TmGeCurve3d::hasEndPoint(Point& point) const noexcept
{
    return TmGeInternal::endPointOf(*this, false, point);
}

bool TmGeCurve3d::isClosed(const TmGeTol& tol) const noexcept
{
    return TmGeInternal::endsMeet<Point>(*this, tol);
}
