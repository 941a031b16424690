#pragma once

#include <Types/Geometry/BBox.h>
#include <Types/Geometry/BRect.h>
#include <Types/Geometry/Float2.h>
#include <Types/Geometry/Float3.h>
#include <Types/Geometry/Point2f.h>
#include <Types/Geometry/Point3f.h>
#include <Types/Geometry/Vector2f.h>
#include <Types/Geometry/Vector3f.h>

#include <datamodel/Entity.h>

#include <geometry/TmGe.h>

namespace Kx {

class EntityMetaType;
class MemberSet;

// A test entity with a member of each geometry type (the kernel's, the float tuples and the
// bounds), so that whole entities of geometry can be
// saved, loaded and converted to and from JSON by tests, the console and demonstrations.
class GeLibTestor final : public Entity {
public:
    GeLibTestor();

    [[nodiscard]] static EntityMetaType& s_metaType();
    void declareMembers(unsigned version, MemberSet* memberSet);

    TmGePoint2d point2d;
    TmGePoint3d point3d;
    TmGeVector2d vector2d;
    TmGeVector3d vector3d;
    TmGeMatrix2d matrix2d;
    TmGeMatrix3d matrix3d;
    TmGeLine3d line;
    TmGeLineSeg3d lineSegment;
    TmGePlane plane;
    TmGeBoundedPlane boundedPlane;
    TmGeCircArc2d circArc2d;
    TmGeCircArc3d circArc3d;
    TmGeEllipArc2d ellipArc2d;
    TmGeEllipArc3d ellipArc3d;
    TmGeNurbCurve2d nurbCurve2d;
    TmGeNurbCurve3d nurbCurve3d;
    TmGePolyline3d polyline;
    TmGeCurve3dVec curves;
    Float2 float2;
    Float3 float3;
    Point2f point2f;
    Point3f point3f;
    Vector2f vector2f;
    Vector3f vector3f;
    BRect bounds2d;
    BBox bounds3d;
};

} // namespace Kx
