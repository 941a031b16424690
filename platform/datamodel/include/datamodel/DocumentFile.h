#pragma once

#include <datamodel/DocumentLimits.h>
#include <datamodel/DocumentManifest.h>
#include <datamodel/Streams.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace Kx {

class Document;

struct DocumentOpenOptions {
    // Open the file as a copy of its document: it gets a new identifier and no path, its values
    // are told so while they load (VisitorContext::isLoadingCopiedAsset) and the migration steps run.
    bool asCopy = false;
    // What the file may make the open inflate; beyond them it is refused as corrupt.
    DocumentLimits limits;
};

// The document file (.kxd): a zip container holding the manifest, one stream per saved segment
// (all binary or all XML, chosen at each save) and the blob parts (docs/formats.md).
//
// Saving runs, in order: every entity's onPreAssetSave (segment by segment, roots first); the
// segments' streams, each entity with its onPreSave, its members (each value with its own
// onPreSave and onPostSave) and its onPostSave; the blob serializers of the used parts. The file
// is written beside the target under a temporary name and renamed over it at the very end, so a
// failure at any point leaves the previous file as it was, and no temporary file behind.
//
// Opening runs, in order: the blob serializers' doLoad for the parts; every entity made, then
// every entity read (onPreLoad, members, onPostLoad); the migration of values and entities stored
// with older member sets (onPostMigrate); every entity's onPostAssetLoad (roots first), then every
// value's; the migration steps, when something was migrated or the document is opened as a copy.
// A file that is not a sound document throws Kx::Exception and leaves nothing behind.
//
// Fault-injection points (base/FaultInjection.h): "DocumentFile.save.segment" before each segment
// stream, "DocumentFile.save.blob" before each blob part, "DocumentFile.save.commit" before the
// container is written, "DocumentFile.save.rename" before it replaces the target.
class DocumentFile {
public:
    static constexpr const char* s_extension = ".kxd";

    // Throws Kx::Exception when the document cannot be saved.
    static void save(Document& document, const std::filesystem::path& path, EStreamMode mode = EStreamMode::eBinary);
    [[nodiscard]] static std::unique_ptr<Document> open(const std::filesystem::path& path, const DocumentOpenOptions& options = {});
    // Opens a document held in memory (the bytes of a .kxd file).
    [[nodiscard]] static std::unique_ptr<Document> open(std::span<const std::uint8_t> bytes, const DocumentOpenOptions& options = {});
    // The manifest alone, checked as opening checks it.
    [[nodiscard]] static DocumentManifest readManifest(const std::filesystem::path& path);
};

} // namespace Kx
