#pragma once

#include "Types/Online/OnlineLibraryIndex.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace Kx::Types {

struct PublishedOnlineLibrary {
    OnlineLibraryIndex index;
    std::uint64_t bytes = 0; // of every file written, the index included
};

// Publishes the presets of ordinary library files as an online library in `out` (docs/formats.md,
// "Online material library"): for each preset a library file holding it with what it connects
// and its images, its thumbnail and texture images as files of their own, and index.json, written
// last. The same input gives the same bytes. A preset's UUID is its "ExchangeGUID" when it has a
// usable one, else one derived from its library and material id. Throws Kx::Exception when a file
// cannot be read or written; files already in `out` that the index does not name are left alone.
// `progress` hears each material published (done, total).
PublishedOnlineLibrary PublishOnlineLibrary(const std::vector<std::filesystem::path>& libraryFiles,
    const std::filesystem::path& out, const std::function<void(std::size_t, std::size_t)>& progress = {});

} // namespace Kx::Types
