#pragma once

// The value types of this library, each described once: name, identifier (the key under which
// documents find the type, compared exactly as written), persistence version, whether it has its
// own callback, and its fields with their keys in declaration order.

#include <Types/GeLib/GeValueTraits.h>
#include <Types/Geometry/BBox.h>
#include <Types/Geometry/BRect.h>
#include <Types/Geometry/Border4.h>
#include <Types/Geometry/Color.h>
#include <Types/Geometry/Float2.h>
#include <Types/Geometry/Float3.h>
#include <Types/Geometry/GlobalizedString.h>
#include <Types/Geometry/Point2.h>
#include <Types/Geometry/Point2f.h>
#include <Types/Geometry/Point3f.h>
#include <Types/Geometry/Rect2.h>
#include <Types/Geometry/Size2.h>
#include <Types/Geometry/ValueField.h>
#include <Types/Geometry/Vector2f.h>
#include <Types/Geometry/Vector3f.h>

#include <string_view>
#include <tuple>

namespace Kx {

template <>
struct ValueTraits<Point2> {
    static constexpr std::string_view name = "Point2";
    static constexpr std::string_view id = "DAD4E9CC-C4E9-490D-AC17-B8AAD6D4DDF3";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = std::tuple{field(L"x", &Point2::x), field(L"y", &Point2::y)};
};

template <>
struct ValueTraits<Size2> {
    static constexpr std::string_view name = "Size2";
    static constexpr std::string_view id = "BEF412CF-9658-41F5-9234-9D0C8026950E";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = std::tuple{field(L"width", &Size2::width), field(L"height", &Size2::height)};
};

template <>
struct ValueTraits<Rect2> {
    static constexpr std::string_view name = "Rect2";
    static constexpr std::string_view id = "D9822DC7-1E50-4DE4-8498-BE31157778CA";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = std::tuple{field(L"left", &Rect2::left), field(L"top", &Rect2::top),
        field(L"right", &Rect2::right), field(L"bottom", &Rect2::bottom)};
};

// Margins in the order top, bottom, left, right: not the edge order of Rect2, on purpose.
template <>
struct ValueTraits<Border4> {
    static constexpr std::string_view name = "Border4";
    static constexpr std::string_view id = "13EA553C-6270-453F-A4E0-71BD9BC54B82";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = std::tuple{field(L"top", &Border4::top), field(L"bottom", &Border4::bottom),
        field(L"left", &Border4::left), field(L"right", &Border4::right)};
};

// The float tuples share their keys: "x", "y" (and "z").
template <class T>
inline constexpr auto xyFields = std::tuple{field(L"x", &T::m_x), field(L"y", &T::m_y)};
template <class T>
inline constexpr auto xyzFields = std::tuple{field(L"x", &T::m_x), field(L"y", &T::m_y), field(L"z", &T::m_z)};

template <>
struct ValueTraits<Float2> {
    static constexpr std::string_view name = "Float2";
    static constexpr std::string_view id = "7B35B8F9-E7F2-45A7-AA71-17347577B6DD";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = xyFields<Float2>;
};

template <>
struct ValueTraits<Float3> {
    static constexpr std::string_view name = "Float3";
    static constexpr std::string_view id = "09FB0ABD-73ED-4AA7-8FC8-1AD5B5D166E7";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = xyzFields<Float3>;
};

template <>
struct ValueTraits<Point2f> {
    static constexpr std::string_view name = "Point2f";
    static constexpr std::string_view id = "A36A836F-22F8-4487-94F3-30973DA9304C";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = xyFields<Point2f>;
};

template <>
struct ValueTraits<Point3f> {
    static constexpr std::string_view name = "Point3f";
    static constexpr std::string_view id = "A7A64738-6F24-4657-857D-5952E5916444";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = xyzFields<Point3f>;
};

template <>
struct ValueTraits<Vector2f> {
    static constexpr std::string_view name = "Vector2f";
    static constexpr std::string_view id = "2257B4CD-B1BE-4D78-943F-24254CE4DDC0";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = xyFields<Vector2f>;
};

template <>
struct ValueTraits<Vector3f> {
    static constexpr std::string_view name = "Vector3f";
    static constexpr std::string_view id = "91D19240-EBAA-4D56-97DA-7C5786D783DF";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = xyzFields<Vector3f>;
};

// Bounds are saved member by member: their two corners, each a geometry point value.
template <>
struct ValueTraits<BRect> {
    static constexpr std::string_view name = "BRect";
    static constexpr std::string_view id = "14DD80AD-43B6-4026-82BE-05DD0ADD808C";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = false;
    static constexpr auto fields = std::tuple{field(L"min", &BRect::m_min), field(L"max", &BRect::m_max)};
};

template <>
struct ValueTraits<BBox> {
    static constexpr std::string_view name = "BBox";
    static constexpr std::string_view id = "5A484388-9F39-4745-80CE-FACDA0029438";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = false;
    static constexpr auto fields = std::tuple{field(L"min", &BBox::m_min), field(L"max", &BBox::m_max)};
};

template <>
struct ValueTraits<Color> {
    static constexpr std::string_view name = "Color";
    static constexpr std::string_view id = "E9F2168E-EB4D-4547-9B47-449B294FA81C";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = std::tuple{field(L"red", &Color::m_red), field(L"green", &Color::m_green),
        field(L"blue", &Color::m_blue), field(L"alpha", &Color::m_alpha)};
};

// No callback: saved member by member. The identifier's lower-case "45b7" is part of the key.
template <>
struct ValueTraits<GlobalizedString> {
    static constexpr std::string_view name = "GlobalizedString";
    static constexpr std::string_view id = "1666C0B1-46B3-45b7-8AA1-C618F7CFA703";
    static constexpr unsigned version = 1;
    static constexpr bool hasCallback = false;
    static constexpr auto fields = std::tuple{field(L"value", &GlobalizedString::m_value),
        field(L"module", &GlobalizedString::m_module), field(L"id", &GlobalizedString::m_id),
        field(L"defaultValue", &GlobalizedString::m_defaultValue), field(L"globalized", &GlobalizedString::m_globalized),
        field(L"globalizedValueInitialize", &GlobalizedString::m_globalizedValueInitialize)};
};

} // namespace Kx
