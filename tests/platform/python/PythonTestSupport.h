#pragma once
// The embedded interpreter for a test: started once per program, the GIL held by the test's thread
// for the test's duration, and a check that no Python error is left pending.
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <python/PythonInterpreter.h>

#include <gtest/gtest.h>

#include <string>

namespace KxTest {

class PythonTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { Kx::PythonInterpreter::ensureStarted(); }
    void SetUp() override { m_gil = PyGILState_Ensure(); }
    void TearDown() override
    {
        EXPECT_EQ(PyErr_Occurred(), nullptr) << "a Python error was left pending";
        PyErr_Clear();
        PyGILState_Release(m_gil);
    }

    // The str() of an object, for comparisons.
    static std::string text(PyObject* object)
    {
        PyObject* str = PyObject_Str(object);
        std::string result = str ? PyUnicode_AsUTF8(str) : "<error>";
        Py_XDECREF(str);
        return result;
    }

    // The value of a Python expression (a new reference).
    static PyObject* evaluate(const char* expression)
    {
        PyObject* globals = PyDict_New();
        PyDict_SetItemString(globals, "__builtins__", PyEval_GetBuiltins());
        PyObject* result = PyRun_String(expression, Py_eval_input, globals, globals);
        Py_DECREF(globals);
        if (!result)
            PyErr_Print();
        return result;
    }

private:
    PyGILState_STATE m_gil{};
};

} // namespace KxTest
