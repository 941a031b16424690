#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <python/PythonInterpreter.h>

#include <python/PythonTextCommandBridge.h>
#include <python/PythonTypes.h>

#include <base/V8JavaScriptFunctionWrapper.h>

#include <mutex>
#include <ostream>
#include <string>

#if defined(__SANITIZE_ADDRESS__)
#define KX_PYTHON_UNDER_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KX_PYTHON_UNDER_ASAN 1
#endif
#endif

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

// Where a script's print() writes: the host's stream, until the interpreter object that made it
// ends (a script may keep print in a place that outlives its run).
struct PrintTarget {
    std::ostream* out = nullptr;
};

PyObject* writePrinted(PyObject* self, PyObject* text)
{
    auto* target = static_cast<PrintTarget*>(PyCapsule_GetPointer(self, "kx.PrintTarget"));
    if (!target || !target->out)
        return PyErr_Format(PyExc_ValueError, "the interpreter this print() belonged to has ended");
    Py_ssize_t size = 0;
    const char* utf8 = PyUnicode_Check(text) ? PyUnicode_AsUTF8AndSize(text, &size) : nullptr;
    if (!utf8)
        return nullptr;
    target->out->write(utf8, size);
    return PyLong_FromSsize_t(PyUnicode_GetLength(text));
}

PyMethodDef s_writePrinted = {"write", &writePrinted, METH_O, nullptr};

void releasePrintTarget(PyObject* capsule)
{
    delete static_cast<PrintTarget*>(PyCapsule_GetPointer(capsule, "kx.PrintTarget"));
}

// print() of the script's globals, writing to the host's stream: each interpreter object prints to
// its own, whichever thread runs it (sys.stdout is the process's and stays as it is).
const char* const s_printDefinition = R"(
def print(*values, file=None, **options):
    __import__('builtins').print(*values, file=_kx_stream if file is None else file, **options)
class _KxStream:
    def write(self, text):
        return _kx_write(text)
    def flush(self):
        pass
_kx_stream = _KxStream()
del _KxStream
)";

} // namespace

void PythonInterpreter::ensureStarted()
{
    static std::once_flag s_started;
    std::call_once(s_started, [] {
        if (Py_IsInitialized())
            return; // the python3 process that loaded us: the kxtypes module makes the types
#ifdef KX_PYTHON_UNDER_ASAN
        // Every Python object from malloc: the sanitizer then checks them like any other memory,
        // and sees the references held inside objects, which in the interpreter's own arenas it
        // could not (every object they alone hold would be reported as leaked).
        PyPreConfig preconfig;
        PyPreConfig_InitPythonConfig(&preconfig);
        preconfig.allocator = PYMEM_ALLOCATOR_MALLOC;
        if (const PyStatus status = Py_PreInitialize(&preconfig); PyStatus_Exception(status))
            Py_ExitStatusException(status);
#endif
        PyConfig config;
        PyConfig_InitPythonConfig(&config);
        // The host keeps its own signal handling and command line.
        config.install_signal_handlers = 0;
        config.parse_argv = 0;
        const PyStatus status = Py_InitializeFromConfig(&config);
        PyConfig_Clear(&config);
        if (PyStatus_Exception(status))
            Py_ExitStatusException(status);
        // The platform's module is made before any other thread can run Python: its making imports
        // modules, which lets go of the GIL, and a second thread must not find it half made.
        (void)PythonTypes::get();
        PythonTextCommandBridge::install();
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
    m_printTarget = new PrintTarget{&m_out};
    PyObject* capsule = PyCapsule_New(m_printTarget, "kx.PrintTarget", &releasePrintTarget);
    PyObject* write = capsule ? PyCFunction_New(&s_writePrinted, capsule) : nullptr;
    PyDict_SetItemString(m_globals, "_kx_write", write);
    Py_XDECREF(write);
    Py_XDECREF(capsule);
    PyObject* defined = PyRun_String(s_printDefinition, Py_file_input, m_globals, m_globals);
    Py_XDECREF(defined);
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
    static_cast<PrintTarget*>(m_printTarget)->out = nullptr;
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
    const std::string text(source);
    Result result;
    PyObject* value = nullptr;
    if (startToken == Py_single_input) {
        // A line that is an expression shows its value, as python's own prompt does.
        PyObject* code = Py_CompileString(text.c_str(), file.c_str(), Py_eval_input);
        if (code) {
            value = PyEval_EvalCode(code, m_globals, m_globals);
            PyObject* print = PyDict_GetItemString(m_globals, "print"); // borrowed
            if (value && value != Py_None && print) {
                PyObject* repr = PyObject_Repr(value);
                PyObject* printed = repr ? PyObject_CallOneArg(print, repr) : nullptr;
                Py_XDECREF(printed);
                Py_XDECREF(repr);
                if (!printed)
                    Py_CLEAR(value);
            }
            Py_DECREF(code);
        } else {
            PyErr_Clear();
            startToken = Py_file_input;
        }
    }
    if (startToken == Py_file_input) {
        PyObject* code = Py_CompileString(text.c_str(), file.c_str(), Py_file_input);
        value = code ? PyEval_EvalCode(code, m_globals, m_globals) : nullptr;
        Py_XDECREF(code);
    }
    if (!value) {
        bool failed = true;
        result.text = takeError(file, failed);
        result.ok = !failed;
    }
    Py_XDECREF(value);
    PyErr_Clear();
    return result;
}

} // namespace Kx
