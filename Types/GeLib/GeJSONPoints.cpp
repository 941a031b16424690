#include <Types/GeLib/GeJSONPoints.h>

#include <Types/GeLib/internal/GeJSONCoordinates.h>

#include <geometry/TmGePoint2d.h>
#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector2d.h>
#include <geometry/TmGeVector3d.h>

#include <algorithm>

namespace Kx::Types {

namespace GeJSON {

namespace {
constexpr const char* s_coordinateKeys[] = {"x", "y", "z"};
} // namespace

void writeCoordinates(std::span<const double> coordinates, JSONNode& node, const char* key)
{
    writeObject(node, key, [&](JSONNode& object) {
        for (std::size_t i = 0; i < coordinates.size(); ++i) {
            object[s_coordinateKeys[i]] = coordinates[i];
        }
    });
}

bool readCoordinates(JSONRef object, std::span<double> coordinates)
{
    double read[3] = {};
    for (std::size_t i = 0; i < coordinates.size(); ++i) {
        if (!object[s_coordinateKeys[i]].get(read[i])) {
            return false;
        }
    }
    std::copy_n(read, coordinates.size(), coordinates.begin());
    return true;
}

} // namespace GeJSON

void Point2dToJSON(const TmGePoint2d& point, JSONNode& node, const char* key) { GeJSON::writePoint(point, node, key); }
void Vector2dToJSON(const TmGeVector2d& vector, JSONNode& node, const char* key) { GeJSON::writePoint(vector, node, key); }
void Point3dToJSON(const TmGePoint3d& point, JSONNode& node, const char* key) { GeJSON::writePoint(point, node, key); }
void Vector3dToJSON(const TmGeVector3d& vector, JSONNode& node, const char* key) { GeJSON::writePoint(vector, node, key); }

bool JSONToPoint2d(const JSONNode& node, TmGePoint2d& out, const char* key) { return GeJSON::readPointAt(node, out, key); }
bool JSONToVector2d(const JSONNode& node, TmGeVector2d& out, const char* key) { return GeJSON::readPointAt(node, out, key); }
bool JSONToPoint3d(const JSONNode& node, TmGePoint3d& out, const char* key) { return GeJSON::readPointAt(node, out, key); }
bool JSONToVector3d(const JSONNode& node, TmGeVector3d& out, const char* key) { return GeJSON::readPointAt(node, out, key); }

} // namespace Kx::Types
