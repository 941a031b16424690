#pragma once

namespace Kx {

class ValueMetaType;

// The meta types of the material values ("PhysicalMaterialValueMetaType",
// "VisualMaterialValueMetaType"), made on first use and at library start-up.
[[nodiscard]] ValueMetaType& physicalMaterialValueMetaType();
[[nodiscard]] ValueMetaType& visualMaterialValueMetaType();

} // namespace Kx
