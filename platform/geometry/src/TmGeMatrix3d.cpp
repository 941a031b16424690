#include <geometry/TmGeMatrix3d.h>

#include <geometry/TmGePlane.h>

#include <Eigen/Dense>

#include <algorithm>
#include <cmath>

namespace {

using Mat4 = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;

Mat4 toEigen(const TmGeMatrix3d& m)
{
    return Eigen::Map<const Mat4>(&m.entry[0][0]);
}

void fromEigen(const Mat4& e, TmGeMatrix3d& m)
{
    Eigen::Map<Mat4>(&m.entry[0][0]) = e;
}

TmGeVector3d column(const TmGeMatrix3d& m, int c)
{
    return {m.entry[0][c], m.entry[1][c], m.entry[2][c]};
}

bool isAffine(const TmGeMatrix3d& m, double tol)
{
    return std::fabs(m.entry[3][0]) <= tol && std::fabs(m.entry[3][1]) <= tol && std::fabs(m.entry[3][2]) <= tol
        && std::fabs(m.entry[3][3] - 1.0) <= tol;
}

} // namespace

TmGeMatrix3d& TmGeMatrix3d::setToIdentity() noexcept
{
    return *this = kIdentity;
}

TmGeMatrix3d TmGeMatrix3d::operator*(const TmGeMatrix3d& m) const noexcept
{
    TmGeMatrix3d r;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            r.entry[i][j] = entry[i][0] * m.entry[0][j] + entry[i][1] * m.entry[1][j] + entry[i][2] * m.entry[2][j]
                + entry[i][3] * m.entry[3][j];
    return r;
}

TmGePoint3d TmGeMatrix3d::operator*(const TmGePoint3d& p) const noexcept
{
    return TmGePoint3d(p).transformBy(*this);
}

void TmGeMatrix3d::transformPoints(std::span<TmGePoint3d> points) const noexcept
{
    const auto& e = entry;
    if (e[3][0] != 0.0 || e[3][1] != 0.0 || e[3][2] != 0.0 || e[3][3] != 1.0) {
        for (TmGePoint3d& point : points)
            point.transformBy(*this);
        return;
    }
    const double m00 = e[0][0], m01 = e[0][1], m02 = e[0][2], m03 = e[0][3];
    const double m10 = e[1][0], m11 = e[1][1], m12 = e[1][2], m13 = e[1][3];
    const double m20 = e[2][0], m21 = e[2][1], m22 = e[2][2], m23 = e[2][3];
    for (TmGePoint3d& point : points) {
        const double x = point.x, y = point.y, z = point.z;
        point.x = m00 * x + m01 * y + m02 * z + m03;
        point.y = m10 * x + m11 * y + m12 * z + m13;
        point.z = m20 * x + m21 * y + m22 * z + m23;
    }
}

TmGeVector3d TmGeMatrix3d::operator*(const TmGeVector3d& v) const noexcept
{
    return TmGeVector3d(v).transformBy(*this);
}

TmGeMatrix3d& TmGeMatrix3d::preMultBy(const TmGeMatrix3d& left) noexcept
{
    return *this = left * *this;
}

TmGeMatrix3d& TmGeMatrix3d::postMultBy(const TmGeMatrix3d& right) noexcept
{
    return *this = *this * right;
}

TmGeMatrix3d& TmGeMatrix3d::setToProduct(const TmGeMatrix3d& a, const TmGeMatrix3d& b) noexcept
{
    return *this = a * b;
}

double TmGeMatrix3d::det() const noexcept
{
    return toEigen(*this).determinant();
}

bool TmGeMatrix3d::isSingular(double relativeTol) const noexcept
{
    const Mat4 m = toEigen(*this);
    // A matrix with a non-finite entry inverts to nothing usable.
    if (!m.allFinite())
        return true;
    Eigen::FullPivLU<Mat4> lu(m);
    lu.setThreshold(relativeTol);
    return !lu.isInvertible();
}

TmGeMatrix3d TmGeMatrix3d::inverse() const noexcept
{
    TmGeMatrix3d result = *this;
    (void)inverse(result);
    return result;
}

