#pragma once
// The parts of the kxtypes module, each adding its classes and functions to the module.
#include <pybind11/pybind11.h>

namespace KxPython {

void bindGeometry(pybind11::module_& module);
void bindCommands(pybind11::module_& module);
void bindMaterials(pybind11::module_& module);
void bindDocuments(pybind11::module_& module);

} // namespace KxPython
