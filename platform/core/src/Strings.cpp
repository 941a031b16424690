#include "core/Strings.h"

#include <cstdint>
#include <cstring>

namespace telvarin::platform::core {

namespace {

constexpr char32_t s_replacement = 0xFFFD;
constexpr std::uint64_t s_highBits = 0x8080808080808080ull;

// Length of the run of ASCII bytes at the start of `bytes`, tested eight at a time.
std::size_t asciiPrefix(const unsigned char* bytes, std::size_t size)
{
    std::size_t i = 0;
    for (; i + 8 <= size; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, bytes + i, sizeof word);
        if ((word & s_highBits) != 0) {
            break;
        }
    }
    while (i < size && bytes[i] < 0x80) {
        ++i;
    }
    return i;
}

void appendUTF8(std::string& out, char32_t cp)
{
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

// The well-formed byte sequences of Unicode's table 3-7: the lead byte fixes the length and the
// range allowed for the second byte (which excludes overlongs, surrogates and values past U+10FFFF).
struct LeadByte {
    unsigned length;
    unsigned char secondLow;
    unsigned char secondHigh;
};

LeadByte classify(unsigned char lead)
{
    if (lead >= 0xC2 && lead <= 0xDF) return {2, 0x80, 0xBF};
    if (lead == 0xE0) return {3, 0xA0, 0xBF};
    if (lead == 0xED) return {3, 0x80, 0x9F};
    if (lead >= 0xE1 && lead <= 0xEF) return {3, 0x80, 0xBF};
    if (lead == 0xF0) return {4, 0x90, 0xBF};
    if (lead >= 0xF1 && lead <= 0xF3) return {4, 0x80, 0xBF};
    if (lead == 0xF4) return {4, 0x80, 0x8F};
    return {0, 0, 0};
}

} // namespace

UTF8String toUTF8(std::wstring_view text)
{
    // Identifiers and most names are ASCII: their run is copied by index, one byte a character,
    // and only the rest goes through the encoder.
    UTF8String out(text.size(), '\0');
    std::size_t ascii = 0;
    while (ascii < text.size() && static_cast<std::uint32_t>(text[ascii]) < 0x80) {
        out[ascii] = static_cast<char>(text[ascii]);
        ++ascii;
    }
    out.resize(ascii);
    if (ascii == text.size()) {
        return out;
    }
    for (const wchar_t wide : text.substr(ascii)) {
        const auto cp = static_cast<std::uint32_t>(wide);
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if ((cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) {
            appendUTF8(out, s_replacement);
        } else {
            appendUTF8(out, static_cast<char32_t>(cp));
        }
    }
    return out;
}

WideString toWide(std::string_view utf8)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(utf8.data());
    const std::size_t size = utf8.size();
    WideString out;
    out.reserve(size);

    std::size_t i = 0;
    while (i < size) {
        const std::size_t ascii = asciiPrefix(bytes + i, size - i);
        out.append(bytes + i, bytes + i + ascii);
        i += ascii;
        if (i == size) {
            break;
        }

        const LeadByte lead = classify(bytes[i]);
        if (lead.length == 0) {
            out.push_back(static_cast<wchar_t>(s_replacement));
            ++i;
            continue;
        }
        char32_t cp = bytes[i] & (0x7F >> lead.length);
        std::size_t used = 1;
        for (; used < lead.length && i + used < size; ++used) {
            const unsigned char next = bytes[i + used];
            const bool inRange = used == 1 ? next >= lead.secondLow && next <= lead.secondHigh
                                           : next >= 0x80 && next <= 0xBF;
            if (!inRange) {
                break;
            }
            cp = (cp << 6) | (next & 0x3F);
        }
        // A truncated or broken sequence is replaced as a whole (its maximal subpart); the byte that
        // broke it starts the next sequence.
        out.push_back(static_cast<wchar_t>(used == lead.length ? cp : s_replacement));
        i += used;
    }
    return out;
}

} // namespace telvarin::platform::core
