// The text commands from Python: run() by full name with text arguments, and every script function
// through the platform's bridge (kxtypes.trvGeometry.dotProduct, ...), which takes these values too.
#include "Bindings.h"

#include <base/TextCommandRegistry.h>
#include <base/V8JavaScriptFunctionWrapper.h>

#include <core/Strings.h>

#include <python/PythonTextCommandBridge.h>
#include <python/PythonTypes.h>

#include <pybind11/stl.h>

#include <string>
#include <utility>
#include <vector>

namespace py = pybind11;
using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

namespace KxPython {

namespace {

// An argument as the command line would hold it: str as it is, numbers in full precision, anything
// else as its JSON text (PythonTypes::getJSONText: to_json() of these values, lists, dicts).
std::wstring argumentText(const py::handle& argument)
{
    if (py::isinstance<py::bool_>(argument))
        return argument.cast<bool>() ? L"1" : L"0";
    if (py::isinstance<py::float_>(argument) || py::isinstance<py::int_>(argument))
        return toWide(py::repr(argument).cast<std::string>());
    std::string json;
    if (!Kx::PythonTypes::get().getJSONText(argument.ptr(), json))
        throw py::type_error(std::string("a ") + Py_TYPE(argument.ptr())->tp_name + " has no JSON form to pass to a text command");
    return toWide(json);
}

std::string run(const std::string& fullName, const py::args& arguments)
{
    std::vector<std::wstring> parameters;
    for (const py::handle& argument : arguments)
        parameters.push_back(argumentText(argument));
    Kx::TextCommandOutcome outcome;
    {
        py::gil_scoped_release unlocked;
        outcome = Kx::TextCommandRegistry::instance().run(toWide(fullName), Kx::TextCommandParameters(std::move(parameters), {}));
    }
    const std::string answer = toUTF8(outcome.text);
    if (!outcome.ok()) {
        PyErr_SetString(Kx::PythonTypes::get().textCommandError(), answer.c_str());
        throw py::error_already_set();
    }
    if (outcome.status == Kx::TextCommandOutcome::EStatus::eNoCommand)
        throw py::key_error(answer);
    return answer;
}

} // namespace

void bindCommands(py::module_& module)
{
    Kx::PythonTypes& types = Kx::PythonTypes::get();
    module.attr("TextCommandError") = py::handle(types.textCommandError());
    module.attr("Point3") = py::handle(types.point3Type());

    module.def("commands", [] {
        std::vector<std::pair<std::string, std::string>> listed;
        for (const Kx::TextCommand* command : Kx::TextCommandRegistry::instance().commands())
            listed.emplace_back(toUTF8(command->fullName()), toUTF8(command->description()));
        return listed;
    }, "every text command as (full name, description), ordered by subject area and name");
    module.def("run", &run, py::arg("full_name"),
        "run(full_name, *arguments) -> str: the command's answer; TextCommandError with its message when it fails");
    module.def("help", [](const std::string& fullName) {
        return toUTF8(fullName.empty() ? Kx::TextCommandRegistry::instance().help() : Kx::TextCommandRegistry::instance().help(toWide(fullName)));
    }, py::arg("full_name") = "");

    Kx::PythonTextCommandBridge::install();
    py::dict modules = py::module_::import("sys").attr("modules");
    for (const std::string& name : Kx::V8JavaScriptFunctionWrapper::namespaces())
        if (modules.contains(name))
            module.attr(name.c_str()) = modules[name.c_str()];
}

} // namespace KxPython
