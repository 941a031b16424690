#pragma once
// A convertor carries one kind of value between the Python objects of a script and the value's text
// form, for the text commands whose signatures name it by its short type code ("p3", "m", ...).
// Libraries make one process-wide convertor per type code from a start-up initialiser; it is
// registered while it lives.
//
// Every operation runs with the GIL held by the caller.
#include <python/PythonObject.h>

#include <string>
#include <string_view>
#include <vector>

namespace Kx {

class PythonConvertor {
public:
    explicit PythonConvertor(std::string typeCode);
    virtual ~PythonConvertor();
    PythonConvertor(const PythonConvertor&) = delete;
    PythonConvertor& operator=(const PythonConvertor&) = delete;

    [[nodiscard]] const std::string& typeCode() const noexcept { return m_typeCode; }

    // The value text of a Python object; empty when the object cannot be read as this value.
    [[nodiscard]] virtual std::wstring objectToText(PyObject* object) const = 0;
    // A new Python object (a new reference) for the value text; a Python string when `plainString`
    // asks for one. Throws what the value's text reader throws for malformed text.
    [[nodiscard]] virtual PyObject* textToObject(const std::wstring& text, bool plainString) const = 0;
    // The text a console shows for the value text.
    [[nodiscard]] virtual std::wstring textToDisplay(const std::wstring& text) const = 0;

    // The convertor registered under the type code; null when there is none.
    [[nodiscard]] static const PythonConvertor* find(std::string_view typeCode);
    [[nodiscard]] static std::vector<std::string> typeCodes();

private:
    std::string m_typeCode;
};

} // namespace Kx
