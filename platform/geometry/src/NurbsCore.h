#pragma once

// The dimension-independent part of TmGeNurbCurve2d and TmGeNurbCurve3d: validation, de Boor
// evaluation with derivatives, and arc length.

#include <geometry/TmGeNurbCurveT.h>
#include <geometry/TmGeTol.h>
#include <geometry/TmkErrorStatus.h>

#include "NurbsBasis.h"
#include "Quadrature.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace TmGeInternal {

template <class PointT, int Dim>
bool isFinitePoint(const PointT& p)
{
    for (unsigned c = 0; c < static_cast<unsigned>(Dim); ++c)
        if (!std::isfinite(p[c]))
            return false;
    return true;
}

template <class PointT, int Dim>
Tmk::ErrorStatus validateNurbs(int degree, const std::vector<double>& knots, const std::vector<PointT>& points,
                               const std::vector<double>& weights, bool isPeriodic, const TmGeTol& tol) noexcept
{
    using Tmk::ErrorStatus;
    if (points.empty() && knots.empty())
        return weights.empty() ? ErrorStatus::eOk : ErrorStatus::eInvalidWeights;
    if (degree < 1 || degree > kMaxNurbsDegree)
        return ErrorStatus::eInvalidDegree;
    const std::size_t p = static_cast<std::size_t>(degree);
    const std::size_t n = points.size();
    if (n < p + 1)
        return ErrorStatus::eInvalidDegree;
    if (knots.size() != n + p + 1)
        return ErrorStatus::eInvalidKnots;
    for (std::size_t i = 0; i < knots.size(); ++i) {
        if (!std::isfinite(knots[i]))
            return ErrorStatus::eInvalidKnots;
        if (i > 0 && knots[i] < knots[i - 1])
            return ErrorStatus::eInvalidKnots;
    }
    const double lo = knots[p];
    const double hi = knots[n];
    if (!(lo < hi))
        return ErrorStatus::eInvalidKnots;
    // A knot repeated p + 1 times inside the interval would break the curve in two.
    for (std::size_t i = 0; i < knots.size();) {
        std::size_t j = i;
        while (j < knots.size() && knots[j] == knots[i])
            ++j;
        const std::size_t multiplicity = j - i;
        const bool interior = knots[i] > lo && knots[i] < hi;
        if (multiplicity > p + 1 || (interior && multiplicity > p))
            return ErrorStatus::eInvalidKnots;
        i = j;
    }
    if (!weights.empty()) {
        if (weights.size() != n)
            return ErrorStatus::eInvalidWeights;
        for (double w : weights)
            if (!std::isfinite(w) || !(w > 0.0))
                return ErrorStatus::eInvalidWeights;
    }
    for (const PointT& point : points)
        if (!isFinitePoint<PointT, Dim>(point))
            return ErrorStatus::eInvalidInput;
    if (isPeriodic) {
        const double period = hi - lo;
        const double knotTol = tol.equalPoint() * std::max(1.0, period);
        for (std::size_t i = 0; i <= 2 * p; ++i)
            if (std::fabs(knots[i + n - p] - knots[i] - period) > knotTol)
                return ErrorStatus::eInvalidInput;
        for (std::size_t i = 0; i < p; ++i) {
            if (!points[i + n - p].isEqualTo(points[i], tol))
                return ErrorStatus::eInvalidInput;
            if (!weights.empty() && std::fabs(weights[i + n - p] - weights[i]) > tol.equalVector())
                return ErrorStatus::eInvalidInput;
        }
    }
    return ErrorStatus::eOk;
}

// The point (row 0) and derivatives (rows 1, 2) of a valid, non-empty curve at u.
template <int Dim>
using NurbsResult = std::array<std::array<double, Dim>, 3>;

// de Boor's triangle for degree q on knots T (already offset for a derivative level), span s,
// with d[0..q] the homogeneous points of global indices s - q .. s. Overwrites d.
template <int H>
std::array<double, H> deBoor(int q, const double* T, int s, std::array<double, H>* d, double u) noexcept
{
    for (int r = 1; r <= q; ++r)
        for (int j = q; j >= r; --j) {
            const int i = s - q + j;
            const double alpha = (u - T[i]) / (T[i + q - r + 1] - T[i]);
            for (int c = 0; c < H; ++c)
                d[j][c] = (1.0 - alpha) * d[j - 1][c] + alpha * d[j][c];
        }
    return d[q];
}

// Maps a parameter into the curve's interval: wrapped for a periodic curve, clamped otherwise.
// NaN goes to the start.
inline double toDomain(double u, double lo, double hi, bool isPeriodic) noexcept
{
    if (isPeriodic && std::isfinite(u)) {
        const double period = hi - lo;
        u = lo + std::fmod(u - lo, period);
        if (u < lo)
            u += period;
    }
    if (!(u >= lo))
        return lo;
    if (!(u <= hi))
        return hi;
    return u;
}

