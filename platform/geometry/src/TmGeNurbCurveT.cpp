#include <geometry/TmGeNurbCurve2d.h>
#include <geometry/TmGeNurbCurve3d.h>

#include <geometry/TmGeMatrix2d.h>
#include <geometry/TmGeMatrix3d.h>

#include "NurbsCurveImpl.h"

#include <cmath>
#include <utility>

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
    if (status == Tmk::ErrorStatus::eOk)
        TmGeInternal::storeNurbs<Point>({m_degree, m_isPeriodic, m_knots, m_controlPoints, m_weights}, degree,
                                        std::move(knots), std::move(controlPoints), std::move(weights), isPeriodic);
    return status;
}

template <class Traits>
Tmk::ErrorStatus TmGeNurbCurveT<Traits>::setControlPointAt(int index, const Point& point) noexcept
{
    if (index < 0 || index >= numControlPoints() || !TmGeInternal::isFinitePoint<Point, Traits::kDim>(point))
        return Tmk::ErrorStatus::eInvalidInput;
    TmGeInternal::setWrapped(m_controlPoints, static_cast<std::size_t>(index), point, m_degree, m_isPeriodic);
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
    TmGeInternal::setWrapped(m_weights, static_cast<std::size_t>(index), weight, m_degree, m_isPeriodic);
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
    const TmGeInternal::NurbsConstFields<Point> fields{m_degree, m_isPeriodic, m_knots, m_controlPoints, m_weights};
    return TmGeInternal::evaluateCurve<Point, Vector, Traits::kDim>(fields, Curve::kMaxDerivative, param, numDeriv,
                                                                    point, derivs);
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
        for (Point& point : m_controlPoints)
            point.transformBy(m);
        return Tmk::ErrorStatus::eOk;
    }
    return TmGeInternal::transformHomogeneous<Point, Traits::kDim>(m, m_controlPoints, m_weights);
}

template <class Traits>
bool TmGeNurbCurveT<Traits>::isEqualTo(const Curve& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& curve = static_cast<const TmGeNurbCurveT&>(other);
    return TmGeInternal::nurbsEqual<Point>({m_degree, m_isPeriodic, m_knots, m_controlPoints, m_weights},
                                           {curve.m_degree, curve.m_isPeriodic, curve.m_knots, curve.m_controlPoints,
                                            curve.m_weights},
                                           tol);
}

template class TmGeNurbCurveT<TmGeNurbCurve2dTraits>;
template class TmGeNurbCurveT<TmGeNurbCurve3dTraits>;
