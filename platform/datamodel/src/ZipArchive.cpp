#include "internal/ZipArchive.h"

#include "internal/DocumentErrors.h"

#include <zip.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>

namespace Kx {

namespace {

// The deflate level of every entry: the fastest. Segment streams are repetitive and shrink well
// at any level, and a save should cost little more than writing the bytes.
constexpr int kDeflateLevel = 1;
// Entries are stamped 2000-01-01 00:00 (DOS time): saving the same document twice gives the same bytes.
constexpr zip_uint16_t kDosDate = ((2000 - 1980) << 9) | (1 << 5) | 1;
constexpr zip_uint16_t kDosTime = 0;

enum class EZipUse { eOpening, eReading, eWriting };

// The one translation of libzip's errors.
[[noreturn]] void throwZipError(int code, int systemCode, const std::string& what, EZipUse use)
{
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    // zip_error_init_with_code keeps no system error; the text of a file error names only the code.
    std::string detail = what + ": " + zip_error_strerror(&error);
    zip_error_fini(&error);
    if (systemCode != 0)
        detail += " (system error " + std::to_string(systemCode) + ")";
    if (use == EZipUse::eWriting)
        throw DocumentErrors::saveFailed(std::move(detail));
    const bool unreadable = code == ZIP_ER_OPEN || code == ZIP_ER_NOENT || (code == ZIP_ER_READ && use == EZipUse::eOpening);
    if (unreadable)
        throw DocumentErrors::cannotOpen(std::move(detail));
    throw DocumentErrors::corrupt(std::move(detail));
}

[[noreturn]] void throwZipError(zip_error_t* error, const std::string& what, EZipUse use)
{
    throwZipError(zip_error_code_zip(error), zip_error_code_system(error), what, use);
}

// A relative name that stays inside the container: levels of printable characters other than
// '\' and ':', none empty, "." or "..".
bool isSafeEntryName(std::string_view name)
{
    if (name.empty() || name.front() == '/')
        return false;
    if (std::any_of(name.begin(), name.end(), [](char c) {
            return static_cast<unsigned char>(c) < 0x20 || c == 0x7F || c == '\\' || c == ':';
        }))
        return false;
    std::size_t start = 0;
    while (start < name.size()) {
        const std::size_t slash = std::min(name.find('/', start), name.size());
        const std::string_view level = name.substr(start, slash - start);
        if (level.empty() || level == "." || level == "..")
            return false;
        start = slash + 1;
    }
    return true;
}

// The end record of a zip container and, for containers of many entries, its zip64 form.
constexpr std::uint32_t kEndSignature = 0x06054b50;
constexpr std::uint32_t kZip64LocatorSignature = 0x07064b50;
constexpr std::uint32_t kZip64EndSignature = 0x06064b50;
constexpr std::size_t kEndSize = 22;
constexpr std::size_t kZip64LocatorSize = 20;
constexpr std::size_t kZip64EndSize = 56;
// The end record sits in the last 22 bytes, after at most a 64 KiB comment.
constexpr std::size_t kEndSearch = kEndSize + 0xFFFF + kZip64LocatorSize;

// Entries are inflated this much at a time; an entry's buffer is reserved up to its stated size,
// but never more than kTrustedReserve before the bytes arrive. The stated size is bounded by the
// compression ratio already, and a reservation is address space: pages are taken as bytes arrive.
// Reserving the whole of a large segment saves copying it as the buffer grows.
constexpr std::size_t kReadChunk = std::size_t{1} << 20;
constexpr std::uint64_t kTrustedReserve = std::uint64_t{256} << 20;

std::uint64_t littleEndian(const std::uint8_t* bytes, unsigned width)
{
    std::uint64_t value = 0;
    for (unsigned k = width; k-- > 0;)
        value = (value << 8) | bytes[k];
    return value;
}

// Reads `length` bytes at `offset` of the container; false when they are not there.
using ReadAt = std::function<bool(std::uint64_t offset, std::size_t length, std::uint8_t* out)>;

// The number of entries the container's end record states, found the way a zip reader finds it:
// the last end signature with room for its record. libzip builds a directory entry for each one
// it lists, so a hostile count must be refused before libzip sees it. Empty when there is no end
// record to read: libzip then says what is wrong.
std::optional<std::uint64_t> statedEntryCount(std::uint64_t size, const ReadAt& readAt)
{
    if (size < kEndSize)
        return std::nullopt;
    const std::uint64_t tailStart = size > kEndSearch ? size - kEndSearch : 0;
    std::vector<std::uint8_t> tail(static_cast<std::size_t>(size - tailStart));
    if (!readAt(tailStart, tail.size(), tail.data()))
        return std::nullopt;
    for (std::size_t at = tail.size() - kEndSize + 1; at-- > 0;) {
        if (littleEndian(&tail[at], 4) != kEndSignature)
            continue;
        std::uint64_t count = std::max(littleEndian(&tail[at + 8], 2), littleEndian(&tail[at + 10], 2));
        // A zip64 locator right before the end record points at the record with the real count.
        if (at >= kZip64LocatorSize && littleEndian(&tail[at - kZip64LocatorSize], 4) == kZip64LocatorSignature) {
            std::uint8_t record[kZip64EndSize];
            const std::uint64_t offset = littleEndian(&tail[at - kZip64LocatorSize + 8], 8);
            if (size >= kZip64EndSize && offset <= size - kZip64EndSize && readAt(offset, sizeof record, record)
                && littleEndian(record, 4) == kZip64EndSignature)
                count = std::max({count, littleEndian(record + 24, 8), littleEndian(record + 32, 8)});
        }
        return count;
    }
    return std::nullopt;
}

void checkStatedEntryCount(std::uint64_t size, const ReadAt& readAt, const DocumentLimits& limits)
{
    const std::optional<std::uint64_t> count = statedEntryCount(size, readAt);
    if (count && *count > limits.maxEntries)
        throw DocumentErrors::corrupt("the container states " + std::to_string(*count) + " entries, more than "
            + std::to_string(limits.maxEntries) + " a document may have");
}

// An entry that inflates to more than the ratio allows from what it occupies in the container.
bool beyondRatio(std::uint64_t size, std::uint64_t compressed, const DocumentLimits& limits)
{
    if (size <= limits.ratioFloor)
        return false;
    // Divide rather than multiply: the stated sizes are hostile and the product may overflow.
    return compressed == 0 || (size - 1) / compressed >= limits.maxCompressionRatio;
}

} // namespace

ZipReader::ZipReader(const std::filesystem::path& file, const DocumentLimits& limits)
    : m_limits(limits)
{
    std::error_code sizeError;
    const std::uintmax_t size = std::filesystem::file_size(file, sizeError);
    if (!sizeError) {
        std::ifstream in(file, std::ios::binary);
        checkStatedEntryCount(size, [&](std::uint64_t offset, std::size_t length, std::uint8_t* out) {
            in.seekg(static_cast<std::streamoff>(offset));
            return static_cast<bool>(in.read(reinterpret_cast<char*>(out), static_cast<std::streamsize>(length)));
        }, m_limits);
    }
    int code = 0;
    m_archive = zip_open(file.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &code);
    if (m_archive == nullptr)
        throwZipError(code, 0, file.string(), EZipUse::eOpening);
    indexEntries();
}

ZipReader::ZipReader(std::span<const std::uint8_t> bytes, const DocumentLimits& limits)
    : m_limits(limits)
{
    checkStatedEntryCount(bytes.size(), [&](std::uint64_t offset, std::size_t length, std::uint8_t* out) {
        if (offset > bytes.size() || length > bytes.size() - offset)
            return false;
        std::copy_n(bytes.data() + offset, length, out);
        return true;
    }, m_limits);
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
    if (source != nullptr)
        m_archive = zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error);
    if (m_archive == nullptr) {
        if (source != nullptr)
            zip_source_free(source);
        const int code = zip_error_code_zip(&error);
        zip_error_fini(&error);
        throwZipError(code, 0, "document bytes", EZipUse::eReading);
    }
    zip_error_fini(&error);
    indexEntries();
}

