#pragma once

// A plane as the JSON object {"pointOnPlane": point, "normal": vector}, both in point form.
// Writer and reader follow the rules of GeJSONCurves.h: null key for `node` itself, otherwise its
// member `key`. The reader needs both members; it makes the normal unit (within the kernel's
// global tolerance) before building the plane, so a normal (0, 0, 5) reads as (0, 0, 1), and a
// zero normal gives the XY plane, as the plane's constructor does. On false `out` is unchanged.

#include <base/JSONNode.h>

class TmGePlane;

namespace Kx::Types {

void PlaneToJSON(const TmGePlane& plane, JSONNode& node, const char* key);
[[nodiscard]] bool JSONToPlane(const JSONNode& node, TmGePlane& out, const char* key);

} // namespace Kx::Types
