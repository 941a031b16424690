// Point3d, Vector3d and Matrix3d: the geometry kernel's values with their operators, tolerant
// equality, and the JSON and text forms the text commands use.
#include "Bindings.h"

#include <Types/GeLib/GeJSONStrings.h>
#include <Types/GeLib/GeText.h>

#include <core/Strings.h>

#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector3d.h>

#include <pybind11/operators.h>
#include <pybind11/stl.h>

#include <array>
#include <stdexcept>
#include <typeinfo>

namespace py = pybind11;
using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

namespace KxPython {

namespace {

using Rows = std::array<std::array<double, 4>, 4>;

// A JSON reader of GeJSONStrings.h as a constructor from text: ValueError for text it refuses.
template <class Value>
Value fromJSON(const std::string& text, bool (*read)(const std::wstring&, Value&, const char*), const char* kind)
{
    Value value;
    if (!read(toWide(text), value, nullptr))
        throw py::value_error(std::string("not the JSON of a ") + kind + ": " + text.substr(0, 200));
    return value;
}

// A text reader of GeText.h: its bad_cast (and bad_lexical_cast) as ValueError.
template <class Value>
Value fromText(const std::string& text, Value (*read)(const std::wstring&), const char* kind)
{
    try {
        return read(toWide(text));
    } catch (const std::bad_cast&) {
        throw py::value_error(std::string("not the text of a ") + kind + ": " + text.substr(0, 200));
    }
}

// The x, y, z of any object that has them (a TarvelBasicPythonTypes.Point3 a command answered, ...).
std::array<double, 3> xyzOf(const py::object& object)
{
    return {object.attr("x").cast<double>(), object.attr("y").cast<double>(), object.attr("z").cast<double>()};
}

std::string number(double value)
{
    return py::repr(py::float_(value)).cast<std::string>();
}

template <class Class, class Value>
void bindXYZ(Class& type, const char* name)
{
    type.def(py::init<>())
        .def(py::init<double, double, double>(), py::arg("x"), py::arg("y"), py::arg("z"))
        .def(py::init([](const py::object& object) {
            const auto [x, y, z] = xyzOf(object);
            return Value(x, y, z);
        }),
            py::arg("xyz"), "from any object with x, y and z (a Point3 answered by a text command)")
        .def_readwrite("x", &Value::x)
        .def_readwrite("y", &Value::y)
        .def_readwrite("z", &Value::z)
        .def("__repr__", [name](const Value& v) { return std::string(name) + "(" + number(v.x) + ", " + number(v.y) + ", " + number(v.z) + ")"; })
        .def("__iter__", [](const Value& v) { return py::iter(py::make_tuple(v.x, v.y, v.z)); })
        .def("is_equal_to", [](const Value& a, const Value& b) { return a.isEqualTo(b); }, py::arg("other"),
            "equal within the kernel's global tolerance (what == answers)")
        .def(py::self == py::self)
        .def(py::self != py::self);
    type.attr("__hash__") = py::none(); // mutable, and equality is tolerant
}

} // namespace

void bindGeometry(py::module_& module)
{
    py::class_<TmGeVector3d> vector(module, "Vector3d", "A displacement: components x, y, z");
    py::class_<TmGePoint3d> point(module, "Point3d", "A point: coordinates x, y, z");
    bindXYZ<decltype(point), TmGePoint3d>(point, "Point3d");
    bindXYZ<decltype(vector), TmGeVector3d>(vector, "Vector3d");

    point.def(py::self + TmGeVector3d())
        .def(py::self - TmGeVector3d())
        .def(py::self - py::self)
        .def("distance_to", &TmGePoint3d::distanceTo, py::arg("other"))
        .def("to_json", [](const TmGePoint3d& p) { return toUTF8(Kx::Types::Point3dToJSONString(p, nullptr)); })
        .def("to_text", [](const TmGePoint3d& p) { return toUTF8(Kx::Types::Point3dToString(p)); })
        .def_static("from_json", [](const std::string& text) { return fromJSON(text, &Kx::Types::JSONStringToPoint3d, "point"); })
        .def_static("from_text", [](const std::string& text) { return fromText(text, &Kx::Types::StringToPoint3d, "point"); });

    vector.def(py::self + py::self)
        .def(py::self - py::self)
        .def(-py::self)
        .def(py::self * double())
        .def(double() * py::self)
        .def(py::self / double())
        .def("dot", &TmGeVector3d::dotProduct, py::arg("other"))
        .def("cross", &TmGeVector3d::crossProduct, py::arg("other"))
        .def("length", &TmGeVector3d::length)
        .def("to_json", [](const TmGeVector3d& v) { return toUTF8(Kx::Types::Vector3dToJSONString(v, nullptr)); })
        .def("to_text", [](const TmGeVector3d& v) { return toUTF8(Kx::Types::Vector3dToString(v)); })
        .def_static("from_json", [](const std::string& text) { return fromJSON(text, &Kx::Types::JSONStringToVector3d, "vector"); })
        .def_static("from_text", [](const std::string& text) { return fromText(text, &Kx::Types::StringToVector3d, "vector"); });

    py::class_<TmGeMatrix3d> matrix(module, "Matrix3d", "A 4x4 transformation matrix, row-major; the identity when made empty");
    matrix.def(py::init<>())
        .def(py::init([](const Rows& rows) {
            TmGeMatrix3d m;
            for (unsigned r = 0; r < 4; ++r)
                for (unsigned c = 0; c < 4; ++c)
                    m(r, c) = rows[r][c];
            return m;
        }),
            py::arg("rows"), "from four rows of four numbers (as a matrix command answers)")
        .def_property_readonly("rows", [](const TmGeMatrix3d& m) {
            Rows rows;
            for (unsigned r = 0; r < 4; ++r)
                for (unsigned c = 0; c < 4; ++c)
                    rows[r][c] = m(r, c);
            return rows;
        })
        .def("__getitem__", [](const TmGeMatrix3d& m, std::pair<unsigned, unsigned> at) {
            if (at.first > 3 || at.second > 3)
                throw py::index_error("a matrix entry is m[row, column] with both in 0..3");
            return m(at.first, at.second);
        })
        .def("__mul__", [](const TmGeMatrix3d& a, const TmGeMatrix3d& b) { return a * b; }, py::is_operator())
        .def("__mul__", [](const TmGeMatrix3d& m, const TmGePoint3d& p) { return m * p; }, py::is_operator())
        .def("__mul__", [](const TmGeMatrix3d& m, const TmGeVector3d& v) { return m * v; }, py::is_operator())
        .def("inverse", [](const TmGeMatrix3d& m) {
            TmGeMatrix3d result;
            if (m.inverse(result) != Tmk::ErrorStatus::eOk)
                throw py::value_error("the matrix is singular");
            return result;
        })
        .def("is_equal_to", [](const TmGeMatrix3d& a, const TmGeMatrix3d& b) { return a.isEqualTo(b); }, py::arg("other"))
        .def(py::self == py::self)
        .def(py::self != py::self)
        .def("__repr__", [](const TmGeMatrix3d& m) { return "Matrix3d(" + toUTF8(Kx::Types::Matrix3dToJSONString(m, nullptr)) + ")"; })
        .def("to_json", [](const TmGeMatrix3d& m) { return toUTF8(Kx::Types::Matrix3dToJSONString(m, nullptr)); })
        .def("to_text", [](const TmGeMatrix3d& m) { return toUTF8(Kx::Types::Matrix3dToString(m)); })
        .def_static("from_json", [](const std::string& text) { return fromJSON(text, &Kx::Types::JSONStringToMatrix3d, "matrix"); })
        .def_static("from_text", [](const std::string& text) { return fromText(text, &Kx::Types::StringToMatrix3d, "matrix"); })
        .def_static("translation", [](const TmGeVector3d& v) { return TmGeMatrix3d().setToTranslation(v); }, py::arg("vector"))
        .def_static("rotation",
            [](double angle, const TmGeVector3d& axis, const TmGePoint3d& center) { return TmGeMatrix3d().setToRotation(angle, axis, center); },
            py::arg("angle"), py::arg("axis"), py::arg("center") = TmGePoint3d(0, 0, 0), "angle in radians, about axis through center");
    matrix.attr("__hash__") = py::none();
}

} // namespace KxPython
