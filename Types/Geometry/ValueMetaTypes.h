#pragma once

// The meta types and callbacks of the library's value types, under the names hosts know them by.

#include <Types/Geometry/ValueMetaTypeT.h>
#include <Types/Geometry/ValueTraits.h>

#include <string_view>
#include <vector>

namespace Kx {

using Point2ValueMetaType = TValueMetaType<Point2>;
using Size2ValueMetaType = TValueMetaType<Size2>;
using Rect2ValueMetaType = TValueMetaType<Rect2>;
using Border4ValueMetaType = TValueMetaType<Border4>;
using Float2ValueMetaType = TValueMetaType<Float2>;
using Float3ValueMetaType = TValueMetaType<Float3>;
using Point2fValueMetaType = TValueMetaType<Point2f>;
using Point3fValueMetaType = TValueMetaType<Point3f>;
using Vector2fValueMetaType = TValueMetaType<Vector2f>;
using Vector3fValueMetaType = TValueMetaType<Vector3f>;
using BRectValueMetaType = TValueMetaType<BRect>;
using BBoxValueMetaType = TValueMetaType<BBox>;
using ColorValueMetaType = TValueMetaType<Color>;
using GlobalizedStringValueMetaType = TValueMetaType<GlobalizedString>;

// The names of the value types this library registers (its own, then the geometry kernel's), in
// registration order.
[[nodiscard]] const std::vector<std::string_view>& registeredValueTypeNames();

} // namespace Kx

using Point2DataModelCallback = Kx::ValueDataModelCallback<Kx::Point2>;
using Size2DataModelCallback = Kx::ValueDataModelCallback<Kx::Size2>;
using Rect2DataModelCallback = Kx::ValueDataModelCallback<Kx::Rect2>;
using Border4DataModelCallback = Kx::ValueDataModelCallback<Kx::Border4>;
using ColorDataModelCallback = Kx::ValueDataModelCallback<Kx::Color>;
using Float2DataModelCallback = Kx::ValueDataModelCallback<Kx::Float2>;
using Float3DataModelCallback = Kx::ValueDataModelCallback<Kx::Float3>;
using Point2fDataModelCallback = Kx::ValueDataModelCallback<Kx::Point2f>;
using Point3fDataModelCallback = Kx::ValueDataModelCallback<Kx::Point3f>;
using Vector2fDataModelCallback = Kx::ValueDataModelCallback<Kx::Vector2f>;
using Vector3fDataModelCallback = Kx::ValueDataModelCallback<Kx::Vector3f>;
