#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace Kx {

// A new, empty file in Paths::tempDirectory(), created exclusively under a random name (mkstemp),
// and removed when the object goes, whatever was written there in between. Writers open it again
// and truncate it (an empty file is what SQLite, libzip and streams accept as a fresh target).
// release() hands the file over to the caller. Throws Kx::Exception when no file can be created.
class TempFile {
public:
    // `extension` with or without its dot ("xml", ".xml"); empty for none.
    explicit TempFile(std::string_view extension = {});
    // A new file beside `target`, in the same folder and so on the same file system: the file a
    // save writes and then renames over its target, so that a failure never leaves half a file.
    // It has the target's permissions when the target exists, so the save keeps them.
    [[nodiscard]] static TempFile beside(const std::filesystem::path& target);
    // As beside(), for the saves that answer failure instead of throwing: none when no file can be
    // made there, with the reason in `problem` when given.
    [[nodiscard]] static std::optional<TempFile> tryBeside(const std::filesystem::path& target,
        std::string* problem = nullptr);
    ~TempFile();
    TempFile(TempFile&& other) noexcept;
    TempFile& operator=(TempFile&& other) noexcept;
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    // The file stays on disk after destruction; answers its path.
    std::filesystem::path release();

private:
    struct AtPath {};
    TempFile(AtPath, std::filesystem::path path) : m_path(std::move(path)) {}
    void remove() noexcept;

    std::filesystem::path m_path;
    bool m_owned = true;
};

} // namespace Kx
