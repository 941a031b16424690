#pragma once

#include <geometry/TmGeVector3d.h>

class TmGeMatrix3d;
class TmGePlane;

// A position in space. == compares within TmGeContext::gTol.equalPoint().
class TmGePoint3d {
public:
    static const TmGePoint3d kOrigin;

    constexpr TmGePoint3d() noexcept = default;
    constexpr TmGePoint3d(double xx, double yy, double zz) noexcept : x(xx), y(yy), z(zz) {}

    constexpr TmGePoint3d& set(double xx, double yy, double zz) noexcept { x = xx; y = yy; z = zz; return *this; }

    [[nodiscard]] constexpr TmGePoint3d operator+(const TmGeVector3d& v) const noexcept { return {x + v.x, y + v.y, z + v.z}; }
    [[nodiscard]] constexpr TmGePoint3d operator-(const TmGeVector3d& v) const noexcept { return {x - v.x, y - v.y, z - v.z}; }
    [[nodiscard]] constexpr TmGeVector3d operator-(const TmGePoint3d& p) const noexcept { return {x - p.x, y - p.y, z - p.z}; }
    constexpr TmGePoint3d& operator+=(const TmGeVector3d& v) noexcept { x += v.x; y += v.y; z += v.z; return *this; }
    constexpr TmGePoint3d& operator-=(const TmGeVector3d& v) noexcept { x -= v.x; y -= v.y; z -= v.z; return *this; }

    [[nodiscard]] constexpr double operator[](unsigned i) const noexcept { return i == 0 ? x : (i == 1 ? y : z); }
    [[nodiscard]] constexpr double& operator[](unsigned i) noexcept { return i == 0 ? x : (i == 1 ? y : z); }

    [[nodiscard]] constexpr TmGeVector3d asVector() const noexcept { return {x, y, z}; }
    [[nodiscard]] double distanceTo(const TmGePoint3d& p) const noexcept;
    // True when the distance is at most tol.equalPoint().
    [[nodiscard]] bool isEqualTo(const TmGePoint3d& p, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool operator==(const TmGePoint3d& p) const noexcept { return isEqualTo(p); }

    // The foot of the perpendicular on `plane`.
    [[nodiscard]] TmGePoint3d orthoProject(const TmGePlane& plane) const noexcept;

    TmGePoint3d& rotateBy(double angle, const TmGeVector3d& axis, const TmGePoint3d& center = kOrigin) noexcept;
    TmGePoint3d& scaleBy(double factor, const TmGePoint3d& center = kOrigin) noexcept;
    TmGePoint3d& mirror(const TmGePlane& plane) noexcept;
    // A projective matrix (last row not 0 0 0 1) divides by the homogeneous coordinate.
    TmGePoint3d& transformBy(const TmGeMatrix3d& m) noexcept;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

inline constexpr TmGePoint3d TmGePoint3d::kOrigin{0.0, 0.0, 0.0};
