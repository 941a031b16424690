#pragma once

#include <cstdint>

namespace Kx {

// What opening a document file may cost (docs/formats.md, "Limits"). A document is inflated into
// memory whole, so these bound the memory an open can take, whatever the file says: no real
// document comes near them, while a small hostile file (a "zip bomb") trips them before its entries
// are inflated. A file beyond any of them is refused as corrupt; a save that would write one is
// refused, so every document this build writes it can open again.
//
// The defaults are what the application uses; a host that previews documents from untrusted places
// may open them under tighter limits.
struct DocumentLimits {
    // Entries of the zip container. A document has a manifest, one stream per segment and one entry
    // per blob part: tens, at most thousands.
    static constexpr std::uint64_t s_maxEntries = 65536;
    // The inflated size of all entries together.
    static constexpr std::uint64_t s_maxTotalSize = std::uint64_t{2} << 30;
    // The inflated size of one segment stream or blob part, and of the manifest.
    static constexpr std::uint64_t s_maxPartSize = std::uint64_t{1} << 30;
    static constexpr std::uint64_t s_maxManifestSize = std::uint64_t{16} << 20;
    // Inflated bytes per stored byte of an entry larger than s_ratioFloor. Deflate reaches about
    // 1032:1, on runs of one byte or of one short pattern; the segment streams and parts of real
    // documents shrink 2 to 20 times, and a save stores an entry that would shrink more undeflated.
    static constexpr std::uint64_t s_maxCompressionRatio = 200;
    // Entries up to this size may shrink as much as they like: a small run of zeros is no threat.
    static constexpr std::uint64_t s_ratioFloor = std::uint64_t{1} << 20;

    std::uint64_t maxEntries = s_maxEntries;
    std::uint64_t maxTotalSize = s_maxTotalSize;
    std::uint64_t maxPartSize = s_maxPartSize;
    std::uint64_t maxManifestSize = s_maxManifestSize;
    std::uint64_t maxCompressionRatio = s_maxCompressionRatio;
    std::uint64_t ratioFloor = s_ratioFloor;
};

} // namespace Kx
