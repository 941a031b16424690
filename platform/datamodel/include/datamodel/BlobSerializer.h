#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Kx {

class Blob;
class BlobPart;
class Document;

// What a serializer reports besides throwing: a failure the data model turns into the
// Kx::Exception that aborts the save or the open.
struct BlobStatus {
    bool ok = true;
    std::wstring message;
    std::string detail;

    void fail(std::wstring text, std::string why = {})
    {
        ok = false;
        message = std::move(text);
        detail = std::move(why);
    }
};

// Moves the blobs of one kind of blob part between memory and the document file. A serializer
// registers itself under its kind when constructed (one per kind: a second one is reported and
// ignored) and leaves when destroyed.
// Saving: for each used part of its kind that has a blob, doSave fills the part's zip part
// (BlobPart::createZipPartFromFile, or zipPart(bytes)). Opening: for each part of its kind in the
// file, doLoad makes the blob that stands for it (the part owns what it answers; null for none).
// Both may throw Kx::Exception or report through the status.
class BlobSerializer {
public:
    explicit BlobSerializer(std::string kind);
    virtual ~BlobSerializer();
    BlobSerializer(const BlobSerializer&) = delete;
    BlobSerializer& operator=(const BlobSerializer&) = delete;

    [[nodiscard]] const std::string& kind() const noexcept { return m_kind; }

    virtual void doSave(Blob* blob, BlobStatus& status) = 0;
    [[nodiscard]] virtual Blob* doLoad(Document* asset, BlobPart* blobPart, BlobStatus& status) = 0;

    // Null when no serializer handles that kind.
    [[nodiscard]] static BlobSerializer* find(std::string_view kind);

private:
    std::string m_kind;
    bool m_registered = false;
};

} // namespace Kx
