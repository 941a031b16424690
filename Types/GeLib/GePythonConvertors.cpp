#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <Types/GeLib/GePythonConvertors.h>

#include <Types/GeLib/GeJSONStrings.h>
#include <Types/GeLib/GeText.h>

#include <python/PythonTypes.h>

#include <core/Strings.h>

#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector3d.h>

namespace Kx {

using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

namespace {

constexpr wchar_t s_pointTypeName[] = L"TarvelBasicPythonTypes.Point3";

PyObject* pythonString(const std::wstring& text)
{
    return Py_BuildValue("s", toUTF8(text).c_str());
}

// The Point3 of three coordinates, or the str of their JSON when a plain string is asked for or
// no Point3 could be made.
template <class Value>
PyObject* xyzObject(const Value& value, bool plainString, std::wstring (*toJSON)(const Value&, const char*))
{
    if (!plainString)
        if (PyObject* object = PythonTypes::get().putXYZ(value.x, value.y, value.z))
            return object;
    return pythonString(toJSON(value, nullptr));
}

// One convertor of each code for the life of the process.
const P3PythonConvertor s_p3;
const V3PythonConvertor s_v3;
const MatrixPythonConvertor s_matrix;

} // namespace

P3PythonConvertor::P3PythonConvertor()
    : PythonConvertor("p3")
{
}

std::wstring P3PythonConvertor::objectToText(PyObject* object) const
{
    double x, y, z;
    if (!PythonTypes::get().getXYZ(object, x, y, z))
        return {};
    return Types::Point3dToString(TmGePoint3d(x, y, z));
}

PyObject* P3PythonConvertor::textToObject(const std::wstring& text, bool plainString) const
{
    return xyzObject(Types::StringToPoint3d(text), plainString, &Types::Point3dToJSONString);
}

std::wstring P3PythonConvertor::textToDisplay(const std::wstring& text) const
{
    return s_pointTypeName + text;
}

V3PythonConvertor::V3PythonConvertor()
    : PythonConvertor("V3")
{
}

std::wstring V3PythonConvertor::objectToText(PyObject* object) const
{
    double x, y, z;
    if (!PythonTypes::get().getXYZ(object, x, y, z))
        return {};
    return Types::Vector3dToString(TmGeVector3d(x, y, z));
}

PyObject* V3PythonConvertor::textToObject(const std::wstring& text, bool plainString) const
{
    return xyzObject(Types::StringToVector3d(text), plainString, &Types::Vector3dToJSONString);
}

std::wstring V3PythonConvertor::textToDisplay(const std::wstring& text) const
{
    return s_pointTypeName + text;
}

MatrixPythonConvertor::MatrixPythonConvertor()
    : PythonConvertor("m")
{
}

std::wstring MatrixPythonConvertor::objectToText(PyObject* object) const
{
    std::string json;
    if (!PythonTypes::get().getJSONText(object, json))
        return {};
    TmGeMatrix3d matrix; // identity
    if (!Types::JSONStringToMatrix3d(toWide(json), matrix, nullptr))
        return {};
    return Types::Matrix3dToString(matrix);
}

PyObject* MatrixPythonConvertor::textToObject(const std::wstring& text, bool plainString) const
{
    const std::wstring json = Types::Matrix3dToJSONString(Types::StringToMatrix3d(text), nullptr);
    if (!plainString)
        if (PyObject* object = PythonTypes::get().putJSON(toUTF8(json)))
            return object;
    return pythonString(json);
}

std::wstring MatrixPythonConvertor::textToDisplay(const std::wstring& text) const
{
    return Types::Matrix3dToJSONString(Types::StringToMatrix3d(text), nullptr);
}

std::vector<std::string> Types::GeometryPythonTypeCodes()
{
    return {s_p3.typeCode(), s_v3.typeCode(), s_matrix.typeCode()};
}

} // namespace Kx
