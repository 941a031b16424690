#include <geometry/TmGeEllipArc2d.h>
#include <geometry/TmGeEllipArc3d.h>

#include "ArcCore.h"
#include "NurbsCore.h"

#include <cmath>
#include <tuple>

template <class Traits>
TmGeEllipArcT<Traits>::TmGeEllipArcT(const Point& center, const Vector& majorAxis, const Vector& minorAxis,
                                     double majorRadius, double minorRadius, double startAngle,
                                     double endAngle) noexcept
{
    (void)set(center, majorAxis, minorAxis, majorRadius, minorRadius, startAngle, endAngle);
}

template <class Traits>
Tmk::ErrorStatus TmGeEllipArcT<Traits>::set(const Point& center, const Vector& majorAxis, const Vector& minorAxis,
                                            double majorRadius, double minorRadius, double startAngle,
                                            double endAngle, const TmGeTol& tol) noexcept
{
    Vector major;
    Vector minor;
    if (!TmGeInternal::isFinitePoint<Point, Traits::kDim>(center)
        || !TmGeInternal::ellipseAxes(majorAxis, minorAxis, majorRadius, minorRadius, tol, major, minor)
        || !TmGeInternal::normalizeArcAngles(startAngle, endAngle))
        return Tmk::ErrorStatus::eInvalidInput;
    std::tie(m_center, m_majorAxis, m_minorAxis, m_majorRadius, m_minorRadius, m_startAng, m_endAng) =
        std::tie(center, major, minor, majorRadius, minorRadius, startAngle, endAngle);
    return Tmk::ErrorStatus::eOk;
}

template <class Traits>
Tmk::ErrorStatus TmGeEllipArcT<Traits>::setAngles(double startAngle, double endAngle) noexcept
{
    return TmGeInternal::storeArcAngles(startAngle, endAngle, m_startAng, m_endAng);
}

template <class Traits>
bool TmGeEllipArcT<Traits>::isCircular(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_majorRadius - m_minorRadius) <= tol.equalPoint();
}

template <class Traits>
Tmk::ErrorStatus TmGeEllipArcT<Traits>::evaluate(double param, int numDeriv, Point& point,
                                                 Vector* derivs) const noexcept
{
    return TmGeInternal::evaluateEllipse(*this, param, numDeriv, Curve::kMaxDerivative, point, derivs);
}

template <class Traits>
double TmGeEllipArcT<Traits>::length(double fromParam, double toParam, double tol) const noexcept
{
    return TmGeInternal::ellipseLength(m_majorRadius, m_minorRadius, fromParam, toParam, tol);
}

template <class Traits>
bool TmGeEllipArcT<Traits>::isClosed(const TmGeTol& tol) const noexcept
{
    return std::fabs(m_endAng - m_startAng - TmGeInternal::kTwoPi) <= tol.equalVector();
}

template <class Traits>
bool TmGeEllipArcT<Traits>::isEqualTo(const Curve& other, const TmGeTol& tol) const noexcept
{
    return other.type() == type()
        && TmGeInternal::ellipArcsEqual(*this, static_cast<const TmGeEllipArcT&>(other), tol);
}

template class TmGeEllipArcT<TmGeEllipArc2dTraits>;
template class TmGeEllipArcT<TmGeEllipArc3dTraits>;
