#pragma once
// The geometry library's Python convertors, registered under their type codes when
// libKxTypesPython10 is loaded:
//   "p3"  TmGePoint3d   <-> TarvelBasicPythonTypes.Point3 (PythonTypes::putXYZ / getXYZ)
//   "V3"  TmGeVector3d  <-> TarvelBasicPythonTypes.Point3, holding the vector's components
//   "m"   TmGeMatrix3d  <-> the Python value of its JSON, a list of four rows (putJSON / getJSONText)
// Their value texts are those of GeText.h. A text that asks for a plain string, or a value the
// platform cannot make an object of, comes back as a Python str of the value's compact JSON.
#include <python/PythonConvertor.h>

#include <string>
#include <vector>

namespace Kx {

class P3PythonConvertor final : public PythonConvertor {
public:
    P3PythonConvertor();
    [[nodiscard]] std::wstring objectToText(PyObject* object) const override;
    [[nodiscard]] PyObject* textToObject(const std::wstring& text, bool plainString) const override;
    [[nodiscard]] std::wstring textToDisplay(const std::wstring& text) const override;
};

class V3PythonConvertor final : public PythonConvertor {
public:
    V3PythonConvertor();
    [[nodiscard]] std::wstring objectToText(PyObject* object) const override;
    [[nodiscard]] PyObject* textToObject(const std::wstring& text, bool plainString) const override;
    [[nodiscard]] std::wstring textToDisplay(const std::wstring& text) const override;
};

class MatrixPythonConvertor final : public PythonConvertor {
public:
    MatrixPythonConvertor();
    [[nodiscard]] std::wstring objectToText(PyObject* object) const override;
    [[nodiscard]] PyObject* textToObject(const std::wstring& text, bool plainString) const override;
    [[nodiscard]] std::wstring textToDisplay(const std::wstring& text) const override;
};

namespace Types {
// The type codes of the convertors above, registered. A host of Python calls it when it starts the
// interpreter: the convertors register from static initialisers, and the call keeps the linker
// from leaving out a library that nothing else refers to.
[[nodiscard]] std::vector<std::string> GeometryPythonTypeCodes();
} // namespace Types

} // namespace Kx
