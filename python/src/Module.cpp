// kxtypes: the KxTypes library for python3. Importing it starts the platform on the importing
// thread (its UI thread, as for any host) and registers the library's types and commands.
#include "Bindings.h"

#include <Types/GeLib/GePythonConvertors.h>

#include <base/Application.h>
#include <base/Exception.h>

#include <python/PythonTypes.h>

namespace py = pybind11;

PYBIND11_MODULE(kxtypes, module)
{
    module.doc() = "KxTypes: geometry values, the text commands, the material libraries and documents";
    // Option files that cannot be read leave their groups at the defaults; the library logs why.
    (void)Kx::Application::initialize();
    (void)Kx::Types::GeometryPythonTypeCodes();
    // The library's saving and loading failures, with their user-facing text.
    py::register_exception<Kx::Exception>(module, "Error", PyExc_RuntimeError);
    KxPython::bindGeometry(module);
    KxPython::bindCommands(module);
    KxPython::bindMaterials(module);
    KxPython::bindDocuments(module);
}
