#include "Types/Appearance/MaterialKey.h"

#include <core/Strings.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <cwchar>

namespace Kx {

MaterialKey::MaterialKey(std::wstring_view libraryId, std::string_view utf8MaterialId, std::wstring_view variant,
    int majorVersion, int minorVersion, const MaterialTweak& tweak)
{
    append(libraryId);
    appendUtf8(utf8MaterialId);
    appendRest(variant, majorVersion, minorVersion, tweak);
}

MaterialKey::MaterialKey(std::wstring_view libraryId, std::wstring_view materialId, std::wstring_view variant,
    int majorVersion, int minorVersion, const MaterialTweak& tweak)
{
    append(libraryId);
    append(materialId);
    appendRest(variant, majorVersion, minorVersion, tweak);
}

std::wstring_view MaterialKey::view() const noexcept
{
    return m_spilled ? std::wstring_view(m_spill) : std::wstring_view(m_inline.data(), m_size);
}

void MaterialKey::append(std::wstring_view text)
{
    if (!m_spilled && m_size + text.size() <= m_inline.size()) {
        std::copy(text.begin(), text.end(), m_inline.begin() + static_cast<std::ptrdiff_t>(m_size));
        m_size += text.size();
        return;
    }
    if (!m_spilled) {
        m_spill.assign(m_inline.data(), m_size);
        m_spilled = true;
    }
    m_spill += text;
}

void MaterialKey::append(wchar_t character)
{
    append(std::wstring_view(&character, 1));
}

void MaterialKey::appendUtf8(std::string_view text)
{
    // Identifiers are ASCII as a rule: widen them in place, and convert properly only when they
    // are not.
    if (!m_spilled && m_size + text.size() <= m_inline.size()) {
        wchar_t* out = m_inline.data() + m_size;
        unsigned char seen = 0;
        for (char c : text) {
            seen |= static_cast<unsigned char>(c);
            *out++ = static_cast<wchar_t>(c);
        }
        if (seen < 0x80) {
            m_size += text.size();
            return;
        }
    }
    append(telvarin::platform::core::toWide(text));
}

void MaterialKey::appendDecimal(int value)
{
    std::array<char, 12> digits{};
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    appendUtf8(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
}

void MaterialKey::appendRest(std::wstring_view variant, int majorVersion, int minorVersion, const MaterialTweak& tweak)
{
    append(variant);
    appendDecimal(majorVersion);
    appendDecimal(minorVersion);
    appendTweak(tweak);
}

void MaterialKey::appendTweak(const MaterialTweak& tweak)
{
    if (tweak.isNeutral()) {
        return;
    }
    // The printf forms of "%1$2x%2$2x%3$2x%4$2x", "x%1%" and "@%1%" as Boost.Format writes them,
    // formatted into the stack like the rest of the key.
    std::array<wchar_t, 64> text{};
    const auto appendFormatted = [&](const wchar_t* format, auto... values) {
        const int written = std::swprintf(text.data(), text.size(), format, values...);
        append(std::wstring_view(text.data(), written > 0 ? static_cast<std::size_t>(written) : 0));
    };
    append(L'[');
    if (tweak.kind == MaterialTweak::eVertexColor) {
        append(L"VertexColor");
    } else if (tweak.kind == MaterialTweak::eTintColor) {
        appendFormatted(L"%2x%2x%2x%2x", static_cast<unsigned>(tweak.color.redAsInt()),
            static_cast<unsigned>(tweak.color.greenAsInt()), static_cast<unsigned>(tweak.color.blueAsInt()),
            static_cast<unsigned>(tweak.color.alphaAsInt()));
    }
    if (tweak.scale != 1.0f) {
        appendFormatted(L"x%g", static_cast<double>(tweak.scale));
    }
    if (tweak.rotation != 0.0f) {
        appendFormatted(L"@%g", static_cast<double>(tweak.rotation));
    }
}

namespace {

// Folds `count` bytes, a multiple of eight, into `hash`.
std::uint64_t mix(std::uint64_t hash, const unsigned char* bytes, std::size_t count)
{
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15ULL;
    for (std::size_t offset = 0; offset < count; offset += sizeof(std::uint64_t)) {
        std::uint64_t word;
        std::memcpy(&word, bytes + offset, sizeof(word));
        hash = (hash ^ word) * multiplier;
        hash ^= hash >> 29;
    }
    return hash;
}

} // namespace

std::size_t MaterialKeyHash::operator()(std::wstring_view key) const noexcept
{
    // The head tells libraries apart; the tail holds the material identifier, the versions and the
    // tweak. Keys equal in both but different in the middle only share a bucket.
    constexpr std::size_t headBytes = 16;
    constexpr std::size_t tailBytes = 64;
    const auto* bytes = reinterpret_cast<const unsigned char*>(key.data());
    const std::size_t size = key.size() * sizeof(wchar_t);
    std::uint64_t hash = size * 0xC2B2AE3D27D4EB4FULL;
    if (size <= headBytes + tailBytes) {
        const std::size_t whole = size / sizeof(std::uint64_t) * sizeof(std::uint64_t);
        hash = mix(hash, bytes, whole);
        std::uint64_t rest = 0;
        std::memcpy(&rest, bytes + whole, size - whole);
        hash = mix(hash, reinterpret_cast<const unsigned char*>(&rest), sizeof(rest));
    } else {
        hash = mix(hash, bytes, headBytes);
        hash = mix(hash, bytes + size - tailBytes, tailBytes);
    }
    return static_cast<std::size_t>(hash ^ (hash >> 32));
}

} // namespace Kx
