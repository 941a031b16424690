#pragma once

// The JSON object form of a geometry entity, described once per type as a table of members
// (Shape<T>::members) from which one writer and one reader are made. The members are listed in
// the order they are written, which is also the order of the arguments of the entity's
// constructor: a reader gathers their values and builds the entity from them, or calls
// Shape<T>::build when the constructor alone is not the rule.

#include <Types/GeLib/internal/GeJSONCoordinates.h>
#include <Types/GeLib/internal/GeJSONObject.h>

#include <base/JSONNode.h>
#include <base/JSONRef.h>

#include <cstddef>
#include <functional>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Kx::Types::GeJSON {

// One member: its key, how the writer gets it from the entity, and whether a reader needs it. An
// optional member that is missing or of the wrong kind leaves `fallback` in place.
template <class Get, class Value>
struct Member {
    using ValueType = Value;

    const char* key;
    Get get;
    bool required;
    Value fallback;
};

// Makes the members of entity type T; the value type of each member is what its getter returns.
template <class T>
struct Members {
    template <class Get>
    using ValueOf = std::remove_cvref_t<std::invoke_result_t<Get, const T&>>;

    template <class Get>
    [[nodiscard]] static constexpr Member<Get, ValueOf<Get>> required(const char* key, Get get)
    {
        return {key, get, true, ValueOf<Get>{}};
    }

    template <class Get>
    [[nodiscard]] static constexpr Member<Get, ValueOf<Get>> optional(const char* key, Get get,
                                                                     ValueOf<Get> fallback)
    {
        return {key, get, false, fallback};
    }
};

// Specialised for each entity type that has a JSON object form.
template <class T>
struct Shape;

template <class T>
concept Coordinates = requires(const T& value) {
    value.x;
    value.y;
};

inline void writeMember(JSONNode& object, const char* key, double value) { object[key] = value; }
inline void writeMember(JSONNode& object, const char* key, bool value) { object[key] = value; }
template <Coordinates T>
void writeMember(JSONNode& object, const char* key, const T& value)
{
    writePoint(value, object, key);
}

// Each leaves `out` unchanged when it answers false, which is what keeps an optional default.
[[nodiscard]] inline bool readMember(JSONRef value, double& out) { return value.get(out); }
[[nodiscard]] inline bool readMember(JSONRef value, bool& out) { return value.get(out); }
template <Coordinates T>
[[nodiscard]] bool readMember(JSONRef value, T& out)
{
    return readPoint(value, out);
}

template <class T>
void writeShape(const T& entity, JSONNode& node, const char* key)
{
    writeObject(node, key, [&](JSONNode& object) {
        std::apply([&](const auto&... member) { (writeMember(object, member.key, std::invoke(member.get, entity)), ...); },
                   Shape<T>::members);
    });
}

template <class T>
[[nodiscard]] bool readShape(JSONRef object, T& out)
{
    constexpr const auto& members = Shape<T>::members;
    constexpr std::size_t count = std::tuple_size_v<std::remove_cvref_t<decltype(members)>>;

    const bool requiredPresent = std::apply(
        [&](const auto&... member) { return ((!member.required || object[member.key].exists()) && ...); }, members);
    if (!requiredPresent) {
        return false;
    }
    auto values = std::apply([](const auto&... member) { return std::tuple{member.fallback...}; }, members);
    const bool requiredRead = [&]<std::size_t... I>(std::index_sequence<I...>) {
        return ((readMember(object[std::get<I>(members).key], std::get<I>(values)) || !std::get<I>(members).required)
                && ...);
    }(std::make_index_sequence<count>{});
    if (!requiredRead) {
        return false;
    }
    if constexpr (requires { &Shape<T>::build; }) {
        out = std::apply(Shape<T>::build, values);
    } else {
        out = std::make_from_tuple<T>(values);
    }
    return true;
}

template <class T>
[[nodiscard]] bool readShapeAt(const JSONNode& node, T& out, const char* key)
{
    const auto subject = subjectOf(node, key);
    return subject && readShape(*subject, out);
}

} // namespace Kx::Types::GeJSON
