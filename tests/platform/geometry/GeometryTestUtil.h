#pragma once

#include <geometry/TmGePoint2d.h>
#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector2d.h>
#include <geometry/TmGeVector3d.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace KxTest {

// Results are compared with an explicit distance, not with the kernel's own tolerant ==, so a
// fault in isEqualTo cannot hide a fault elsewhere.
inline ::testing::AssertionResult near3(const TmGePoint3d& a, const TmGePoint3d& b, double tol)
{
    const double d = std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
    if (d <= tol)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") vs (" << b.x << ", " << b.y
                                         << ", " << b.z << "): distance " << d << " > " << tol;
}

inline ::testing::AssertionResult near3(const TmGeVector3d& a, const TmGeVector3d& b, double tol)
{
    return near3(TmGePoint3d(a.x, a.y, a.z), TmGePoint3d(b.x, b.y, b.z), tol);
}

inline ::testing::AssertionResult near2(const TmGePoint2d& a, const TmGePoint2d& b, double tol)
{
    return near3(TmGePoint3d(a.x, a.y, 0.0), TmGePoint3d(b.x, b.y, 0.0), tol);
}

inline ::testing::AssertionResult near2(const TmGeVector2d& a, const TmGeVector2d& b, double tol)
{
    return near3(TmGePoint3d(a.x, a.y, 0.0), TmGePoint3d(b.x, b.y, 0.0), tol);
}

class Random {
public:
    explicit Random(unsigned seed) : m_engine(seed) {}
    double uniform(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(m_engine); }
    int integer(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(m_engine); }
    TmGePoint3d point3(double r) { return {uniform(-r, r), uniform(-r, r), uniform(-r, r)}; }
    TmGeVector3d vector3(double r) { return {uniform(-r, r), uniform(-r, r), uniform(-r, r)}; }
    TmGePoint2d point2(double r) { return {uniform(-r, r), uniform(-r, r)}; }
    TmGeVector3d unit3()
    {
        for (;;) {
            const TmGeVector3d v = vector3(1.0);
            const double len = v.length();
            if (len > 0.1 && len <= 1.0)
                return v / len;
        }
    }

private:
    std::mt19937 m_engine;
};

} // namespace KxTest
