#pragma once

namespace Kx {

class BlobPart;
class BlobSerializer;
class Document;

// What a blob part stands for in memory while the document is open: data that is not kept in the
// segments' streams (a database, an image, a file of another application) and is written into
// its own part of the document file by a BlobSerializer. Subsystems derive their blobs from it;
// the part owns its blob.
class Blob {
public:
    Blob(Document* asset, BlobPart* blobPart, BlobSerializer* blobSerializer = nullptr) noexcept
        : m_asset(asset)
        , m_blobPart(blobPart)
        , m_blobSerializer(blobSerializer)
    {
    }
    virtual ~Blob() = default;
    Blob(const Blob&) = delete;
    Blob& operator=(const Blob&) = delete;

    [[nodiscard]] Document* asset() const noexcept { return m_asset; }
    [[nodiscard]] BlobPart* blobPart() const noexcept { return m_blobPart; }
    // The serializer that read the blob from a file; null for a blob made for a save.
    [[nodiscard]] BlobSerializer* blobSerializer() const noexcept { return m_blobSerializer; }
    // Whether the blob takes part in the next save.
    [[nodiscard]] bool isUsed() const noexcept { return m_used; }
    void markUsed(bool used = true) noexcept { m_used = used; }

private:
    Document* m_asset;
    BlobPart* m_blobPart;
    BlobSerializer* m_blobSerializer;
    bool m_used = false;
};

} // namespace Kx
