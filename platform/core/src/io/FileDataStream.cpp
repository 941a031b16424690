#include "core/io/FileDataStream.h"

#include <cerrno>
#include <algorithm>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace telvarin::platform::core::io {

namespace {

// pread/pwrite move at most this much per call on Linux; larger requests are split.
constexpr std::uint64_t s_maxChunk = 0x7ffff000;

bool canRead(FileDataStream::EOpenMode mode)
{
    return mode != FileDataStream::EOpenMode::eWrite;
}

bool canWrite(FileDataStream::EOpenMode mode)
{
    return mode != FileDataStream::EOpenMode::eRead;
}

} // namespace

FileDataStream::FileDataStream(std::filesystem::path path, EOpenMode mode)
    : m_path(std::move(path))
    , m_mode(mode)
{
}

FileDataStream::~FileDataStream()
{
    closeFile();
}

bool FileDataStream::fail(int error)
{
    m_lastError = std::error_code(error, std::generic_category());
    return false;
}

bool FileDataStream::ensureOpen()
{
    if (m_fd >= 0) {
        return true;
    }
    int flags = O_CLOEXEC;
    switch (m_mode) {
    case EOpenMode::eRead: flags |= O_RDONLY; break;
    case EOpenMode::eWrite: flags |= O_WRONLY | O_CREAT | O_TRUNC; break;
    case EOpenMode::eReadWrite: flags |= O_RDWR | O_CREAT; break;
    }
    const int fd = ::open(m_path.c_str(), flags, 0666);
    if (fd < 0) {
        return fail(errno);
    }
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        const int error = S_ISDIR(info.st_mode) ? EISDIR : errno;
        ::close(fd);
        return fail(error == 0 ? EINVAL : error);
    }
    m_fd = fd;
    m_size = static_cast<std::uint64_t>(info.st_size);
    m_position = 0;
    m_lastError.clear();
    return true;
}

void FileDataStream::closeFile()
{
    if (m_fd >= 0) {
        ::close(m_fd);
    }
    m_fd = -1;
    m_reading = false;
    m_writing = false;
    m_position = 0;
}

bool FileDataStream::open()
{
    if (!ensureOpen()) {
        return false;
    }
    m_reading = canRead(m_mode);
    m_writing = canWrite(m_mode);
    return true;
}

bool FileDataStream::openForRead()
{
    if (!canRead(m_mode)) {
        return fail(EBADF);
    }
    if (!ensureOpen()) {
        return false;
    }
    m_reading = true;
    return true;
}

bool FileDataStream::openForWrite()
{
    if (!canWrite(m_mode)) {
        return fail(EBADF);
    }
    if (!ensureOpen()) {
        return false;
    }
    m_writing = true;
    return true;
}

bool FileDataStream::closeForRead()
{
    m_reading = false;
    if (!m_writing) {
        closeFile();
    }
    return true;
}

bool FileDataStream::closeForWrite()
{
    m_writing = false;
    if (!m_reading) {
        closeFile();
    }
    return true;
}

bool FileDataStream::close()
{
    closeFile();
    return true;
}

bool FileDataStream::availableToRead()
{
    return m_reading && m_position >= 0 && static_cast<std::uint64_t>(m_position) < m_size;
}

