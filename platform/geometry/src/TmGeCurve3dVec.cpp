#include <geometry/TmGeCurve3dVec.h>

#include <utility>

TmGeCurve3dVec::TmGeCurve3dVec(const TmGeCurve3dVec& other)
{
    m_curves.reserve(other.m_curves.size());
    for (const TmGeCurve3d* curve : other.m_curves)
        append(*curve);
}

TmGeCurve3dVec::TmGeCurve3dVec(TmGeCurve3dVec&& other) noexcept : m_curves(std::exchange(other.m_curves, {})) {}

TmGeCurve3dVec& TmGeCurve3dVec::operator=(const TmGeCurve3dVec& other)
{
    if (this != &other) {
        TmGeCurve3dVec copy(other);
        *this = std::move(copy);
    }
    return *this;
}

TmGeCurve3dVec& TmGeCurve3dVec::operator=(TmGeCurve3dVec&& other) noexcept
{
    if (this != &other) {
        clear();
        m_curves = std::exchange(other.m_curves, {});
    }
    return *this;
}

TmGeCurve3dVec::~TmGeCurve3dVec()
{
    clear();
}

void TmGeCurve3dVec::append(std::unique_ptr<TmGeCurve3d> curve)
{
    if (!curve)
        return;
    m_curves.reserve(m_curves.size() + 1); // may throw; the curve is released only afterwards
    m_curves.push_back(curve.release());
}

void TmGeCurve3dVec::append(const TmGeCurve3d& curve)
{
    append(curve.clone());
}

void TmGeCurve3dVec::adopt(std::vector<TmGeCurve3d*>& curves)
{
    m_curves.reserve(m_curves.size() + curves.size());
    for (TmGeCurve3d* curve : curves)
        if (curve != nullptr)
            m_curves.push_back(curve);
    curves.clear();
}

std::vector<TmGeCurve3d*> TmGeCurve3dVec::release() noexcept
{
    return std::exchange(m_curves, {});
}

void TmGeCurve3dVec::clear() noexcept
{
    for (TmGeCurve3d* curve : m_curves)
        delete curve;
    m_curves.clear();
}

Tmk::ErrorStatus TmGeCurve3dVec::transformBy(const TmGeMatrix3d& m) noexcept
{
    // Transform copies first: a curve that refuses the matrix must not leave its predecessors moved.
    std::vector<std::unique_ptr<TmGeCurve3d>> moved;
    try {
        moved.reserve(m_curves.size());
        for (const TmGeCurve3d* curve : m_curves) {
            moved.push_back(curve->clone());
            const Tmk::ErrorStatus status = moved.back()->transformBy(m);
            if (status != Tmk::ErrorStatus::eOk)
                return status;
        }
    } catch (...) {
        return Tmk::ErrorStatus::eInvalidInput;
    }
    for (std::size_t i = 0; i < m_curves.size(); ++i) {
        delete m_curves[i];
        m_curves[i] = moved[i].release();
    }
    return Tmk::ErrorStatus::eOk;
}

bool TmGeCurve3dVec::isEqualTo(const TmGeCurve3dVec& other, const TmGeTol& tol) const noexcept
{
    if (m_curves.size() != other.m_curves.size())
        return false;
    for (std::size_t i = 0; i < m_curves.size(); ++i)
        if (!m_curves[i]->isEqualTo(*other.m_curves[i], tol))
            return false;
    return true;
}
