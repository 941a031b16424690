#include "datamodel/BlobPart.h"

#include "datamodel/Blob.h"
#include "datamodel/DocumentLimits.h"

#include <fstream>
#include <system_error>

namespace Kx {

BlobPart::BlobPart(std::string name, std::string kind)
    : m_name(std::move(name))
    , m_kind(std::move(kind))
{
}

BlobPart::~BlobPart() = default;

void BlobPart::blob(std::unique_ptr<Blob> blob)
{
    m_blob = std::move(blob);
}

void BlobPart::zipPart(std::vector<std::uint8_t> bytes)
{
    m_zipPart = std::move(bytes);
    m_hasZipPart = true;
}

void BlobPart::clearZipPart() noexcept
{
    m_zipPart.clear();
    m_zipPart.shrink_to_fit();
    m_hasZipPart = false;
}

bool BlobPart::createZipPartFromFile(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return false;
    // A part a document could not open again is refused here, while the caller can still say so.
    // The size is read, not asked of the file system first: the file may grow meanwhile.
    constexpr std::size_t kChunk = std::size_t{1} << 20;
    std::vector<std::uint8_t> bytes;
    while (in) {
        const std::size_t done = bytes.size();
        bytes.resize(done + kChunk);
        in.read(reinterpret_cast<char*>(bytes.data() + done), static_cast<std::streamsize>(kChunk));
        bytes.resize(done + static_cast<std::size_t>(in.gcount()));
        if (bytes.size() > DocumentLimits::s_maxPartSize)
            return false;
    }
    if (in.bad())
        return false;
    zipPart(std::move(bytes));
    return true;
}

bool BlobPart::extractZipPartToFile(const std::filesystem::path& file) const
{
    if (!m_hasZipPart)
        return false;
    bool written = false;
    {
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        if (out) {
            out.write(reinterpret_cast<const char*>(m_zipPart.data()), static_cast<std::streamsize>(m_zipPart.size()));
            out.flush();
            written = out.good();
        }
    }
    if (!written) {
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
    }
    return written;
}

} // namespace Kx
