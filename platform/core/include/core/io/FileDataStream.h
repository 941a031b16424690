#pragma once

#include "core/io/DataStream.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

namespace telvarin::platform::core::io {

// A file seen through both stream interfaces, with one cursor shared by reading and writing (as an
// in-memory stream has). Nothing here throws: failures show in the results, and lastError() keeps
// the operating system's reason for the most recent one.
//
// The file is opened by open(), openForRead() or openForWrite() and stays open until close(), or
// until both closeForRead() and closeForWrite() have been called. Opening a write-mode stream
// truncates the file each time it is opened.
class FileDataStream : public IDataReadStream, public IDataWriteStream {
public:
    enum class EOpenMode {
        eRead,      // the file must exist; writing is refused
        eWrite,     // created or truncated; reading is refused
        eReadWrite, // created when missing, kept otherwise
    };

    FileDataStream(std::filesystem::path path, EOpenMode mode);
    ~FileDataStream() override;
    FileDataStream(const FileDataStream&) = delete;
    FileDataStream& operator=(const FileDataStream&) = delete;

    // Opens the file for every access its mode allows.
    bool open();
    [[nodiscard]] bool isOpen() const { return m_fd >= 0; }
    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    [[nodiscard]] EOpenMode mode() const { return m_mode; }
    [[nodiscard]] std::uint64_t size() const { return m_size; }
    [[nodiscard]] std::int64_t position() const { return m_position; }
    [[nodiscard]] std::error_code lastError() const { return m_lastError; }

    // IDataReadStream
    bool openForRead() override;
    bool closeForRead() override;
    bool close() override;
    [[nodiscard]] bool availableToRead() override;
    std::uint64_t read(void* destination, std::uint64_t count) override;
    bool fill(void* destination, std::uint64_t count) override;
    std::int64_t rfind(std::int64_t offset, teStreamPosition from) override;
    std::int64_t rseek(std::int64_t offset, teStreamPosition from) override;

    // IDataWriteStream
    bool openForWrite() override;
    bool closeForWrite() override;
    [[nodiscard]] bool availableToWrite() override;
    // Writing past the end leaves a gap that reads as zero bytes.
    std::uint64_t write(const void* source, std::uint64_t count) override;
    // Writes all `count` bytes at the cursor (none is fine) and then forces the file's data to
    // storage; true only when both happened.
    bool commit(const void* source, std::uint64_t count) override;
    // Cuts the file at the cursor.
    bool truncate() override;
    // Checked move of the cursor: refused when the target is negative. Unlike reading, the target
    // may lie past the end; the file grows when something is written there.
    std::int64_t wfind(std::int64_t offset, teStreamPosition from) override;
    // Clamped move: a negative target becomes 0.
    std::int64_t wseek(std::int64_t offset, teStreamPosition from) override;

private:
    bool ensureOpen();
    void closeFile();
    bool fail(int error);
    // Null for an unknown origin.
    [[nodiscard]] std::optional<std::int64_t> target(std::int64_t offset, teStreamPosition from) const;

    std::filesystem::path m_path;
    EOpenMode m_mode;
    int m_fd = -1;
    bool m_reading = false;
    bool m_writing = false;
    std::uint64_t m_size = 0;
    std::int64_t m_position = 0;
    std::error_code m_lastError;
};

} // namespace telvarin::platform::core::io
