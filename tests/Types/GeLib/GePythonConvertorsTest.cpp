// The geometry convertors in the embedded interpreter, with the GIL held by the test.
#include "platform/python/PythonTestSupport.h"

#include <Types/GeLib/GeJSONStrings.h>
#include <Types/GeLib/GePythonConvertors.h>
#include <Types/GeLib/GeText.h>

#include <core/Strings.h>
#include <geometry/TmGeMatrix3d.h>

#include <typeinfo>

namespace {

using KxTest::PythonTest;
using Kx::PythonConvertor;

class GePythonConvertorsTest : public PythonTest {
protected:
    static const PythonConvertor& convertor(const char* code)
    {
        const PythonConvertor* found = PythonConvertor::find(code);
        EXPECT_NE(found, nullptr) << code;
        return *found;
    }
};

TEST_F(GePythonConvertorsTest, RegisteredUnderTheirCodes)
{
    EXPECT_EQ(Kx::Types::GeometryPythonTypeCodes(), (std::vector<std::string>{"p3", "V3", "m"}));
    for (const char* code : {"p3", "V3", "m"})
        EXPECT_EQ(convertor(code).typeCode(), code);
    EXPECT_EQ(PythonConvertor::find("P3"), nullptr);
}

TEST_F(GePythonConvertorsTest, PointsAndVectorsReadFromObjectsWithCoordinates)
{
    for (const char* code : {"p3", "V3"}) {
        SCOPED_TRACE(code);
        PyObject* point = evaluate("__import__('TarvelBasicPythonTypes').Point3(1, 0.1, -2)");
        ASSERT_NE(point, nullptr);
        EXPECT_EQ(convertor(code).objectToText(point), L"(1, 0.10000000000000001, -2)");
        EXPECT_EQ(Py_REFCNT(point), 1);
        Py_DECREF(point);
        for (const char* unreadable : {"'(1, 2, 3)'", "{'x': 1, 'y': 2, 'z': 3}", "(1, 2)", "[[1, 0], [0, 1]]"}) {
            SCOPED_TRACE(unreadable);
            PyObject* object = evaluate(unreadable);
            EXPECT_EQ(convertor(code).objectToText(object), L"");
            EXPECT_EQ(PyErr_Occurred(), nullptr);
            Py_DECREF(object);
        }
    }
}

TEST_F(GePythonConvertorsTest, PointTextBecomesAPoint3OrItsJSONString)
{
    for (const char* code : {"p3", "V3"}) {
        SCOPED_TRACE(code);
        PyObject* point = convertor(code).textToObject(L"(1, 2.5, -0)", false);
        ASSERT_NE(point, nullptr);
        EXPECT_EQ(text(point), "TarvelBasicPythonTypes.Point3(1.0, 2.5, -0.0)");
        EXPECT_EQ(Py_REFCNT(point), 1);
        EXPECT_EQ(convertor(code).objectToText(point), L"(1, 2.5, -0)");
        Py_DECREF(point);

        PyObject* plain = convertor(code).textToObject(L"(1, 2.5, -0)", true);
        ASSERT_NE(plain, nullptr);
        EXPECT_TRUE(PyUnicode_CheckExact(plain));
        EXPECT_EQ(text(plain), R"({"x":1,"y":2.5,"z":-0.0})");
        Py_DECREF(plain);
        EXPECT_EQ(convertor(code).textToDisplay(L"(1, 2, 3)"), L"TarvelBasicPythonTypes.Point3(1, 2, 3)");
    }
}

TEST_F(GePythonConvertorsTest, MalformedTextThrowsTheTextReadersExceptions)
{
    for (const char* code : {"p3", "V3", "m"}) {
        for (const wchar_t* malformed : {L"", L"(1, 2)", L"(a, b, c)", L"1, 2, 3", L"(1, 2, 3"}) {
            SCOPED_TRACE(std::string(code) + " " + telvarin::platform::core::toUTF8(malformed));
            EXPECT_THROW((void)convertor(code).textToObject(malformed, false), std::bad_cast);
            EXPECT_EQ(PyErr_Occurred(), nullptr);
        }
    }
    EXPECT_THROW((void)convertor("m").textToDisplay(L"(1, 2, 3)"), std::bad_cast);
}

TEST_F(GePythonConvertorsTest, MatrixRowsMatrixTextAndItsJSON)
{
    const TmGeMatrix3d rotation = TmGeMatrix3d::rotation(0.5, TmGeVector3d(0, 0, 1), TmGePoint3d(1, 2, 3));
    const std::wstring text = Kx::Types::Matrix3dToString(rotation);
    const std::wstring json = Kx::Types::Matrix3dToJSONString(rotation, nullptr);

    PyObject* rows = convertor("m").textToObject(text, false);
    ASSERT_NE(rows, nullptr);
    EXPECT_TRUE(PyList_Check(rows));
    EXPECT_EQ(PyList_Size(rows), 4);
    EXPECT_EQ(Py_REFCNT(rows), 1);
    EXPECT_EQ(convertor("m").objectToText(rows), text);
    EXPECT_EQ(Py_REFCNT(rows), 1);
    Py_DECREF(rows);

    PyObject* plain = convertor("m").textToObject(text, true);
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(telvarin::platform::core::toWide(PyUnicode_AsUTF8(plain)), json);
    EXPECT_EQ(convertor("m").objectToText(plain), text) << "a str of the matrix's JSON reads as the matrix";
    Py_DECREF(plain);
    EXPECT_EQ(convertor("m").textToDisplay(text), json);
}

TEST_F(GePythonConvertorsTest, MatrixOfAnythingButFourByFourIsEmpty)
{
    for (const char* notAMatrix : {"[[1, 0], [0, 1]]", "[[1, 0, 0, 0]] * 3", "[[1, 0, 0, 0]] * 5", "[[1, 0, 0, 'a']] * 4",
             "'[[1,0,0,0],[0,1,0,0],[0,0,1,0]'", "object()", "float('nan')", "__import__('TarvelBasicPythonTypes').Point3()"}) {
        SCOPED_TRACE(notAMatrix);
        PyObject* object = evaluate(notAMatrix);
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(convertor("m").objectToText(object), L"");
        EXPECT_EQ(PyErr_Occurred(), nullptr);
        Py_DECREF(object);
    }
}

} // namespace
