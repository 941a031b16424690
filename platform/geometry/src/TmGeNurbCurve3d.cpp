#include <geometry/TmGeNurbCurve3d.h>

#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeEllipArc3d.h>
#include <geometry/TmGeLineSeg3d.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePolyline3d.h>

#include "NurbsCore.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

constexpr int kDim = 3;

// A rational quadratic through the elliptical arc center + cos(a) U + sin(a) V, a in
// [start, end]: one Bezier piece per quarter turn at most, each middle point on the tangents'
// intersection with weight cos(half the piece's sweep).
TmGeNurbCurve3d conicArc(const TmGePoint3d& center, const TmGeVector3d& U, const TmGeVector3d& V, double start,
                         double end)
{
    const double sweep = end - start;
    if (!(sweep > 0.0))
        return {};
    const int pieces = std::clamp(static_cast<int>(std::ceil(sweep / (0.5 * std::numbers::pi) - 1e-12)), 1, 4);
    const double step = sweep / pieces;
    const double w = std::cos(0.5 * step);
    const auto at = [&](double a, double scale) { return center + (U * std::cos(a) + V * std::sin(a)) * scale; };
    std::vector<TmGePoint3d> points{at(start, 1.0)};
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

} // namespace

TmGeNurbCurve3d::TmGeNurbCurve3d() noexcept = default;

TmGeNurbCurve3d::TmGeNurbCurve3d(int degree, std::vector<double> knots, std::vector<TmGePoint3d> controlPoints,
                                 std::vector<double> weights, bool isPeriodic)
{
    (void)set(degree, std::move(knots), std::move(controlPoints), std::move(weights), isPeriodic);
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGeLineSeg3d& segment)
{
    const TmGeInterval range = segment.interval();
    (void)set(1, {range.lowerBound(), range.lowerBound(), range.upperBound(), range.upperBound()},
              {segment.startPoint(), segment.endPoint()});
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGePolyline3d& polyline)
{
    const int n = polyline.numPoints();
    if (n < 2)
        return;
    std::vector<double> knots{0.0};
    for (int i = 0; i < n; ++i)
        knots.push_back(i);
    knots.push_back(n - 1);
    (void)set(1, std::move(knots), polyline.points());
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGeCircArc3d& arc)
{
    const TmGeVector3d side = arc.normal().crossProduct(arc.refVec());
    *this = conicArc(arc.center(), arc.refVec() * arc.radius(), side * arc.radius(), arc.startAng(), arc.endAng());
}

TmGeNurbCurve3d::TmGeNurbCurve3d(const TmGeEllipArc3d& arc)
{
    *this = conicArc(arc.center(), arc.majorAxis() * arc.majorRadius(), arc.minorAxis() * arc.minorRadius(),
                     arc.startAng(), arc.endAng());
}

Tmk::ErrorStatus TmGeNurbCurve3d::validate(int degree, const std::vector<double>& knots,
                                           const std::vector<TmGePoint3d>& controlPoints,
                                           const std::vector<double>& weights, bool isPeriodic,
                                           const TmGeTol& tol) noexcept
{
    return TmGeInternal::validateNurbs<TmGePoint3d, kDim>(degree, knots, controlPoints, weights, isPeriodic, tol);
}

