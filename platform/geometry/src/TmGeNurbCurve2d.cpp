#include <geometry/TmGeNurbCurve2d.h>

#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeEllipArc2d.h>
#include <geometry/TmGeMatrix2d.h>

#include "NurbsCurveImpl.h"

bool TmGeNurbCurve2dTraits::isAffine(const TmGeMatrix2d& m) noexcept
{
    return m.entry[2][0] == 0.0 && m.entry[2][1] == 0.0 && m.entry[2][2] == 1.0;
}

TmGeNurbCurve2d::TmGeNurbCurve2d() noexcept = default;

TmGeNurbCurve2d::TmGeNurbCurve2d(const TmGeCircArc2d& arc)
{
    *this = TmGeInternal::conicArc<TmGeNurbCurve2d>(arc.center(), arc.refVec() * arc.radius(),
                                                    arc.sideVec() * arc.radius(), arc.startAng(), arc.endAng());
}

TmGeNurbCurve2d::TmGeNurbCurve2d(const TmGeEllipArc2d& arc)
{
    *this = TmGeInternal::conicArc<TmGeNurbCurve2d>(arc.center(), arc.majorAxis() * arc.majorRadius(),
                                                    arc.minorAxis() * arc.minorRadius(), arc.startAng(), arc.endAng());
}

std::unique_ptr<TmGeCurve2d> TmGeNurbCurve2d::clone() const
{
    return std::make_unique<TmGeNurbCurve2d>(*this);
}
