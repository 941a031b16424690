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
using ColorValueMetaType = TValueMetaType<Color>;
using GlobalizedStringValueMetaType = TValueMetaType<GlobalizedString>;

// The names of the value types this library registers, in registration order.
[[nodiscard]] const std::vector<std::string_view>& registeredValueTypeNames();

} // namespace Kx

using Point2DataModelCallback = Kx::ValueDataModelCallback<Kx::Point2>;
using Size2DataModelCallback = Kx::ValueDataModelCallback<Kx::Size2>;
using Rect2DataModelCallback = Kx::ValueDataModelCallback<Kx::Rect2>;
using Border4DataModelCallback = Kx::ValueDataModelCallback<Kx::Border4>;
using ColorDataModelCallback = Kx::ValueDataModelCallback<Kx::Color>;
