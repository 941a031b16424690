#include <geometry/TmGeNurbCurve2d.h>
#include <geometry/TmGeNurbCurve3d.h>

#include <geometry/TmGeMatrix2d.h>
#include <geometry/TmGeMatrix3d.h>

#include "NurbsCore.h"
#include "NurbsSpanTable.h"
#include "NurbsTessellation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace {

// On a periodic curve the first and last `degree` entries of the control points and weights
// repeat each other: the index that repeats entry i (i itself when none does).
std::size_t wrappedTwin(std::size_t size, std::size_t i, int degree, bool isPeriodic) noexcept
{
    if (!isPeriodic)
        return i;
    const std::size_t wrap = size - static_cast<std::size_t>(degree);
    if (i < static_cast<std::size_t>(degree))
        return i + wrap;
    if (i >= wrap)
        return i - wrap;
    return i;
}

template <class T>
void setWrapped(std::vector<T>& values, std::size_t i, const T& value, int degree, bool isPeriodic)
{
    values[i] = value;
    values[wrappedTwin(values.size(), i, degree, isPeriodic)] = value;
}

// The span table's share of a change to control point or weight i (and to its wrapped twin).
template <int Dim, class PointT, class HomogeneousPointT>
void refreshHomogeneousPoint(std::vector<HomogeneousPointT>& homogeneous, const std::vector<PointT>& points,
                             const std::vector<double>& weights, std::size_t i, int degree, bool isPeriodic) noexcept
{
    for (const std::size_t j : {i, wrappedTwin(points.size(), i, degree, isPeriodic)})
        homogeneous[j] = TmGeInternal::homogeneousPoint<Dim>(points[j], weights.empty() ? 1.0 : weights[j]);
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

} // namespace

template <class Traits>
TmGeNurbCurveT<Traits>::TmGeNurbCurveT(int degree, std::vector<double> knots, std::vector<Point> controlPoints,
                                       std::vector<double> weights, bool isPeriodic)
{
    (void)set(degree, std::move(knots), std::move(controlPoints), std::move(weights), isPeriodic);
}

template <class Traits>
Tmk::ErrorStatus TmGeNurbCurveT<Traits>::validate(int degree, const std::vector<double>& knots,
                                                  const std::vector<Point>& controlPoints,
                                                  const std::vector<double>& weights, bool isPeriodic,
                                                  const TmGeTol& tol) noexcept
{
    return TmGeInternal::validateNurbs<Point, Traits::kDim>(degree, knots, controlPoints, weights, isPeriodic, tol);
}

template <class Traits>
Tmk::ErrorStatus TmGeNurbCurveT<Traits>::set(int degree, std::vector<double> knots, std::vector<Point> controlPoints,
                                             std::vector<double> weights, bool isPeriodic)
{
    const Tmk::ErrorStatus status = validate(degree, knots, controlPoints, weights, isPeriodic);
    if (status != Tmk::ErrorStatus::eOk)
        return status;
    // The empty curve keeps degree 0 and is never periodic.
    const bool empty = controlPoints.empty();
    m_degree = empty ? 0 : degree;
    m_isPeriodic = !empty && isPeriodic;
    m_knots = std::move(knots);
    m_controlPoints = std::move(controlPoints);
    m_weights = std::move(weights);
    rebuildSpanTable();
    return status;
}

template <class Traits>
void TmGeNurbCurveT<Traits>::rebuildSpanTable()
{
    TmGeInternal::buildHomogeneousPoints<Traits::kDim>(m_controlPoints, m_weights, m_homogeneousPoints);
    TmGeInternal::buildGapReciprocals(m_degree, m_knots, numControlPoints(), m_gapReciprocals);
}

template <class Traits>
auto TmGeNurbCurveT<Traits>::spanTable() const noexcept
{
    return TmGeInternal::NurbsSpanTable<Traits::kDim>{m_degree, m_isPeriodic, m_knots, m_homogeneousPoints,
                                                      m_gapReciprocals};
}

