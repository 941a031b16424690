#pragma once

#include <geometry/TmGeEntityKind.h>
#include <geometry/TmGeInterval.h>
#include <geometry/TmGeTol.h>
#include <geometry/TmkErrorStatus.h>

#include <array>
#include <atomic>
#include <span>
#include <vector>

// The data and members TmGeNurbCurve2d and TmGeNurbCurve3d share, written once over a traits
// struct naming the curve base, point, vector and matrix types of the plane or of space, the
// dimension, the entity kind and the test for a matrix that leaves the weights alone. Use the
// concrete classes; this base is instantiated for both dimensions in the kernel only.
//
// n control points, degree p >= 1 and n + p + 1 non-decreasing knots; the parameter interval is
// [knot[p], knot[n]]. Weights are either absent (a polynomial spline) or one per control point,
// all > 0 (a rational spline). A knot value inside the interval may repeat at most p times, any
// knot at most p + 1 times.
//
// A periodic curve keeps its control polygon unwrapped: its last p control points (and weights)
// repeat the first p and its knot spacing repeats with period knot[n] - knot[p], which makes it
// closed with p - 1 continuous derivatives. Evaluation wraps parameters into the interval; a
// non-periodic curve clamps them to it.
//
// The default curve is empty (no control points): it evaluates to the origin and has length 0.
// The highest degree a NURBS curve of the kernel may have, in the plane and in space.
inline constexpr int kTmGeNurbsMaxDegree = 31;

template <class Traits>
class TmGeNurbCurveT : public Traits::Curve {
protected:
    using Curve = typename Traits::Curve;
    using Point = typename Traits::Point;
    using Vector = typename Traits::Vector;
    using Matrix = typename Traits::Matrix;

public:
    static constexpr int kMaxDegree = kTmGeNurbsMaxDegree;

    TmGeNurbCurveT() noexcept = default;
    // Invalid input gives the empty curve; set() tells why.
    TmGeNurbCurveT(int degree, std::vector<double> knots, std::vector<Point> controlPoints,
                   std::vector<double> weights = {}, bool isPeriodic = false);

    // The first rule the data break: eInvalidDegree (also above kMaxDegree), eInvalidKnots,
    // eInvalidWeights or eInvalidInput (non-finite point, periodic data that do not wrap). Empty
    // knots and control points together are valid: the empty curve.
    [[nodiscard]] static Tmk::ErrorStatus validate(int degree, const std::vector<double>& knots,
                                                   const std::vector<Point>& controlPoints,
                                                   const std::vector<double>& weights, bool isPeriodic,
                                                   const TmGeTol& tol = TmGeContext::gTol) noexcept;
    // Validates first; the curve is unchanged on failure.
    Tmk::ErrorStatus set(int degree, std::vector<double> knots, std::vector<Point> controlPoints,
                         std::vector<double> weights = {}, bool isPeriodic = false);
    // eInvalidInput for an index out of range or a non-finite point. On a periodic curve the
    // wrapped twin of the control point moves with it.
    Tmk::ErrorStatus setControlPointAt(int index, const Point& point) noexcept;
    // A polynomial curve becomes rational (its other weights 1); the weight must be finite and
    // > 0 (eInvalidWeights). On a periodic curve the wrapped twin changes with it.
    Tmk::ErrorStatus setWeightAt(int index, double weight);

    [[nodiscard]] bool isEmpty() const noexcept { return m_controlPoints.empty(); }
    [[nodiscard]] int degree() const noexcept { return m_degree; }
    [[nodiscard]] int order() const noexcept { return m_degree + 1; }
    [[nodiscard]] bool isRational() const noexcept { return !m_weights.empty(); }
    [[nodiscard]] bool isPeriodic() const noexcept { return m_isPeriodic; }
    [[nodiscard]] int numControlPoints() const noexcept { return static_cast<int>(m_controlPoints.size()); }
    [[nodiscard]] int numKnots() const noexcept { return static_cast<int>(m_knots.size()); }
    [[nodiscard]] const std::vector<double>& knots() const noexcept { return m_knots; }
    [[nodiscard]] const std::vector<Point>& controlPoints() const noexcept { return m_controlPoints; }
    // Empty for a polynomial curve.
    [[nodiscard]] const std::vector<double>& weights() const noexcept { return m_weights; }
    // 1 for a polynomial curve or an index out of range.
    [[nodiscard]] double weightAt(int index) const noexcept;

    [[nodiscard]] Tmk::EEntityKind type() const noexcept override { return Traits::kKind; }
    [[nodiscard]] TmGeInterval interval() const noexcept override;
    // The basis functions weighting the homogeneous control points, de Boor's algorithm on those
    // of the derivative curves, then the quotient rule for a rational curve. The point is the same
    // to the bit with derivatives or without.
    Tmk::ErrorStatus evaluate(double param, int numDeriv, Point& point, Vector* derivs) const noexcept override;
    // The curve's own, without the virtual call of the base class's; the same point.
    [[nodiscard]] Point evalPoint(double param) const noexcept;
    // evalPoint of every parameter into points (as many as params; eInvalidInput otherwise),
    // sharing the span search between neighbouring parameters. Bit-identical to evalPoint.
    Tmk::ErrorStatus evalPoints(std::span<const double> params, std::span<Point> points) const noexcept;
    // A polyline of the interval within chordTol of the curve: params and points of its vertices,
    // the ends of the interval and every distinct knot among them. eInvalidInput for a tolerance
    // that is not finite and > 0; the empty curve gives no vertices.
    Tmk::ErrorStatus tessellate(double chordTol, std::vector<double>& params, std::vector<Point>& points) const;
    // Adaptive Gauss-Kronrod quadrature of the speed, span by span.
    [[nodiscard]] double length(double fromParam, double toParam,
                                double tol = TmGeContext::gTol.equalPoint()) const noexcept override;
    using Curve::length;

    // Affine matrices move the control points; a projective (perspective) one acts on the
    // homogeneous control points, exact as long as every new weight stays > 0 (eInvalidInput
    // otherwise).
    Tmk::ErrorStatus transformBy(const Matrix& m) noexcept override;
    // Same degree, periodicity, knots (within tol.equalPoint()), control points and weights.
    [[nodiscard]] bool isEqualTo(const Curve& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept override;

private:
    using HomogeneousPoint = std::array<double, Traits::kDim + 1>;

    // Derives m_homogeneousPoints and m_gapReciprocals from the data; every change of the knots,
    // control points or weights ends with it.
    void rebuildSpanTable();
    // The data and table the point evaluation reads, as the kernel's internal view of them.
    [[nodiscard]] auto spanTable() const noexcept;

    // The span of the last evaluation, tried first by the next one. Any value is a valid hint, so
    // threads evaluating one curve at once may overwrite each other's (relaxed) without harm, and
    // a copy starts without one.
    struct SpanHint {
        mutable std::atomic<int> span{-1};
        SpanHint() noexcept = default;
        SpanHint(const SpanHint&) noexcept {}
        SpanHint& operator=(const SpanHint&) noexcept { return *this; }
    };

    int m_degree = 0;
    bool m_isPeriodic = false;
    std::vector<double> m_knots;
    std::vector<Point> m_controlPoints;
    std::vector<double> m_weights;
    // The span table of the point evaluation: the homogeneous control points (w x, w y, [w z,] w)
    // and, per knot span, the reciprocals of the knot gaps its basis functions divide by. Only the
    // members that change the data write it, so concurrent evaluations share it without locks.
    std::vector<HomogeneousPoint> m_homogeneousPoints;
    std::vector<double> m_gapReciprocals;
    SpanHint m_lastSpan;
};
