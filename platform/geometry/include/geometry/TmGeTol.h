#pragma once

// Two absolute tolerances: how far apart two points may be and still be one point, and how much
// two vectors (or unit directions) may differ and still be one vector. Lengths are in model units.
class TmGeTol {
public:
    static constexpr double kDefaultEqualPoint = 1e-10;
    static constexpr double kDefaultEqualVector = 1e-10;

    constexpr TmGeTol() noexcept = default;
    constexpr TmGeTol(double equalPoint, double equalVector) noexcept
        : m_equalPoint(sanitize(equalPoint, kDefaultEqualPoint)),
          m_equalVector(sanitize(equalVector, kDefaultEqualVector)) {}

    [[nodiscard]] constexpr double equalPoint() const noexcept { return m_equalPoint; }
    [[nodiscard]] constexpr double equalVector() const noexcept { return m_equalVector; }

    // A negative value is taken by magnitude; NaN keeps the previous value.
    constexpr void setEqualPoint(double value) noexcept { m_equalPoint = sanitize(value, m_equalPoint); }
    constexpr void setEqualVector(double value) noexcept { m_equalVector = sanitize(value, m_equalVector); }

private:
    static constexpr double sanitize(double value, double fallback) noexcept
    {
        if (value != value)
            return fallback;
        return value < 0.0 ? -value : value;
    }

    // equalPoint comes first: hosts read "the first tolerance value" of a fresh TmGeTol.
    double m_equalPoint = kDefaultEqualPoint;
    double m_equalVector = kDefaultEqualVector;
};

// Library-wide settings. gTol is the default tolerance of every query that takes one; it is
// constant-initialised, so static initialisers of other libraries may read it, and it is meant to
// be changed only at start-up (it is not synchronised).
struct TmGeContext {
    static TmGeTol gTol;
};
