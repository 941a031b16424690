#pragma once

#include <geometry/TmGeTol.h>

class TmGeMatrix2d;

// A displacement in the plane. Comparisons with == use TmGeContext::gTol; isEqualTo takes an
// explicit tolerance.
class TmGeVector2d {
public:
    static const TmGeVector2d kIdentity; // the zero vector
    static const TmGeVector2d kXAxis;
    static const TmGeVector2d kYAxis;

    constexpr TmGeVector2d() noexcept = default;
    constexpr TmGeVector2d(double xx, double yy) noexcept : x(xx), y(yy) {}

    constexpr TmGeVector2d& set(double xx, double yy) noexcept { x = xx; y = yy; return *this; }

    [[nodiscard]] constexpr TmGeVector2d operator+(const TmGeVector2d& v) const noexcept { return {x + v.x, y + v.y}; }
    [[nodiscard]] constexpr TmGeVector2d operator-(const TmGeVector2d& v) const noexcept { return {x - v.x, y - v.y}; }
    [[nodiscard]] constexpr TmGeVector2d operator-() const noexcept { return {-x, -y}; }
    [[nodiscard]] constexpr TmGeVector2d operator*(double s) const noexcept { return {x * s, y * s}; }
    [[nodiscard]] constexpr TmGeVector2d operator/(double s) const noexcept { return {x / s, y / s}; }
    constexpr TmGeVector2d& operator+=(const TmGeVector2d& v) noexcept { x += v.x; y += v.y; return *this; }
    constexpr TmGeVector2d& operator-=(const TmGeVector2d& v) noexcept { x -= v.x; y -= v.y; return *this; }
    constexpr TmGeVector2d& operator*=(double s) noexcept { x *= s; y *= s; return *this; }
    constexpr TmGeVector2d& operator/=(double s) noexcept { x /= s; y /= s; return *this; }
    constexpr TmGeVector2d& negate() noexcept { x = -x; y = -y; return *this; }

    // Index 0 is x, anything else y.
    [[nodiscard]] constexpr double operator[](unsigned i) const noexcept { return i == 0 ? x : y; }
    [[nodiscard]] constexpr double& operator[](unsigned i) noexcept { return i == 0 ? x : y; }

    [[nodiscard]] constexpr double dotProduct(const TmGeVector2d& v) const noexcept { return x * v.x + y * v.y; }
    // The z component of the 3d cross product: positive when v lies counter-clockwise of this.
    [[nodiscard]] constexpr double crossProduct(const TmGeVector2d& v) const noexcept { return x * v.y - y * v.x; }
    [[nodiscard]] constexpr double lengthSqrd() const noexcept { return x * x + y * y; }
    [[nodiscard]] double length() const noexcept;
    // Angle from the x axis, in [0, 2pi).
    [[nodiscard]] double angle() const noexcept;
    // Unsigned angle to v, in [0, pi]; 0 when either is zero.
    [[nodiscard]] double angleTo(const TmGeVector2d& v) const noexcept;
    // This vector turned by +pi/2.
    [[nodiscard]] constexpr TmGeVector2d perpVector() const noexcept { return {-y, x}; }

    // The unit vector of the same direction; a vector no longer than tol.equalVector() is
    // returned unchanged, since it has no direction.
    [[nodiscard]] TmGeVector2d normal(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    TmGeVector2d& normalize(const TmGeTol& tol = TmGeContext::gTol) noexcept;

    [[nodiscard]] bool isZeroLength(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isUnitLength(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isParallelTo(const TmGeVector2d& v, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isCodirectionalTo(const TmGeVector2d& v, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isPerpendicularTo(const TmGeVector2d& v, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // True when |this - v| <= tol.equalVector().
    [[nodiscard]] bool isEqualTo(const TmGeVector2d& v, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool operator==(const TmGeVector2d& v) const noexcept { return isEqualTo(v); }

    TmGeVector2d& rotateBy(double angle) noexcept;
    // Applies the linear part of `m`; translation does not move a displacement.
    TmGeVector2d& transformBy(const TmGeMatrix2d& m) noexcept;

    double x = 0.0;
    double y = 0.0;
};

inline constexpr TmGeVector2d TmGeVector2d::kIdentity{0.0, 0.0};
inline constexpr TmGeVector2d TmGeVector2d::kXAxis{1.0, 0.0};
inline constexpr TmGeVector2d TmGeVector2d::kYAxis{0.0, 1.0};

[[nodiscard]] constexpr TmGeVector2d operator*(double s, const TmGeVector2d& v) noexcept { return v * s; }
