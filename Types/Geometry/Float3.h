#pragma once

#include <Types/Geometry/ValueType.h>

#include <string>

namespace Kx {

template <class T>
struct ValueTraits;

// A neutral triple of single-precision numbers: neither a position nor a displacement, so it has
// no arithmetic and no geometry counterpart.
class Float3 : public ValueType<Float3> {
public:
    Float3() noexcept = default;
    Float3(float x, float y, float z) noexcept : m_x(x), m_y(y), m_z(z) {}

    [[nodiscard]] float x() const noexcept { return m_x; }
    [[nodiscard]] float y() const noexcept { return m_y; }
    [[nodiscard]] float z() const noexcept { return m_z; }
    void x(float value) noexcept { m_x = value; }
    void y(float value) noexcept { m_y = value; }
    void z(float value) noexcept { m_z = value; }
    void set(float x, float y, float z) noexcept;

    // Equal when every component differs by less than 1e-6, absolute. NaN and infinite components
    // never compare equal, not even to themselves.
    [[nodiscard]] bool operator==(const Float3& other) const noexcept;
    [[nodiscard]] bool operator!=(const Float3& other) const noexcept { return !(*this == other); }
    // Ordered by the float sum (y + x) + z, in that order, not lexicographically; different triples
    // of equal sum are unordered. Stored sort orders rely on it.
    [[nodiscard]] bool operator<(const Float3& other) const noexcept;

    // "(x: x, y: y, z: z)", each float with six significant digits.
    [[nodiscard]] std::wstring toString() const;

    float m_x = 0.0f;
    float m_y = 0.0f;
    float m_z = 0.0f;

private:
    friend struct ValueTraits<Float3>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<Float3>;
} // namespace Kx