Tmk::ErrorStatus TmGeMatrix3d::inverse(TmGeMatrix3d& result, double relativeTol) const noexcept
{
    const Mat4 m = toEigen(*this);
    if (!m.allFinite())
        return Tmk::ErrorStatus::eSingularMatrix;
    Eigen::FullPivLU<Mat4> lu(m);
    lu.setThreshold(relativeTol);
    if (!lu.isInvertible())
        return Tmk::ErrorStatus::eSingularMatrix;
    fromEigen(lu.inverse(), result);
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeMatrix3d::invert(double relativeTol) noexcept
{
    return inverse(*this, relativeTol);
}

TmGeMatrix3d TmGeMatrix3d::transpose() const noexcept
{
    TmGeMatrix3d r;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            r.entry[i][j] = entry[j][i];
    return r;
}

TmGeMatrix3d& TmGeMatrix3d::transposeIt() noexcept
{
    return *this = transpose();
}

bool TmGeMatrix3d::isEqualTo(const TmGeMatrix3d& m, const TmGeTol& tol) const noexcept
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            const double limit = (j == 3 && i < 3) ? tol.equalPoint() : tol.equalVector();
            if (!(std::fabs(entry[i][j] - m.entry[i][j]) <= limit))
                return false;
        }
    return true;
}

bool TmGeMatrix3d::isIdentity(const TmGeTol& tol) const noexcept
{
    return isEqualTo(kIdentity, tol);
}

bool TmGeMatrix3d::isScaledOrtho(const TmGeTol& tol) const noexcept
{
    if (!isAffine(*this, tol.equalVector()))
        return false;
    const TmGeVector3d c[3] = {column(*this, 0), column(*this, 1), column(*this, 2)};
    for (const auto& v : c)
        if (v.isZeroLength(tol))
            return false;
    return c[0].isPerpendicularTo(c[1], tol) && c[1].isPerpendicularTo(c[2], tol) && c[2].isPerpendicularTo(c[0], tol);
}

bool TmGeMatrix3d::isUniScaledOrtho(const TmGeTol& tol) const noexcept
{
    if (!isScaledOrtho(tol))
        return false;
    const double l0 = column(*this, 0).length();
    const double l1 = column(*this, 1).length();
    const double l2 = column(*this, 2).length();
    // Relative comparison: the scale itself may be large or small.
    const double limit = tol.equalVector() * std::max({l0, l1, l2, 1.0});
    return std::fabs(l0 - l1) <= limit && std::fabs(l1 - l2) <= limit;
}

bool TmGeMatrix3d::isPerspective(const TmGeTol& tol) const noexcept
{
    return !isAffine(*this, tol.equalVector());
}

double TmGeMatrix3d::scale() const noexcept
{
    return std::max({column(*this, 0).length(), column(*this, 1).length(), column(*this, 2).length()});
}

TmGeMatrix3d& TmGeMatrix3d::setToTranslation(const TmGeVector3d& v) noexcept
{
    setToIdentity();
    entry[0][3] = v.x;
    entry[1][3] = v.y;
    entry[2][3] = v.z;
    return *this;
}

TmGeMatrix3d& TmGeMatrix3d::setToRotation(double angle, const TmGeVector3d& axis, const TmGePoint3d& center) noexcept
{
    setToIdentity();
    const double len = axis.length();
    if (!(len > 0.0) || !std::isfinite(len))
        return *this;
    const TmGeVector3d u = axis / len;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double t = 1.0 - c;
    // Rodrigues' formula: R = c I + s [u]x + (1 - c) u u^T.
    entry[0][0] = c + t * u.x * u.x;
    entry[0][1] = t * u.x * u.y - s * u.z;
    entry[0][2] = t * u.x * u.z + s * u.y;
    entry[1][0] = t * u.y * u.x + s * u.z;
    entry[1][1] = c + t * u.y * u.y;
    entry[1][2] = t * u.y * u.z - s * u.x;
    entry[2][0] = t * u.z * u.x - s * u.y;
    entry[2][1] = t * u.z * u.y + s * u.x;
    entry[2][2] = c + t * u.z * u.z;
    // Rotating about `center`: p' = R (p - center) + center.
    const TmGeVector3d shift = center.asVector() - TmGeVector3d(center.asVector()).transformBy(*this);
    entry[0][3] = shift.x;
    entry[1][3] = shift.y;
    entry[2][3] = shift.z;
    return *this;
}

TmGeMatrix3d& TmGeMatrix3d::setToScaling(double factor, const TmGePoint3d& center) noexcept
{
    setToIdentity();
    for (int i = 0; i < 3; ++i) {
        entry[i][i] = factor;
        entry[i][3] = (1.0 - factor) * center[static_cast<unsigned>(i)];
    }
    return *this;
}

TmGeMatrix3d& TmGeMatrix3d::setToMirroring(const TmGePlane& plane) noexcept
{
    // p' = p - 2 n (n.(p - q)) for the unit normal n and the plane point q.
    const TmGeVector3d& n = plane.normal();
    const double d = n.dotProduct(plane.pointOnPlane().asVector());
    setToIdentity();
    for (unsigned i = 0; i < 3; ++i) {
        for (unsigned j = 0; j < 3; ++j)
            entry[i][j] -= 2.0 * n[i] * n[j];
        entry[i][3] = 2.0 * d * n[i];
    }
    return *this;
}

