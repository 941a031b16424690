#pragma once

#include <geometry/TmGeCurve3d.h>
#include <geometry/TmGeEllipArcT.h>
#include <geometry/TmGePlane.h>

class TmGeCircArc3d;

// The space's types for the members TmGeEllipArc3d shares with TmGeEllipArc2d.
struct TmGeEllipArc3dTraits {
    using Curve = TmGeCurve3d;
    using Point = TmGePoint3d;
    using Vector = TmGeVector3d;
    static constexpr int kDim = 3;
    static constexpr Tmk::EEntityKind kKind = Tmk::EEntityKind::eEllipArc3d;
    static constexpr TmGeVector3d kMajorAxis{1.0, 0.0, 0.0};
    static constexpr TmGeVector3d kMinorAxis{0.0, 1.0, 0.0};
};

extern template class TmGeEllipArcT<TmGeEllipArc3dTraits>;

// An elliptical arc: center + majorRadius * cos(a) * majorAxis + minorRadius * sin(a) * minorAxis
// for a in [startAng, endAng]. The axes are unit and perpendicular; the normal is
// majorAxis x minorAxis. Angles are normalised as for TmGeCircArc3d. Constructors given
// arguments that set() rejects leave the default full unit circle in XY. The members shared
// with TmGeEllipArc2d are declared in TmGeEllipArcT.
class TmGeEllipArc3d : public TmGeEllipArcT<TmGeEllipArc3dTraits> {
public:
    using TmGeEllipArcT::TmGeEllipArcT;
    TmGeEllipArc3d() noexcept;
    explicit TmGeEllipArc3d(const TmGeCircArc3d& arc) noexcept;

    [[nodiscard]] TmGeVector3d normal() const noexcept { return majorAxis().crossProduct(minorAxis()); }
    [[nodiscard]] TmGePlane plane() const noexcept { return {center(), normal()}; }

    // Any affine matrix: the image of an ellipse is an ellipse, whose principal axes are found
    // again (the parameter shifts so that every point keeps its parameter's image). eInvalidInput
    // for a perspective matrix.
    Tmk::ErrorStatus transformBy(const TmGeMatrix3d& m) noexcept override;
    [[nodiscard]] std::unique_ptr<TmGeCurve3d> clone() const override;
};
