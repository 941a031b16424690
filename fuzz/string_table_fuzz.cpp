// Arbitrary bytes as a string table (<content root>/strings/<language>/<module>.xml): the table of
// the user's language and the en-US fallback are both these bytes, and texts are looked up by the
// ids the input names and by a few others. A table that is not one is ignored (logged); a lookup
// always answers a text (the table's, which is never empty, or the fallback) and never crashes.

#include "FuzzScratch.h"

#include <base/BootstrapOptionGroup.h>
#include <base/StringTable.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

std::filesystem::path s_root;

// The values of the first few id="…" attributes in the input.
std::vector<std::string> idsNamedIn(const std::string& text)
{
    std::vector<std::string> ids{"UnitsMeters", "a", ""};
    const std::string key = "id=\"";
    for (std::size_t at = text.find(key); at != std::string::npos && ids.size() < 16; at = text.find(key, at + 1)) {
        const std::size_t start = at + key.size();
        const std::size_t end = text.find('"', start);
        if (end == std::string::npos)
            break;
        ids.push_back(text.substr(start, end - start));
    }
    return ids;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // Content and user files in a folder of the fuzzer's own: nothing of the machine's is read or written.
    static const FuzzScratch scratch("kx-strings-fuzz");
    s_root = scratch.path();
    ::setenv("KX_CONTENT_DIR", s_root.c_str(), 1);
    ::setenv("KX_USER_DIR", (s_root / "user").c_str(), 1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const std::string& language : {Kx::BootstrapOptionGroup::get().userLanguage(), std::string("en-US")}) {
        const std::filesystem::path folder = s_root / "strings" / language;
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "Fuzz.xml", std::ios::binary | std::ios::trunc) << text;
    }
    Kx::StringTable::reload();
    for (const std::string& id : idsNamedIn(text)) {
        // The table's text (never empty: empty entries do not count) or the caller's fallback.
        if (Kx::StringTable::getLocalizedString("Fuzz", id, "fallback").empty())
            __builtin_trap();
    }
    return 0;
}
