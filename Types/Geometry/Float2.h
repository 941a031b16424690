#pragma once

#include <Types/Geometry/FloatComponents.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A neutral pair of single-precision numbers: neither a position nor a displacement, so it has no
// arithmetic and no geometry counterpart.
class Float2 : public FloatXY<Float2> {
public:
    Float2() noexcept = default;
    Float2(float x, float y) noexcept : FloatXY(x, y) {}

    // Ordered by the float sum y + x, not lexicographically, like the library's other value types;
    // different pairs of equal sum are unordered. Stored sort orders rely on it.
    [[nodiscard]] bool operator<(const Float2& other) const noexcept;

private:
    friend struct ValueTraits<Float2>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Float2>;
extern template class FloatXY<Float2>;
} // namespace Kx
