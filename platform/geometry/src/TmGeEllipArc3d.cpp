#include <geometry/TmGeEllipArc3d.h>

#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeMatrix3d.h>

#include "ArcCore.h"

TmGeEllipArc3d::TmGeEllipArc3d() noexcept = default;

TmGeEllipArc3d::TmGeEllipArc3d(const TmGeCircArc3d& arc) noexcept
{
    (void)set(arc.center(), arc.refVec(), arc.sideVec(), arc.radius(), arc.radius(),
              arc.startAng(), arc.endAng());
}

Tmk::ErrorStatus TmGeEllipArc3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    if (m.isPerspective())
        return Tmk::ErrorStatus::eInvalidInput;
    return TmGeInternal::transformEllipse(*this, m);
}

std::unique_ptr<TmGeCurve3d> TmGeEllipArc3d::clone() const
{
    return std::make_unique<TmGeEllipArc3d>(*this);
}
