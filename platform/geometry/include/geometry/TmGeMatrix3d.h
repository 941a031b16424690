#pragma once

#include <span>

#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector3d.h>
#include <geometry/TmkErrorStatus.h>

class TmGePlane;

// A 4x4 transformation acting on column vectors: p' = M * (x, y, z, 1). entry[row][col]; the
// translation is entry[0..2][3]. The default value is the identity.
//
// Composition order: (A * B) applied to p is A(B(p)), so preMultBy(A) adds A on the world side
// and postMultBy(B) adds B on the local side.
class TmGeMatrix3d {
public:
    static const TmGeMatrix3d kIdentity;

    constexpr TmGeMatrix3d() noexcept
        : entry{{1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}, {0.0, 0.0, 0.0, 1.0}}
    {}

    TmGeMatrix3d& setToIdentity() noexcept;

    [[nodiscard]] constexpr double operator()(unsigned row, unsigned col) const noexcept { return entry[row & 3u][col & 3u]; }
    [[nodiscard]] constexpr double& operator()(unsigned row, unsigned col) noexcept { return entry[row & 3u][col & 3u]; }

    [[nodiscard]] TmGeMatrix3d operator*(const TmGeMatrix3d& m) const noexcept;
    TmGeMatrix3d& operator*=(const TmGeMatrix3d& m) noexcept { return postMultBy(m); }
    [[nodiscard]] TmGePoint3d operator*(const TmGePoint3d& p) const noexcept;
    [[nodiscard]] TmGeVector3d operator*(const TmGeVector3d& v) const noexcept;
    // Transforms every point in place, as transformBy would one by one; an affine matrix (the usual
    // case) takes a loop without the perspective division.
    void transformPoints(std::span<TmGePoint3d> points) const noexcept;
    // this = left * this
    TmGeMatrix3d& preMultBy(const TmGeMatrix3d& left) noexcept;
    // this = this * right
    TmGeMatrix3d& postMultBy(const TmGeMatrix3d& right) noexcept;
    // this = a * b (a or b may be this matrix)
    TmGeMatrix3d& setToProduct(const TmGeMatrix3d& a, const TmGeMatrix3d& b) noexcept;

    [[nodiscard]] double det() const noexcept;
    // Singular when the smallest pivot of a fully pivoted LU decomposition is at most
    // `relativeTol` times the largest, so the answer does not depend on the scale of the matrix.
    // A non-finite entry makes a matrix singular.
    [[nodiscard]] bool isSingular(double relativeTol = TmGeContext::gTol.equalVector()) const noexcept;
    // The inverse; a singular matrix has none and is returned unchanged (check with isSingular,
    // or use the status form).
    [[nodiscard]] TmGeMatrix3d inverse() const noexcept;
    // eSingularMatrix leaves `result` untouched.
    Tmk::ErrorStatus inverse(TmGeMatrix3d& result, double relativeTol = TmGeContext::gTol.equalVector()) const noexcept;
    Tmk::ErrorStatus invert(double relativeTol = TmGeContext::gTol.equalVector()) noexcept;
    [[nodiscard]] TmGeMatrix3d transpose() const noexcept;
    TmGeMatrix3d& transposeIt() noexcept;

    // Entry by entry: the translation column within tol.equalPoint(), all other entries within
    // tol.equalVector().
    [[nodiscard]] bool isEqualTo(const TmGeMatrix3d& m, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool operator==(const TmGeMatrix3d& m) const noexcept { return isEqualTo(m); }
    [[nodiscard]] bool isIdentity(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // Affine with orthogonal axes of one common length (rotation, mirror, uniform scale).
    [[nodiscard]] bool isUniScaledOrtho(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // Affine with mutually orthogonal axes (lengths may differ).
    [[nodiscard]] bool isScaledOrtho(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isPerspective(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    // The largest factor by which the linear part stretches a unit vector along an axis.
    [[nodiscard]] double scale() const noexcept;

    TmGeMatrix3d& setToTranslation(const TmGeVector3d& v) noexcept;
    // Right-handed rotation by `angle` radians about the line through `center` along `axis`.
    // A zero axis gives the identity.
    TmGeMatrix3d& setToRotation(double angle, const TmGeVector3d& axis,
                                const TmGePoint3d& center = TmGePoint3d::kOrigin) noexcept;
    TmGeMatrix3d& setToScaling(double factor, const TmGePoint3d& center = TmGePoint3d::kOrigin) noexcept;
    TmGeMatrix3d& setToMirroring(const TmGePlane& plane) noexcept;
    TmGeMatrix3d& setToMirroring(const TmGePoint3d& center) noexcept;
    // Orthogonal projection onto `plane`, along its normal (singular by nature).
    TmGeMatrix3d& setToProjection(const TmGePlane& plane) noexcept;

    // Local-to-world matrix of the coordinate system: columns xAxis, yAxis, zAxis, origin.
    TmGeMatrix3d& setCoordSystem(const TmGePoint3d& origin, const TmGeVector3d& xAxis,
                                 const TmGeVector3d& yAxis, const TmGeVector3d& zAxis) noexcept;
    void getCoordSystem(TmGePoint3d& origin, TmGeVector3d& xAxis, TmGeVector3d& yAxis,
                        TmGeVector3d& zAxis) const noexcept;
    // Maps the `from` system onto the `to` system: a point with coordinates (a, b, c) in `from`
    // goes to the point with the same coordinates in `to`. With `from` the world system this is
    // the local-to-world matrix of `to`; with `to` the world system, the world-to-local matrix of
    // `from`. A degenerate `from` system gives the identity and eSingularMatrix.
    Tmk::ErrorStatus setToAlignCoordSys(const TmGePoint3d& fromOrigin, const TmGeVector3d& fromXAxis,
                                        const TmGeVector3d& fromYAxis, const TmGeVector3d& fromZAxis,
                                        const TmGePoint3d& toOrigin, const TmGeVector3d& toXAxis,
                                        const TmGeVector3d& toYAxis, const TmGeVector3d& toZAxis) noexcept;
    // World-to-local of the plane's own system (origin, uAxis, vAxis, normal of TmGePlane::get),
    // and its inverse.
    TmGeMatrix3d& setToWorldToPlane(const TmGePlane& plane) noexcept;
    TmGeMatrix3d& setToPlaneToWorld(const TmGePlane& plane) noexcept;

    [[nodiscard]] static TmGeMatrix3d translation(const TmGeVector3d& v) noexcept;
    [[nodiscard]] static TmGeMatrix3d rotation(double angle, const TmGeVector3d& axis,
                                               const TmGePoint3d& center = TmGePoint3d::kOrigin) noexcept;
    [[nodiscard]] static TmGeMatrix3d scaling(double factor, const TmGePoint3d& center = TmGePoint3d::kOrigin) noexcept;

    double entry[4][4];
};

inline constexpr TmGeMatrix3d TmGeMatrix3d::kIdentity{};