template <class Traits>
Tmk::ErrorStatus TmGeNurbCurveT<Traits>::setControlPointAt(int index, const Point& point) noexcept
{
    if (index < 0 || index >= numControlPoints() || !TmGeInternal::isFinitePoint<Point, Traits::kDim>(point))
        return Tmk::ErrorStatus::eInvalidInput;
    setWrapped(m_controlPoints, static_cast<std::size_t>(index), point, m_degree, m_isPeriodic);
    refreshHomogeneousPoint<Traits::kDim>(m_homogeneousPoints, m_controlPoints, m_weights,
                                          static_cast<std::size_t>(index), m_degree, m_isPeriodic);
    return Tmk::ErrorStatus::eOk;
}

template <class Traits>
Tmk::ErrorStatus TmGeNurbCurveT<Traits>::setWeightAt(int index, double weight)
{
    if (index < 0 || index >= numControlPoints())
        return Tmk::ErrorStatus::eInvalidInput;
    if (!std::isfinite(weight) || !(weight > 0.0))
        return Tmk::ErrorStatus::eInvalidWeights;
    if (m_weights.empty())
        m_weights.assign(m_controlPoints.size(), 1.0);
    setWrapped(m_weights, static_cast<std::size_t>(index), weight, m_degree, m_isPeriodic);
    refreshHomogeneousPoint<Traits::kDim>(m_homogeneousPoints, m_controlPoints, m_weights,
                                          static_cast<std::size_t>(index), m_degree, m_isPeriodic);
    return Tmk::ErrorStatus::eOk;
}

template <class Traits>
double TmGeNurbCurveT<Traits>::weightAt(int index) const noexcept
{
    if (index < 0 || static_cast<std::size_t>(index) >= m_weights.size())
        return 1.0;
    return m_weights[static_cast<std::size_t>(index)];
}

template <class Traits>
TmGeInterval TmGeNurbCurveT<Traits>::interval() const noexcept
{
    if (isEmpty())
        return {0.0, 0.0};
    return {m_knots[static_cast<std::size_t>(m_degree)], m_knots[m_controlPoints.size()]};
}

template <class Traits>
Tmk::ErrorStatus TmGeNurbCurveT<Traits>::evaluate(double param, int numDeriv, Point& point,
                                                  Vector* derivs) const noexcept
{
    constexpr int kDim = Traits::kDim;
    if (numDeriv < 0 || numDeriv > Curve::kMaxDerivative || (numDeriv > 0 && derivs == nullptr))
        return Tmk::ErrorStatus::eInvalidInput;
    if (isEmpty()) {
        point = Point::kOrigin;
        for (int i = 0; i < numDeriv; ++i)
            derivs[i] = Vector::kIdentity;
        return Tmk::ErrorStatus::eOk;
    }
    if (numDeriv == 0) {
        point = evalPoint(param);
        return Tmk::ErrorStatus::eOk;
    }
    // From the curve's data alone: no span table, no shared hint.
    int span = -1;
    const auto r = TmGeInternal::evaluateNurbs<Point, kDim>(m_degree, m_knots, m_controlPoints, m_weights,
                                                            m_isPeriodic, param, numDeriv, span);
    for (unsigned c = 0; c < static_cast<unsigned>(kDim); ++c)
        point[c] = r[0][c];
    for (int i = 0; i < numDeriv; ++i)
        for (unsigned c = 0; c < static_cast<unsigned>(kDim); ++c)
            derivs[i][c] = r[static_cast<std::size_t>(i) + 1][c];
    return Tmk::ErrorStatus::eOk;
}

template <class Traits>
typename Traits::Point TmGeNurbCurveT<Traits>::evalPoint(double param) const noexcept
{
    if (isEmpty())
        return Point::kOrigin;
    // Stored only when it moves: a sweep then writes nothing, and threads sweeping one curve do not
    // fight over its cache line.
    const int hint = m_lastSpan.span.load(std::memory_order_relaxed);
    int span = hint;
    const std::array<double, Traits::kDim> r = spanTable().point(param, span);
    if (span != hint)
        m_lastSpan.span.store(span, std::memory_order_relaxed);
    Point point;
    for (unsigned c = 0; c < static_cast<unsigned>(Traits::kDim); ++c)
        point[c] = r[c];
    return point;
}

