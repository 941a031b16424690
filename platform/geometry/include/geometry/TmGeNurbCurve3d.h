#pragma once

#include <geometry/TmGeCurve3d.h>
#include <geometry/TmGeNurbCurveT.h>

#include <vector>

class TmGeCircArc3d;
class TmGeEllipArc3d;
class TmGeLineSeg3d;
class TmGePolyline3d;

// The space's types for the members TmGeNurbCurve3d shares with TmGeNurbCurve2d.
struct TmGeNurbCurve3dTraits {
    using Curve = TmGeCurve3d;
    using Point = TmGePoint3d;
    using Vector = TmGeVector3d;
    using Matrix = TmGeMatrix3d;
    static constexpr int kDim = 3;
    static constexpr Tmk::EEntityKind kKind = Tmk::EEntityKind::eNurbCurve3d;
    // Not perspective: the control points move and the weights stay.
    [[nodiscard]] static bool isAffine(const TmGeMatrix3d& m) noexcept;
};

extern template class TmGeNurbCurveT<TmGeNurbCurve3dTraits>;

// A non-uniform rational B-spline curve in space. Its data, their rules and the members
// shared with TmGeNurbCurve2d are those of TmGeNurbCurveT.
class TmGeNurbCurve3d : public TmGeNurbCurveT<TmGeNurbCurve3dTraits> {
public:
    using TmGeNurbCurveT::TmGeNurbCurveT;
    TmGeNurbCurve3d() noexcept;
    // Exact conversions. Segments and polylines become degree 1 with the source's parameters
    // (a polyline's vertex i at parameter i). Arcs become rational quadratics, one Bezier piece
    // per quarter turn at most, with knots at the angles where the pieces meet; inside a piece
    // the parameter is not the angle.
    explicit TmGeNurbCurve3d(const TmGeLineSeg3d& segment);
    explicit TmGeNurbCurve3d(const TmGePolyline3d& polyline);
    explicit TmGeNurbCurve3d(const TmGeCircArc3d& arc);
    explicit TmGeNurbCurve3d(const TmGeEllipArc3d& arc);

    [[nodiscard]] std::unique_ptr<TmGeCurve3d> clone() const override;
};
