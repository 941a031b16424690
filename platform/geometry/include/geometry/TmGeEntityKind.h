#pragma once

#include <cstdint>

namespace Tmk {

// The concrete kind of a curve. The numbers are persistent: TmGeFileIO writes them as the tag of
// a curve stored through its base class, so never renumber one.
enum class EEntityKind : std::uint16_t {
    eLine3d = 1,
    eLineSeg3d = 2,
    eCircArc3d = 3,
    eEllipArc3d = 4,
    eNurbCurve3d = 5,
    ePolyline3d = 6,
    eCircArc2d = 101,
    eEllipArc2d = 102,
    eNurbCurve2d = 103,
};

} // namespace Tmk
