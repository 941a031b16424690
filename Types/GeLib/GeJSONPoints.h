#pragma once

// Points and vectors as JSON objects with one number per coordinate: {"x":1,"y":2} and
// {"x":1,"y":2,"z":3}. A vector has exactly the form of the point with the same coordinates.
//
// Writers: with a null key the members go straight into `node`; otherwise node[key] becomes the
// object. Readers: with a null key `node` itself is read; otherwise its member `key`, and an
// absent member answers false. A reader answers false, leaving `out` as it was, unless every
// coordinate is present and a JSON number (text such as "1" is not a number).

#include <base/JSONNode.h>

class TmGePoint2d;
class TmGePoint3d;
class TmGeVector2d;
class TmGeVector3d;

namespace Kx::Types {

void Point2dToJSON(const TmGePoint2d& point, JSONNode& node, const char* key);
void Vector2dToJSON(const TmGeVector2d& vector, JSONNode& node, const char* key);
void Point3dToJSON(const TmGePoint3d& point, JSONNode& node, const char* key);
void Vector3dToJSON(const TmGeVector3d& vector, JSONNode& node, const char* key);

[[nodiscard]] bool JSONToPoint2d(const JSONNode& node, TmGePoint2d& out, const char* key);
[[nodiscard]] bool JSONToVector2d(const JSONNode& node, TmGeVector2d& out, const char* key);
[[nodiscard]] bool JSONToPoint3d(const JSONNode& node, TmGePoint3d& out, const char* key);
[[nodiscard]] bool JSONToVector3d(const JSONNode& node, TmGeVector3d& out, const char* key);

} // namespace Kx::Types
