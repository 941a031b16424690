#pragma once

#include <datamodel/DocumentLimits.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct zip;

// The document file's zip container over libzip. This is the one place where libzip's error codes
// become Kx::Exception (ZipArchive.cpp): reading errors as a corrupt or unreadable document,
// writing errors as a failed save.
namespace Kx {

// A zip container opened for reading. Every entry is checked when it opens, before any is
// inflated: names that are absolute, climb out of the container ("..", "."), use backslashes,
// drive letters or control characters, or occur twice are refused, whatever the entry is; so are
// more entries than the limits allow (counted from the container's end record, before libzip lists
// them), stated sizes that add up beyond the total, and an entry that claims to shrink more than
// the compression ratio allows.
class ZipReader {
public:
    // Throws Kx::Exception when the file cannot be read or is not a sound zip container.
    ZipReader(const std::filesystem::path& file, const DocumentLimits& limits);
    // Over bytes that must outlive the reader.
    ZipReader(std::span<const std::uint8_t> bytes, const DocumentLimits& limits);
    ~ZipReader();
    ZipReader(const ZipReader&) = delete;
    ZipReader& operator=(const ZipReader&) = delete;

    // The whole entry, checked against its stored size and CRC. Inflated in chunks: memory grows
    // with the bytes that arrive, never ahead of them by more than a chunk, and reading stops at the
    // first byte beyond the stated size or beyond the total the limits allow for all reads of this
    // container. Throws Kx::Exception (corrupt) when the entry is missing, larger than `maxSize`,
    // shorter or longer than stated, or damaged.
    [[nodiscard]] std::vector<std::uint8_t> read(std::string_view name, std::uint64_t maxSize) const;

private:
    void indexEntries();

    zip* m_archive = nullptr;
    DocumentLimits m_limits;
    std::map<std::string, std::uint64_t> m_entries;
    // Inflated by every read so far; reads are checked against the total as they go.
    mutable std::uint64_t m_inflated = 0;
};

// A zip container written to a new file. Entries keep their bytes until commit writes them;
// a writer that did not commit leaves no file behind.
class ZipWriter {
public:
    // Throws Kx::Exception when the file cannot be created.
    explicit ZipWriter(const std::filesystem::path& file, const DocumentLimits& limits = {});
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    // Every entry is deflated, at a level that costs a save little (segment streams shrink well),
    // except one that would shrink beyond the limits' compression ratio: that one is stored as it
    // is, so a reader never takes it for a zip bomb. Throws Kx::Exception (save failed) when the
    // entry would take the container beyond the entry count, part size or total size a reader
    // accepts, or the entry beyond `maxSize`.
    void add(const std::string& name, std::vector<std::uint8_t> bytes, std::uint64_t maxSize);
    // Writes the container; throws Kx::Exception when that fails (nothing is left behind then).
    void commit();

private:
    void write(const std::set<std::string>& stored);
    [[nodiscard]] std::set<std::string> entriesBeyondRatio() const;

    std::filesystem::path m_file;
    DocumentLimits m_limits;
    std::vector<std::pair<std::string, std::vector<std::uint8_t>>> m_entries;
    std::uint64_t m_total = 0;
    bool m_written = false;
    bool m_committed = false;
};

} // namespace Kx
