#include <Types/GeLib/GeJSONStrings.h>

#include <Types/GeLib/GeJSONCurves.h>
#include <Types/GeLib/GeJSONMatrices.h>
#include <Types/GeLib/GeJSONPlane.h>
#include <Types/GeLib/GeJSONPoints.h>

#include <base/JSONNode.h>
#include <base/Strings.h>

#include <boost/json/object.hpp>

namespace Kx::Types {

namespace {

template <class T>
std::wstring toJSONString(const T& value, const char* key, void (*write)(const T&, JSONNode&, const char*))
{
    JSONNode node = JSONNode::fromValue(boost::json::object());
    write(value, node, key);
    return ToIString(node.stringify(false));
}

template <class T>
bool fromJSONString(const std::wstring& text, T& out, const char* key, bool (*read)(const JSONNode&, T&, const char*))
{
    const auto node = JSONNode::parse(ToUTF8(text));
    return node && read(*node, out, key);
}

} // namespace

std::wstring Point3dToJSONString(const TmGePoint3d& point, const char* key) { return toJSONString(point, key, &Point3dToJSON); }
std::wstring Vector3dToJSONString(const TmGeVector3d& vector, const char* key) { return toJSONString(vector, key, &Vector3dToJSON); }
std::wstring Line3dToJSONString(const TmGeLine3d& line, const char* key) { return toJSONString(line, key, &Line3dToJSON); }
std::wstring PlaneToJSONString(const TmGePlane& plane, const char* key) { return toJSONString(plane, key, &PlaneToJSON); }
std::wstring Matrix3dToJSONString(const TmGeMatrix3d& matrix, const char* key) { return toJSONString(matrix, key, &Matrix3dToJSON); }

bool JSONStringToPoint3d(const std::wstring& text, TmGePoint3d& out, const char* key) { return fromJSONString(text, out, key, &JSONToPoint3d); }
bool JSONStringToVector3d(const std::wstring& text, TmGeVector3d& out, const char* key) { return fromJSONString(text, out, key, &JSONToVector3d); }
bool JSONStringToLine3d(const std::wstring& text, TmGeLine3d& out, const char* key) { return fromJSONString(text, out, key, &JSONToLine3d); }
bool JSONStringToPlane(const std::wstring& text, TmGePlane& out, const char* key) { return fromJSONString(text, out, key, &JSONToPlane); }
bool JSONStringToMatrix3d(const std::wstring& text, TmGeMatrix3d& out, const char* key) { return fromJSONString(text, out, key, &JSONToMatrix3d); }

} // namespace Kx::Types
