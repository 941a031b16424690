#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <python/PythonTextCommandBridge.h>

#include <python/PythonTypes.h>

#include "internal/PythonConvertorFunctions.h"

#include <base/Assert.h>
#include <base/TextCommandRegistry.h>
#include <base/V8JavaScriptFunctionWrapper.h>

#include <core/Strings.h>

#include <cstdio>
#include <deque>
#include <vector>

namespace Kx {

using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

namespace {

struct BridgedFunction {
    V8JavaScriptFunctionWrapper::Function function;
    std::string tupleFormat; // with ":<name>" so that argument errors name the function
    std::string doc;         // the command's full name and description, for help()
};

// Functions once made stay: a module may hold them after another install().
std::deque<BridgedFunction> s_functions;
std::deque<PyMethodDef> s_methods;

std::wstring numberText(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return toWide(text);
}

PyObject* answerToPython(const std::string& answer)
{
    if (PyObject* value = PythonTypes::get().putJSON(answer))
        return value;
    return PyUnicode_DecodeUTF8(answer.data(), static_cast<Py_ssize_t>(answer.size()), "replace");
}

PyObject* callCommand(PyObject* self, PyObject* args)
{
    const BridgedFunction& bridged = s_functions.at(PyLong_AsSize_t(self));
    // Each position is an object (O) or a number (d); PyArg_ParseTuple reads as many pointers as its
    // format names and ignores the rest, so one call serves every format of up to three arguments.
    PyObject* objects[3] = {};
    double numbers[3] = {};
    void* targets[3] = {};
    for (std::size_t i = 0, position = 0; i < bridged.tupleFormat.size() && position < 3; ++i) {
        const char c = bridged.tupleFormat[i];
        if (c == 'O' || c == 'd') {
            targets[position] = c == 'O' ? static_cast<void*>(&objects[position]) : static_cast<void*>(&numbers[position]);
            ++position;
        }
    }
    if (!PyArg_ParseTuple(args, bridged.tupleFormat.c_str(), targets[0], targets[1], targets[2]))
        return nullptr;

    std::vector<std::wstring> parameters;
    const std::string& format = bridged.function.argumentFormat;
    for (std::size_t position = 0; position * 2 < format.size(); ++position) {
        if (format[position * 2 + 1] == 'f') {
            parameters.push_back(numberText(numbers[position]));
            continue;
        }
        if (!objects[position])
            break; // an optional argument left out, and all after it
        std::string json;
        if (!PythonTypes::get().getJSONText(objects[position], json))
            return PyErr_Format(PyExc_TypeError, "%s() argument %zu: a %s has no JSON form", bridged.function.name.c_str(),
                position + 1, Py_TYPE(objects[position])->tp_name);
        parameters.push_back(toWide(json));
    }

    TextCommandOutcome outcome;
    Py_BEGIN_ALLOW_THREADS
    outcome = TextCommandRegistry::instance().run(bridged.function.command, TextCommandParameters(std::move(parameters), {}));
    Py_END_ALLOW_THREADS
    const std::string answer = toUTF8(outcome.text);
    if (!outcome.ok()) {
        PyErr_SetString(PythonTypes::get().textCommandError(), answer.c_str());
        return nullptr;
    }
    return answerToPython(answer);
}

// The module of a script namespace, made and put into sys.modules when missing (a new reference).
PyObject* namespaceModule(const std::string& name)
{
    PyObject* modules = PyImport_GetModuleDict();
    if (PyObject* existing = PyDict_GetItemString(modules, name.c_str())) {
        Py_INCREF(existing);
        return existing;
    }
    PyObject* module = PyModule_New(name.c_str());
    if (module && PyDict_SetItemString(modules, name.c_str(), module) < 0)
        Py_CLEAR(module);
    return module;
}

bool isBridged(const V8JavaScriptFunctionWrapper::Function& function)
{
    for (const BridgedFunction& b : s_functions)
        if (b.function.scriptNamespace == function.scriptNamespace && b.function.name == function.name)
            return true;
    return false;
}

} // namespace

std::string PythonTextCommandBridge::tupleFormat(std::string_view argumentFormat)
{
    // clang-format off
    static const struct { std::string_view argumentFormat; const char* tupleFormat; } s_formats[] = {
        {"", ""}, {"%j", "O"}, {"%f", "d"}, {"%j%j", "OO"}, {"%j%f", "Od"}, {"%f%j%j", "dO|O"},
    };
    // clang-format on
    for (const auto& known : s_formats)
        if (known.argumentFormat == argumentFormat)
            return known.tupleFormat;
    return {};
}

void PythonTextCommandBridge::install()
{
    addConvertorFunctions(PythonTypes::get().module());

    for (const std::string& name : V8JavaScriptFunctionWrapper::namespaces()) {
        PyObject* module = namespaceModule(name);
        if (!module) {
            PyErr_Clear();
            continue;
        }
        for (const auto& function : V8JavaScriptFunctionWrapper::functions()) {
            if (function.scriptNamespace != name || isBridged(function))
                continue;
            const std::string format = tupleFormat(function.argumentFormat);
            const bool takesNoArguments = function.argumentFormat.empty();
            KX_ASSERT(!format.empty() || takesNoArguments);
            if (format.empty() && !takesNoArguments)
                continue;
            const TextCommand* command = TextCommandRegistry::instance().find(function.command);
            const std::string doc = toUTF8(function.command) + ": " + (command ? toUTF8(command->description()) : std::string());
            s_functions.push_back({function, format + ':' + function.name, doc});
            const BridgedFunction& bridged = s_functions.back();
            s_methods.push_back({bridged.function.name.c_str(), &callCommand, METH_VARARGS, bridged.doc.c_str()});
            PyObject* index = PyLong_FromSize_t(s_functions.size() - 1);
            PyObject* callable = index ? PyCFunction_NewEx(&s_methods.back(), index, nullptr) : nullptr;
            if (!callable || PyModule_AddObjectRef(module, function.name.c_str(), callable) < 0)
                PyErr_Clear();
            Py_XDECREF(callable);
            Py_XDECREF(index);
        }
        Py_DECREF(module);
    }
}

} // namespace Kx
