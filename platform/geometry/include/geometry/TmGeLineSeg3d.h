#pragma once

#include <geometry/TmGeCurve3d.h>

class TmGeLine3d;

// A straight segment from startPoint() to endPoint(), parametrised linearly over its interval
// ([0, 1] unless set otherwise). Parameters outside the interval extend along the supporting line.
class TmGeLineSeg3d : public TmGeCurve3d {
public:
    TmGeLineSeg3d() noexcept; // (0,0,0) to (1,0,0)
    TmGeLineSeg3d(const TmGePoint3d& start, const TmGePoint3d& end) noexcept;
    TmGeLineSeg3d(const TmGePoint3d& start, const TmGeVector3d& direction) noexcept;

    TmGeLineSeg3d& set(const TmGePoint3d& start, const TmGePoint3d& end) noexcept;
    // The interval must be bounded with lower < upper; otherwise eInvalidInput and no change.
    Tmk::ErrorStatus setInterval(const TmGeInterval& range) noexcept;

    [[nodiscard]] const TmGePoint3d& startPoint() const noexcept { return m_start; }
    [[nodiscard]] const TmGePoint3d& endPoint() const noexcept { return m_end; }
    [[nodiscard]] TmGePoint3d midPoint() const noexcept;
    [[nodiscard]] TmGeVector3d direction() const noexcept { return m_end - m_start; }
    [[nodiscard]] TmGeLine3d supportingLine() const noexcept;

    [[nodiscard]] Tmk::EEntityKind type() const noexcept override { return Tmk::EEntityKind::eLineSeg3d; }
    [[nodiscard]] TmGeInterval interval() const noexcept override { return m_interval; }
    Tmk::ErrorStatus evaluate(double param, int numDeriv, TmGePoint3d& point,
                              TmGeVector3d* derivs) const noexcept override;
    [[nodiscard]] double length(double fromParam, double toParam,
                                double tol = TmGeContext::gTol.equalPoint()) const noexcept override;
    using TmGeCurve3d::length;
    [[nodiscard]] bool isClosed(const TmGeTol& tol = TmGeContext::gTol) const noexcept override;

    // The nearest point of the segment itself (the ends included).
    [[nodiscard]] TmGePoint3d closestPointTo(const TmGePoint3d& point) const noexcept;
    [[nodiscard]] double distanceTo(const TmGePoint3d& point) const noexcept;
    [[nodiscard]] bool isOn(const TmGePoint3d& point, const TmGeTol& tol = TmGeContext::gTol) const noexcept;

    Tmk::ErrorStatus transformBy(const TmGeMatrix3d& m) noexcept override;
    // The same end points and the same interval.
    [[nodiscard]] bool isEqualTo(const TmGeCurve3d& other, const TmGeTol& tol = TmGeContext::gTol) const noexcept override;
    [[nodiscard]] std::unique_ptr<TmGeCurve3d> clone() const override;

private:
    TmGePoint3d m_start;
    TmGePoint3d m_end;
    TmGeInterval m_interval{0.0, 1.0};
};
