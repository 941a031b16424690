#pragma once

// The value types of this library, each described once: name, identifier (the key under which
// documents find the type, compared exactly as written), persistence version, whether it has its
// own callback, and its fields with their keys in declaration order.

#include <Types/Geometry/Border4.h>
#include <Types/Geometry/Color.h>
#include <Types/Geometry/GlobalizedString.h>
#include <Types/Geometry/Point2.h>
#include <Types/Geometry/Rect2.h>
#include <Types/Geometry/Size2.h>
#include <Types/Geometry/ValueField.h>

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
