#pragma once

// Lines and arcs as JSON objects whose members are points, vectors (both in point form), numbers
// (angles in radians) and flags:
//
//   TmGeLine3d, TmGeLineSeg3d  "startPoint", "endPoint"
//   TmGeCircArc2d              "center", "radius", "startAngle", "endAngle", "refVec", "isClockwise"
//   TmGeCircArc3d              "center", "normal", "refVec", "radius", "startAngle", "endAngle"
//   TmGeEllipArc2d/3d          "center", "majorAxis", "minorAxis", "majorRadius", "minorRadius",
//                              "startAngle", "endAngle"
//
// Writers: with a null key the members go straight into `node`; otherwise node[key] becomes the
// object. A line (or segment) is written as its points at parameters 0 and 1, so even an unbounded
// line has two distinct points.
//
// Readers: with a null key `node` is read, otherwise its member `key` (absent: false). They need
// "startPoint" and "endPoint" for lines; "center" and "radius" for circular arcs; "center",
// both axes and both radii for elliptical arcs. Other members are optional and keep their default
// when missing or of the wrong kind: "refVec" the x axis, "normal" the z axis, "startAngle" 0,
// "endAngle" 2pi, "isClockwise" false. The result is built by the entity's constructor, with its
// rules (a circular arc it cannot build becomes its default full unit circle). On false `out` is
// unchanged.

#include <base/JSONNode.h>

class TmGeCircArc2d;
class TmGeCircArc3d;
class TmGeEllipArc2d;
class TmGeEllipArc3d;
class TmGeLine3d;
class TmGeLineSeg3d;

namespace Kx::Types {

void Line3dToJSON(const TmGeLine3d& line, JSONNode& node, const char* key);
void LineSeg3dToJSON(const TmGeLineSeg3d& segment, JSONNode& node, const char* key);
void CircArc2dToJSON(const TmGeCircArc2d& arc, JSONNode& node, const char* key);
void CircArc3dToJSON(const TmGeCircArc3d& arc, JSONNode& node, const char* key);
void EllipArc2dToJSON(const TmGeEllipArc2d& arc, JSONNode& node, const char* key);
void EllipArc3dToJSON(const TmGeEllipArc3d& arc, JSONNode& node, const char* key);

[[nodiscard]] bool JSONToLine3d(const JSONNode& node, TmGeLine3d& out, const char* key);
[[nodiscard]] bool JSONToLineSeg3d(const JSONNode& node, TmGeLineSeg3d& out, const char* key);
[[nodiscard]] bool JSONToCircArc2d(const JSONNode& node, TmGeCircArc2d& out, const char* key);
[[nodiscard]] bool JSONToCircArc3d(const JSONNode& node, TmGeCircArc3d& out, const char* key);
[[nodiscard]] bool JSONToEllipArc2d(const JSONNode& node, TmGeEllipArc2d& out, const char* key);
[[nodiscard]] bool JSONToEllipArc3d(const JSONNode& node, TmGeEllipArc3d& out, const char* key);

} // namespace Kx::Types
