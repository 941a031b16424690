#include <geometry/TmGeMatrix2d.h>

#include <Eigen/Dense>

#include <algorithm>
#include <cmath>

namespace {

using Mat3 = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;

Mat3 toEigen(const TmGeMatrix2d& m)
{
    return Eigen::Map<const Mat3>(&m.entry[0][0]);
}

TmGeVector2d column(const TmGeMatrix2d& m, int c)
{
    return {m.entry[0][c], m.entry[1][c]};
}

} // namespace

TmGeMatrix2d& TmGeMatrix2d::setToIdentity() noexcept
{
    return *this = kIdentity;
}

TmGeMatrix2d TmGeMatrix2d::operator*(const TmGeMatrix2d& m) const noexcept
{
    TmGeMatrix2d r;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.entry[i][j] = entry[i][0] * m.entry[0][j] + entry[i][1] * m.entry[1][j] + entry[i][2] * m.entry[2][j];
    return r;
}

TmGePoint2d TmGeMatrix2d::operator*(const TmGePoint2d& p) const noexcept
{
    return TmGePoint2d(p).transformBy(*this);
}

TmGeVector2d TmGeMatrix2d::operator*(const TmGeVector2d& v) const noexcept
{
    return TmGeVector2d(v).transformBy(*this);
}

TmGeMatrix2d& TmGeMatrix2d::preMultBy(const TmGeMatrix2d& left) noexcept
{
    return *this = left * *this;
}

TmGeMatrix2d& TmGeMatrix2d::postMultBy(const TmGeMatrix2d& right) noexcept
{
    return *this = *this * right;
}

TmGeMatrix2d& TmGeMatrix2d::setToProduct(const TmGeMatrix2d& a, const TmGeMatrix2d& b) noexcept
{
    return *this = a * b;
}

double TmGeMatrix2d::det() const noexcept
{
    return toEigen(*this).determinant();
}

bool TmGeMatrix2d::isSingular(double relativeTol) const noexcept
{
    const Mat3 m = toEigen(*this);
    // A matrix with a non-finite entry inverts to nothing usable.
    if (!m.allFinite())
        return true;
    Eigen::FullPivLU<Mat3> lu(m);
    lu.setThreshold(relativeTol);
    return !lu.isInvertible();
}

TmGeMatrix2d TmGeMatrix2d::inverse() const noexcept
{
    TmGeMatrix2d result = *this;
    (void)inverse(result);
    return result;
}

Tmk::ErrorStatus TmGeMatrix2d::inverse(TmGeMatrix2d& result, double relativeTol) const noexcept
{
    const Mat3 m = toEigen(*this);
    if (!m.allFinite())
        return Tmk::ErrorStatus::eSingularMatrix;
    Eigen::FullPivLU<Mat3> lu(m);
    lu.setThreshold(relativeTol);
    if (!lu.isInvertible())
        return Tmk::ErrorStatus::eSingularMatrix;
    Eigen::Map<Mat3>(&result.entry[0][0]) = lu.inverse();
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus TmGeMatrix2d::invert(double relativeTol) noexcept
{
    return inverse(*this, relativeTol);
}

TmGeMatrix2d TmGeMatrix2d::transpose() const noexcept
{
    TmGeMatrix2d r;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.entry[i][j] = entry[j][i];
    return r;
}

TmGeMatrix2d& TmGeMatrix2d::transposeIt() noexcept
{
    return *this = transpose();
}

bool TmGeMatrix2d::isEqualTo(const TmGeMatrix2d& m, const TmGeTol& tol) const noexcept
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            const double limit = (j == 2 && i < 2) ? tol.equalPoint() : tol.equalVector();
            if (!(std::fabs(entry[i][j] - m.entry[i][j]) <= limit))
                return false;
        }
    return true;
}

bool TmGeMatrix2d::isIdentity(const TmGeTol& tol) const noexcept
{
    return isEqualTo(kIdentity, tol);
}

bool TmGeMatrix2d::isUniScaledOrtho(const TmGeTol& tol) const noexcept
{
    const double t = tol.equalVector();
    if (std::fabs(entry[2][0]) > t || std::fabs(entry[2][1]) > t || std::fabs(entry[2][2] - 1.0) > t)
        return false;
    const TmGeVector2d c0 = column(*this, 0);
    const TmGeVector2d c1 = column(*this, 1);
    if (c0.isZeroLength(tol) || c1.isZeroLength(tol) || !c0.isPerpendicularTo(c1, tol))
        return false;
    const double l0 = c0.length();
    const double l1 = c1.length();
    return std::fabs(l0 - l1) <= t * std::max({l0, l1, 1.0});
}

