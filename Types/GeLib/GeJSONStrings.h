#pragma once

// JSON text of the geometry that text commands and scripts pass around, as wide strings.
//
// ...ToJSONString writes the value into an empty object with the given key (see the writers) and
// answers its compact JSON text: {"key":{"x":1,"y":2,"z":3}} with a key, {"x":1,"y":2,"z":3}
// without one; a matrix without a key is the bare array of rows.
//
// JSONStringTo... parses the text and reads it with the matching reader and key. False for text
// that is not one well-formed JSON value (NaN and Infinity are not JSON) and whenever the reader
// answers false; `out` then follows that reader's rules (unchanged, or a matrix partly written).

#include <string>

class TmGeLine3d;
class TmGeMatrix3d;
class TmGePlane;
class TmGePoint3d;
class TmGeVector3d;

namespace Kx::Types {

[[nodiscard]] std::wstring Point3dToJSONString(const TmGePoint3d& point, const char* key);
[[nodiscard]] std::wstring Vector3dToJSONString(const TmGeVector3d& vector, const char* key);
[[nodiscard]] std::wstring Line3dToJSONString(const TmGeLine3d& line, const char* key);
[[nodiscard]] std::wstring PlaneToJSONString(const TmGePlane& plane, const char* key);
[[nodiscard]] std::wstring Matrix3dToJSONString(const TmGeMatrix3d& matrix, const char* key);

[[nodiscard]] bool JSONStringToPoint3d(const std::wstring& text, TmGePoint3d& out, const char* key);
[[nodiscard]] bool JSONStringToVector3d(const std::wstring& text, TmGeVector3d& out, const char* key);
[[nodiscard]] bool JSONStringToLine3d(const std::wstring& text, TmGeLine3d& out, const char* key);
[[nodiscard]] bool JSONStringToPlane(const std::wstring& text, TmGePlane& out, const char* key);
[[nodiscard]] bool JSONStringToMatrix3d(const std::wstring& text, TmGeMatrix3d& out, const char* key);

} // namespace Kx::Types
