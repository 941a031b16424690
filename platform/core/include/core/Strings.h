#pragma once

#include <string>
#include <string_view>

namespace telvarin::platform::core {

// Text inside the platform is either wide (one wchar_t per code point: wchar_t is 32 bits on every
// platform we build for) or UTF-8. Conversions are lossless for valid text in both directions.
using WideString = std::wstring;
using UTF8String = std::string;

static_assert(sizeof(wchar_t) == 4, "WideString holds one code point per wchar_t");

// Code points that cannot be encoded (surrogates, values above U+10FFFF) become U+FFFD.
[[nodiscard]] UTF8String toUTF8(std::wstring_view text);

// Invalid UTF-8 decodes to one U+FFFD per maximal subpart of an ill-formed sequence, the
// replacement that Unicode recommends, so a decoder never swallows the valid bytes that follow.
[[nodiscard]] WideString toWide(std::string_view utf8);

} // namespace telvarin::platform::core
