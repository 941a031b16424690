#include <Types/GeLib/GeJSONPlane.h>

#include <Types/GeLib/internal/GeJSONShape.h>

#include <geometry/TmGePlane.h>

namespace Kx::Types {

namespace GeJSON {

template <>
struct Shape<TmGePlane> {
    using M = Members<TmGePlane>;
    static constexpr auto members = std::tuple{M::required("pointOnPlane", &TmGePlane::pointOnPlane),
                                               M::required("normal", &TmGePlane::normal)};

    static TmGePlane build(const TmGePoint3d& point, TmGeVector3d normal)
    {
        normal.normalize(TmGeContext::gTol);
        return {point, normal};
    }
};

} // namespace GeJSON

void PlaneToJSON(const TmGePlane& plane, JSONNode& node, const char* key) { GeJSON::writeShape(plane, node, key); }
bool JSONToPlane(const JSONNode& node, TmGePlane& out, const char* key) { return GeJSON::readShapeAt(node, out, key); }

} // namespace Kx::Types
