#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include "internal/PythonConvertorFunctions.h"

#include <python/PythonConvertor.h>

#include <core/Strings.h>

#include <exception>
#include <string>
#include <typeinfo>

namespace Kx {

using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

namespace {

const PythonConvertor* convertorOf(const char* code)
{
    const PythonConvertor* convertor = PythonConvertor::find(code);
    if (!convertor)
        PyErr_Format(PyExc_KeyError, "no convertor of type code '%s'", code);
    return convertor;
}

PyObject* wideToPython(const std::wstring& text)
{
    const std::string utf8 = toUTF8(text);
    return PyUnicode_DecodeUTF8(utf8.data(), static_cast<Py_ssize_t>(utf8.size()), "replace");
}

// Runs a convertor operation that reads value text, turning its exceptions into ValueError.
template <class Operation>
PyObject* readingText(const char* text, Operation operation)
{
    try {
        return operation(toWide(text));
    } catch (const std::bad_cast&) {
        return PyErr_Format(PyExc_ValueError, "malformed value text: %s", text);
    } catch (const std::exception& error) {
        return PyErr_Format(PyExc_ValueError, "%s", error.what());
    }
}

PyObject* toValueText(PyObject*, PyObject* args)
{
    const char* code = nullptr;
    PyObject* object = nullptr;
    if (!PyArg_ParseTuple(args, "sO:toValueText", &code, &object))
        return nullptr;
    const PythonConvertor* convertor = convertorOf(code);
    return convertor ? wideToPython(convertor->objectToText(object)) : nullptr;
}

PyObject* fromValueText(PyObject*, PyObject* args, PyObject* keywords)
{
    static const char* names[] = {"code", "text", "plainString", nullptr};
    const char* code = nullptr;
    const char* text = nullptr;
    int plain = 0;
    if (!PyArg_ParseTupleAndKeywords(args, keywords, "ss|p:fromValueText", const_cast<char**>(names), &code, &text, &plain))
        return nullptr;
    const PythonConvertor* convertor = convertorOf(code);
    if (!convertor)
        return nullptr;
    return readingText(text, [&](const std::wstring& value) { return convertor->textToObject(value, plain != 0); });
}

PyObject* toDisplayText(PyObject*, PyObject* args)
{
    const char* code = nullptr;
    const char* text = nullptr;
    if (!PyArg_ParseTuple(args, "ss:toDisplayText", &code, &text))
        return nullptr;
    const PythonConvertor* convertor = convertorOf(code);
    if (!convertor)
        return nullptr;
    return readingText(text, [&](const std::wstring& value) { return wideToPython(convertor->textToDisplay(value)); });
}

PyMethodDef s_convertorFunctions[] = {
    {"toValueText", &toValueText, METH_VARARGS, "toValueText(code, object) -> str: the value text, '' when unreadable"},
    {"fromValueText", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(&fromValueText)), METH_VARARGS | METH_KEYWORDS,
        "fromValueText(code, text, plainString=False): the Python object of a value text"},
    {"toDisplayText", &toDisplayText, METH_VARARGS, "toDisplayText(code, text) -> str: the text a console shows"},
    {nullptr, nullptr, 0, nullptr},
};

} // namespace

void addConvertorFunctions(PyObject* module)
{
    if (!PyObject_HasAttrString(module, "toValueText"))
        PyModule_AddFunctions(module, s_convertorFunctions);
}

} // namespace Kx
