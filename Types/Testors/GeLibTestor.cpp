#include "Types/Testors/GeLibTestor.h"

#include <Types/GeLib/GeMetaTypes.h>
#include <Types/Geometry/ValueMetaTypes.h>

#include <datamodel/EntityMetaType.h>

namespace Kx {

GeLibTestor::GeLibTestor() : Entity(s_metaType()) {}

EntityMetaType& GeLibTestor::s_metaType()
{
    static TEntityMetaType<GeLibTestor> metaType("3C7E9A51-8B24-4F06-A1D3-6E5F40B2C918", "GeLibTestor", 0);
    return metaType;
}

void GeLibTestor::declareMembers(unsigned, MemberSet* memberSet)
{
    addMember(memberSet, "point2d", point2d);
    addMember(memberSet, "point3d", point3d);
    addMember(memberSet, "vector2d", vector2d);
    addMember(memberSet, "vector3d", vector3d);
    addMember(memberSet, "matrix2d", matrix2d);
    addMember(memberSet, "matrix3d", matrix3d);
    addMember(memberSet, "line", line);
    addMember(memberSet, "lineSegment", lineSegment);
    addMember(memberSet, "plane", plane);
    addMember(memberSet, "boundedPlane", boundedPlane);
    addMember(memberSet, "circArc2d", circArc2d);
    addMember(memberSet, "circArc3d", circArc3d);
    addMember(memberSet, "ellipArc2d", ellipArc2d);
    addMember(memberSet, "ellipArc3d", ellipArc3d);
    addMember(memberSet, "nurbCurve2d", nurbCurve2d);
    addMember(memberSet, "nurbCurve3d", nurbCurve3d);
    addMember(memberSet, "polyline", polyline);
    addMember(memberSet, "curves", curves);
    addMember(memberSet, "float2", float2);
    addMember(memberSet, "float3", float3);
    addMember(memberSet, "point2f", point2f);
    addMember(memberSet, "point3f", point3f);
    addMember(memberSet, "vector2f", vector2f);
    addMember(memberSet, "vector3f", vector3f);
    addMember(memberSet, "bounds2d", bounds2d);
    addMember(memberSet, "bounds3d", bounds3d);
}

namespace {
const bool s_registered = ((void)GeLibTestor::s_metaType(), true);
} // namespace

} // namespace Kx