std::uint64_t FileDataStream::read(void* destination, std::uint64_t count)
{
    if (!availableToRead() || count == 0 || destination == nullptr) {
        return 0;
    }
    const std::uint64_t wanted = std::min(count, m_size - static_cast<std::uint64_t>(m_position));
    auto* out = static_cast<unsigned char*>(destination);
    std::uint64_t done = 0;
    while (done < wanted) {
        const ssize_t got = ::pread(m_fd, out + done, std::min(wanted - done, s_maxChunk),
            static_cast<off_t>(m_position) + static_cast<off_t>(done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            fail(errno);
            break;
        }
        if (got == 0) {
            // Someone shortened the file behind our back: believe the file, not our record of it.
            m_size = static_cast<std::uint64_t>(m_position) + done;
            break;
        }
        done += static_cast<std::uint64_t>(got);
    }
    m_position += static_cast<std::int64_t>(done);
    return done;
}

bool FileDataStream::fill(void* destination, std::uint64_t count)
{
    if (!availableToRead() || count == 0 || destination == nullptr
        || m_size - static_cast<std::uint64_t>(m_position) < count) {
        return false;
    }
    const std::int64_t start = m_position;
    if (read(destination, count) != count) {
        m_position = start;
        return false;
    }
    return true;
}

std::optional<std::int64_t> FileDataStream::target(std::int64_t offset, teStreamPosition from) const
{
    std::int64_t base = 0;
    switch (from) {
    case eFromStart: base = 0; break;
    case eFromCurrent: base = m_position; break;
    case eFromEnd: base = static_cast<std::int64_t>(m_size); break;
    default: return std::nullopt;
    }
    std::int64_t result = 0;
    if (__builtin_add_overflow(base, offset, &result)) {
        // Hostile offsets saturate: past the end, or before the start, as every caller needs.
        return offset > 0 ? std::numeric_limits<std::int64_t>::max() : -1;
    }
    return result;
}

std::int64_t FileDataStream::rfind(std::int64_t offset, teStreamPosition from)
{
    const auto to = target(offset, from);
    if (isOpen() && to && *to >= 0 && static_cast<std::uint64_t>(*to) < m_size) {
        m_position = *to;
    }
    return m_position;
}

std::int64_t FileDataStream::rseek(std::int64_t offset, teStreamPosition from)
{
    if (!isOpen()) {
        return m_position;
    }
    // Any origin but the current position and the end counts from the start.
    const std::int64_t to = *target(offset, from == eFromCurrent || from == eFromEnd ? from : eFromStart);
    m_position = to < 0 ? 0 : static_cast<std::int64_t>(std::min(static_cast<std::uint64_t>(to), m_size));
    return m_position;
}

bool FileDataStream::availableToWrite()
{
    return m_writing;
}

std::uint64_t FileDataStream::write(const void* source, std::uint64_t count)
{
    if (!m_writing || count == 0 || source == nullptr) {
        return 0;
    }
    const auto* in = static_cast<const unsigned char*>(source);
    std::uint64_t done = 0;
    while (done < count) {
        const ssize_t put = ::pwrite(m_fd, in + done, std::min(count - done, s_maxChunk),
            static_cast<off_t>(m_position) + static_cast<off_t>(done));
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put <= 0) {
            fail(put < 0 ? errno : EIO);
            break;
        }
        done += static_cast<std::uint64_t>(put);
    }
    m_position += static_cast<std::int64_t>(done);
    m_size = std::max(m_size, static_cast<std::uint64_t>(m_position));
    return done;
}

bool FileDataStream::commit(const void* source, std::uint64_t count)
{
    if (!m_writing) {
        return fail(EBADF);
    }
    if (count != 0 && write(source, count) != count) {
        return false;
    }
    if (::fdatasync(m_fd) != 0) {
        return fail(errno);
    }
    return true;
}

bool FileDataStream::truncate()
{
    if (!m_writing) {
        return fail(EBADF);
    }
    if (::ftruncate(m_fd, static_cast<off_t>(m_position)) != 0) {
        return fail(errno);
    }
    m_size = static_cast<std::uint64_t>(m_position);
    return true;
}

std::int64_t FileDataStream::wfind(std::int64_t offset, teStreamPosition from)
{
    const auto to = target(offset, from);
    if (isOpen() && to && *to >= 0) {
        m_position = *to;
    }
    return m_position;
}

std::int64_t FileDataStream::wseek(std::int64_t offset, teStreamPosition from)
{
    if (!isOpen()) {
        return m_position;
    }
    const std::int64_t to = *target(offset, from == eFromCurrent || from == eFromEnd ? from : eFromStart);
    m_position = to < 0 ? 0 : to;
    return m_position;
}

} // namespace telvarin::platform::core::io