template <class Traits>
Tmk::ErrorStatus TmGeNurbCurveT<Traits>::evalPoints(std::span<const double> params, std::span<Point> points) const noexcept
{
    if (params.size() != points.size())
        return Tmk::ErrorStatus::eInvalidInput;
    if (isEmpty()) {
        std::fill(points.begin(), points.end(), Point::kOrigin);
        return Tmk::ErrorStatus::eOk;
    }
    int span = m_lastSpan.span.load(std::memory_order_relaxed);
    spanTable().points(params, points, span);
    m_lastSpan.span.store(span, std::memory_order_relaxed);
    return Tmk::ErrorStatus::eOk;
}

template <class Traits>
Tmk::ErrorStatus TmGeNurbCurveT<Traits>::tessellate(double chordTol, std::vector<double>& params,
                                                    std::vector<Point>& points) const
{
    if (!std::isfinite(chordTol) || !(chordTol > 0.0))
        return Tmk::ErrorStatus::eInvalidInput;
    params.clear();
    points.clear();
    if (isEmpty())
        return Tmk::ErrorStatus::eOk;
    // Clamped even on a periodic curve: the end of the interval would wrap to its start.
    auto table = spanTable();
    table.isPeriodic = false;
    TmGeInternal::tessellateNurbs<Point, Traits::kDim>(
        table, chordTol,
        [&](double u, const Point& point) {
            params.push_back(u);
            points.push_back(point);
        });
    return Tmk::ErrorStatus::eOk;
}

template <class Traits>
double TmGeNurbCurveT<Traits>::length(double fromParam, double toParam, double tol) const noexcept
{
    return TmGeInternal::nurbsLength<Point, Traits::kDim>(m_degree, m_knots, m_controlPoints, m_weights, m_isPeriodic,
                                                          fromParam, toParam, tol);
}

template <class Traits>
Tmk::ErrorStatus TmGeNurbCurveT<Traits>::transformBy(const Matrix& m) noexcept
{
    if (Traits::isAffine(m)) {
        if constexpr (Traits::kDim == 3) {
            m.transformPoints(m_controlPoints);
        } else {
            for (Point& point : m_controlPoints)
                point.transformBy(m);
        }
        rebuildSpanTable();
        return Tmk::ErrorStatus::eOk;
    }
    const Tmk::ErrorStatus status = transformHomogeneous<Point, Traits::kDim>(m, m_controlPoints, m_weights);
    if (status == Tmk::ErrorStatus::eOk)
        rebuildSpanTable();
    return status;
}

template <class Traits>
bool TmGeNurbCurveT<Traits>::isEqualTo(const Curve& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& curve = static_cast<const TmGeNurbCurveT&>(other);
    if (m_degree != curve.m_degree || m_isPeriodic != curve.m_isPeriodic || m_knots.size() != curve.m_knots.size()
        || m_controlPoints.size() != curve.m_controlPoints.size())
        return false;
    for (std::size_t i = 0; i < m_knots.size(); ++i)
        if (!(std::fabs(m_knots[i] - curve.m_knots[i]) <= tol.equalPoint()))
            return false;
    for (std::size_t i = 0; i < m_controlPoints.size(); ++i) {
        if (!m_controlPoints[i].isEqualTo(curve.m_controlPoints[i], tol))
            return false;
        const int index = static_cast<int>(i);
        if (!(std::fabs(weightAt(index) - curve.weightAt(index)) <= tol.equalVector()))
            return false;
    }
    return true;
}

template class TmGeNurbCurveT<TmGeNurbCurve2dTraits>;
template class TmGeNurbCurveT<TmGeNurbCurve3dTraits>;