Tmk::ErrorStatus TmGeNurbCurve3d::set(int degree, std::vector<double> knots, std::vector<TmGePoint3d> controlPoints,
                                      std::vector<double> weights, bool isPeriodic)
{
    const Tmk::ErrorStatus status = validate(degree, knots, controlPoints, weights, isPeriodic);
    if (status != Tmk::ErrorStatus::eOk)
        return status;
    const bool empty = controlPoints.empty();
    m_degree = empty ? 0 : degree;
    m_isPeriodic = !empty && isPeriodic;
    m_knots = std::move(knots);
    m_controlPoints = std::move(controlPoints);
    m_weights = std::move(weights);
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeNurbCurve3d::setControlPointAt(int index, const TmGePoint3d& point) noexcept
{
    if (index < 0 || index >= numControlPoints() || !TmGeInternal::isFinitePoint<TmGePoint3d, kDim>(point))
        return Tmk::ErrorStatus::eInvalidInput;
    const auto i = static_cast<std::size_t>(index);
    m_controlPoints[i] = point;
    if (m_isPeriodic) {
        const auto wrap = static_cast<std::size_t>(numControlPoints() - m_degree);
        if (i < static_cast<std::size_t>(m_degree))
            m_controlPoints[i + wrap] = point;
        else if (i >= wrap)
            m_controlPoints[i - wrap] = point;
    }
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeNurbCurve3d::setWeightAt(int index, double weight)
{
    if (index < 0 || index >= numControlPoints())
        return Tmk::ErrorStatus::eInvalidInput;
    if (!std::isfinite(weight) || !(weight > 0.0))
        return Tmk::ErrorStatus::eInvalidWeights;
    if (m_weights.empty())
        m_weights.assign(m_controlPoints.size(), 1.0);
    const auto i = static_cast<std::size_t>(index);
    m_weights[i] = weight;
    if (m_isPeriodic) {
        const auto wrap = static_cast<std::size_t>(numControlPoints() - m_degree);
        if (i < static_cast<std::size_t>(m_degree))
            m_weights[i + wrap] = weight;
        else if (i >= wrap)
            m_weights[i - wrap] = weight;
    }
    return Tmk::ErrorStatus::eOk;
}

double TmGeNurbCurve3d::weightAt(int index) const noexcept
{
    if (index < 0 || static_cast<std::size_t>(index) >= m_weights.size())
        return 1.0;
    return m_weights[static_cast<std::size_t>(index)];
}

TmGeInterval TmGeNurbCurve3d::interval() const noexcept
{
    if (isEmpty())
        return {0.0, 0.0};
    return {m_knots[static_cast<std::size_t>(m_degree)], m_knots[m_controlPoints.size()]};
}

Tmk::ErrorStatus TmGeNurbCurve3d::evaluate(double param, int numDeriv, TmGePoint3d& point,
                                           TmGeVector3d* derivs) const noexcept
{
    if (numDeriv < 0 || numDeriv > kMaxDerivative || (numDeriv > 0 && derivs == nullptr))
        return Tmk::ErrorStatus::eInvalidInput;
    if (isEmpty()) {
        point = TmGePoint3d::kOrigin;
        for (int i = 0; i < numDeriv; ++i)
            derivs[i] = TmGeVector3d::kIdentity;
        return Tmk::ErrorStatus::eOk;
    }
    const auto r = TmGeInternal::evaluateNurbs<TmGePoint3d, kDim>(m_degree, m_knots, m_controlPoints, m_weights,
                                                                  m_isPeriodic, param, numDeriv);
    point.set(r[0][0], r[0][1], r[0][2]);
    for (int i = 0; i < numDeriv; ++i)
        derivs[i].set(r[i + 1][0], r[i + 1][1], r[i + 1][2]);
    return Tmk::ErrorStatus::eOk;
}

double TmGeNurbCurve3d::length(double fromParam, double toParam, double tol) const noexcept
{
    return TmGeInternal::nurbsLength<TmGePoint3d, kDim>(m_degree, m_knots, m_controlPoints, m_weights, m_isPeriodic,
                                                        fromParam, toParam, tol);
}

Tmk::ErrorStatus TmGeNurbCurve3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    if (!m.isPerspective()) {
        for (TmGePoint3d& point : m_controlPoints)
            point.transformBy(m);
        return Tmk::ErrorStatus::eOk;
    }
    // Projective: transform the homogeneous points (w x, w y, w z, w) and read the new weights.
    std::vector<TmGePoint3d> points(m_controlPoints.size());
    std::vector<double> weights(m_controlPoints.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double w = m_weights.empty() ? 1.0 : m_weights[i];
        const double h[4] = {m_controlPoints[i].x * w, m_controlPoints[i].y * w, m_controlPoints[i].z * w, w};
        double t[4];
        for (int r = 0; r < 4; ++r)
            t[r] = m.entry[r][0] * h[0] + m.entry[r][1] * h[1] + m.entry[r][2] * h[2] + m.entry[r][3] * h[3];
        if (!(t[3] > 0.0) || !std::isfinite(t[3]))
            return Tmk::ErrorStatus::eInvalidInput;
        points[i].set(t[0] / t[3], t[1] / t[3], t[2] / t[3]);
        weights[i] = t[3];
    }
    m_controlPoints = std::move(points);
    m_weights = std::move(weights);
    return Tmk::ErrorStatus::eOk;
}

bool TmGeNurbCurve3d::isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& curve = static_cast<const TmGeNurbCurve3d&>(other);
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

std::unique_ptr<TmGeCurve3d> TmGeNurbCurve3d::clone() const
{
    return std::make_unique<TmGeNurbCurve3d>(*this);
}
