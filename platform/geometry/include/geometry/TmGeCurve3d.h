#pragma once

#include <geometry/TmGeEntityKind.h>
#include <geometry/TmGeInterval.h>
#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector3d.h>
#include <geometry/TmkErrorStatus.h>

#include <memory>

class TmGeMatrix3d;

// A parametric curve in space. Every curve has a parameter interval (unbounded for an infinite
// line); evaluation outside it follows the curve's own rule, documented per class.
class TmGeCurve3d {
public:
    static constexpr int kMaxDerivative = 2;

    virtual ~TmGeCurve3d() = default;

    [[nodiscard]] virtual Tmk::EEntityKind type() const noexcept = 0;
    [[nodiscard]] virtual TmGeInterval interval() const noexcept = 0;

    // The point at `param` and its first `numDeriv` derivatives with respect to the parameter
    // (derivs[0] the first, derivs[1] the second; `derivs` may be null when numDeriv is 0).
    // numDeriv outside 0..kMaxDerivative gives eInvalidInput and leaves the outputs alone.
    virtual Tmk::ErrorStatus evaluate(double param, int numDeriv, TmGePoint3d& point,
                                      TmGeVector3d* derivs) const noexcept = 0;
    [[nodiscard]] TmGePoint3d evalPoint(double param) const noexcept;
    // The derivative of the given order (1 or 2); the zero vector for any other order.
    [[nodiscard]] TmGeVector3d evalDerivative(double param, int order = 1) const noexcept;

    // Arc length between two parameters (in either order), to an absolute accuracy of `tol`.
    // The base implementation integrates the speed by adaptive Gauss-Kronrod quadrature;
    // curves with a closed form override it.
    [[nodiscard]] virtual double length(double fromParam, double toParam,
                                        double tol = TmGeContext::gTol.equalPoint()) const noexcept;
    // Length over the whole interval (infinite for an unbounded curve).
    [[nodiscard]] double length() const noexcept;

    // Points at the ends of the interval; false (and the output untouched) at an unbounded end.
    bool hasStartPoint(TmGePoint3d& point) const noexcept;
    bool hasEndPoint(TmGePoint3d& point) const noexcept;
    [[nodiscard]] virtual bool isClosed(const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    // eInvalidInput, and no change, when the image is not a curve of the same kind (a circle under
    // a non-uniform scaling, an ellipse under a perspective).
    virtual Tmk::ErrorStatus transformBy(const TmGeMatrix3d& m) noexcept = 0;

    // Entity equality: the same kind with the same defining data within `tol` (not the same
    // point set: a circle and its NURBS form are different entities).
    [[nodiscard]] virtual bool isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept = 0;
    [[nodiscard]] bool operator==(const TmGeCurve3d& other) const noexcept { return isEqualTo(other); }

    [[nodiscard]] virtual std::unique_ptr<TmGeCurve3d> clone() const = 0;
    // The same as clone() for holders of raw owning pointers; the caller deletes the copy.
    [[nodiscard]] TmGeCurve3d* copy() const { return clone().release(); }

protected:
    TmGeCurve3d() = default;
    TmGeCurve3d(const TmGeCurve3d&) = default;
    TmGeCurve3d& operator=(const TmGeCurve3d&) = default;
};
