#include "PythonTestSupport.h"

#include <python/PythonTypes.h>

#include <cmath>

namespace {

using KxTest::PythonTest;
using Kx::PythonTypes;

class PythonTypesTest : public PythonTest {};

TEST_F(PythonTypesTest, PointMadeWithPutXYZReadsBackAndOwnsOneReference)
{
    PyObject* point = PythonTypes::get().putXYZ(1, -2.5, 1e300);
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(Py_REFCNT(point), 1);
    EXPECT_EQ(text(PyObject_Type(point)), "<class 'TarvelBasicPythonTypes.Point3'>");
    double x = 0, y = 0, z = 0;
    ASSERT_TRUE(PythonTypes::get().getXYZ(point, x, y, z));
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, -2.5);
    EXPECT_EQ(z, 1e300);
    EXPECT_EQ(Py_REFCNT(point), 1);
    PyObject* repr = PyObject_Repr(point);
    EXPECT_EQ(text(repr), "TarvelBasicPythonTypes.Point3(1.0, -2.5, 1e+300)");
    Py_DECREF(repr);
    Py_DECREF(point);
}

TEST_F(PythonTypesTest, GetXYZReadsTuplesListsAndObjectsWithCoordinatesOnly)
{
    struct Case {
        const char* name;
        const char* expression;
        bool read;
    };
    const Case cases[] = {
        {"tuple", "(1, 2.5, -3)", true},
        {"list", "[1, 2.5, -3]", true},
        {"object with x, y, z", "type('P', (), {'x': 1, 'y': 2.5, 'z': -3})()", true},
        {"two items", "(1, 2)", false},
        {"four items", "[1, 2, 3, 4]", false},
        {"text items", "('1', '2', '3')", false},
        {"a string of three", "'123'", false},
        {"None", "None", false},
        {"dict", "{'x': 1, 'y': 2, 'z': 3}", false},
        {"missing z", "type('P', (), {'x': 1, 'y': 2})()", false},
        {"huge integer", "(10**400, 0, 0)", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PyObject* object = evaluate(c.expression);
        ASSERT_NE(object, nullptr);
        const Py_ssize_t references = Py_REFCNT(object);
        double x = 7, y = 7, z = 7;
        EXPECT_EQ(PythonTypes::get().getXYZ(object, x, y, z), c.read);
        if (c.read) {
            EXPECT_EQ(x, 1);
            EXPECT_EQ(y, 2.5);
            EXPECT_EQ(z, -3);
        } else {
            EXPECT_EQ(x + y + z, 21) << "outputs changed on failure";
        }
        EXPECT_EQ(PyErr_Occurred(), nullptr);
        // None's count moves with every object that refers to it, the exceptions cleared included.
        if (object != Py_None)
            EXPECT_EQ(Py_REFCNT(object), references);
        Py_DECREF(object);
    }
}

TEST_F(PythonTypesTest, PointsCompareByComponentsAndAreNotHashable)
{
    PyObject* a = PythonTypes::get().putXYZ(1, 2, 3);
    PyObject* b = PythonTypes::get().putXYZ(1, 2, 3);
    PyObject* c = PythonTypes::get().putXYZ(1, 2, 3.0000001);
    PyObject* tuple = Py_BuildValue("(ddd)", 1.0, 2.0, 3.0);
    EXPECT_EQ(PyObject_RichCompareBool(a, b, Py_EQ), 1);
    EXPECT_EQ(PyObject_RichCompareBool(a, c, Py_EQ), 0);
    EXPECT_EQ(PyObject_RichCompareBool(a, c, Py_NE), 1);
    EXPECT_EQ(PyObject_RichCompareBool(a, tuple, Py_EQ), 0);
    EXPECT_EQ(PyObject_Hash(a), -1);
    EXPECT_TRUE(PyErr_ExceptionMatches(PyExc_TypeError));
    PyErr_Clear();
    for (PyObject* o : {a, b, c, tuple})
        Py_DECREF(o);
}

TEST_F(PythonTypesTest, PutJSONMakesPointsOfCoordinateObjectsAtAnyDepth)
{
    PyObject* value = PythonTypes::get().putJSON(R"({"line":{"startPoint":{"x":1,"y":2,"z":3},"endPoint":{"x":0,"y":0,"z":0.5}},)"
                                                 R"("two":{"x":1,"y":2},"text":{"x":1,"y":2,"z":"3"},"flag":{"x":true,"y":0,"z":0}})");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(text(value), "{'line': {'startPoint': TarvelBasicPythonTypes.Point3(1.0, 2.0, 3.0), 'endPoint': "
                           "TarvelBasicPythonTypes.Point3(0.0, 0.0, 0.5)}, 'two': {'x': 1, 'y': 2}, 'text': {'x': 1, 'y': 2, 'z': '3'}, "
                           "'flag': {'x': True, 'y': 0, 'z': 0}}");
    EXPECT_EQ(Py_REFCNT(value), 1);
    Py_DECREF(value);

    for (const char* notJSON : {"", "{", "[1,]", "{'x':1}", "(1, 2, 3)"}) {
        SCOPED_TRACE(notJSON);
        EXPECT_EQ(PythonTypes::get().putJSON(notJSON), nullptr);
        EXPECT_EQ(PyErr_Occurred(), nullptr);
    }
}

TEST_F(PythonTypesTest, GetJSONTextWritesCompactJSONAndRefusesWhatHasNone)
{
    struct Case {
        const char* name;
        const char* expression;
        const char* json; // null: refused
    };
    const Case cases[] = {
        {"rows", "[[1, 0], [0, 1.5]]", "[[1,0],[0,1.5]]"},
        {"a str is its own JSON", "'{\"x\": 1}'", "{\"x\": 1}"},
        {"dict of a point", "{'p': __import__('TarvelBasicPythonTypes').Point3(1, 2, 3)}", R"({"p":{"x":1.0,"y":2.0,"z":3.0}})"},
        {"to_json", "type('V', (), {'to_json': lambda self: '{\"x\":1,\"y\":2,\"z\":3}'})()", R"({"x":1.0,"y":2.0,"z":3.0})"},
        {"NaN", "float('nan')", nullptr},
        {"infinity in a list", "[1, float('inf')]", nullptr},
        {"plain object", "object()", nullptr},
        {"to_json answering no JSON", "type('V', (), {'to_json': lambda self: 'nope'})()", nullptr},
        {"lone surrogate", "'\\udc80'", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PyObject* object = evaluate(c.expression);
        ASSERT_NE(object, nullptr);
        const Py_ssize_t references = Py_REFCNT(object);
        std::string json = "unchanged";
        EXPECT_EQ(PythonTypes::get().getJSONText(object, json), c.json != nullptr);
        EXPECT_EQ(json, c.json ? c.json : "unchanged");
        EXPECT_EQ(PyErr_Occurred(), nullptr);
        EXPECT_EQ(Py_REFCNT(object), references);
        Py_DECREF(object);
    }
}

TEST_F(PythonTypesTest, ModuleIsImportableByName)
{
    PyObject* module = PyImport_ImportModule("TarvelBasicPythonTypes");
    EXPECT_EQ(module, PythonTypes::get().module());
    Py_XDECREF(module);
    EXPECT_EQ(PyObject_IsSubclass(PythonTypes::get().textCommandError(), PyExc_RuntimeError), 1);
}

} // namespace
