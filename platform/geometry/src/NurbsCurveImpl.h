#pragma once

// The arc conversions of TmGeNurbCurve2d and TmGeNurbCurve3d, written over the point type.

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace TmGeInternal {

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

} // namespace TmGeInternal
