#pragma once

#include <geometry/TmGePoint2d.h>
#include <geometry/TmGeVector2d.h>
#include <geometry/TmkErrorStatus.h>

// A 3x3 homogeneous transformation of the plane acting on column vectors: p' = M * (x, y, 1).
// entry[row][col]; the translation is entry[0..1][2]. The default value is the identity. Products
// compose like TmGeMatrix3d: (A * B)(p) = A(B(p)).
class TmGeMatrix2d {
public:
    static const TmGeMatrix2d kIdentity;

    constexpr TmGeMatrix2d() noexcept : entry{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}} {}

    TmGeMatrix2d& setToIdentity() noexcept;

    [[nodiscard]] constexpr double operator()(unsigned row, unsigned col) const noexcept
    {
        return entry[row > 2 ? 2 : row][col > 2 ? 2 : col];
    }
    [[nodiscard]] constexpr double& operator()(unsigned row, unsigned col) noexcept
    {
        return entry[row > 2 ? 2 : row][col > 2 ? 2 : col];
    }

    [[nodiscard]] TmGeMatrix2d operator*(const TmGeMatrix2d& m) const noexcept;
    TmGeMatrix2d& operator*=(const TmGeMatrix2d& m) noexcept { return postMultBy(m); }
    [[nodiscard]] TmGePoint2d operator*(const TmGePoint2d& p) const noexcept;
    [[nodiscard]] TmGeVector2d operator*(const TmGeVector2d& v) const noexcept;
    TmGeMatrix2d& preMultBy(const TmGeMatrix2d& left) noexcept;
    TmGeMatrix2d& postMultBy(const TmGeMatrix2d& right) noexcept;
    TmGeMatrix2d& setToProduct(const TmGeMatrix2d& a, const TmGeMatrix2d& b) noexcept;

    [[nodiscard]] double det() const noexcept;
    [[nodiscard]] bool isSingular(double relativeTol = TmGeContext::gTol.equalVector()) const noexcept;
    // A singular matrix is returned unchanged; see TmGeMatrix3d::inverse.
    [[nodiscard]] TmGeMatrix2d inverse() const noexcept;
    Tmk::ErrorStatus inverse(TmGeMatrix2d& result, double relativeTol = TmGeContext::gTol.equalVector()) const noexcept;
    Tmk::ErrorStatus invert(double relativeTol = TmGeContext::gTol.equalVector()) noexcept;
    [[nodiscard]] TmGeMatrix2d transpose() const noexcept;
    TmGeMatrix2d& transposeIt() noexcept;

    // The translation column within tol.equalPoint(), all other entries within tol.equalVector().
    [[nodiscard]] bool isEqualTo(const TmGeMatrix2d& m, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool operator==(const TmGeMatrix2d& m) const noexcept { return isEqualTo(m); }
    [[nodiscard]] bool isIdentity(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool isUniScaledOrtho(const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] double scale() const noexcept;

    TmGeMatrix2d& setToTranslation(const TmGeVector2d& v) noexcept;
    // Counter-clockwise rotation by `angle` radians about `center`.
    TmGeMatrix2d& setToRotation(double angle, const TmGePoint2d& center = TmGePoint2d::kOrigin) noexcept;
    TmGeMatrix2d& setToScaling(double factor, const TmGePoint2d& center = TmGePoint2d::kOrigin) noexcept;
    TmGeMatrix2d& setToMirroring(const TmGePoint2d& center) noexcept;
    // Reflection in the line through `point` along `direction`; a zero direction gives the identity.
    TmGeMatrix2d& setToMirroring(const TmGePoint2d& point, const TmGeVector2d& direction) noexcept;

    TmGeMatrix2d& setCoordSystem(const TmGePoint2d& origin, const TmGeVector2d& xAxis,
                                 const TmGeVector2d& yAxis) noexcept;
    void getCoordSystem(TmGePoint2d& origin, TmGeVector2d& xAxis, TmGeVector2d& yAxis) const noexcept;
    // See TmGeMatrix3d::setToAlignCoordSys.
    Tmk::ErrorStatus setToAlignCoordSys(const TmGePoint2d& fromOrigin, const TmGeVector2d& fromXAxis,
                                        const TmGeVector2d& fromYAxis, const TmGePoint2d& toOrigin,
                                        const TmGeVector2d& toXAxis, const TmGeVector2d& toYAxis) noexcept;

    [[nodiscard]] static TmGeMatrix2d translation(const TmGeVector2d& v) noexcept;
    [[nodiscard]] static TmGeMatrix2d rotation(double angle, const TmGePoint2d& center = TmGePoint2d::kOrigin) noexcept;
    [[nodiscard]] static TmGeMatrix2d scaling(double factor, const TmGePoint2d& center = TmGePoint2d::kOrigin) noexcept;

    double entry[3][3];
};

inline constexpr TmGeMatrix2d TmGeMatrix2d::kIdentity{};
