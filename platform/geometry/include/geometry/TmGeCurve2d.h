#pragma once

#include <geometry/TmGeEntityKind.h>
#include <geometry/TmGeInterval.h>
#include <geometry/TmGePoint2d.h>
#include <geometry/TmGeVector2d.h>
#include <geometry/TmkErrorStatus.h>

#include <memory>

class TmGeMatrix2d;

// A parametric curve in the plane; the counterpart of TmGeCurve3d.
class TmGeCurve2d {
public:
    static constexpr int kMaxDerivative = 2;

    virtual ~TmGeCurve2d() = default;

    [[nodiscard]] virtual Tmk::EEntityKind type() const noexcept = 0;
    [[nodiscard]] virtual TmGeInterval interval() const noexcept = 0;

    // See TmGeCurve3d::evaluate.
    virtual Tmk::ErrorStatus evaluate(double param, int numDeriv, TmGePoint2d& point,
                                      TmGeVector2d* derivs) const noexcept = 0;
    [[nodiscard]] TmGePoint2d evalPoint(double param) const noexcept;
    [[nodiscard]] TmGeVector2d evalDerivative(double param, int order = 1) const noexcept;

    [[nodiscard]] virtual double length(double fromParam, double toParam,
                                        double tol = TmGeContext::gTol.equalPoint()) const noexcept;
    [[nodiscard]] double length() const noexcept;

    bool hasStartPoint(TmGePoint2d& point) const noexcept;
    bool hasEndPoint(TmGePoint2d& point) const noexcept;
    [[nodiscard]] virtual bool isClosed(const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    // eInvalidInput, and no change, when the image is not a curve of the same kind.
    virtual Tmk::ErrorStatus transformBy(const TmGeMatrix2d& m) noexcept = 0;

    [[nodiscard]] virtual bool isEqualTo(const TmGeCurve2d& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept = 0;
    [[nodiscard]] bool operator==(const TmGeCurve2d& other) const noexcept { return isEqualTo(other); }

    [[nodiscard]] virtual std::unique_ptr<TmGeCurve2d> clone() const = 0;
    [[nodiscard]] TmGeCurve2d* copy() const { return clone().release(); }

protected:
    TmGeCurve2d() = default;
    TmGeCurve2d(const TmGeCurve2d&) = default;
    TmGeCurve2d& operator=(const TmGeCurve2d&) = default;
};
