#define PY_SSIZE_T_CLEAN
#include <Python.h>
#include <structmember.h>

#include <python/PythonTypes.h>

#include <cstddef>

namespace Kx {

namespace {

struct Point3Object {
    PyObject_HEAD
    double x;
    double y;
    double z;
};

PyObject* point3New(PyTypeObject* type, PyObject* args, PyObject* keywords)
{
    static const char* names[] = {"x", "y", "z", nullptr};
    double x = 0, y = 0, z = 0;
    if (!PyArg_ParseTupleAndKeywords(args, keywords, "|ddd:Point3", const_cast<char**>(names), &x, &y, &z))
        return nullptr;
    auto* self = reinterpret_cast<Point3Object*>(type->tp_alloc(type, 0));
    if (self) {
        self->x = x;
        self->y = y;
        self->z = z;
    }
    return reinterpret_cast<PyObject*>(self);
}

void point3Dealloc(PyObject* self)
{
    // An instance of a heap type holds a reference to its type.
    PyTypeObject* type = Py_TYPE(self);
    type->tp_free(self);
    Py_DECREF(type);
}

PyObject* floatRepr(double value)
{
    char* text = PyOS_double_to_string(value, 'r', 0, Py_DTSF_ADD_DOT_0, nullptr);
    if (!text)
        return nullptr;
    PyObject* result = PyUnicode_FromString(text);
    PyMem_Free(text);
    return result;
}

PyObject* point3Repr(PyObject* object)
{
    const auto* self = reinterpret_cast<Point3Object*>(object);
    PyObject* x = floatRepr(self->x);
    PyObject* y = floatRepr(self->y);
    PyObject* z = floatRepr(self->z);
    PyObject* result = x && y && z ? PyUnicode_FromFormat("TarvelBasicPythonTypes.Point3(%U, %U, %U)", x, y, z) : nullptr;
    Py_XDECREF(x);
    Py_XDECREF(y);
    Py_XDECREF(z);
    return result;
}

// Equal when the components are; the tolerant comparison of geometry is the text commands' business.
PyObject* point3Compare(PyObject* left, PyObject* right, int op)
{
    PyObject* type = PythonTypes::get().point3Type();
    if ((op != Py_EQ && op != Py_NE) || !PyObject_TypeCheck(right, reinterpret_cast<PyTypeObject*>(type)))
        Py_RETURN_NOTIMPLEMENTED;
    const auto* a = reinterpret_cast<Point3Object*>(left);
    const auto* b = reinterpret_cast<Point3Object*>(right);
    const bool equal = a->x == b->x && a->y == b->y && a->z == b->z;
    return PyBool_FromLong(equal == (op == Py_EQ));
}

PyMemberDef s_point3Members[] = {
    {"x", T_DOUBLE, offsetof(Point3Object, x), 0, "x coordinate"},
    {"y", T_DOUBLE, offsetof(Point3Object, y), 0, "y coordinate"},
    {"z", T_DOUBLE, offsetof(Point3Object, z), 0, "z coordinate"},
    {nullptr, 0, 0, 0, nullptr},
};

PyType_Slot s_point3Slots[] = {
    {Py_tp_doc, const_cast<char*>("Point3(x=0.0, y=0.0, z=0.0): a point or vector of the text commands")},
    {Py_tp_new, reinterpret_cast<void*>(&point3New)},
    {Py_tp_dealloc, reinterpret_cast<void*>(&point3Dealloc)},
    {Py_tp_repr, reinterpret_cast<void*>(&point3Repr)},
    {Py_tp_richcompare, reinterpret_cast<void*>(&point3Compare)},
    // Mutable, so not hashable.
    {Py_tp_hash, reinterpret_cast<void*>(&PyObject_HashNotImplemented)},
    {Py_tp_members, s_point3Members},
    {0, nullptr},
};

PyType_Spec s_point3Spec = {
    "TarvelBasicPythonTypes.Point3", sizeof(Point3Object), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, s_point3Slots,
};

bool isPoint3(PyObject* object)
{
    return PyObject_TypeCheck(object, reinterpret_cast<PyTypeObject*>(PythonTypes::get().point3Type()));
}

// json.loads' object_hook: {"x":..,"y":..,"z":..} becomes a Point3, any other object stays a dict.
PyObject* pointFromJSONObject(PyObject*, PyObject* dict)
{
    if (PyDict_Check(dict) && PyDict_Size(dict) == 3) {
        PyObject* x = PyDict_GetItemString(dict, "x");
        PyObject* y = PyDict_GetItemString(dict, "y");
        PyObject* z = PyDict_GetItemString(dict, "z");
        auto isReal = [](PyObject* o) { return o && (PyFloat_Check(o) || PyLong_Check(o)) && !PyBool_Check(o); };
        if (isReal(x) && isReal(y) && isReal(z)) {
            const double cx = PyFloat_AsDouble(x), cy = PyFloat_AsDouble(y), cz = PyFloat_AsDouble(z);
            if (!PyErr_Occurred())
                return PyObject_CallFunction(PythonTypes::get().point3Type(), "ddd", cx, cy, cz);
            PyErr_Clear(); // an integer beyond double: left as it is
        }
    }
    Py_INCREF(dict);
    return dict;
}

// json.dumps' default: what a value that JSON does not know is written as.
PyObject* jsonValueOf(PyObject*, PyObject* object)
{
    if (isPoint3(object)) {
        const auto* p = reinterpret_cast<Point3Object*>(object);
        return Py_BuildValue("{s:d,s:d,s:d}", "x", p->x, "y", p->y, "z", p->z);
    }
    if (PyObject_HasAttrString(object, "to_json")) {
        PyObject* text = PyObject_CallMethod(object, "to_json", nullptr);
        if (!text)
            return nullptr;
        PyObject* value = PythonTypes::get().putJSON(PyUnicode_Check(text) ? PyUnicode_AsUTF8(text) : "");
        Py_DECREF(text);
        if (value)
            return value;
    }
    return PyErr_Format(PyExc_TypeError, "an object of type %s has no JSON form", Py_TYPE(object)->tp_name);
}

PyMethodDef s_objectHook = {"_pointFromJSONObject", &pointFromJSONObject, METH_O, nullptr};
PyMethodDef s_default = {"_jsonValueOf", &jsonValueOf, METH_O, nullptr};

PyModuleDef s_moduleDef = {
    PyModuleDef_HEAD_INIT, "TarvelBasicPythonTypes",
    "The platform's Python value types: Point3, and the errors of the text commands.", -1,
    nullptr, nullptr, nullptr, nullptr, nullptr,
};

// functools.partial(function, **{keyword: value}), a new reference.
PyObject* bindKeyword(PyObject* module, const char* function, const char* keyword, PyObject* value)
{
    PyObject* partial = nullptr;
    PyObject* functools = PyImport_ImportModule("functools");
    PyObject* callable = PyObject_GetAttrString(module, function);
    if (functools && callable && value) {
        PyObject* partialType = PyObject_GetAttrString(functools, "partial");
        PyObject* args = Py_BuildValue("(O)", callable);
        PyObject* keywords = Py_BuildValue("{s:O}", keyword, value);
        if (partialType && args && keywords)
            partial = PyObject_Call(partialType, args, keywords);
        Py_XDECREF(keywords);
        Py_XDECREF(args);
        Py_XDECREF(partialType);
    }
    Py_XDECREF(callable);
    Py_XDECREF(functools);
    return partial;
}

[[noreturn]] void failToStart()
{
    PyErr_Print();
    Py_FatalError("TarvelBasicPythonTypes could not be made");
}

} // namespace

PythonTypes& PythonTypes::get()
{
    // Made with the GIL held before a second thread can run Python: by PythonInterpreter's start,
    // or by the import of kxtypes (the making imports json, which may hand the GIL to another
    // thread, and that one must not wait here for it while holding the GIL).
    static PythonTypes* s_types = new PythonTypes();
    return *s_types;
}

PythonTypes::PythonTypes()
{
    m_module = PyModule_Create(&s_moduleDef);
    if (!m_module)
        failToStart();
    m_point3Type = PyType_FromModuleAndSpec(m_module, &s_point3Spec, nullptr);
    m_textCommandError = PyErr_NewExceptionWithDoc("TarvelBasicPythonTypes.TextCommandError",
        "A text command answered a failure; the message is the command's.", PyExc_RuntimeError, nullptr);
    if (!m_point3Type || !m_textCommandError || PyModule_AddObjectRef(m_module, "Point3", m_point3Type) < 0
        || PyModule_AddObjectRef(m_module, "TextCommandError", m_textCommandError) < 0)
        failToStart();

    PyObject* json = PyImport_ImportModule("json");
    PyObject* hook = PyCFunction_New(&s_objectHook, nullptr);
    PyObject* fallback = PyCFunction_New(&s_default, nullptr);
    if (json) {
        m_loads = bindKeyword(json, "loads", "object_hook", hook);
        m_dumps = bindKeyword(json, "dumps", "default", fallback);
    }
    Py_XDECREF(hook);
    Py_XDECREF(fallback);
    Py_XDECREF(json);
    if (!m_loads || !m_dumps || PyDict_SetItemString(PyImport_GetModuleDict(), "TarvelBasicPythonTypes", m_module) < 0)
        failToStart();
}

PyObject* PythonTypes::putXYZ(double x, double y, double z) const
{
    PyObject* point = PyObject_CallFunction(m_point3Type, "ddd", x, y, z);
    if (!point)
        PyErr_Clear();
    return point;
}

bool PythonTypes::getXYZ(PyObject* object, double& x, double& y, double& z) const
{
    if (!object)
        return false;
    if (isPoint3(object)) {
        const auto* p = reinterpret_cast<Point3Object*>(object);
        x = p->x;
        y = p->y;
        z = p->z;
        return true;
    }
    // Strings are sequences too, and numbers' texts are not coordinates.
    if (PyUnicode_Check(object) || PyBytes_Check(object))
        return false;
    double read[3];
    bool ok = true;
    const bool sequence = (PyTuple_Check(object) || PyList_Check(object));
    if (sequence && PySequence_Size(object) != 3)
        return false;
    static const char* names[] = {"x", "y", "z"};
    for (int i = 0; i < 3 && ok; ++i) {
        PyObject* item = sequence ? PySequence_GetItem(object, i) : PyObject_GetAttrString(object, names[i]);
        ok = item && (PyFloat_Check(item) || PyLong_Check(item));
        if (ok)
            read[i] = PyFloat_AsDouble(item);
        Py_XDECREF(item);
        ok = ok && !PyErr_Occurred();
    }
    PyErr_Clear();
    if (!ok)
        return false;
    x = read[0];
    y = read[1];
    z = read[2];
    return true;
}

PyObject* PythonTypes::putJSON(const std::string& utf8JSON) const
{
    PyObject* value = PyObject_CallFunction(m_loads, "s#", utf8JSON.data(), static_cast<Py_ssize_t>(utf8JSON.size()));
    if (!value)
        PyErr_Clear();
    return value;
}

bool PythonTypes::getJSONText(PyObject* object, std::string& utf8JSON) const
{
    if (!object)
        return false;
    if (PyUnicode_Check(object)) {
        Py_ssize_t size = 0;
        const char* text = PyUnicode_AsUTF8AndSize(object, &size);
        if (!text) {
            PyErr_Clear(); // lone surrogates have no UTF-8
            return false;
        }
        utf8JSON.assign(text, static_cast<std::size_t>(size));
        return true;
    }
    PyObject* keywords = Py_BuildValue("{s:O,s:(ss)}", "allow_nan", Py_False, "separators", ",", ":");
    PyObject* args = Py_BuildValue("(O)", object);
    PyObject* text = keywords && args ? PyObject_Call(m_dumps, args, keywords) : nullptr;
    Py_XDECREF(args);
    Py_XDECREF(keywords);
    const char* written = text ? PyUnicode_AsUTF8(text) : nullptr;
    if (written)
        utf8JSON = written;
    Py_XDECREF(text);
    PyErr_Clear();
    return written != nullptr;
}

} // namespace Kx
