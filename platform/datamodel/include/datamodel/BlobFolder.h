#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

class BlobPart;
class Document;

// The blob parts of a document, by name. A flat folder holds single names ("AmbrelAsset.ambrel");
// a multi-level folder also names parts inside folders ("textures/wood/grain.png").
class IBlobFolder {
public:
    virtual ~IBlobFolder() = default;

    [[nodiscard]] virtual bool multiLevelFolder() const = 0;
    // Every part, by name.
    [[nodiscard]] virtual std::map<std::string, BlobPart*> blobParts() const = 0;
    [[nodiscard]] virtual BlobPart* findBlobPart(std::string_view name) const = 0;
    // A new part named "<baseName>.<kind>", or "<baseName>-<n>.<kind>" when that is taken; null
    // (and a report) for a base name or kind that is not valid in this folder.
    virtual BlobPart* makeBlobPart(std::string_view baseName, std::string_view kind) = 0;
    // Removes the part and destroys its blob; false when there is no such part.
    virtual bool deleteBlobPart(std::string_view name) = 0;
};

// The document's blob folder. Names are checked when parts are made and when a file is read:
// each level is 1 to 100 of the characters A-Z a-z 0-9 . _ -, never starting with '.', so a name
// can never climb out of its folder or hide; a kind is 1 to 16 letters and digits.
class BlobFolder final : public IBlobFolder {
public:
    BlobFolder(Document* asset, bool multiLevel);
    ~BlobFolder() override;

    [[nodiscard]] Document* asset() const noexcept { return m_asset; }

    [[nodiscard]] bool multiLevelFolder() const override { return m_multiLevel; }
    [[nodiscard]] std::map<std::string, BlobPart*> blobParts() const override;
    [[nodiscard]] BlobPart* findBlobPart(std::string_view name) const override;
    BlobPart* makeBlobPart(std::string_view baseName, std::string_view kind) override;
    bool deleteBlobPart(std::string_view name) override;

    // The parts inside `folder` ("textures" holds "textures/wood/grain.png"); every part for "".
    [[nodiscard]] std::map<std::string, BlobPart*> blobParts(std::string_view folder) const;
    // The folders directly inside `folder`, by name.
    [[nodiscard]] std::vector<std::string> subFolders(std::string_view folder) const;
    // Takes a part under the exact name it was saved with (opening a file); null when the name or
    // kind is not valid here or the name is taken.
    BlobPart* addBlobPart(std::string name, std::string kind);

    [[nodiscard]] static bool isValidPartName(std::string_view name, bool multiLevel);
    [[nodiscard]] static bool isValidKind(std::string_view kind);

private:
    Document* m_asset;
    bool m_multiLevel;
    std::map<std::string, std::unique_ptr<BlobPart>, std::less<>> m_parts;
};

} // namespace Kx
