#include "internal/ZipArchive.h"

#include "internal/DocumentErrors.h"

#include <zip.h>

#include <algorithm>
#include <memory>

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

} // namespace

ZipReader::ZipReader(const std::filesystem::path& file)
{
    int code = 0;
    m_archive = zip_open(file.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &code);
    if (m_archive == nullptr)
        throwZipError(code, 0, file.string(), EZipUse::eOpening);
    indexEntries();
}

ZipReader::ZipReader(std::span<const std::uint8_t> bytes)
{
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
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(stat.size));
    std::size_t done = 0;
    while (done < bytes.size()) {
        const zip_int64_t count = zip_fread(file.get(), bytes.data() + done, bytes.size() - done);
        if (count < 0)
            throwZipError(zip_file_get_error(file.get()), what, EZipUse::eReading);
        if (count == 0)
            throw DocumentErrors::corrupt(what + " ends before its stated size");
        done += static_cast<std::size_t>(count);
    }
    // Reading to the end makes libzip compare the checksum.
    std::uint8_t extra = 0;
    const zip_int64_t beyond = zip_fread(file.get(), &extra, 1);
    if (beyond < 0)
        throwZipError(zip_file_get_error(file.get()), what, EZipUse::eReading);
    if (beyond > 0)
        throw DocumentErrors::corrupt(what + " is longer than its stated size");
    return bytes;
}

ZipWriter::ZipWriter(const std::filesystem::path& file)
{
    int code = 0;
    m_archive = zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (m_archive == nullptr)
        throwZipError(code, 0, file.string(), EZipUse::eWriting);
}

ZipWriter::~ZipWriter()
{
    if (m_archive != nullptr)
        zip_discard(m_archive);
}

void ZipWriter::add(const std::string& name, std::vector<std::uint8_t> bytes)
{
    const std::vector<std::uint8_t>& kept = m_buffers.emplace_back(std::move(bytes));
    zip_source_t* source = zip_source_buffer(m_archive, kept.data(), kept.size(), 0);
    if (source == nullptr)
        throwZipError(zip_get_error(m_archive), name, EZipUse::eWriting);
    const zip_int64_t index = zip_file_add(m_archive, name.c_str(), source, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(source);
        throwZipError(zip_get_error(m_archive), name, EZipUse::eWriting);
    }
    const auto entry = static_cast<zip_uint64_t>(index);
    if (zip_set_file_compression(m_archive, entry, ZIP_CM_DEFLATE, kDeflateLevel) != 0
        || zip_file_set_dostime(m_archive, entry, kDosTime, kDosDate, 0) != 0)
        throwZipError(zip_get_error(m_archive), name, EZipUse::eWriting);
}

void ZipWriter::commit()
{
    if (zip_close(m_archive) != 0)
        throwZipError(zip_get_error(m_archive), "writing the container", EZipUse::eWriting);
    m_archive = nullptr;
    m_buffers.clear();
}

} // namespace Kx
