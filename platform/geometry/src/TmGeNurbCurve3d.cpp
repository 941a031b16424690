#include <geometry/TmGeNurbCurve3d.h>

#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeEllipArc3d.h>
#include <geometry/TmGeLineSeg3d.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePolyline3d.h>

#include "NurbsCurveImpl.h"

#include <utility>

bool TmGeNurbCurve3dTraits::isAffine(const TmGeMatrix3d& m) noexcept
{
    return !m.isPerspective();
}

TmGeNurbCurve3d::TmGeNurbCurve3d() noexcept = default;

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGeLineSeg3d& segment)
{
    const TmGeInterval range = segment.interval();
    (void)set(1, {range.lowerBound(), range.lowerBound(), range.upperBound(), range.upperBound()},
              {segment.startPoint(), segment.endPoint()});
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGePolyline3d& polyline)
{
    const int n = polyline.numPoints();
    if (n < 2)
        return;
    std::vector<double> knots{0.0};
    for (int i = 0; i < n; ++i)
        knots.push_back(i);
    knots.push_back(n - 1);
    (void)set(1, std::move(knots), polyline.points());
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGeCircArc3d& arc)
{
    *this = TmGeInternal::conicArc<TmGeNurbCurve3d>(arc.center(), arc.refVec() * arc.radius(),
                                                    arc.sideVec() * arc.radius(), arc.startAng(), arc.endAng());
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGeEllipArc3d& arc)
{
    *this = TmGeInternal::conicArc<TmGeNurbCurve3d>(arc.center(), arc.majorAxis() * arc.majorRadius(),
                                                    arc.minorAxis() * arc.minorRadius(), arc.startAng(), arc.endAng());
}

std::unique_ptr<TmGeCurve3d> TmGeNurbCurve3d::clone() const
{
    return std::make_unique<TmGeNurbCurve3d>(*this);
}
