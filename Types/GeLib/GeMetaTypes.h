#pragma once

// The meta types and callbacks of the geometry kernel's types, under the names hosts know them by:
// Kx::TmGePoint3dValueMetaType, Kx::TmGePoint3dDataModelCallback, and so on.

#include <Types/GeLib/GeValueTraits.h>

#define KX_GEOMETRY_META_TYPE_NAMES(Class)                              \
    using Class##ValueMetaType = TValueMetaType<Class>;                \
    using Class##DataModelCallback = CallbackOf<Class>::type;

namespace Kx {

KX_GEOMETRY_META_TYPE_NAMES(TmGePoint2d)
KX_GEOMETRY_META_TYPE_NAMES(TmGePoint3d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeVector2d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeVector3d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeMatrix2d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeMatrix3d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeLine3d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeLineSeg3d)
KX_GEOMETRY_META_TYPE_NAMES(TmGePlane)
KX_GEOMETRY_META_TYPE_NAMES(TmGeBoundedPlane)
KX_GEOMETRY_META_TYPE_NAMES(TmGeCircArc2d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeCircArc3d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeEllipArc2d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeEllipArc3d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeNurbCurve2d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeNurbCurve3d)
KX_GEOMETRY_META_TYPE_NAMES(TmGePolyline3d)
KX_GEOMETRY_META_TYPE_NAMES(TmGeCurve3dVec)

} // namespace Kx

#undef KX_GEOMETRY_META_TYPE_NAMES
