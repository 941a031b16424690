#pragma once

#include <Types/Geometry/Color.h>

namespace Kx {

// How a document changes a library material where it uses it: a tint or vertex colour, and the
// scale and rotation of its textures. Instances are cached per tweak, so two equal tweaks of the
// same material share one instance.
struct MaterialTweak {
    enum EKind : int { eNone = 0, eTintColor = 1, eVertexColor = 2 };

    int kind = eNone;
    Color color;            // used when kind is eTintColor
    float scale = 1.0f;     // texture scale factor
    float rotation = 0.0f;  // texture rotation

    // The neutral tweak changes nothing and adds nothing to a cache key. Compared exactly: a tweak
    // that is almost neutral is still a different look.
    [[nodiscard]] bool isNeutral() const noexcept { return kind == eNone && scale == 1.0f && rotation == 0.0f; }
};

} // namespace Kx
