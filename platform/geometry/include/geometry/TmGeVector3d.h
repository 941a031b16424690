#pragma once

#include <geometry/TmGeTol.h>

class TmGeMatrix3d;

// A displacement in space. Comparisons with == use TmGeContext::gTol; isEqualTo takes an explicit
// tolerance.
class TmGeVector3d {
public:
    static const TmGeVector3d kIdentity; // the zero vector
    static const TmGeVector3d kXAxis;
    static const TmGeVector3d kYAxis;
    static const TmGeVector3d kZAxis;

    constexpr TmGeVector3d() noexcept = default;
    constexpr TmGeVector3d(double xx, double yy, double zz) noexcept : x(xx), y(yy), z(zz) {}

    constexpr TmGeVector3d& set(double xx, double yy, double zz) noexcept { x = xx; y = yy; z = zz; return *this; }

    [[nodiscard]] constexpr TmGeVector3d operator+(const TmGeVector3d& v) const noexcept { return {x + v.x, y + v.y, z + v.z}; }
    [[nodiscard]] constexpr TmGeVector3d operator-(const TmGeVector3d& v) const noexcept { return {x - v.x, y - v.y, z - v.z}; }
    [[nodiscard]] constexpr TmGeVector3d operator-() const noexcept { return {-x, -y, -z}; }
    [[nodiscard]] constexpr TmGeVector3d operator*(double s) const noexcept { return {x * s, y * s, z * s}; }
    [[nodiscard]] constexpr TmGeVector3d operator/(double s) const noexcept { return {x / s, y / s, z / s}; }
    constexpr TmGeVector3d& operator+=(const TmGeVector3d& v) noexcept { x += v.x; y += v.y; z += v.z; return *this; }
    constexpr TmGeVector3d& operator-=(const TmGeVector3d& v) noexcept { x -= v.x; y -= v.y; z -= v.z; return *this; }
    constexpr TmGeVector3d& operator*=(double s) noexcept { x *= s; y *= s; z *= s; return *this; }
    constexpr TmGeVector3d& operator/=(double s) noexcept { x /= s; y /= s; z /= s; return *this; }
    constexpr TmGeVector3d& negate() noexcept { x = -x; y = -y; z = -z; return *this; }

    // Index 0 is x, 1 is y, anything else z.
    [[nodiscard]] constexpr double operator[](unsigned i) const noexcept { return i == 0 ? x : (i == 1 ? y : z); }
    [[nodiscard]] constexpr double& operator[](unsigned i) noexcept { return i == 0 ? x : (i == 1 ? y : z); }

    [[nodiscard]] constexpr double dotProduct(const TmGeVector3d& v) const noexcept { return x * v.x + y * v.y + z * v.z; }
    [[nodiscard]] constexpr TmGeVector3d crossProduct(const TmGeVector3d& v) const noexcept
    {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    [[nodiscard]] constexpr double lengthSqrd() const noexcept { return x * x + y * y + z * z; }
    [[nodiscard]] double length() const noexcept;
    // Unsigned angle to v, in [0, pi]; 0 when either is zero.
    [[nodiscard]] double angleTo(const TmGeVector3d& v) const noexcept;
    // Signed angle to v in [0, 2pi), counter-clockwise seen from the tip of `reference`.
    [[nodiscard]] double angleTo(const TmGeVector3d& v, const TmGeVector3d& reference) const noexcept;
    // A unit vector perpendicular to this one, chosen deterministically: the same input always
    // yields the same axis (planes and circles derive their reference axes from it).
    [[nodiscard]] TmGeVector3d perpVector() const noexcept;

    // The unit vector of the same direction; a vector no longer than tol.equalVector() is
    // returned unchanged, since it has no direction.
    [[nodiscard]] TmGeVector3d normal(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    TmGeVector3d& normalize(const TmGeTol& tol = TmGeContext::gTol) noexcept;

    [[nodiscard]] bool isZeroLength(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isUnitLength(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // Directions compared as unit vectors; a zero vector is parallel to nothing.
    [[nodiscard]] bool isParallelTo(const TmGeVector3d& v, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isCodirectionalTo(const TmGeVector3d& v, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isPerpendicularTo(const TmGeVector3d& v, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // True when |this - v| <= tol.equalVector().
    [[nodiscard]] bool isEqualTo(const TmGeVector3d& v, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool operator==(const TmGeVector3d& v) const noexcept { return isEqualTo(v); }

    // Right-handed rotation about `axis` (which need not be unit); a zero axis leaves it as is.
    TmGeVector3d& rotateBy(double angle, const TmGeVector3d& axis) noexcept;
    // Applies the linear (upper 3x3) part of `m`; translation does not move a displacement.
    TmGeVector3d& transformBy(const TmGeMatrix3d& m) noexcept;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

inline constexpr TmGeVector3d TmGeVector3d::kIdentity{0.0, 0.0, 0.0};
inline constexpr TmGeVector3d TmGeVector3d::kXAxis{1.0, 0.0, 0.0};
inline constexpr TmGeVector3d TmGeVector3d::kYAxis{0.0, 1.0, 0.0};
inline constexpr TmGeVector3d TmGeVector3d::kZAxis{0.0, 0.0, 1.0};

[[nodiscard]] constexpr TmGeVector3d operator*(double s, const TmGeVector3d& v) noexcept { return v * s; }
