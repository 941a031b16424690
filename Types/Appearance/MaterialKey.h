#pragma once

#include <Types/Appearance/MaterialTweak.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace Kx {

// The instance cache's key of a material: library identifier, material identifier, variant and
// the two version numbers joined, then "[" and a description of the tweak unless it is neutral.
// Every cache lookup builds one, so it is assembled in an inline buffer: a cache hit allocates
// nothing. Keys longer than the buffer (unusually long identifiers) move to the heap.
class MaterialKey {
public:
    MaterialKey(std::wstring_view libraryId, std::string_view utf8MaterialId, std::wstring_view variant,
        int majorVersion, int minorVersion, const MaterialTweak& tweak);
    MaterialKey(std::wstring_view libraryId, std::wstring_view materialId, std::wstring_view variant,
        int majorVersion, int minorVersion, const MaterialTweak& tweak);
    MaterialKey(const MaterialKey&) = delete;
    MaterialKey& operator=(const MaterialKey&) = delete;

    [[nodiscard]] std::wstring_view view() const noexcept;
    [[nodiscard]] std::wstring str() const { return std::wstring(view()); }

private:
    void append(std::wstring_view text);
    void append(wchar_t character);
    void appendUtf8(std::string_view text);
    void appendDecimal(int value);
    void appendRest(std::wstring_view variant, int majorVersion, int minorVersion, const MaterialTweak& tweak);
    void appendTweak(const MaterialTweak& tweak);

    std::array<wchar_t, 128> m_inline;
    std::size_t m_size = 0;
    std::wstring m_spill;
    bool m_spilled = false;
};

// Hashes keys by eight-byte words: keys share long library-identifier prefixes, and the standard
// byte-wise hash spends more time on them than the lookup it serves.
struct MaterialKeyHash {
    using is_transparent = void;
    [[nodiscard]] std::size_t operator()(std::wstring_view key) const noexcept;
};

} // namespace Kx
