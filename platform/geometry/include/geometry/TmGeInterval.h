#pragma once

#include <limits>
#include <numbers>

// One full turn in radians: the sweep of a closed arc.
inline constexpr double kTmGeTwoPi = 2.0 * std::numbers::pi;

// A parameter range [lower, upper]. An unbounded side is an infinity.
class TmGeInterval {
public:
    constexpr TmGeInterval() noexcept = default; // the whole real line
    constexpr TmGeInterval(double lower, double upper) noexcept : m_lower(lower), m_upper(upper) {}

    [[nodiscard]] constexpr double lowerBound() const noexcept { return m_lower; }
    [[nodiscard]] constexpr double upperBound() const noexcept { return m_upper; }
    [[nodiscard]] constexpr double length() const noexcept { return m_upper - m_lower; }
    [[nodiscard]] constexpr bool isBoundedBelow() const noexcept { return m_lower > -std::numeric_limits<double>::infinity(); }
    [[nodiscard]] constexpr bool isBoundedAbove() const noexcept { return m_upper < std::numeric_limits<double>::infinity(); }
    [[nodiscard]] constexpr bool isBounded() const noexcept { return isBoundedBelow() && isBoundedAbove(); }
    [[nodiscard]] constexpr bool contains(double t, double tol = 0.0) const noexcept
    {
        return t >= m_lower - tol && t <= m_upper + tol;
    }
    [[nodiscard]] constexpr bool isEqualTo(const TmGeInterval& other, double tol) const noexcept
    {
        return sameBound(m_lower, other.m_lower, tol) && sameBound(m_upper, other.m_upper, tol);
    }

private:
    static constexpr bool sameBound(double a, double b, double tol) noexcept
    {
        return a == b || (a - b <= tol && b - a <= tol);
    }

    double m_lower = -std::numeric_limits<double>::infinity();
    double m_upper = std::numeric_limits<double>::infinity();
};
