#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Kx {

class Blob;

// One part of a document file besides the segments' streams: a name in the document's blob
// folder, the kind that picks its BlobSerializer, its bytes as they go into the zip container
// (the "zip part"), and the blob that stands for it in memory.
// A save writes every part marked used; a part read from a file is marked used, so parts whose
// serializer this build does not know travel through open and save unchanged.
class BlobPart {
public:
    BlobPart(std::string name, std::string kind);
    ~BlobPart();
    BlobPart(const BlobPart&) = delete;
    BlobPart& operator=(const BlobPart&) = delete;

    [[nodiscard]] const std::string& name() const noexcept { return m_name; }
    [[nodiscard]] const std::string& kind() const noexcept { return m_kind; }
    [[nodiscard]] bool isUsed() const noexcept { return m_used; }
    void markUsed(bool used = true) noexcept { m_used = used; }

    [[nodiscard]] Blob* blob() const noexcept { return m_blob.get(); }
    void blob(std::unique_ptr<Blob> blob);

    [[nodiscard]] bool hasZipPart() const noexcept { return m_hasZipPart; }
    [[nodiscard]] const std::vector<std::uint8_t>& zipPart() const noexcept { return m_zipPart; }
    void zipPart(std::vector<std::uint8_t> bytes);
    void clearZipPart() noexcept;
    // Takes the whole file as the part's bytes; false (and the part unchanged) when it cannot be
    // read or is larger than a document part can be (DocumentLimits::s_maxPartSize).
    bool createZipPartFromFile(const std::filesystem::path& file);
    // Writes the part's bytes to `file`, replacing it; false when the part has none or the file
    // cannot be written (a partly written file is removed).
    [[nodiscard]] bool extractZipPartToFile(const std::filesystem::path& file) const;

private:
    std::string m_name;
    std::string m_kind;
    std::unique_ptr<Blob> m_blob;
    std::vector<std::uint8_t> m_zipPart;
    bool m_hasZipPart = false;
    bool m_used = false;
};

} // namespace Kx
