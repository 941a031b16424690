#pragma once

#include <filesystem>
#include <string_view>

namespace Kx {

// A unique path in Paths::tempDirectory() whose file is removed when the object goes, whatever
// was written there in between. The file itself is not created: the path is free to be opened by
// a library that insists on creating its file. release() hands the file over to the caller.
class TempFile {
public:
    // `extension` with or without its dot ("xml", ".xml"); empty for none.
    explicit TempFile(std::string_view extension = {});
    // A unique path beside `target`, in the same folder and so on the same file system: the file a
    // save writes and then renames over its target, so that a failure never leaves half a file.
    [[nodiscard]] static TempFile beside(const std::filesystem::path& target);
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
