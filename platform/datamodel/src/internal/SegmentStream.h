#pragma once

#include <datamodel/Streams.h>
#include <datamodel/XmlBulkStream.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace Kx {

class Entity;
class EntityMetaType;
class Segment;
class VisitorContext;

// The stream of one segment in a document file (format in docs/formats.md): the segment's
// entities in id order, each with its type (an index into the manifest's type list) and id, then
// the roots.
using TypeIndex = std::unordered_map<const EntityMetaType*, std::uint32_t>;

[[nodiscard]] std::vector<std::uint8_t> writeSegmentStream(const Segment& segment, EStreamMode mode,
    const TypeIndex& typeIndex, const VisitorContext& context);

// Reads a segment stream in two passes, so that references between entities (also across
// segments) find their targets whatever the order: first every entity is made, empty, under its
// saved id and root; then every entity's members are read. Damaged streams throw Kx::Exception.
class SegmentReader {
public:
    SegmentReader(Segment& segment, std::string entryName, std::vector<std::uint8_t> bytes, EStreamMode mode);
    ~SegmentReader();
    SegmentReader(const SegmentReader&) = delete;
    SegmentReader& operator=(const SegmentReader&) = delete;

    // `types` are the manifest's types by index: the entity types this build knows, null for the
    // others (a stream naming one of those is damaged).
    void createEntities(const std::vector<EntityMetaType*>& types);
    void loadEntities(const VisitorContext& context);
    [[nodiscard]] std::size_t entityCount() const noexcept { return m_entries.size(); }

private:
    struct Entry {
        EntityMetaType* metaType;
        std::uint64_t id;
        std::size_t offset;
        std::size_t length;
        XMLNode element;
        Entity* entity = nullptr;
    };

    void readBinaryTable(const std::vector<EntityMetaType*>& types);
    void readXmlTable(const std::vector<EntityMetaType*>& types);
    void makeEntities();
    [[noreturn]] void damaged(const std::string& why) const;

    Segment& m_segment;
    std::string m_entryName;
    std::vector<std::uint8_t> m_bytes;
    EStreamMode m_mode;
    std::unique_ptr<XmlReadStream> m_xml;
    std::vector<Entry> m_entries;
    std::unordered_map<std::uint64_t, std::string> m_roots;
};

} // namespace Kx
