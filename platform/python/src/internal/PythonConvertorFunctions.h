#pragma once
// The convertors reached from scripts by type code: TarvelBasicPythonTypes.toValueText(code, obj),
// fromValueText(code, text, plainString=False) and toDisplayText(code, text). Malformed value text
// raises ValueError, an unknown code KeyError.
#include <python/PythonObject.h>

namespace Kx {

// Adds the three functions to the module once; needs the GIL.
void addConvertorFunctions(PyObject* module);

} // namespace Kx