ZipReader::~ZipReader()
{
    if (m_archive != nullptr)
        zip_discard(m_archive);
}

void ZipReader::indexEntries()
{
    // The archive is released by the destructor, which does not run when a constructor throws.
    std::unique_ptr<zip, decltype(&zip_discard)> guard(m_archive, &zip_discard);
    const zip_int64_t count = zip_get_num_entries(m_archive, 0);
    // The end record was checked already, but libzip may have read another one than ours.
    if (count < 0 || static_cast<std::uint64_t>(count) > m_limits.maxEntries)
        throw DocumentErrors::corrupt("the container has " + std::to_string(count) + " entries, more than "
            + std::to_string(m_limits.maxEntries) + " a document may have");
    std::uint64_t total = 0;
    for (zip_int64_t index = 0; index < count; ++index) {
        const char* raw = zip_get_name(m_archive, static_cast<zip_uint64_t>(index), ZIP_FL_ENC_RAW);
        if (raw == nullptr)
            throwZipError(zip_get_error(m_archive), "entry " + std::to_string(index), EZipUse::eReading);
        std::string name(raw);
        const bool directory = !name.empty() && name.back() == '/';
        if (directory)
            name.pop_back();
        if (!isSafeEntryName(name))
            throw DocumentErrors::corrupt("zip entry \"" + std::string(raw) + "\" is not a name inside the document");

        // Sizes as the central directory states them; reading holds every entry to them.
        zip_stat_t stat;
        zip_stat_init(&stat);
        if (zip_stat_index(m_archive, static_cast<zip_uint64_t>(index), 0, &stat) != 0)
            throwZipError(zip_get_error(m_archive), "zip entry \"" + name + "\"", EZipUse::eReading);
        const std::uint64_t size = (stat.valid & ZIP_STAT_SIZE) != 0 ? stat.size : 0;
        const std::uint64_t compressed = (stat.valid & ZIP_STAT_COMP_SIZE) != 0 ? stat.comp_size : 0;
        if (size > m_limits.maxTotalSize - total)
            throw DocumentErrors::corrupt("the entries inflate to more than the " + std::to_string(m_limits.maxTotalSize)
                + " bytes a document may hold");
        total += size;
        if (beyondRatio(size, compressed, m_limits))
            throw DocumentErrors::corrupt("zip entry \"" + name + "\" inflates " + std::to_string(size) + " bytes from "
                + std::to_string(compressed) + ", more than a document part shrinks");

        if (directory)
            continue;
        if (!m_entries.emplace(name, static_cast<std::uint64_t>(index)).second)
            throw DocumentErrors::corrupt("zip entry \"" + name + "\" occurs twice");
    }
    (void)guard.release();
}

