#pragma once

#include <geometry/TmGeCurve2d.h>
#include <geometry/TmGeEllipArcT.h>

class TmGeCircArc2d;

// The plane's types for the members TmGeEllipArc2d shares with TmGeEllipArc3d.
struct TmGeEllipArc2dTraits {
    using Curve = TmGeCurve2d;
    using Point = TmGePoint2d;
    using Vector = TmGeVector2d;
    static constexpr int kDim = 2;
    static constexpr Tmk::EEntityKind kKind = Tmk::EEntityKind::eEllipArc2d;
    static constexpr TmGeVector2d kMajorAxis{1.0, 0.0};
    static constexpr TmGeVector2d kMinorAxis{0.0, 1.0};
};

extern template class TmGeEllipArcT<TmGeEllipArc2dTraits>;

// An elliptical arc in the plane: center + majorRadius * cos(a) * majorAxis
// + minorRadius * sin(a) * minorAxis for a in [startAng, endAng]. The axes are unit and
// perpendicular; the arc is clockwise when minorAxis is majorAxis turned by -pi/2. The members
// shared with TmGeEllipArc3d are declared in TmGeEllipArcT.
class TmGeEllipArc2d : public TmGeEllipArcT<TmGeEllipArc2dTraits> {
public:
    using TmGeEllipArcT::TmGeEllipArcT;
    TmGeEllipArc2d() noexcept;
    explicit TmGeEllipArc2d(const TmGeCircArc2d& arc) noexcept;

    [[nodiscard]] bool isClockWise() const noexcept { return majorAxis().crossProduct(minorAxis()) < 0.0; }

    // Any affine matrix (see TmGeEllipArc3d::transformBy).
    Tmk::ErrorStatus transformBy(const TmGeMatrix2d& m) noexcept override;
    [[nodiscard]] std::unique_ptr<TmGeCurve2d> clone() const override;
};
