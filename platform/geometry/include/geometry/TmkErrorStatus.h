#pragma once

#include <cstdint>

namespace Tmk {

// Result of every kernel operation that can fail. Zero is success so that a status can be tested
// like the integer results of the filers that hosts write.
enum class ErrorStatus : int {
    eOk = 0,
    eInvalidInput = 1,        // an argument is out of range, not finite or inconsistent
    eInvalidDegree = 2,       // a spline degree below 1 or too high for its control points
    eInvalidKnots = 3,        // wrong knot count, decreasing knots, too high a multiplicity
    eInvalidWeights = 4,      // a weight count that does not match, or a weight that is not > 0
    eDegenerateGeometry = 5,  // zero-length direction, coincident or collinear points
    eSingularMatrix = 6,
    eUnsupportedVersion = 7,  // a field layout this kernel cannot read or write
    eEndOfFile = 8,           // a filer ran out of data
    eCorruptData = 9,         // a filer delivered data that no writer produces
    eNullFiler = 10,
};

// The kernel's wide boolean, as filers carry it (readBoolean/writeBoolean). Any non-zero value is
// true; 1 is written.
using Boolean = std::int32_t;

[[nodiscard]] constexpr bool isOk(ErrorStatus status) noexcept { return status == ErrorStatus::eOk; }

} // namespace Tmk
