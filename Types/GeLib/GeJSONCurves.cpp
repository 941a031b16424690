#include <Types/GeLib/GeJSONCurves.h>

#include <Types/GeLib/internal/GeJSONShape.h>

#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeEllipArc2d.h>
#include <geometry/TmGeEllipArc3d.h>
#include <geometry/TmGeLine3d.h>
#include <geometry/TmGeLineSeg3d.h>

namespace Kx::Types {

namespace GeJSON {

namespace {

constexpr double s_fullTurn = 6.283185307179586;

// Parameters 0 and 1 rather than the end points: an unbounded line has none, and the points at
// 0 and 1 rebuild the same line (and a default segment) through the two-point constructors.
TmGePoint3d pointAtZero(const TmGeCurve3d& curve) { return curve.evalPoint(0.0); }
TmGePoint3d pointAtOne(const TmGeCurve3d& curve) { return curve.evalPoint(1.0); }

template <class Line>
struct LineShape {
    using M = Members<Line>;
    static constexpr auto members = std::tuple{M::required("startPoint", &pointAtZero),
                                               M::required("endPoint", &pointAtOne)};
};

template <class Arc>
struct EllipseShape {
    using M = Members<Arc>;
    static constexpr auto members = std::tuple{M::required("center", &Arc::center),
                                               M::required("majorAxis", &Arc::majorAxis),
                                               M::required("minorAxis", &Arc::minorAxis),
                                               M::required("majorRadius", &Arc::majorRadius),
                                               M::required("minorRadius", &Arc::minorRadius),
                                               M::optional("startAngle", &Arc::startAng, 0.0),
                                               M::optional("endAngle", &Arc::endAng, s_fullTurn)};
};

} // namespace

template <>
struct Shape<TmGeLine3d> : LineShape<TmGeLine3d> {};
template <>
struct Shape<TmGeLineSeg3d> : LineShape<TmGeLineSeg3d> {};
template <>
struct Shape<TmGeEllipArc2d> : EllipseShape<TmGeEllipArc2d> {};
template <>
struct Shape<TmGeEllipArc3d> : EllipseShape<TmGeEllipArc3d> {};

// The 2d arc carries its sense as a flag; the 3d arc has none, its sense is its normal.
template <>
struct Shape<TmGeCircArc2d> {
    using M = Members<TmGeCircArc2d>;
    static constexpr auto members = std::tuple{M::required("center", &TmGeCircArc2d::center),
                                               M::required("radius", &TmGeCircArc2d::radius),
                                               M::optional("startAngle", &TmGeCircArc2d::startAng, 0.0),
                                               M::optional("endAngle", &TmGeCircArc2d::endAng, s_fullTurn),
                                               M::optional("refVec", &TmGeCircArc2d::refVec, TmGeVector2d::kXAxis),
                                               M::optional("isClockwise", &TmGeCircArc2d::isClockWise, false)};
};

template <>
struct Shape<TmGeCircArc3d> {
    using M = Members<TmGeCircArc3d>;
    static constexpr auto members = std::tuple{M::required("center", &TmGeCircArc3d::center),
                                               M::optional("normal", &TmGeCircArc3d::normal, TmGeVector3d::kZAxis),
                                               M::optional("refVec", &TmGeCircArc3d::refVec, TmGeVector3d::kXAxis),
                                               M::required("radius", &TmGeCircArc3d::radius),
                                               M::optional("startAngle", &TmGeCircArc3d::startAng, 0.0),
                                               M::optional("endAngle", &TmGeCircArc3d::endAng, s_fullTurn)};
};

} // namespace GeJSON

void Line3dToJSON(const TmGeLine3d& line, JSONNode& node, const char* key) { GeJSON::writeShape(line, node, key); }
void LineSeg3dToJSON(const TmGeLineSeg3d& segment, JSONNode& node, const char* key) { GeJSON::writeShape(segment, node, key); }
void CircArc2dToJSON(const TmGeCircArc2d& arc, JSONNode& node, const char* key) { GeJSON::writeShape(arc, node, key); }
void CircArc3dToJSON(const TmGeCircArc3d& arc, JSONNode& node, const char* key) { GeJSON::writeShape(arc, node, key); }
void EllipArc2dToJSON(const TmGeEllipArc2d& arc, JSONNode& node, const char* key) { GeJSON::writeShape(arc, node, key); }
void EllipArc3dToJSON(const TmGeEllipArc3d& arc, JSONNode& node, const char* key) { GeJSON::writeShape(arc, node, key); }

bool JSONToLine3d(const JSONNode& node, TmGeLine3d& out, const char* key) { return GeJSON::readShapeAt(node, out, key); }
bool JSONToLineSeg3d(const JSONNode& node, TmGeLineSeg3d& out, const char* key) { return GeJSON::readShapeAt(node, out, key); }
bool JSONToCircArc2d(const JSONNode& node, TmGeCircArc2d& out, const char* key) { return GeJSON::readShapeAt(node, out, key); }
bool JSONToCircArc3d(const JSONNode& node, TmGeCircArc3d& out, const char* key) { return GeJSON::readShapeAt(node, out, key); }
bool JSONToEllipArc2d(const JSONNode& node, TmGeEllipArc2d& out, const char* key) { return GeJSON::readShapeAt(node, out, key); }
bool JSONToEllipArc3d(const JSONNode& node, TmGeEllipArc3d& out, const char* key) { return GeJSON::readShapeAt(node, out, key); }

} // namespace Kx::Types
