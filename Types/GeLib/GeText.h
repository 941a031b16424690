#pragma once

// The compact text form of points, vectors and matrices: their coordinates grouped by
// Strings::groupStrings, e.g. "(0.10000000000000001, 2, -0)". Each coordinate is written with 17
// significant digits ("%.17g"), enough for every double to read back as itself; infinities and
// NaNs are written "inf" and "nan", with "-" when the sign bit is set.
//
// Items: x, y for 2d points and vectors; x, y, z in 3d; the 16 entries of a TmGeMatrix3d row by
// row; min x, min y, max x, max y of a BRect (read back as written, the empty rectangle included). The readers throw std::bad_cast when the text does not ungroup or has another number of
// items, and boost::bad_lexical_cast (which derives from std::bad_cast) when an item is not wholly
// a decimal number.

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace Kx {
class BRect;
}
class TmGeMatrix3d;
class TmGePoint2d;
class TmGePoint3d;
class TmGeVector2d;
class TmGeVector3d;

namespace Kx::Types {

[[nodiscard]] std::wstring Point2dToString(const TmGePoint2d& point);
[[nodiscard]] std::wstring Vector2dToString(const TmGeVector2d& vector);
[[nodiscard]] std::wstring Point3dToString(const TmGePoint3d& point);
[[nodiscard]] std::wstring Vector3dToString(const TmGeVector3d& vector);
[[nodiscard]] std::wstring Matrix3dToString(const TmGeMatrix3d& matrix);
[[nodiscard]] std::wstring BRectToString(const BRect& rect);

[[nodiscard]] TmGePoint2d StringToPoint2d(const std::wstring& text);
[[nodiscard]] TmGeVector2d StringToVector2d(const std::wstring& text);
[[nodiscard]] TmGePoint3d StringToPoint3d(const std::wstring& text);
[[nodiscard]] TmGeVector3d StringToVector3d(const std::wstring& text);
[[nodiscard]] TmGeMatrix3d StringToMatrix3d(const std::wstring& text);
// Built from the corners (item 0, item 1) and (item 2, item 3), each axis sorted: the empty
// rectangle's text reads back as the whole plane.
[[nodiscard]] BRect StringToBRect(const std::wstring& text);

// The building blocks, for every other text form made of doubles (rectangles, boxes, the numbers
// answered by text commands).

// One number with 17 significant digits, independent of the locale.
[[nodiscard]] std::wstring DoubleToString(double value);
// A decimal number, optionally signed, with optional fraction and exponent, or one of the
// spellings "inf", "infinity", "nan" in any case; the whole item must be the number, without
// blanks. Throws boost::bad_lexical_cast otherwise and for numbers beyond the range of double.
[[nodiscard]] double StringToDouble(const std::wstring& item);

[[nodiscard]] std::wstring DoublesToString(std::span<const double> values);
// Throws std::bad_cast unless the text ungroups into exactly `count` items, checked before any
// item is converted.
[[nodiscard]] std::vector<double> StringToDoubles(const std::wstring& text, std::size_t count);

} // namespace Kx::Types