std::vector<std::uint8_t> ZipReader::read(std::string_view name, std::uint64_t maxSize) const
{
    const auto found = m_entries.find(std::string(name));
    if (found == m_entries.end())
        throw DocumentErrors::corrupt("zip entry \"" + std::string(name) + "\" is missing");
    const std::string what = "zip entry \"" + std::string(name) + "\"";
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat_index(m_archive, found->second, 0, &stat) != 0)
        throwZipError(zip_get_error(m_archive), what, EZipUse::eReading);
    if ((stat.valid & ZIP_STAT_SIZE) == 0 || stat.size > maxSize)
        throw DocumentErrors::corrupt(what + " is larger than a document part can be");

    std::unique_ptr<zip_file_t, decltype(&zip_fclose)> file(zip_fopen_index(m_archive, found->second, 0), &zip_fclose);
    if (!file)
        throwZipError(zip_get_error(m_archive), what, EZipUse::eReading);
    std::vector<std::uint8_t> bytes;
    bytes.reserve(static_cast<std::size_t>(std::min(stat.size + 1, kTrustedReserve)));
    // One byte more than stated is asked for, so that a longer entry shows; reading to the end
    // makes libzip compare the checksum.
    for (;;) {
        const std::size_t done = bytes.size();
        const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kReadChunk, stat.size + 1 - done));
        bytes.resize(done + wanted);
        const zip_int64_t count = zip_fread(file.get(), bytes.data() + done, wanted);
        if (count < 0)
            throwZipError(zip_file_get_error(file.get()), what, EZipUse::eReading);
        bytes.resize(done + static_cast<std::size_t>(count));
        if (count == 0)
            break;
        if (bytes.size() > stat.size)
            throw DocumentErrors::corrupt(what + " is longer than its stated size");
        m_inflated += static_cast<std::uint64_t>(count);
        if (m_inflated > m_limits.maxTotalSize)
            throw DocumentErrors::corrupt(what + ": the entries inflate to more than the "
                + std::to_string(m_limits.maxTotalSize) + " bytes a document may hold");
    }
    if (bytes.size() < stat.size)
        throw DocumentErrors::corrupt(what + " ends before its stated size");
    return bytes;
}

