#include "base/TempFile.h"

#include "base/Exception.h"
#include "base/Paths.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace Kx {

namespace {

// The process's file-creation mask, read without changing it: umask() can only be read by setting
// it, which would race with other threads creating files.
mode_t processUmask()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("Umask:", 0) == 0) {
            return static_cast<mode_t>(std::strtoul(line.c_str() + 6, nullptr, 8));
        }
    }
    return 022;
}

// Creates "<stem>XXXXXX<suffix>" exclusively (no other process can have made or be handed the
// same file) with the permissions a plain new file would get, or those of `modeOf` when it exists,
// so that a save renamed over a document keeps the document's permissions.
std::filesystem::path createExclusive(const std::string& stem, const std::string& suffix,
    const std::filesystem::path& modeOf = {})
{
    std::string pattern = stem + "XXXXXX" + suffix;
    const int descriptor = ::mkstemps(pattern.data(), static_cast<int>(suffix.size()));
    if (descriptor < 0) {
        const int error = errno;
        throw Exception(L"A temporary file could not be created.",
            "cannot create a file in " + std::filesystem::path(stem).parent_path().string() + ": " + std::strerror(error));
    }
    struct stat existing {};
    const mode_t mode = !modeOf.empty() && ::stat(modeOf.c_str(), &existing) == 0
        ? (existing.st_mode & 07777)
        : (0666 & ~processUmask());
    (void)::fchmod(descriptor, mode);
    ::close(descriptor);
    return pattern;
}

std::string withDot(std::string_view extension)
{
    if (extension.empty() || extension.front() == '.') {
        return std::string(extension);
    }
    return "." + std::string(extension);
}

} // namespace

TempFile::TempFile(std::string_view extension)
    : m_path(createExclusive((Paths::tempDirectory() / "kx-").string(), withDot(extension)))
{
}

TempFile TempFile::beside(const std::filesystem::path& target)
{
    return TempFile(AtPath{}, createExclusive(target.string() + ".", ".tmp", target));
}

std::optional<TempFile> TempFile::tryBeside(const std::filesystem::path& target, std::string* problem)
{
    try {
        return beside(target);
    } catch (const Exception& error) {
        if (problem != nullptr) {
            *problem = error.detail();
        }
        return std::nullopt;
    }
}

TempFile::~TempFile()
{
    remove();
}

TempFile::TempFile(TempFile&& other) noexcept
    : m_path(std::move(other.m_path))
    , m_owned(other.m_owned)
{
    other.m_owned = false;
}

TempFile& TempFile::operator=(TempFile&& other) noexcept
{
    if (this != &other) {
        remove();
        m_path = std::move(other.m_path);
        m_owned = other.m_owned;
        other.m_owned = false;
    }
    return *this;
}

std::filesystem::path TempFile::release()
{
    m_owned = false;
    return m_path;
}

void TempFile::remove() noexcept
{
    if (m_owned && !m_path.empty()) {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    m_owned = false;
}

} // namespace Kx
