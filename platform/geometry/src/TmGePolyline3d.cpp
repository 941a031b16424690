#include <geometry/TmGePolyline3d.h>

#include <geometry/TmGeMatrix3d.h>

#include <algorithm>
#include <cmath>
#include <utility>

TmGePolyline3d::TmGePolyline3d(std::vector<TmGePoint3d> points) noexcept : m_points(std::move(points)) {}

TmGePolyline3d& TmGePolyline3d::set(std::vector<TmGePoint3d> points) noexcept
{
    m_points = std::move(points);
    return *this;
}

TmGeInterval TmGePolyline3d::interval() const noexcept
{
    return {0.0, m_points.empty() ? 0.0 : static_cast<double>(m_points.size() - 1)};
}

Tmk::ErrorStatus TmGePolyline3d::evaluate(double param, int numDeriv, TmGePoint3d& point,
                                          TmGeVector3d* derivs) const noexcept
{
    if (numDeriv < 0 || numDeriv > kMaxDerivative || (numDeriv > 0 && derivs == nullptr))
        return Tmk::ErrorStatus::eInvalidInput;
    TmGeVector3d first;
    if (m_points.size() < 2) {
        point = m_points.empty() ? TmGePoint3d::kOrigin : m_points.front();
    } else {
        const double last = static_cast<double>(m_points.size() - 1);
        const double t = std::isnan(param) ? 0.0 : std::clamp(param, 0.0, last);
        // Segment i runs from vertex i to vertex i + 1; the last vertex belongs to the last one.
        const auto i = static_cast<std::size_t>(std::min(std::floor(t), last - 1.0));
        const double s = t - static_cast<double>(i);
        first = m_points[i + 1] - m_points[i];
        point = s == 1.0 ? m_points[i + 1] : m_points[i] + first * s;
    }
    if (numDeriv >= 1)
        derivs[0] = first;
    if (numDeriv >= 2)
        derivs[1] = TmGeVector3d::kIdentity;
    return Tmk::ErrorStatus::eOk;
}

double TmGePolyline3d::length(double fromParam, double toParam, double) const noexcept
{
    if (m_points.size() < 2)
        return 0.0;
    if (fromParam > toParam)
        std::swap(fromParam, toParam);
    const double last = static_cast<double>(m_points.size() - 1);
    const double a = std::clamp(fromParam, 0.0, last);
    const double b = std::clamp(toParam, 0.0, last);
    if (!(a < b))
        return 0.0;
    // Whole segments between the partial ones at both ends.
    double total = 0.0;
    const auto first = static_cast<std::size_t>(std::floor(a));
    const auto lastSeg = static_cast<std::size_t>(std::min(std::ceil(b), last)) - 1;
    for (std::size_t i = first; i <= lastSeg; ++i) {
        const double lo = std::max(a, static_cast<double>(i));
        const double hi = std::min(b, static_cast<double>(i + 1));
        if (hi > lo)
            total += m_points[i].distanceTo(m_points[i + 1]) * (hi - lo);
    }
    return total;
}

double TmGePolyline3d::paramAtDistance(double distance) const noexcept
{
    if (m_points.size() < 2 || !(distance > 0.0))
        return 0.0;
    double walked = 0.0;
    for (std::size_t i = 0; i + 1 < m_points.size(); ++i) {
        const double seg = m_points[i].distanceTo(m_points[i + 1]);
        if (walked + seg >= distance && seg > 0.0)
            return static_cast<double>(i) + (distance - walked) / seg;
        walked += seg;
    }
    return static_cast<double>(m_points.size() - 1);
}

TmGePoint3d TmGePolyline3d::evalPointAtDistance(double distance) const noexcept
{
    return evalPoint(paramAtDistance(distance));
}

Tmk::ErrorStatus TmGePolyline3d::transformBy(const TmGeMatrix3d& m) noexcept
{
    m.transformPoints(m_points);
    return Tmk::ErrorStatus::eOk;
}

bool TmGePolyline3d::isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol) const noexcept
{
    if (other.type() != type())
        return false;
    const auto& polyline = static_cast<const TmGePolyline3d&>(other);
    return std::equal(m_points.begin(), m_points.end(), polyline.m_points.begin(), polyline.m_points.end(),
                      [&tol](const TmGePoint3d& a, const TmGePoint3d& b) { return a.isEqualTo(b, tol); });
}

std::unique_ptr<TmGeCurve3d> TmGePolyline3d::clone() const
{
    return std::make_unique<TmGePolyline3d>(*this);
}
