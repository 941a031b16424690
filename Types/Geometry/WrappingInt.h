#pragma once

#include <cstdint>

// The integer plane types compute in 32-bit two's complement and wrap on overflow, as screen
// coordinates always have. Signed overflow is undefined in C++, so every sum, difference, product
// and negation goes through unsigned arithmetic, whose wrap is defined, and converts back (the
// conversion is modular since C++20).
namespace Kx::wrapping {

[[nodiscard]] constexpr std::int32_t add(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

[[nodiscard]] constexpr std::int32_t sub(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

[[nodiscard]] constexpr std::int32_t mul(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

[[nodiscard]] constexpr std::int32_t neg(std::int32_t a) noexcept
{
    return static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(a));
}

static_assert(add(INT32_MAX, 1) == INT32_MIN);
static_assert(sub(INT32_MIN, 1) == INT32_MAX);
static_assert(neg(INT32_MIN) == INT32_MIN);
static_assert(mul(65536, 65536) == 0);

} // namespace Kx::wrapping
