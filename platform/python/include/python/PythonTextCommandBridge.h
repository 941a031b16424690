#pragma once
// The text commands as Python functions: every script function of V8JavaScriptFunctionWrapper
// becomes a function of a Python module named after its script namespace (trvGeometry.dotProduct,
// ...), and runs the same text command as the console.
//
// Arguments follow the function's argument format, read with PyArg_ParseTuple: each %j is any
// object that has a JSON text (a str of JSON, a Point3, a list of rows, a dict; PythonTypes::
// getJSONText), each %f a real number. The answer comes back as the Python value of its JSON
// (PythonTypes::putJSON: points and vectors as Point3, matrices as lists of rows, "1"/"0" as ints)
// or as a str when it is not JSON. A failure answered by the command raises
// TarvelBasicPythonTypes.TextCommandError with the command's message. The GIL is released while
// the command runs.
#include <string>
#include <string_view>

namespace Kx {

class PythonTextCommandBridge {
public:
    // Makes the namespace modules and puts them into sys.modules; later calls add the functions
    // registered since. Needs the GIL.
    static void install();
    // The tuple format of PyArg_ParseTuple for an argument format ("%j%j" -> "OO", "%j%f" -> "Od",
    // "%f%j%j" -> "dO|O": the rotation point is optional); empty for a format the bridge cannot
    // take, whose function is then left out.
    [[nodiscard]] static std::string tupleFormat(std::string_view argumentFormat);
};

} // namespace Kx
