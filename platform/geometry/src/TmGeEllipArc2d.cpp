#include <geometry/TmGeEllipArc2d.h>

#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeMatrix2d.h>

#include "ArcCore.h"

#include <cmath>

TmGeEllipArc2d::TmGeEllipArc2d() noexcept = default;

TmGeEllipArc2d::TmGeEllipArc2d(const TmGeCircArc2d& arc) noexcept
{
    (void)set(arc.center(), arc.refVec(), arc.sideVec(), arc.radius(), arc.radius(), arc.startAng(), arc.endAng());
}

Tmk::ErrorStatus TmGeEllipArc2d::transformBy(const TmGeMatrix2d& m) noexcept
{
    const double t = TmGeContext::gTol.equalVector();
    if (std::fabs(m.entry[2][0]) > t || std::fabs(m.entry[2][1]) > t || std::fabs(m.entry[2][2] - 1.0) > t)
        return Tmk::ErrorStatus::eInvalidInput;
    return TmGeInternal::transformEllipse(*this, m);
}

std::unique_ptr<TmGeCurve2d> TmGeEllipArc2d::clone() const
{
    return std::make_unique<TmGeEllipArc2d>(*this);
}
