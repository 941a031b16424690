#pragma once

#include <geometry/TmGeCurve3d.h>

#include <cstddef>
#include <memory>
#include <vector>

// An ordered list of owned curves of any kind (a profile, a wire). Copies are deep.
class TmGeCurve3dVec {
public:
    TmGeCurve3dVec() noexcept = default;
    TmGeCurve3dVec(const TmGeCurve3dVec& other);
    TmGeCurve3dVec(TmGeCurve3dVec&& other) noexcept;
    TmGeCurve3dVec& operator=(const TmGeCurve3dVec& other);
    TmGeCurve3dVec& operator=(TmGeCurve3dVec&& other) noexcept;
    ~TmGeCurve3dVec();

    [[nodiscard]] std::size_t size() const noexcept { return m_curves.size(); }
    [[nodiscard]] bool empty() const noexcept { return m_curves.empty(); }
    [[nodiscard]] const TmGeCurve3d& operator[](std::size_t i) const noexcept { return *m_curves[i]; }
    [[nodiscard]] TmGeCurve3d& operator[](std::size_t i) noexcept { return *m_curves[i]; }
    // The curves in order, still owned by this list.
    [[nodiscard]] const std::vector<TmGeCurve3d*>& curves() const noexcept { return m_curves; }

    // A null curve is ignored.
    void append(std::unique_ptr<TmGeCurve3d> curve);
    void append(const TmGeCurve3d& curve);
    // Takes ownership of every non-null pointer of `curves` and clears it.
    void adopt(std::vector<TmGeCurve3d*>& curves);
    // Hands the curves to the caller, who then owns them; the list becomes empty.
    [[nodiscard]] std::vector<TmGeCurve3d*> release() noexcept;
    void clear() noexcept;

    // Transforms every curve, or none: the first curve that refuses the matrix is reported and
    // the list stays as it was.
    Tmk::ErrorStatus transformBy(const TmGeMatrix3d& m) noexcept;
    [[nodiscard]] bool isEqualTo(const TmGeCurve3dVec& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept;
    [[nodiscard]] bool operator==(const TmGeCurve3dVec& other) const noexcept { return isEqualTo(other); }

private:
    std::vector<TmGeCurve3d*> m_curves;
};
