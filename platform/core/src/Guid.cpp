#include "core/Guid.h"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <cctype>

namespace telvarin::platform::core {

std::string newGuid()
{
    // The generator draws from the operating system's entropy (getrandom) for all 122 random bits;
    // it is not thread-safe, hence one per thread.
    thread_local boost::uuids::random_generator generator;
    std::string text = boost::uuids::to_string(generator());
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

} // namespace telvarin::platform::core
