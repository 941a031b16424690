#pragma once

// The library's value types (namespace Kx): integer points, sizes, rectangles and borders, the
// float tuples, the bounds, colours and globalised strings, with their meta types and data-model
// callbacks (Point2ValueMetaType, Point2DataModelCallback, ...). Loading libKxTypes10 registers
// them all with the data model.
#include <Types/Geometry/BBox.h>
#include <Types/Geometry/BRect.h>
#include <Types/Geometry/Border4.h>
#include <Types/Geometry/Color.h>
#include <Types/Geometry/Float2.h>
#include <Types/Geometry/Float3.h>
#include <Types/Geometry/GlobalizedString.h>
#include <Types/Geometry/Point2.h>
#include <Types/Geometry/Point2f.h>
#include <Types/Geometry/Point3f.h>
#include <Types/Geometry/Rect2.h>
#include <Types/Geometry/Size2.h>
#include <Types/Geometry/ValueMetaTypes.h>
#include <Types/Geometry/Vector2f.h>
#include <Types/Geometry/Vector3f.h>
