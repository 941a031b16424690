// Arbitrary bytes as the library history (MaterialLibraryHistory.xml): the reader reports what is
// wrong and answers what it found; it never throws, and a file of many elements costs linear time.

#include "FuzzScratch.h"

#include <Types/Utility/internal/MaterialLibraryHistoryFile.h>

#include <base/Assert.h>

#include <cstdint>
#include <fstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzScratch scratch("kx-history-fuzz");
    // Reports are the reader's answer to a bad file; a silent handler keeps the log small.
    static const Kx::AssertionHandler s_previous = Kx::setAssertionHandler([](const Kx::AssertionReport&) {});
    const std::filesystem::path file = scratch.path() / "MaterialLibraryHistory.xml";
    {
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    try {
        (void)Kx::Types::readMaterialLibraryHistory(file);
    } catch (...) {
        __builtin_trap();
    }
    return 0;
}
