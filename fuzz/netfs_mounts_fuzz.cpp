// Arbitrary input as a content URI and the mount table that resolves it: the first line is the URI,
// the rest is <content root>/libraries/netfs.mounts. A URI that parses must read back the same from
// the text MakeNetfsUri makes of it; a resolved file must lie inside the libraries folder, whatever
// the mount table says.

#include "FuzzScratch.h"

#include <assets/LibraryLocation.h>

#include <core/Strings.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace telvarin::platform::assets;

bool inside(const std::filesystem::path& file, const std::filesystem::path& folder)
{
    const std::filesystem::path relative = file.lexically_normal().lexically_relative(folder.lexically_normal());
    return !relative.empty() && *relative.begin() != ".." && !relative.is_absolute();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzScratch scratch("kx-mounts-fuzz");
    const std::filesystem::path& root = scratch.path();
    std::filesystem::create_directories(root / "libraries");
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::size_t newline = text.find('\n');
    const WideString uri = telvarin::platform::core::toWide(text.substr(0, newline));
    {
        std::ofstream mounts(root / "libraries" / "netfs.mounts", std::ios::binary | std::ios::trunc);
        if (newline != std::string::npos)
            mounts << text.substr(newline + 1);
    }

    if (const auto parsed = ParseNetfsUri(uri)) {
        const auto again = ParseNetfsUri(MakeNetfsUri(parsed->authority, parsed->path));
        if (!again || again->authority != parsed->authority || again->path != parsed->path)
            __builtin_trap();
    }
    for (const WideString& location : {uri, WideString(L"netfs://LOCAL:/slib/content/physical")}) {
        const auto file = ResolveNetfsUri(location, root);
        if (file && !inside(*file, root / "libraries"))
            __builtin_trap();
    }
    return 0;
}
