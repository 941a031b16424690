#include <geometry/TmGeCurve2d.h>

#include "CurveCore.h"

namespace {

using Point = TmGePoint2d;
using Vector = TmGeVector2d;

} // namespace

Point TmGeCurve2d::evalPoint(double param) const noexcept
{
    return TmGeInternal::pointAt<Point>(*this, param);
}

Vector TmGeCurve2d::evalDerivative(double param, int order) const noexcept
{
    return TmGeInternal::derivativeAt<Point, Vector>(*this, param, order);
}

double TmGeCurve2d::length(double fromParam, double toParam, double tol) const noexcept
{
    return TmGeInternal::integratedLength<Point, Vector>(*this, fromParam, toParam, tol);
}

double TmGeCurve2d::length() const noexcept
{
    const TmGeInterval range = interval();
    return length(range.lowerBound(), range.upperBound());
}

bool TmGeCurve2d::hasStartPoint(Point& point) const noexcept
{
    return TmGeInternal::endPointOf(*this, true, point);
}

bool TmGeCurve2d::hasEndPoint(Point& point) const noexcept
{
    return TmGeInternal::endPointOf(*this, false, point);
}

bool TmGeCurve2d::isClosed(const TmGeTol& tol) const noexcept
{
    return TmGeInternal::endsMeet<Point>(*this, tol);
}
