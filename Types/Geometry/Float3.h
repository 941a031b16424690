#pragma once

#include <Types/Geometry/FloatComponents.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A neutral triple of single-precision numbers: neither a position nor a displacement, so it has
// no arithmetic and no geometry counterpart.
class Float3 : public FloatXYZ<Float3> {
public:
    Float3() noexcept = default;
    Float3(float x, float y, float z) noexcept : FloatXYZ(x, y, z) {}

    // Ordered by the float sum (y + x) + z, in that order, not lexicographically; different triples
    // of equal sum are unordered. Stored sort orders rely on it.
    [[nodiscard]] bool operator<(const Float3& other) const noexcept;

private:
    friend struct ValueTraits<Float3>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Float3>;
extern template class FloatXY<Float3>;
} // namespace Kx
