#pragma once

// A polyline of a NURBS curve within a chord tolerance, refined where the curve bends.

#include "NurbsSpanTable.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace TmGeInternal {

// Distance from q to the segment a-b.
template <class PointT, int Dim>
double distanceToSegment(const PointT& q, const PointT& a, const PointT& b) noexcept
{
    double ab[Dim];
    double aq[Dim];
    double abab = 0.0;
    double aqab = 0.0;
    for (int c = 0; c < Dim; ++c) {
        ab[c] = b[static_cast<unsigned>(c)] - a[static_cast<unsigned>(c)];
        aq[c] = q[static_cast<unsigned>(c)] - a[static_cast<unsigned>(c)];
        abab += ab[c] * ab[c];
        aqab += aq[c] * ab[c];
    }
    const double t = abab > 0.0 ? std::clamp(aqab / abab, 0.0, 1.0) : 0.0;
    double d2 = 0.0;
    for (int c = 0; c < Dim; ++c) {
        const double d = aq[c] - t * ab[c];
        d2 += d * d;
    }
    return std::sqrt(d2);
}

// Emits (parameter, point) for every vertex, in order: the start of the interval, then each
// piece's end. Every knot span is cut into degree + 1 pieces first, so that a span whose chord
// happens to cross the curve at its samples is not taken for straight; a piece is halved while a
// sample at its quarters lies farther than 3/4 of the tolerance from its chord (the margin covers
// the deviation between the samples of a piece that short), at most kMaxDepth times.
template <class PointT, int Dim, class Emit>
void tessellateNurbs(const NurbsSpanTable<Dim>& curve, double chordTol, Emit&& emit)
{
    constexpr int kMaxDepth = 16; // at most 65536 vertices per piece, whatever the tolerance
    const int degree = curve.degree;
    const std::vector<double>& U = curve.knots;
    const int n = static_cast<int>(curve.homogeneousPoints.size());
    int span = -1;
    const auto at = [&](double u) {
        const std::array<double, Dim> r = curve.point(u, span);
        PointT point;
        for (int c = 0; c < Dim; ++c)
            point[static_cast<unsigned>(c)] = r[static_cast<std::size_t>(c)];
        return point;
    };
    const auto refine = [&](const auto& self, double t0, const PointT& p0, double t1, const PointT& p1,
                            int depth) -> void {
        if (depth < kMaxDepth) {
            double deviation = 0.0;
            for (double f : {0.25, 0.5, 0.75})
                deviation = std::max(deviation, distanceToSegment<PointT, Dim>(at(t0 + (t1 - t0) * f), p0, p1));
            if (deviation > 0.75 * chordTol) {
                const double tm = t0 + (t1 - t0) * 0.5;
                const PointT pm = at(tm);
                self(self, t0, p0, tm, pm, depth + 1);
                emit(tm, pm);
                self(self, tm, pm, t1, p1, depth + 1);
            }
        }
    };

    double a = U[static_cast<std::size_t>(degree)];
    PointT pa = at(a);
    emit(a, pa);
    for (int k = degree; k < n; ++k) {
        const double b = U[static_cast<std::size_t>(k) + 1];
        if (!(b > a))
            continue;
        const int pieces = degree + 1;
        for (int i = 1; i <= pieces; ++i) {
            const double t = i == pieces ? b : a + (b - a) * i / pieces;
            const PointT pt = at(t);
            const double t0 = i == 1 ? a : a + (b - a) * (i - 1) / pieces;
            refine(refine, t0, pa, t, pt, 0);
            emit(t, pt);
            pa = pt;
        }
        a = b;
    }
}

} // namespace TmGeInternal
