#include "base/TempFile.h"

#include "base/Paths.h"

#include <atomic>
#include <random>
#include <string>
#include <system_error>

#include <unistd.h>

namespace Kx {

namespace {

std::string uniqueName()
{
    static std::atomic<unsigned> s_counter{0};
    static const unsigned s_salt = std::random_device{}();
    // The process id keeps concurrent processes apart, the counter threads of this one, and the
    // salt a later process that happens to get the same id.
    return "kx-" + std::to_string(::getpid()) + "-" + std::to_string(s_salt) + "-"
        + std::to_string(s_counter.fetch_add(1));
}

} // namespace

TempFile::TempFile(std::string_view extension)
{
    std::string name = uniqueName();
    if (!extension.empty()) {
        if (extension.front() != '.') {
            name += '.';
        }
        name += extension;
    }
    m_path = Paths::tempDirectory() / name;
}

TempFile TempFile::beside(const std::filesystem::path& target)
{
    std::filesystem::path path = target;
    path += "." + uniqueName() + ".tmp";
    return TempFile(AtPath{}, std::move(path));
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
