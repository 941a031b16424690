#pragma once

#include <datamodel/Entity.h>
#include <datamodel/Streams.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

// The table of contents of a document file (the entry "manifest.json" of a .kxd container; the
// format is described in docs/formats.md).
struct DocumentManifest {
    static constexpr unsigned s_formatVersion = 1;
    static constexpr const char* s_entryName = "manifest.json";

    enum class ETypeKind { eEntity, eValue, eMember };

    // A meta type the document's streams use, with the version they were written with.
    struct Type {
        std::string id;
        std::string name;
        ETypeKind kind = ETypeKind::eMember;
        unsigned version = 0;
    };
    struct Segment {
        std::string name;
        std::string entry;
        std::uint64_t entities = 0;
    };
    struct BlobPart {
        std::string name;
        std::string kind;
        std::string entry;
        std::uint64_t size = 0;
    };

    unsigned formatVersion = s_formatVersion;
    std::string identifier;
    EStreamMode streamMode = EStreamMode::eBinary;
    bool multiLevelBlobFolder = false;
    EntityId nextEntityId = 1;
    std::vector<Type> types;
    std::vector<Segment> segments;
    std::vector<BlobPart> blobParts;

    [[nodiscard]] std::string toJSON() const;
    // Reads and checks a manifest: every field present with its kind, entry names of the forms the
    // format allows, names unique. Throws Kx::Exception (a damaged document) otherwise, and for a
    // format version newer than this build reads.
    [[nodiscard]] static DocumentManifest fromJSON(std::string_view text);

    // "segments/<index>.bin" or ".xml".
    [[nodiscard]] static std::string segmentEntry(std::size_t index, EStreamMode mode);
    // "blobs/<part name>".
    [[nodiscard]] static std::string blobEntry(const std::string& partName);
};

} // namespace Kx
