#pragma once

#include <geometry/TmGeVector2d.h>

class TmGeMatrix2d;

// A position in the plane. == compares within TmGeContext::gTol.equalPoint().
class TmGePoint2d {
public:
    static const TmGePoint2d kOrigin;

    constexpr TmGePoint2d() noexcept = default;
    constexpr TmGePoint2d(double xx, double yy) noexcept : x(xx), y(yy) {}

    constexpr TmGePoint2d& set(double xx, double yy) noexcept { x = xx; y = yy; return *this; }

    [[nodiscard]] constexpr TmGePoint2d operator+(const TmGeVector2d& v) const noexcept { return {x + v.x, y + v.y}; }
    [[nodiscard]] constexpr TmGePoint2d operator-(const TmGeVector2d& v) const noexcept { return {x - v.x, y - v.y}; }
    [[nodiscard]] constexpr TmGeVector2d operator-(const TmGePoint2d& p) const noexcept { return {x - p.x, y - p.y}; }
    constexpr TmGePoint2d& operator+=(const TmGeVector2d& v) noexcept { x += v.x; y += v.y; return *this; }
    constexpr TmGePoint2d& operator-=(const TmGeVector2d& v) noexcept { x -= v.x; y -= v.y; return *this; }

    [[nodiscard]] constexpr double operator[](unsigned i) const noexcept { return i == 0 ? x : y; }
    [[nodiscard]] constexpr double& operator[](unsigned i) noexcept { return i == 0 ? x : y; }

    [[nodiscard]] constexpr TmGeVector2d asVector() const noexcept { return {x, y}; }
    [[nodiscard]] double distanceTo(const TmGePoint2d& p) const noexcept;
    // True when the distance is at most tol.equalPoint().
    [[nodiscard]] bool isEqualTo(const TmGePoint2d& p, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool operator==(const TmGePoint2d& p) const noexcept { return isEqualTo(p); }

    TmGePoint2d& rotateBy(double angle, const TmGePoint2d& center = kOrigin) noexcept;
    TmGePoint2d& scaleBy(double factor, const TmGePoint2d& center = kOrigin) noexcept;
    TmGePoint2d& transformBy(const TmGeMatrix2d& m) noexcept;

    double x = 0.0;
    double y = 0.0;
};

inline constexpr TmGePoint2d TmGePoint2d::kOrigin{0.0, 0.0};
