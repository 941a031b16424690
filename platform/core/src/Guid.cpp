#include "core/Guid.h"

#include <cstdint>
#include <cstdio>
#include <random>

namespace telvarin::platform::core {

std::string newGuid()
{
    thread_local std::mt19937_64 generator{std::random_device{}()};
    const std::uint64_t high = generator();
    const std::uint64_t low = (generator() & 0x3FFFFFFFFFFFFFFFull) | 0x8000000000000000ull;
    char text[37];
    std::snprintf(text, sizeof text, "%08X-%04X-4%03X-%04X-%012llX", static_cast<unsigned>(high >> 32),
        static_cast<unsigned>((high >> 16) & 0xFFFF), static_cast<unsigned>(high & 0x0FFF),
        static_cast<unsigned>(low >> 48), static_cast<unsigned long long>(low & 0xFFFFFFFFFFFFull));
    return text;
}

} // namespace telvarin::platform::core
