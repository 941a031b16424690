#pragma once

#include <geometry/TmGeCurve2d.h>
#include <geometry/TmGeNurbCurveT.h>

#include <vector>

class TmGeCircArc2d;
class TmGeEllipArc2d;

// The plane's types for the members TmGeNurbCurve2d shares with TmGeNurbCurve3d.
struct TmGeNurbCurve2dTraits {
    using Curve = TmGeCurve2d;
    using Point = TmGePoint2d;
    using Vector = TmGeVector2d;
    using Matrix = TmGeMatrix2d;
    static constexpr int kDim = 2;
    static constexpr Tmk::EEntityKind kKind = Tmk::EEntityKind::eNurbCurve2d;
    // No projective row: the control points move and the weights stay.
    [[nodiscard]] static bool isAffine(const TmGeMatrix2d& m) noexcept;
};

extern template class TmGeNurbCurveT<TmGeNurbCurve2dTraits>;

// A non-uniform rational B-spline curve in the plane. Its data, their rules and the members
// shared with TmGeNurbCurve3d are those of TmGeNurbCurveT.
class TmGeNurbCurve2d : public TmGeNurbCurveT<TmGeNurbCurve2dTraits> {
public:
    using TmGeNurbCurveT::TmGeNurbCurveT;
    TmGeNurbCurve2d() noexcept;
    // Exact conversions to rational quadratics, one Bezier piece per quarter turn at most, with
    // knots at the angles where the pieces meet; inside a piece the parameter is not the angle.
    explicit TmGeNurbCurve2d(const TmGeCircArc2d& arc);
    explicit TmGeNurbCurve2d(const TmGeEllipArc2d& arc);

    [[nodiscard]] std::unique_ptr<TmGeCurve2d> clone() const override;
};