TmGeMatrix3d& TmGeMatrix3d::setToMirroring(const TmGePoint3d& center) noexcept
{
    return setToScaling(-1.0, center);
}

TmGeMatrix3d& TmGeMatrix3d::setToProjection(const TmGePlane& plane) noexcept
{
    const TmGeVector3d& n = plane.normal();
    const double d = n.dotProduct(plane.pointOnPlane().asVector());
    setToIdentity();
    for (unsigned i = 0; i < 3; ++i) {
        for (unsigned j = 0; j < 3; ++j)
            entry[i][j] -= n[i] * n[j];
        entry[i][3] = d * n[i];
    }
    return *this;
}

TmGeMatrix3d& TmGeMatrix3d::setCoordSystem(const TmGePoint3d& origin, const TmGeVector3d& xAxis,
                                           const TmGeVector3d& yAxis, const TmGeVector3d& zAxis) noexcept
{
    setToIdentity();
    for (unsigned i = 0; i < 3; ++i) {
        entry[i][0] = xAxis[i];
        entry[i][1] = yAxis[i];
        entry[i][2] = zAxis[i];
        entry[i][3] = origin[i];
    }
    return *this;
}

void TmGeMatrix3d::getCoordSystem(TmGePoint3d& origin, TmGeVector3d& xAxis, TmGeVector3d& yAxis,
                                  TmGeVector3d& zAxis) const noexcept
{
    xAxis = column(*this, 0);
    yAxis = column(*this, 1);
    zAxis = column(*this, 2);
    origin.set(entry[0][3], entry[1][3], entry[2][3]);
}

Tmk::ErrorStatus TmGeMatrix3d::setToAlignCoordSys(const TmGePoint3d& fromOrigin, const TmGeVector3d& fromXAxis,
                                                  const TmGeVector3d& fromYAxis, const TmGeVector3d& fromZAxis,
                                                  const TmGePoint3d& toOrigin, const TmGeVector3d& toXAxis,
                                                  const TmGeVector3d& toYAxis, const TmGeVector3d& toZAxis) noexcept
{
    TmGeMatrix3d fromToWorld;
    fromToWorld.setCoordSystem(fromOrigin, fromXAxis, fromYAxis, fromZAxis);
    TmGeMatrix3d worldToFrom;
    if (fromToWorld.inverse(worldToFrom) != Tmk::ErrorStatus::eOk) {
        setToIdentity();
        return Tmk::ErrorStatus::eSingularMatrix;
    }
    TmGeMatrix3d toToWorld;
    toToWorld.setCoordSystem(toOrigin, toXAxis, toYAxis, toZAxis);
    *this = toToWorld * worldToFrom;
    return Tmk::ErrorStatus::eOk;
}

TmGeMatrix3d& TmGeMatrix3d::setToPlaneToWorld(const TmGePlane& plane) noexcept
{
    TmGePoint3d origin;
    TmGeVector3d u;
    TmGeVector3d v;
    plane.get(origin, u, v);
    return setCoordSystem(origin, u, v, plane.normal());
}

TmGeMatrix3d& TmGeMatrix3d::setToWorldToPlane(const TmGePlane& plane) noexcept
{
    // The plane's axes are orthonormal, so the inverse is the transpose with the origin moved.
    TmGePoint3d origin;
    TmGeVector3d u;
    TmGeVector3d v;
    plane.get(origin, u, v);
    const TmGeVector3d axes[3] = {u, v, plane.normal()};
    setToIdentity();
    for (unsigned i = 0; i < 3; ++i) {
        for (unsigned j = 0; j < 3; ++j)
            entry[i][j] = axes[i][j];
        entry[i][3] = -axes[i].dotProduct(origin.asVector());
    }
    return *this;
}

TmGeMatrix3d TmGeMatrix3d::translation(const TmGeVector3d& v) noexcept
{
    return TmGeMatrix3d().setToTranslation(v);
}

TmGeMatrix3d TmGeMatrix3d::rotation(double angle, const TmGeVector3d& axis, const TmGePoint3d& center) noexcept
{
    return TmGeMatrix3d().setToRotation(angle, axis, center);
}

TmGeMatrix3d TmGeMatrix3d::scaling(double factor, const TmGePoint3d& center) noexcept
{
    return TmGeMatrix3d().setToScaling(factor, center);
}
