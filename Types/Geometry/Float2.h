#pragma once

#include <Types/Geometry/ValueType.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A neutral pair of single-precision numbers: neither a position nor a displacement, so it has no
// arithmetic and no geometry counterpart.
class Float2 : public ValueType<Float2> {
public:
    Float2() noexcept = default;
    Float2(float x, float y) noexcept : m_x(x), m_y(y) {}

    [[nodiscard]] float x() const noexcept { return m_x; }
    [[nodiscard]] float y() const noexcept { return m_y; }
    void x(float value) noexcept { m_x = value; }
    void y(float value) noexcept { m_y = value; }
    void set(float x, float y) noexcept;

    // Equal when every component differs by less than 1e-6, absolute. NaN and infinite components
    // never compare equal, not even to themselves.
    [[nodiscard]] bool operator==(const Float2& other) const noexcept;
    [[nodiscard]] bool operator!=(const Float2& other) const noexcept { return !(*this == other); }
    // Ordered by the float sum y + x, not lexicographically, like the library's other value types;
    // different pairs of equal sum are unordered. Stored sort orders rely on it.
    [[nodiscard]] bool operator<(const Float2& other) const noexcept;

    // "(x, y)", each float with six significant digits, e.g. "(0.1, -2.5e+07)".
    [[nodiscard]] std::wstring toString() const;

    float m_x = 0.0f;
    float m_y = 0.0f;

private:
    friend struct ValueTraits<Float2>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Float2>;
} // namespace Kx
