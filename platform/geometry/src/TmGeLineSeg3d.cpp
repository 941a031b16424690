#include <geometry/TmGeLineSeg3d.h>

#include <geometry/TmGeLine3d.h>
#include <geometry/TmGeMatrix3d.h>

#include <algorithm>
#include <cmath>

TmGeLineSeg3d::TmGeLineSeg3d() noexcept : m_end(1.0, 0.0, 0.0) {}

TmGeLineSeg3d::TmGeLineSeg3d(const TmGePoint3d& start, const TmGePoint3d& end) noexcept : m_start(start), m_end(end) {}

TmGeLineSeg3d::TmGeLineSeg3d(const TmGePoint3d& start, const TmGeVector3d& direction) noexcept
    : m_start(start), m_end(start + direction)
{}

TmGeLineSeg3d& TmGeLineSeg3d::set(const TmGePoint3d& start, const TmGePoint3d& end) noexcept
{
    m_start = start;
    m_end = end;
    return *this;
}

Tmk::ErrorStatus TmGeLineSeg3d::setInterval(const TmGeInterval& range) noexcept
{
    if (!range.isBounded() || !(range.lowerBound() < range.upperBound()))
        return Tmk::ErrorStatus::eInvalidInput;
    m_interval = range;
    return Tmk::ErrorStatus::eOk;
}

TmGePoint3d TmGeLineSeg3d::midPoint() const noexcept
{
    return m_start + (m_end - m_start) * 0.5;
}

TmGeLine3d TmGeLineSeg3d::supportingLine() const noexcept
{
    return {m_start, m_end};
}

Tmk::ErrorStatus TmGeLineSeg3d::evaluate(double param, int numDeriv, TmGePoint3d& point,
                                         TmGeVector3d* derivs) const noexcept
{
    if (numDeriv < 0 || numDeriv > kMaxDerivative || (numDeriv > 0 && derivs == nullptr))
        return Tmk::ErrorStatus::eInvalidInput;
    const double span = m_interval.length();
    const double s = (param - m_interval.lowerBound()) / span;
    // The end parameter gives the end point exactly rather than start + 1 * (end - start).
    point = param == m_interval.upperBound() ? m_end : m_start + (m_end - m_start) * s;
    if (numDeriv >= 1)
        derivs[0] = (m_end - m_start) / span;
    if (numDeriv >= 2)
        derivs[1] = TmGeVector3d::kIdentity;
    return Tmk::ErrorStatus::eOk;
}

double TmGeLineSeg3d::length(double fromParam, double toParam, double) const noexcept
{
    return m_start.distanceTo(m_end) * std::fabs(toParam - fromParam) / m_interval.length();
}

bool TmGeLineSeg3d::isClosed(const TmGeTol& tol) const noexcept
{
    return m_start.isEqualTo(m_end, tol);
}

TmGePoint3d TmGeLineSeg3d::closestPointTo(const TmGePoint3d& point) const noexcept
{
    const TmGeVector3d d = m_end - m_start;
    const double len2 = d.lengthSqrd();
    if (!(len2 > 0.0))
        return m_start;
    const double s = std::clamp((point - m_start).dotProduct(d) / len2, 0.0, 1.0);
    return m_start + d * s;
}

double TmGeLineSeg3d::distanceTo(const TmGePoint3d& point) const noexcept
{
    return point.distanceTo(closestPointTo(point));
}

bool TmGeLineSeg3d::isOn(const TmGePoint3d& point, const TmGeTol& tol) const noexcept
{
    return distanceTo(point) <= tol.equalPoint();
}

Tmk::ErrorStatus TmGeLineSeg3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    m_start.transformBy(m);
    m_end.transformBy(m);
    return Tmk::ErrorStatus::eOk;
}

bool TmGeLineSeg3d::isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& seg = static_cast<const TmGeLineSeg3d&>(other);
    return m_start.isEqualTo(seg.m_start, tol) && m_end.isEqualTo(seg.m_end, tol)
        && m_interval.isEqualTo(seg.m_interval, tol.equalPoint());
}

std::unique_ptr<TmGeCurve3d> TmGeLineSeg3d::clone() const
{
    return std::make_unique<TmGeLineSeg3d>(*this);
}
