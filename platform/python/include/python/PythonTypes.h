#pragma once
// The Python side of the platform's values: the module "TarvelBasicPythonTypes" with its point type
// "TarvelBasicPythonTypes.Point3" (x, y, z as floats; repr; equality by components), and the
// conversions the convertors and the text-command bridge build on.
//
// Every operation needs a running interpreter and the calling thread holding the GIL. The module is
// made on the first get() and put into sys.modules, so `import TarvelBasicPythonTypes` works both
// in the embedded interpreter and in a python3 process that loaded the platform.
#include <python/PythonObject.h>

#include <string>

namespace Kx {

class PythonTypes {
public:
    [[nodiscard]] static PythonTypes& get();

    // A new Point3 (a new reference); null when none could be made (the Python error is cleared).
    [[nodiscard]] PyObject* putXYZ(double x, double y, double z) const;
    // The coordinates of a Point3, of a tuple or list of three real numbers, or of any object with
    // real attributes x, y and z. False (outputs unchanged, no Python error left) for anything else.
    [[nodiscard]] bool getXYZ(PyObject* object, double& x, double& y, double& z) const;

    // The Python value of a JSON text (a new reference): numbers, strings, lists, dicts, with every
    // JSON object of exactly the members x, y, z made a Point3. Null for text that is not JSON (the
    // Python error is cleared).
    [[nodiscard]] PyObject* putJSON(const std::string& utf8JSON) const;
    // The JSON text of an object: a str is taken as the JSON text it holds; anything else is written
    // as JSON, a Point3 as {"x":..,"y":..,"z":..} and an object with a to_json() method as what that
    // returns. False (json unchanged, no Python error left) when it cannot be written, NaN included.
    [[nodiscard]] bool getJSONText(PyObject* object, std::string& utf8JSON) const;

    // The module and the types it holds (borrowed references).
    [[nodiscard]] PyObject* module() const noexcept { return m_module; }
    [[nodiscard]] PyObject* point3Type() const noexcept { return m_point3Type; }
    // TarvelBasicPythonTypes.TextCommandError (a RuntimeError): a text command answered a failure.
    [[nodiscard]] PyObject* textCommandError() const noexcept { return m_textCommandError; }

private:
    PythonTypes();
    // Held until the process ends: the interpreter outlives every caller of the platform, and
    // releasing them from a static destructor could run after it has gone.
    PyObject* m_module = nullptr;
    PyObject* m_point3Type = nullptr;
    PyObject* m_textCommandError = nullptr;
    PyObject* m_loads = nullptr; // json.loads with the Point3 object hook bound
    PyObject* m_dumps = nullptr; // json.dumps with the Point3 default bound
};

} // namespace Kx