double TmGeMatrix2d::scale() const noexcept
{
    return std::max(column(*this, 0).length(), column(*this, 1).length());
}

TmGeMatrix2d& TmGeMatrix2d::setToTranslation(const TmGeVector2d& v) noexcept
{
    setToIdentity();
    entry[0][2] = v.x;
    entry[1][2] = v.y;
    return *this;
}

TmGeMatrix2d& TmGeMatrix2d::setToRotation(double angle, const TmGePoint2d& center) noexcept
{
    setToIdentity();
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    entry[0][0] = c;
    entry[0][1] = -s;
    entry[1][0] = s;
    entry[1][1] = c;
    entry[0][2] = center.x - (c * center.x - s * center.y);
    entry[1][2] = center.y - (s * center.x + c * center.y);
    return *this;
}

TmGeMatrix2d& TmGeMatrix2d::setToScaling(double factor, const TmGePoint2d& center) noexcept
{
    setToIdentity();
    entry[0][0] = factor;
    entry[1][1] = factor;
    entry[0][2] = (1.0 - factor) * center.x;
    entry[1][2] = (1.0 - factor) * center.y;
    return *this;
}

TmGeMatrix2d& TmGeMatrix2d::setToMirroring(const TmGePoint2d& center) noexcept
{
    return setToScaling(-1.0, center);
}

TmGeMatrix2d& TmGeMatrix2d::setToMirroring(const TmGePoint2d& point, const TmGeVector2d& direction) noexcept
{
    setToIdentity();
    const double len = direction.length();
    if (!(len > 0.0) || !std::isfinite(len))
        return *this;
    // Reflection in a line through the origin is 2 u u^T - I; then move it to `point`.
    const TmGeVector2d u = direction / len;
    entry[0][0] = 2.0 * u.x * u.x - 1.0;
    entry[0][1] = 2.0 * u.x * u.y;
    entry[1][0] = entry[0][1];
    entry[1][1] = 2.0 * u.y * u.y - 1.0;
    entry[0][2] = point.x - (entry[0][0] * point.x + entry[0][1] * point.y);
    entry[1][2] = point.y - (entry[1][0] * point.x + entry[1][1] * point.y);
    return *this;
}

TmGeMatrix2d& TmGeMatrix2d::setCoordSystem(const TmGePoint2d& origin, const TmGeVector2d& xAxis,
                                           const TmGeVector2d& yAxis) noexcept
{
    setToIdentity();
    entry[0][0] = xAxis.x;
    entry[1][0] = xAxis.y;
    entry[0][1] = yAxis.x;
    entry[1][1] = yAxis.y;
    entry[0][2] = origin.x;
    entry[1][2] = origin.y;
    return *this;
}

void TmGeMatrix2d::getCoordSystem(TmGePoint2d& origin, TmGeVector2d& xAxis, TmGeVector2d& yAxis) const noexcept
{
    xAxis = column(*this, 0);
    yAxis = column(*this, 1);
    origin.set(entry[0][2], entry[1][2]);
}

Tmk::ErrorStatus TmGeMatrix2d::setToAlignCoordSys(const TmGePoint2d& fromOrigin, const TmGeVector2d& fromXAxis,
                                                  const TmGeVector2d& fromYAxis, const TmGePoint2d& toOrigin,
                                                  const TmGeVector2d& toXAxis, const TmGeVector2d& toYAxis) noexcept
{
    TmGeMatrix2d fromToWorld;
    fromToWorld.setCoordSystem(fromOrigin, fromXAxis, fromYAxis);
    TmGeMatrix2d worldToFrom;
    if (fromToWorld.inverse(worldToFrom) != Tmk::ErrorStatus::eOk) {
        setToIdentity();
        return Tmk::ErrorStatus::eSingularMatrix;
    }
    TmGeMatrix2d toToWorld;
    toToWorld.setCoordSystem(toOrigin, toXAxis, toYAxis);
    *this = toToWorld * worldToFrom;
    return Tmk::ErrorStatus::eOk;
}

TmGeMatrix2d TmGeMatrix2d::translation(const TmGeVector2d& v) noexcept
{
    return TmGeMatrix2d().setToTranslation(v);
}

TmGeMatrix2d TmGeMatrix2d::rotation(double angle, const TmGePoint2d& center) noexcept
{
    return TmGeMatrix2d().setToRotation(angle, center);
}

TmGeMatrix2d TmGeMatrix2d::scaling(double factor, const TmGePoint2d& center) noexcept
{
    return TmGeMatrix2d().setToScaling(factor, center);
}
