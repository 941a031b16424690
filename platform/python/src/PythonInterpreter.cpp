#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <python/PythonInterpreter.h>

#include <python/PythonTextCommandBridge.h>
#include <python/PythonTypes.h>

#include <base/V8JavaScriptFunctionWrapper.h>

#include <mutex>
#include <ostream>
#include <string>

namespace Kx {

namespace {

// The GIL of the calling thread, for the scope of one operation.
class GILHold {
public:
    GILHold()
        : m_state(PyGILState_Ensure())
    {
    }
    ~GILHold() { PyGILState_Release(m_state); }
    GILHold(const GILHold&) = delete;
    GILHold& operator=(const GILHold&) = delete;

private:
    PyGILState_STATE m_state;
};

std::string textOf(PyObject* object)
{
    PyObject* text = object ? PyObject_Str(object) : nullptr;
    const char* utf8 = text ? PyUnicode_AsUTF8(text) : nullptr;
    std::string result = utf8 ? utf8 : "";
    Py_XDECREF(text);
    PyErr_Clear();
    return result;
}

long intAttribute(PyObject* object, const char* name)
{
    PyObject* value = PyObject_GetAttrString(object, name);
    const long result = value && PyLong_Check(value) ? PyLong_AsLong(value) : 0;
    Py_XDECREF(value);
    PyErr_Clear();
    return result;
}

// The line of the script where the exception passed last: the deepest traceback entry in the
// script's own file, so that an error raised inside a library is reported where the script called it.
long lineInScript(PyObject* traceback, const std::string& fileName)
{
    long line = 0;
    Py_XINCREF(traceback);
    PyObject* entry = traceback;
    while (entry && entry != Py_None) {
        PyObject* frame = PyObject_GetAttrString(entry, "tb_frame");
        PyObject* code = frame ? PyObject_GetAttrString(frame, "f_code") : nullptr;
        PyObject* file = code ? PyObject_GetAttrString(code, "co_filename") : nullptr;
        if (textOf(file) == fileName)
            line = intAttribute(entry, "tb_lineno");
        Py_XDECREF(file);
        Py_XDECREF(code);
        Py_XDECREF(frame);
        PyObject* next = PyObject_GetAttrString(entry, "tb_next");
        Py_DECREF(entry);
        entry = next;
    }
    Py_XDECREF(entry);
    PyErr_Clear();
    return line;
}

// The pending exception, normalised, with its traceback attached (a new reference).
PyObject* takeException()
{
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    if (value && traceback)
        PyException_SetTraceback(value, traceback);
    Py_XDECREF(type);
    Py_XDECREF(traceback);
    return value;
}

// "ValueError" for the built-in exceptions, "module.Name" for the others.
std::string typeName(PyObject* exception)
{
    PyObject* type = reinterpret_cast<PyObject*>(Py_TYPE(exception));
    PyObject* module = PyObject_GetAttrString(type, "__module__");
    PyObject* name = PyObject_GetAttrString(type, "__qualname__");
    const std::string moduleName = textOf(module);
    std::string result = textOf(name);
    Py_XDECREF(module);
    Py_XDECREF(name);
    if (!moduleName.empty() && moduleName != "builtins")
        result = moduleName + '.' + result;
    return result;
}

// The pending exception as "<file>:<line>: <type>: <message>", or an empty text for SystemExit
// with status 0 or None; clears it.
std::string takeError(const std::string& fileName, bool& failed)
{
    PyObject* exception = takeException();
    failed = true;
    if (!exception)
        return fileName + ": unknown error";
    if (PyErr_GivenExceptionMatches(exception, PyExc_SystemExit)) {
        PyObject* code = PyObject_GetAttrString(exception, "code");
        failed = code && code != Py_None && !(PyLong_Check(code) && PyLong_AsLong(code) == 0);
        std::string text = failed ? fileName + ": exit status " + textOf(code) : std::string();
        Py_XDECREF(code);
        Py_DECREF(exception);
        PyErr_Clear();
        return text;
    }
    long line = 0;
    if (PyErr_GivenExceptionMatches(exception, PyExc_SyntaxError)) {
        line = intAttribute(exception, "lineno");
    } else {
        PyObject* traceback = PyException_GetTraceback(exception);
        line = lineInScript(traceback, fileName);
        Py_XDECREF(traceback);
    }
    std::string text = fileName + ':' + std::to_string(line) + ": " + typeName(exception);
    const std::string message = textOf(exception);
    if (!message.empty())
        text += ": " + message;
    Py_DECREF(exception);
    return text;
}

PyObject* swapStdout(PyObject* replacement)
{
    PyObject* previous = PySys_GetObject("stdout"); // borrowed
    Py_XINCREF(previous);
    PySys_SetObject("stdout", replacement);
    return previous;
}

} // namespace

void PythonInterpreter::ensureStarted()
{
    static std::once_flag s_started;
    std::call_once(s_started, [] {
        if (Py_IsInitialized())
            return; // the python3 process that loaded us
        PyConfig config;
        PyConfig_InitPythonConfig(&config);
        // The host keeps its own signal handling and command line.
        config.install_signal_handlers = 0;
        config.parse_argv = 0;
        const PyStatus status = Py_InitializeFromConfig(&config);
        PyConfig_Clear(&config);
        if (PyStatus_Exception(status))
            Py_ExitStatusException(status);
        // The starting thread lets go of the GIL; every run takes it as it needs.
        PyEval_SaveThread();
    });
}

PythonInterpreter::PythonInterpreter(std::ostream& printTo)
    : m_out(printTo)
{
    ensureStarted();
    const GILHold gil;
    PythonTextCommandBridge::install();
    m_globals = PyDict_New();
    PyDict_SetItemString(m_globals, "__builtins__", PyEval_GetBuiltins());
    PyObject* name = PyUnicode_FromString("__main__");
    PyDict_SetItemString(m_globals, "__name__", name);
    Py_XDECREF(name);
    PyDict_SetItemString(m_globals, "TarvelBasicPythonTypes", PythonTypes::get().module());
    for (const std::string& space : V8JavaScriptFunctionWrapper::namespaces()) {
        if (PyObject* module = PyImport_ImportModule(space.c_str())) {
            PyDict_SetItemString(m_globals, space.c_str(), module);
            Py_DECREF(module);
        }
    }
    PyErr_Clear();
}

PythonInterpreter::~PythonInterpreter()
{
    const GILHold gil;
    Py_CLEAR(m_globals);
}

PythonInterpreter::Result PythonInterpreter::run(std::string_view source, std::string_view fileName)
{
    return evaluate(source, fileName, Py_file_input);
}

PythonInterpreter::Result PythonInterpreter::runLine(std::string_view line)
{
    return evaluate(line, "<prompt>", Py_single_input);
}

PythonInterpreter::Result PythonInterpreter::evaluate(std::string_view source, std::string_view fileName, int startToken)
{
    const GILHold gil;
    const std::string file(fileName);
    // What the script prints is gathered and handed on when it ends, so that it keeps its order
    // with the host's own output on the same stream.
    PyObject* io = PyImport_ImportModule("io");
    PyObject* buffer = io ? PyObject_CallMethod(io, "StringIO", nullptr) : nullptr;
    Py_XDECREF(io);
    PyObject* previous = buffer ? swapStdout(buffer) : nullptr;

    Result result;
    const std::string text(source);
    PyObject* code = Py_CompileString(text.c_str(), file.c_str(), startToken);
    PyObject* value = code ? PyEval_EvalCode(code, m_globals, m_globals) : nullptr;
    if (!value) {
        bool failed = true;
        result.text = takeError(file, failed);
        result.ok = !failed;
    }
    Py_XDECREF(value);
    Py_XDECREF(code);

    if (buffer) {
        PyObject* printed = PyObject_CallMethod(buffer, "getvalue", nullptr);
        m_out << textOf(printed);
        Py_XDECREF(printed);
        PySys_SetObject("stdout", previous);
        Py_XDECREF(previous);
        Py_DECREF(buffer);
    }
    PyErr_Clear();
    return result;
}

} // namespace Kx