ZipWriter::ZipWriter(const std::filesystem::path& file, const DocumentLimits& limits)
    : m_file(file)
    , m_limits(limits)
{
    // Created now, so that a target that cannot be written fails the save before any work.
    int code = 0;
    zip* archive = zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (archive == nullptr)
        throwZipError(code, 0, file.string(), EZipUse::eWriting);
    zip_discard(archive);
}

ZipWriter::~ZipWriter()
{
    if (m_written && !m_committed) {
        std::error_code ignored;
        std::filesystem::remove(m_file, ignored);
    }
}

void ZipWriter::add(const std::string& name, std::vector<std::uint8_t> bytes, std::uint64_t maxSize)
{
    const std::uint64_t size = bytes.size();
    if (size > maxSize)
        throw DocumentErrors::saveFailed(name + " is larger than a document part can be");
    if (m_entries.size() >= m_limits.maxEntries || size > m_limits.maxTotalSize - m_total)
        throw DocumentErrors::saveFailed(name + ": the document is larger than a document file can hold");
    m_total += size;
    m_entries.emplace_back(name, std::move(bytes));
}

void ZipWriter::write(const std::set<std::string>& stored)
{
    int code = 0;
    zip* archive = zip_open(m_file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (archive == nullptr)
        throwZipError(code, 0, m_file.string(), EZipUse::eWriting);
    std::unique_ptr<zip, decltype(&zip_discard)> guard(archive, &zip_discard);
    for (const auto& [name, bytes] : m_entries) {
        zip_source_t* source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
        if (source == nullptr)
            throwZipError(zip_get_error(archive), name, EZipUse::eWriting);
        const zip_int64_t index = zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8);
        if (index < 0) {
            zip_source_free(source);
            throwZipError(zip_get_error(archive), name, EZipUse::eWriting);
        }
        const auto entry = static_cast<zip_uint64_t>(index);
        const bool store = stored.count(name) != 0;
        if (zip_set_file_compression(archive, entry, store ? ZIP_CM_STORE : ZIP_CM_DEFLATE, store ? 0 : kDeflateLevel) != 0
            || zip_file_set_dostime(archive, entry, kDosTime, kDosDate, 0) != 0)
            throwZipError(zip_get_error(archive), name, EZipUse::eWriting);
    }
    if (zip_close(archive) != 0)
        throwZipError(zip_get_error(archive), "writing the container", EZipUse::eWriting);
    (void)guard.release();
    m_written = true;
}

std::set<std::string> ZipWriter::entriesBeyondRatio() const
{
    std::set<std::string> dense;
    int code = 0;
    zip* archive = zip_open(m_file.c_str(), ZIP_RDONLY, &code);
    if (archive == nullptr)
        throwZipError(code, 0, m_file.string(), EZipUse::eWriting);
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t index = 0; index < count; ++index) {
        zip_stat_t stat;
        zip_stat_init(&stat);
        if (zip_stat_index(archive, static_cast<zip_uint64_t>(index), 0, &stat) == 0 && stat.name != nullptr
            && beyondRatio(stat.size, stat.comp_size, m_limits))
            dense.insert(stat.name);
    }
    zip_discard(archive);
    return dense;
}

void ZipWriter::commit()
{
    write({});
    // Deflate's sizes are known only once it ran. The rare entry that shrank beyond what a reader
    // accepts (a long run of one byte) is written again, stored.
    if (const std::set<std::string> dense = entriesBeyondRatio(); !dense.empty())
        write(dense);
    m_committed = true;
    m_entries.clear();
}

} // namespace Kx
