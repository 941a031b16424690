#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct zip;

// The document file's zip container over libzip. This is the one place where libzip's error codes
// become Kx::Exception (ZipArchive.cpp): reading errors as a corrupt or unreadable document,
// writing errors as a failed save.
namespace Kx {

// A zip container opened for reading. Every entry name is checked when it opens: names that are
// absolute, climb out of the container ("..", "."), use backslashes, drive letters or control
// characters, or occur twice are refused, whatever the entry is.
class ZipReader {
public:
    // Throws Kx::Exception when the file cannot be read or is not a sound zip container.
    explicit ZipReader(const std::filesystem::path& file);
    // Over bytes that must outlive the reader.
    explicit ZipReader(std::span<const std::uint8_t> bytes);
    ~ZipReader();
    ZipReader(const ZipReader&) = delete;
    ZipReader& operator=(const ZipReader&) = delete;

    // The whole entry, checked against its stored size and CRC. Throws Kx::Exception (corrupt)
    // when it is missing, larger than `maxSize`, shorter or longer than stored, or damaged.
    [[nodiscard]] std::vector<std::uint8_t> read(std::string_view name, std::uint64_t maxSize) const;

private:
    void indexEntries();

    zip* m_archive = nullptr;
    std::map<std::string, std::uint64_t> m_entries;
};

// A zip container written to a new file. Entries keep their bytes until commit writes them;
// a writer destroyed without a commit leaves no file behind.
class ZipWriter {
public:
    // Throws Kx::Exception when the file cannot be created.
    explicit ZipWriter(const std::filesystem::path& file);
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    // Every entry is deflated, at a level that costs a save little (segment streams shrink well).
    void add(const std::string& name, std::vector<std::uint8_t> bytes);
    // Writes the container; throws Kx::Exception when that fails (nothing is left behind then).
    void commit();

private:
    zip* m_archive = nullptr;
    std::deque<std::vector<std::uint8_t>> m_buffers;
};

} // namespace Kx
