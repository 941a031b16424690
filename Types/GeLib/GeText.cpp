#include <Types/GeLib/GeText.h>

#include <Types/Geometry/BRect.h>

#include <Types/GeLib/internal/GeCoordinates.h>

#include <base/Strings.h>

#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePoint2d.h>
#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector2d.h>
#include <geometry/TmGeVector3d.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>
#include <typeinfo>

namespace Kx::Types {

namespace {

constexpr int s_significantDigits = 17;

[[noreturn]] void throwNotANumber() { throw boost::bad_lexical_cast(typeid(std::wstring), typeid(double)); }

template <class T>
std::wstring coordinatesToString(const T& value)
{
    const auto coordinates = GeCoordinates::toArray(value);
    return DoublesToString(coordinates);
}

template <class T>
T stringToCoordinates(const std::wstring& text)
{
    const std::vector<double> values = StringToDoubles(text, GeCoordinates::s_dimension<T>);
    GeCoordinates::Array<T> coordinates{};
    std::copy(values.begin(), values.end(), coordinates.begin());
    return GeCoordinates::fromArray<T>(coordinates);
}

} // namespace

// std::to_chars with a precision is "%.*g" without the locale's decimal point; it writes the
// non-finite values as inf, -inf, nan and -nan, the spellings of the text form.
std::wstring DoubleToString(double value)
{
    char buffer[32];
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general,
                                       s_significantDigits);
    return std::wstring(buffer, written.ptr);
}

// std::from_chars rather than a stream: it reads every double exactly (subnormals included) and
// never takes the global locale's decimal comma or digit grouping.
double StringToDouble(const std::wstring& item)
{
    std::string narrow;
    narrow.reserve(item.size());
    for (const wchar_t c : item) {
        if (c <= L' ' || c > L'~') {
            throwNotANumber();
        }
        narrow.push_back(static_cast<char>(c));
    }
    const char* first = narrow.data();
    const char* const last = first + narrow.size();
    // from_chars takes no '+'; one leading '+' before anything but another sign is allowed.
    if (first != last && *first == '+' && last - first > 1 && first[1] != '-' && first[1] != '+') {
        ++first;
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(first, last, value);
    if (error != std::errc() || end != last) {
        throwNotANumber();
    }
    return value;
}

std::wstring DoublesToString(std::span<const double> values)
{
    std::vector<std::wstring> items;
    items.reserve(values.size());
    for (const double value : values) {
        items.push_back(DoubleToString(value));
    }
    return Strings::groupStrings(items);
}

std::vector<double> StringToDoubles(const std::wstring& text, std::size_t count)
{
    std::vector<std::wstring> items;
    if (!Strings::ungroupStrings(text, items) || items.size() != count) {
        throw std::bad_cast();
    }
    std::vector<double> values;
    values.reserve(count);
    for (const std::wstring& item : items) {
        values.push_back(StringToDouble(item));
    }
    return values;
}

std::wstring Point2dToString(const TmGePoint2d& point) { return coordinatesToString(point); }
std::wstring Vector2dToString(const TmGeVector2d& vector) { return coordinatesToString(vector); }
std::wstring Point3dToString(const TmGePoint3d& point) { return coordinatesToString(point); }
std::wstring Vector3dToString(const TmGeVector3d& vector) { return coordinatesToString(vector); }

std::wstring Matrix3dToString(const TmGeMatrix3d& matrix)
{
    std::array<double, 16> entries{};
    for (std::size_t i = 0; i < entries.size(); ++i) {
        entries[i] = matrix.entry[i / 4][i % 4];
    }
    return DoublesToString(entries);
}

TmGePoint2d StringToPoint2d(const std::wstring& text) { return stringToCoordinates<TmGePoint2d>(text); }
TmGeVector2d StringToVector2d(const std::wstring& text) { return stringToCoordinates<TmGeVector2d>(text); }
TmGePoint3d StringToPoint3d(const std::wstring& text) { return stringToCoordinates<TmGePoint3d>(text); }
TmGeVector3d StringToVector3d(const std::wstring& text) { return stringToCoordinates<TmGeVector3d>(text); }

std::wstring BRectToString(const BRect& rect)
{
    return DoublesToString(std::array{rect.m_min.x, rect.m_min.y, rect.m_max.x, rect.m_max.y});
}

BRect StringToBRect(const std::wstring& text)
{
    const std::vector<double> values = StringToDoubles(text, 4);
    // Built from two corners, so each axis is sorted. The empty rectangle's text therefore reads
    // back as the whole plane (its sentinels swap), not as empty: callers that keep empty
    // rectangles as text test isEmpty() before writing.
    return BRect(TmGePoint2d(values[0], values[1]), TmGePoint2d(values[2], values[3]));
}

// Starts from the identity, as every matrix does, and takes the 16 items row by row.
TmGeMatrix3d StringToMatrix3d(const std::wstring& text)
{
    const std::vector<double> values = StringToDoubles(text, 16);
    TmGeMatrix3d matrix;
    for (std::size_t i = 0; i < values.size(); ++i) {
        matrix.entry[i / 4][i % 4] = values[i];
    }
    return matrix;
}

} // namespace Kx::Types