// The span k with U[k] <= u < U[k + 1], p <= k <= n - 1; at the very end the last non-empty one.
// `hint` is a span to try first (the previous evaluation's): a sweep of parameters stays in one span
// for many evaluations, and the test costs two comparisons where the search costs a dozen. The span
// taken is the one the search finds, whatever the hint.
inline int findSpan(const std::vector<double>& U, int p, int n, double u, int hint) noexcept
{
    if (hint >= p && hint < n && U[static_cast<std::size_t>(hint)] <= u && u < U[static_cast<std::size_t>(hint) + 1])
        return hint;
    int k = static_cast<int>(std::upper_bound(U.begin() + p + 1, U.begin() + n, u) - U.begin()) - 1;
    while (k > p && U[static_cast<std::size_t>(k)] == U[static_cast<std::size_t>(k) + 1])
        --k;
    return k;
}

// Evaluates a valid, non-empty curve at u. `span` comes in as the hint for findSpan and goes out as
// the span used, so a caller that keeps it between evaluations (one sweep, one batch, one curve's
// last evaluation) skips the search while the parameter stays in the span. The result depends on u
// alone, never on the hint.
template <class PointT, int Dim>
NurbsResult<Dim> evaluateNurbs(int degree, const std::vector<double>& U, const std::vector<PointT>& P,
                               const std::vector<double>& W, bool isPeriodic, double u, int numDeriv,
                               int& span) noexcept
{
    constexpr int H = Dim + 1;
    using HPoint = std::array<double, H>;
    const int p = degree;
    const int n = static_cast<int>(P.size());
    u = toDomain(u, U[static_cast<std::size_t>(p)], U[static_cast<std::size_t>(n)], isPeriodic);
    const int k = findSpan(U, p, n, u, span);
    span = k;

    HPoint level[kMaxNurbsDegree + 1];
    for (int j = 0; j <= p; ++j) {
        const auto idx = static_cast<std::size_t>(k - p + j);
        level[j] = homogeneousPoint<Dim>(P[idx], W.empty() ? 1.0 : W[idx]);
    }

    // The point as the basis-weighted sum of the homogeneous control points: fewer operations
    // than de Boor's triangle over every coordinate, which the derivatives below still use. The
    // generic-degree loops on purpose: the span table's unrolled ones must give these bits.
    double gapReciprocals[basisGapCount(kMaxNurbsDegree)];
    basisGapReciprocals(U.data(), k, p, gapReciprocals);
    double N[kMaxNurbsDegree + 1];
    basisFunctions<0>(U.data(), k, p, gapReciprocals, u, N);
    HPoint h[3] = {};
    h[0] = basisWeightedSum<0, Dim>(N, p, level);

    for (int L = 0; L < numDeriv; ++L) {
        const int q = p - L;
        if (q == 0)
            break; // this and higher derivatives of the homogeneous curve vanish
        // Control points of the derivative curve (degree q - 1) for the same span.
        for (int j = 0; j < q; ++j) {
            const double denom = U[static_cast<std::size_t>(k + j + 1)] - U[static_cast<std::size_t>(k - p + L + j + 1)];
            for (int c = 0; c < H; ++c)
                level[j][c] = q * (level[j + 1][c] - level[j][c]) / denom;
        }
        HPoint work[kMaxNurbsDegree + 1];
        std::copy(level, level + q, work);
        h[L + 1] = deBoor<H>(q - 1, U.data() + L + 1, k - L - 1, work, u);
    }

    // Quotient rule: C = A / w, C' = (A' - w' C) / w, C'' = (A'' - 2 w' C' - w'' C) / w.
    NurbsResult<Dim> out{};
    const double w = h[0][Dim];
    out[0] = projected<Dim>(h[0]);
    if (numDeriv >= 1)
        for (int c = 0; c < Dim; ++c)
            out[1][c] = (h[1][c] - h[1][Dim] * out[0][c]) / w;
    if (numDeriv >= 2)
        for (int c = 0; c < Dim; ++c)
            out[2][c] = (h[2][c] - 2.0 * h[1][Dim] * out[1][c] - h[2][Dim] * out[0][c]) / w;
    return out;
}

template <class PointT, int Dim>
double nurbsLength(int degree, const std::vector<double>& U, const std::vector<PointT>& P,
                   const std::vector<double>& W, bool isPeriodic, double from, double to, double tol) noexcept
{
    if (P.empty())
        return 0.0;
    if (from > to)
        std::swap(from, to);
    const double lo = U[static_cast<std::size_t>(degree)];
    const double hi = U[P.size()];
    if (!isPeriodic) {
        // Beyond the interval the curve stands still; clamping keeps the end speed out of it.
        from = std::clamp(from, lo, hi);
        to = std::clamp(to, lo, hi);
    }
    if (!(from < to) || !std::isfinite(from) || !std::isfinite(to))
        return 0.0;
    int span = -1;
    const auto speed = [&](double t) {
        const NurbsResult<Dim> r = evaluateNurbs<PointT, Dim>(degree, U, P, W, isPeriodic, t, 1, span);
        double s = 0.0;
        for (int c = 0; c < Dim; ++c)
            s += r[1][c] * r[1][c];
        return std::sqrt(s);
    };
    // The speed is smooth inside each knot span only, so integrate span by span.
    std::vector<double> breaks{from};
    for (double knot : U)
        if (knot > breaks.back() && knot < to)
            breaks.push_back(knot);
    breaks.push_back(to);
    const double pieceTol = tol / static_cast<double>(breaks.size() - 1);
    double total = 0.0;
    for (std::size_t i = 0; i + 1 < breaks.size(); ++i)
        total += integrate(speed, breaks[i], breaks[i + 1], pieceTol);
    return total;
}

} // namespace TmGeInternal
