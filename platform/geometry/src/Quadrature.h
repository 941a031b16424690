#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

namespace TmGeInternal {

struct QuadratureResult {
    double value = 0.0;
    double error = 0.0;
};

// One 15-point Kronrod rule on [a, b] with the embedded 7-point Gauss rule as error estimate.
template <class F>
QuadratureResult gaussKronrod15(const F& f, double a, double b)
{
    static constexpr double xgk[8] = {0.991455371120812639, 0.949107912342758525, 0.864864423359769073,
                                      0.741531185599394440, 0.586087235467691130, 0.405845151377397167,
                                      0.207784955007898468, 0.0};
    static constexpr double wgk[8] = {0.022935322010529225, 0.063092092629978553, 0.104790010322250184,
                                      0.140653259715525919, 0.169004726639267903, 0.190350578064785410,
                                      0.204432940075298892, 0.209482141084727828};
    static constexpr double wg[4] = {0.129484966168869693, 0.279705391489276668, 0.381830050505118945,
                                     0.417959183673469388};
    const double c = 0.5 * (a + b);
    const double h = 0.5 * (b - a);
    const double fc = f(c);
    double kronrod = fc * wgk[7];
    double gauss = fc * wg[3];
    for (int j = 0; j < 7; ++j) {
        const double x = h * xgk[j];
        const double sum = f(c - x) + f(c + x);
        kronrod += wgk[j] * sum;
        if (j % 2 == 1)
            gauss += wg[j / 2] * sum;
    }
    return {kronrod * h, std::fabs((kronrod - gauss) * h)};
}

// The integral of f over [a, b] to an absolute accuracy `tol`, by globally adaptive bisection
// (the interval with the largest error estimate is split first). The number of subintervals is
// capped, so a function that cannot be integrated to `tol` still returns the best estimate.
template <class F>
double integrate(const F& f, double a, double b, double tol, int maxIntervals = 400)
{
    if (!(a < b) || !std::isfinite(a) || !std::isfinite(b))
        return 0.0;
    struct Piece {
        double a;
        double b;
        QuadratureResult r;
    };
    std::vector<Piece> pieces;
    pieces.push_back({a, b, gaussKronrod15(f, a, b)});
    double total = pieces.front().r.value;
    double error = pieces.front().r.error;
    // Below a few ulps of the result no refinement can help; stop there whatever `tol` asks.
    const auto target = [&] { return std::max(tol, 1e-14 * std::fabs(total)); };
    while (error > target() && static_cast<int>(pieces.size()) < maxIntervals) {
        auto worst = std::max_element(pieces.begin(), pieces.end(),
                                      [](const Piece& l, const Piece& r) { return l.r.error < r.r.error; });
        const Piece piece = *worst;
        const double mid = 0.5 * (piece.a + piece.b);
        if (!(piece.a < mid && mid < piece.b))
            break; // no more resolution in doubles
        const QuadratureResult left = gaussKronrod15(f, piece.a, mid);
        const QuadratureResult right = gaussKronrod15(f, mid, piece.b);
        total += left.value + right.value - piece.r.value;
        error += left.error + right.error - piece.r.error;
        *worst = {piece.a, mid, left};
        pieces.push_back({mid, piece.b, right});
        if (!std::isfinite(error))
            break;
    }
    // Summing afresh avoids the drift of the running updates.
    double sum = 0.0;
    for (const Piece& p : pieces)
        sum += p.r.value;
    return sum;
}

} // namespace TmGeInternal
