#pragma once

#include <Types/GeLib/internal/GeCoordinates.h>
#include <Types/GeLib/internal/GeJSONObject.h>

#include <base/JSONNode.h>
#include <base/JSONRef.h>

#include <span>

namespace Kx::Types::GeJSON {

// {"x":…,"y":…} or {"x":…,"y":…,"z":…}, by the number of coordinates.
void writeCoordinates(std::span<const double> coordinates, JSONNode& node, const char* key);

// Reads "x", "y" (and "z") in that order and stops at the first that is missing or not a number;
// `coordinates` is written only when all were read.
[[nodiscard]] bool readCoordinates(JSONRef object, std::span<double> coordinates);

template <class T>
void writePoint(const T& value, JSONNode& node, const char* key)
{
    const auto coordinates = GeCoordinates::toArray(value);
    writeCoordinates(coordinates, node, key);
}

template <class T>
[[nodiscard]] bool readPoint(JSONRef object, T& out)
{
    GeCoordinates::Array<T> coordinates{};
    if (!readCoordinates(object, coordinates)) {
        return false;
    }
    out = GeCoordinates::fromArray<T>(coordinates);
    return true;
}

template <class T>
[[nodiscard]] bool readPointAt(const JSONNode& node, T& out, const char* key)
{
    const auto subject = subjectOf(node, key);
    return subject && readPoint(*subject, out);
}

} // namespace Kx::Types::GeJSON
