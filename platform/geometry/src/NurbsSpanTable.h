#pragma once

// What a NURBS curve derives once from its knots, control points and weights for evaluating
// points: its homogeneous control points and, per knot span, the reciprocals of the knot gaps the
// span's basis functions divide by. A point then costs one division (by its weight) where the
// evaluation from the curve's data costs a division per gap, and gives the same bits, for it runs
// the same arithmetic (NurbsBasis.h) on the same numbers.
//
// The table is read-only between changes of the curve, so any number of threads read it at once.

#include "NurbsBasis.h"
#include "NurbsCore.h"

#include <cstddef>
#include <span>
#include <vector>

namespace TmGeInternal {

template <int Dim, class PointT>
void buildHomogeneousPoints(const std::vector<PointT>& P, const std::vector<double>& W,
                            std::vector<HomogeneousPoint<Dim>>& out)
{
    out.resize(P.size());
    for (std::size_t i = 0; i < P.size(); ++i)
        out[i] = homogeneousPoint<Dim>(P[i], W.empty() ? 1.0 : W[i]);
}

// basisGapCount(p) reciprocals per span k = p .. n - 1; zeros for an empty span, which the span
// search never picks.
inline void buildGapReciprocals(int p, const std::vector<double>& U, int n, std::vector<double>& out)
{
    const int count = basisGapCount(p);
    out.assign(static_cast<std::size_t>(count) * static_cast<std::size_t>(n > p ? n - p : 0), 0.0);
    for (int k = p; k < n; ++k)
        if (U[static_cast<std::size_t>(k)] < U[static_cast<std::size_t>(k) + 1])
            basisGapReciprocals(U.data(), k, p, out.data() + static_cast<std::ptrdiff_t>(k - p) * count);
}

// A valid, non-empty curve's data and table, for evaluating its points.
template <int Dim>
struct NurbsSpanTable {
    int degree;
    bool isPeriodic;
    const std::vector<double>& knots;
    const std::vector<HomogeneousPoint<Dim>>& homogeneousPoints;
    const std::vector<double>& gapReciprocals;

    // The point at u. `span` comes in as the hint for findSpan and goes out as the span used, as
    // for evaluateNurbs, whose point this is to the bit.
    std::array<double, Dim> point(double u, int& span) const noexcept
    {
        switch (degree) {
        case 1:
            return pointOfDegree<1>(u, span);
        case 2:
            return pointOfDegree<2>(u, span);
        case 3:
            return pointOfDegree<3>(u, span);
        default:
            return pointOfDegree<0>(u, span);
        }
    }

    // point() of every parameter, the degree dispatched once for all of them.
    template <class PointT>
    void points(std::span<const double> params, std::span<PointT> out, int& span) const noexcept
    {
        switch (degree) {
        case 1:
            return pointsOfDegree<1>(params, out, span);
        case 2:
            return pointsOfDegree<2>(params, out, span);
        case 3:
            return pointsOfDegree<3>(params, out, span);
        default:
            return pointsOfDegree<0>(params, out, span);
        }
    }

private:
    template <int FixedDegree>
    std::array<double, Dim> pointOfDegree(double u, int& span) const noexcept
    {
        const int p = FixedDegree > 0 ? FixedDegree : degree;
        const int n = static_cast<int>(homogeneousPoints.size());
        const double* U = knots.data();
        u = toDomain(u, U[p], U[n], isPeriodic);
        const int k = findSpan(knots, p, n, u, span);
        span = k;
        double N[FixedDegree > 0 ? FixedDegree + 1 : kMaxNurbsDegree + 1];
        basisFunctions<FixedDegree>(U, k, p, gapReciprocals.data() + static_cast<std::ptrdiff_t>(k - p) * basisGapCount(p),
                                    u, N);
        return projected<Dim>(basisWeightedSum<FixedDegree, Dim>(N, p, homogeneousPoints.data() + (k - p)));
    }

    template <int FixedDegree, class PointT>
    void pointsOfDegree(std::span<const double> params, std::span<PointT> out, int& span) const noexcept
    {
        for (std::size_t i = 0; i < params.size(); ++i) {
            const std::array<double, Dim> point = pointOfDegree<FixedDegree>(params[i], span);
            for (int c = 0; c < Dim; ++c)
                out[i][static_cast<unsigned>(c)] = point[c];
        }
    }
};

} // namespace TmGeInternal
