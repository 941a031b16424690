#pragma once

// The arithmetic of a NURBS point that the evaluation from the curve's data (NurbsCore.h) and the
// one from its span table (NurbsSpanTable.h) share. Both run these same operations in the same
// order on the same inputs, which is what makes their results identical to the bit. Declared
// inline, which lets the compiler fold a few dozen operations into the evaluation loop where
// its own estimate would call them.

#include <geometry/TmGeNurbCurveT.h>

#include <array>

namespace TmGeInternal {

inline constexpr int kMaxNurbsDegree = kTmGeNurbsMaxDegree;

// A point of the curve before the division by its weight: (w x, w y, [w z,] w).
template <int Dim>
using HomogeneousPoint = std::array<double, Dim + 1>;

template <int Dim, class PointT>
inline HomogeneousPoint<Dim> homogeneousPoint(const PointT& point, double weight) noexcept
{
    HomogeneousPoint<Dim> h;
    for (int c = 0; c < Dim; ++c)
        h[c] = point[static_cast<unsigned>(c)] * weight;
    h[Dim] = weight;
    return h;
}

// How many knot gaps the basis functions of one span of degree p divide by.
constexpr int basisGapCount(int p) noexcept
{
    return p * (p + 1) / 2;
}

// The reciprocals of the knot gaps U[k + r + 1] - U[k + 1 - j + r] (j = 1..p, r = 0..j - 1, in
// this order) of the non-empty span k. Every gap contains the span, so none is zero.
inline void basisGapReciprocals(const double* U, int k, int p, double* out) noexcept
{
    for (int j = 1; j <= p; ++j)
        for (int r = 0; r < j; ++r)
            *out++ = 1.0 / (U[k + r + 1] - U[k + 1 - j + r]);
}

// The p + 1 non-zero basis functions of span k at u into N: the triangular Cox-de Boor scheme,
// multiplying by the gaps' reciprocals where the textbook divides by the gaps. FixedDegree > 0 is p
// known where this is compiled (the cubic, whose loops then unroll into registers); the operations
// and their order are those of the generic loop.
template <int FixedDegree>
inline void basisFunctions(const double* U, int k, int p, const double* gapReciprocals, double u, double* N) noexcept
{
    constexpr int kSize = FixedDegree > 0 ? FixedDegree + 1 : kMaxNurbsDegree + 1;
    const int degree = FixedDegree > 0 ? FixedDegree : p;
    double left[kSize];
    double right[kSize];
    N[0] = 1.0;
    // -O2 keeps loops rolled, and the arrays then live in memory; unrolled, a fixed degree's
    // arrays become registers. No effect on the generic loop, whose bound is not a constant.
#pragma GCC unroll 8
    for (int j = 1; j <= degree; ++j) {
        left[j] = u - U[k + 1 - j];
        right[j] = U[k + j] - u;
        double saved = 0.0;
#pragma GCC unroll 8
        for (int r = 0; r < j; ++r) {
            const double temp = N[r] * *gapReciprocals++;
            N[r] = saved + right[r + 1] * temp;
            saved = left[j - r] * temp;
        }
        N[j] = saved;
    }
}

// The curve's homogeneous point: the basis functions N[0..p] weighting the span's homogeneous
// control points.
template <int FixedDegree, int Dim>
inline HomogeneousPoint<Dim> basisWeightedSum(const double* N, int p, const HomogeneousPoint<Dim>* controls) noexcept
{
    const int degree = FixedDegree > 0 ? FixedDegree : p;
    HomogeneousPoint<Dim> h;
    for (int c = 0; c <= Dim; ++c)
        h[c] = N[0] * controls[0][c];
#pragma GCC unroll 8
    for (int j = 1; j <= degree; ++j)
        for (int c = 0; c <= Dim; ++c)
            h[c] += N[j] * controls[j][c];
    return h;
}

// One division, then products: the three quotients cost as much as the division alone.
template <int Dim>
inline std::array<double, Dim> projected(const HomogeneousPoint<Dim>& h) noexcept
{
    const double inverseWeight = 1.0 / h[Dim];
    std::array<double, Dim> point;
    for (int c = 0; c < Dim; ++c)
        point[c] = h[c] * inverseWeight;
    return point;
}

} // namespace TmGeInternal
