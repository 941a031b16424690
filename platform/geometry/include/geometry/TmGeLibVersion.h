#pragma once

#include <compare>
#include <cstdint>

// The version of the kernel that fixes a field layout of TmGeFileIO. Layouts change only at the
// versions that have a constant here; any version in between reads and writes the layout of the
// constant below it (3.1 uses the 3.0 layout).
class TmGeLibVersion {
public:
    static const TmGeLibVersion kTmGeLibVersion3_0;
    static const TmGeLibVersion kTmGeLibVersion3_2;
    static const TmGeLibVersion kTmGeLibVersionCurrent;

    constexpr TmGeLibVersion() noexcept = default; // the current version
    constexpr TmGeLibVersion(std::uint16_t majorNumber, std::uint16_t minorNumber) noexcept
        : m_major(majorNumber), m_minor(minorNumber)
    {}

    [[nodiscard]] constexpr std::uint16_t majorVersion() const noexcept { return m_major; }
    [[nodiscard]] constexpr std::uint16_t minorVersion() const noexcept { return m_minor; }
    // From 3.0 up to the current version.
    [[nodiscard]] constexpr bool isSupported() const noexcept;

    constexpr auto operator<=>(const TmGeLibVersion&) const noexcept = default;

private:
    std::uint16_t m_major = 3;
    std::uint16_t m_minor = 2;
};

inline constexpr TmGeLibVersion TmGeLibVersion::kTmGeLibVersion3_0{3, 0};
inline constexpr TmGeLibVersion TmGeLibVersion::kTmGeLibVersion3_2{3, 2};
inline constexpr TmGeLibVersion TmGeLibVersion::kTmGeLibVersionCurrent{3, 2};

constexpr bool TmGeLibVersion::isSupported() const noexcept
{
    return *this >= kTmGeLibVersion3_0 && *this <= kTmGeLibVersionCurrent;
}
