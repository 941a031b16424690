#pragma once

// The work behind the members of TmGeNurbCurveT and the arc conversions of TmGeNurbCurve2d and
// TmGeNurbCurve3d, written over the point type. The curve hands its fields in by reference.

#include <geometry/TmGeTol.h>
#include <geometry/TmkErrorStatus.h>

#include "NurbsCore.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>
#include <vector>

namespace TmGeInternal {

// The fields of one curve, as the curve class stores them.
template <class PointT>
struct NurbsFields {
    int& degree;
    bool& isPeriodic;
    std::vector<double>& knots;
    std::vector<PointT>& points;
    std::vector<double>& weights;
};

template <class PointT>
struct NurbsConstFields {
    int degree;
    bool isPeriodic;
    const std::vector<double>& knots;
    const std::vector<PointT>& points;
    const std::vector<double>& weights;

    [[nodiscard]] double weightAt(std::size_t i) const noexcept { return i < weights.size() ? weights[i] : 1.0; }
};

// A rational quadratic through the elliptical arc center + cos(a) U + sin(a) V, a in
// [start, end]: one Bezier piece per quarter turn at most, each middle point on the tangents'
// intersection with weight cos(half the piece's sweep).
template <class CurveT, class PointT, class VectorT>
CurveT conicArc(const PointT& center, const VectorT& U, const VectorT& V, double start, double end)
{
    const double sweep = end - start;
    if (!(sweep > 0.0))
        return {};
    const int pieces = std::clamp(static_cast<int>(std::ceil(sweep / (0.5 * std::numbers::pi) - 1e-12)), 1, 4);
    const double step = sweep / pieces;
    const double w = std::cos(0.5 * step);
    const auto at = [&](double a, double scale) { return center + (U * std::cos(a) + V * std::sin(a)) * scale; };
    std::vector<PointT> points{at(start, 1.0)};
    std::vector<double> weights{1.0};
    std::vector<double> knots{start, start, start};
    for (int i = 0; i < pieces; ++i) {
        const double a0 = start + i * step;
        const double a1 = i + 1 == pieces ? end : start + (i + 1) * step;
        points.push_back(at(0.5 * (a0 + a1), 1.0 / w));
        points.push_back(at(a1, 1.0));
        weights.push_back(w);
        weights.push_back(1.0);
        knots.push_back(a1);
        knots.push_back(a1);
    }
    knots.push_back(end);
    return {2, std::move(knots), std::move(points), std::move(weights)};
}

// Stores already validated data; the empty curve keeps degree 0 and is never periodic.
template <class PointT>
void storeNurbs(const NurbsFields<PointT>& to, int degree, std::vector<double> knots, std::vector<PointT> points,
                std::vector<double> weights, bool isPeriodic)
{
    const bool empty = points.empty();
    to.degree = empty ? 0 : degree;
    to.isPeriodic = !empty && isPeriodic;
    to.knots = std::move(knots);
    to.points = std::move(points);
    to.weights = std::move(weights);
}

// Writes values[i]; on a periodic curve also its wrapped twin, so the first and last `degree`
// entries keep repeating each other.
template <class T>
void setWrapped(std::vector<T>& values, std::size_t i, const T& value, int degree, bool isPeriodic)
{
    values[i] = value;
    if (!isPeriodic)
        return;
    const std::size_t wrap = values.size() - static_cast<std::size_t>(degree);
    if (i < static_cast<std::size_t>(degree))
        values[i + wrap] = value;
    else if (i >= wrap)
        values[i - wrap] = value;
}

template <class PointT, class VectorT, int Dim>
Tmk::ErrorStatus evaluateCurve(const NurbsConstFields<PointT>& curve, int maxDerivative, double param, int numDeriv,
                               PointT& point, VectorT* derivs) noexcept
{
    if (numDeriv < 0 || numDeriv > maxDerivative || (numDeriv > 0 && derivs == nullptr))
        return Tmk::ErrorStatus::eInvalidInput;
    if (curve.points.empty()) {
        point = PointT::kOrigin;
        for (int i = 0; i < numDeriv; ++i)
            derivs[i] = VectorT::kIdentity;
        return Tmk::ErrorStatus::eOk;
    }
    const auto r = evaluateNurbs<PointT, Dim>(curve.degree, curve.knots, curve.points, curve.weights,
                                              curve.isPeriodic, param, numDeriv);
    for (unsigned c = 0; c < static_cast<unsigned>(Dim); ++c)
        point[c] = r[0][c];
    for (int i = 0; i < numDeriv; ++i)
        for (unsigned c = 0; c < static_cast<unsigned>(Dim); ++c)
            derivs[i][c] = r[static_cast<std::size_t>(i) + 1][c];
    return Tmk::ErrorStatus::eOk;
}

// A projective matrix acts on the homogeneous control points (w x, w y, ..., w); the last
// coordinate becomes the new weight, which must stay finite and > 0. Unchanged on failure.
template <class PointT, int Dim, class MatrixT>
Tmk::ErrorStatus transformHomogeneous(const MatrixT& m, std::vector<PointT>& controlPoints,
                                      std::vector<double>& controlWeights) noexcept
{
    constexpr int H = Dim + 1;
    std::vector<PointT> points(controlPoints.size());
    std::vector<double> weights(controlPoints.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double w = controlWeights.empty() ? 1.0 : controlWeights[i];
        double h[H];
        for (int c = 0; c < Dim; ++c)
            h[c] = controlPoints[i][static_cast<unsigned>(c)] * w;
        h[Dim] = w;
        double t[H];
        for (int r = 0; r < H; ++r) {
            t[r] = m.entry[r][0] * h[0];
            for (int c = 1; c < H; ++c)
                t[r] += m.entry[r][c] * h[c];
        }
        if (!(t[Dim] > 0.0) || !std::isfinite(t[Dim]))
            return Tmk::ErrorStatus::eInvalidInput;
        for (int c = 0; c < Dim; ++c)
            points[i][static_cast<unsigned>(c)] = t[c] / t[Dim];
        weights[i] = t[Dim];
    }
    controlPoints = std::move(points);
    controlWeights = std::move(weights);
    return Tmk::ErrorStatus::eOk;
}

// Same degree, periodicity, knots (within tol.equalPoint()), control points and weights.
template <class PointT>
bool nurbsEqual(const NurbsConstFields<PointT>& a, const NurbsConstFields<PointT>& b, const TmGeTol& tol) noexcept
{
    if (a.degree != b.degree || a.isPeriodic != b.isPeriodic || a.knots.size() != b.knots.size()
        || a.points.size() != b.points.size())
        return false;
    for (std::size_t i = 0; i < a.knots.size(); ++i)
        if (!(std::fabs(a.knots[i] - b.knots[i]) <= tol.equalPoint()))
            return false;
    for (std::size_t i = 0; i < a.points.size(); ++i) {
        if (!a.points[i].isEqualTo(b.points[i], tol))
            return false;
        if (!(std::fabs(a.weightAt(i) - b.weightAt(i)) <= tol.equalVector()))
            return false;
    }
    return true;
}

} // namespace TmGeInternal
