#include "internal/SegmentStream.h"

#include "datamodel/BinaryStreams.h"
#include "datamodel/Document.h"
#include "datamodel/EntityMetaType.h"
#include "datamodel/Segment.h"
#include "datamodel/VisitorContext.h"
#include "internal/DocumentErrors.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

namespace Kx {

namespace {

// "KXSG" as the first four bytes of a binary segment stream.
constexpr std::uint32_t kMagic = 0x4753584Bu;
constexpr std::uint32_t kStreamVersion = 1;
constexpr std::size_t kMaxRootIdLength = 1024;
// The least a binary entity takes: type index, id, version and length.
constexpr std::size_t kMinEntityBytes = 4 + 8 + 4 + 4;
constexpr std::size_t kMinRootBytes = 4 + 8;

constexpr const char* kSegmentElement = "KxSegment";
constexpr const char* kEntitiesElement = "Entities";
constexpr const char* kRootsElement = "Roots";
constexpr const char* kRootElement = "Root";
constexpr const char* kIdAttribute = "_id";

// Appends pugixml's output to the segment's bytes.
struct ByteWriter final : pugi::xml_writer {
    explicit ByteWriter(std::vector<std::uint8_t>& bytes) : bytes(bytes) {}
    void write(const void* data, std::size_t size) override
    {
        const auto* first = static_cast<const std::uint8_t*>(data);
        bytes.insert(bytes.end(), first, first + size);
    }
    std::vector<std::uint8_t>& bytes;
};

void append(std::vector<std::uint8_t>& bytes, std::string_view text)
{
    bytes.insert(bytes.end(), text.begin(), text.end());
}

// The same text as one indented DOM of the whole segment would print, written an entity at a
// time: each entity's element is built, printed at its depth and dropped, so a save holds one
// entity's nodes instead of the whole document's.
std::vector<std::uint8_t> writeXmlSegment(const Segment& segment, const VisitorContext& segmentContext)
{
    constexpr unsigned kFormat = pugi::format_indent;
    std::vector<std::uint8_t> bytes;
    ByteWriter writer(bytes);
    append(bytes, "<?xml version=\"1.0\"?>\n<KxSegment>\n");
    XmlWriteStream stream(kSegmentElement);
    XMLNode entities = stream.root().appendChild(kEntitiesElement);
    if (segment.empty()) {
        entities.raw().print(writer, "  ", kFormat, pugi::encoding_utf8, 1);
    } else {
        append(bytes, "  <Entities>\n");
        const VisitorContext inEntities = segmentContext.withEntity(nullptr, entities);
        for (const auto& [id, entity] : segment.entities()) {
            const XMLNode element = entity->entityMetaType().save(*entity, &stream, inEntities);
            element.raw().prepend_attribute(kIdAttribute).set_value(static_cast<unsigned long long>(id));
            element.raw().print(writer, "  ", kFormat, pugi::encoding_utf8, 2);
            (void)entities.removeChild(element);
        }
        append(bytes, "  </Entities>\n");
    }
    XMLNode roots = stream.root().appendChild(kRootsElement);
    for (const auto& [rootId, id] : segment.roots()) {
        XMLNode root = roots.appendChild(kRootElement);
        root["id"] = rootId;
        root["entity"] = static_cast<std::uint64_t>(id);
    }
    roots.raw().print(writer, "  ", kFormat, pugi::encoding_utf8, 1);
    append(bytes, "</KxSegment>\n");
    return bytes;
}

} // namespace

std::vector<std::uint8_t> writeSegmentStream(const Segment& segment, EStreamMode mode, const TypeIndex& typeIndex,
    const VisitorContext& context)
{
    const VisitorContext segmentContext = context.withSegment(const_cast<Segment*>(&segment));
    if (mode == EStreamMode::eBinary) {
        BinaryWriteStream stream(64 * segment.size() + 64);
        stream.write(kMagic);
        stream.write(kStreamVersion);
        stream.write(static_cast<std::uint32_t>(segment.size()));
        for (const auto& [id, entity] : segment.entities()) {
            stream.write(typeIndex.at(&entity->entityMetaType()));
            stream.write(static_cast<std::uint64_t>(id));
            (void)entity->entityMetaType().save(*entity, &stream, segmentContext);
        }
        stream.write(static_cast<std::uint32_t>(segment.roots().size()));
        for (const auto& [rootId, id] : segment.roots()) {
            stream.write(std::string_view(rootId));
            stream.write(static_cast<std::uint64_t>(id));
        }
        return stream.takeBytes();
    }
    return writeXmlSegment(segment, segmentContext);
}

SegmentReader::SegmentReader(Segment& segment, std::string entryName, std::vector<std::uint8_t> bytes, EStreamMode mode)
    : m_segment(segment)
    , m_entryName(std::move(entryName))
    , m_bytes(std::move(bytes))
    , m_mode(mode)
{
}

SegmentReader::~SegmentReader() = default;

void SegmentReader::damaged(const std::string& why) const
{
    throw DocumentErrors::corrupt(m_entryName + ": " + why);
}

void SegmentReader::createEntities(const std::vector<EntityMetaType*>& types)
{
    try {
        if (m_mode == EStreamMode::eBinary)
            readBinaryTable(types);
        else
            readXmlTable(types);
    } catch (const Exception& error) {
        // Reports of this reader name the entry already; those of the streams below it ("ends
        // before its content does", "not well-formed XML") are a damaged document here.
        if (error.detail().starts_with(m_entryName))
            throw;
        throw DocumentErrors::corrupt(m_entryName + ": " + error.detail());
    }
    makeEntities();
}

void SegmentReader::readBinaryTable(const std::vector<EntityMetaType*>& types)
{
    const BinaryReadStream stream(m_bytes);
    if (stream.read<std::uint32_t>() != kMagic)
        damaged("not a segment stream");
    const auto version = stream.read<std::uint32_t>();
    if (version > kStreamVersion)
        throw DocumentErrors::tooNew(m_entryName + ": segment stream version " + std::to_string(version));
    const auto count = stream.read<std::uint32_t>();
    if (count > stream.remaining() / kMinEntityBytes)
        damaged("more entities than the stream can hold");
    m_entries.reserve(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        const auto typeIndex = stream.read<std::uint32_t>();
        if (typeIndex >= types.size() || types[typeIndex] == nullptr)
            damaged("entity " + std::to_string(index) + " has no entity type");
        const auto id = stream.read<std::uint64_t>();
        const std::size_t offset = stream.position();
        (void)stream.read<std::uint32_t>();
        const auto length = stream.read<std::uint32_t>();
        stream.skip(length);
        m_entries.push_back(Entry{types[typeIndex], id, offset, stream.position() - offset, XMLNode()});
    }
    const auto rootCount = stream.read<std::uint32_t>();
    if (rootCount > stream.remaining() / kMinRootBytes)
        damaged("more roots than the stream can hold");
    for (std::uint32_t index = 0; index < rootCount; ++index) {
        std::string rootId;
        stream.read(rootId);
        const auto id = stream.read<std::uint64_t>();
        if (rootId.empty() || rootId.size() > kMaxRootIdLength || !m_roots.emplace(id, std::move(rootId)).second)
            damaged("root " + std::to_string(index) + " is not valid");
    }
    if (!stream.atEnd())
        damaged("bytes follow the roots");
}

void SegmentReader::readXmlTable(const std::vector<EntityMetaType*>& types)
{
    std::map<std::string, EntityMetaType*, std::less<>> byName;
    for (EntityMetaType* type : types) {
        if (type != nullptr)
            byName.emplace(type->typeName(), type);
    }
    // The reader keeps its bytes as long as the stream: the elements point into them.
    m_xml = std::make_unique<XmlReadStream>(std::span<std::uint8_t>(m_bytes));
    const XMLNode root = m_xml->root();
    if (root.name() != kSegmentElement)
        damaged("not a segment stream");
    const XMLNode entities = root.child(kEntitiesElement);
    if (entities.isNull())
        damaged("no entities element");
    for (XMLNode element = entities.firstChild(); !element.isNull(); element = element.nextSibling()) {
        const auto type = byName.find(element.nameView());
        if (type == byName.end())
            damaged("element <" + element.name() + "> is not an entity type of the document");
        const std::uint64_t id = element[kIdAttribute].asUInt64(kNoEntityId);
        m_entries.push_back(Entry{type->second, id, 0, 0, element});
    }
    const XMLNode roots = root.child(kRootsElement);
    for (XMLNode element = roots.isNull() ? XMLNode() : roots.firstChild(); !element.isNull(); element = element.nextSibling()) {
        std::string rootId = element["id"].asString();
        const std::uint64_t id = element["entity"].asUInt64(kNoEntityId);
        if (element.name() != kRootElement || rootId.empty() || rootId.size() > kMaxRootIdLength
            || !m_roots.emplace(id, std::move(rootId)).second)
            damaged("a root is not valid");
    }
}

void SegmentReader::makeEntities()
{
    // Ids are unique in the whole document; this segment's own duplicates are refused by attach.
    // Only the segments that hold entities already are asked (none, for the first one read).
    std::vector<const Segment*> others;
    for (const auto& other : m_segment.asset()->segments()) {
        if (other.get() != &m_segment && !other->empty())
            others.push_back(other.get());
    }
    const auto inOtherSegment = [&](EntityId id) {
        return std::any_of(others.begin(), others.end(), [&](const Segment* other) { return other->find(id) != nullptr; });
    };
    std::set<std::string> rootIds;
    for (const auto& [id, rootId] : m_roots) {
        if (!rootIds.insert(rootId).second)
            damaged("root \"" + rootId + "\" occurs twice");
    }
    std::size_t rootsPlaced = 0;
    for (Entry& entry : m_entries) {
        if (entry.id == kNoEntityId || inOtherSegment(entry.id))
            damaged("entity id " + std::to_string(entry.id) + " is not valid or occurs twice");
        const auto root = m_roots.empty() ? m_roots.end() : m_roots.find(entry.id);
        static const std::string noRoot;
        const std::string& rootId = root == m_roots.end() ? noRoot : root->second;
        rootsPlaced += root == m_roots.end() ? 0 : 1;
        // Held until the segment has it, so an entity refused here is deleted, not leaked.
        const StrongRef<Entity> entity(entry.metaType->create());
        // Root ids are unique already: a refusal here is an id this segment holds already.
        if (!m_segment.attach(*entity, entry.id, rootId))
            damaged("entity id " + std::to_string(entry.id) + " occurs twice");
        entry.entity = entity.get();
    }
    if (rootsPlaced != m_roots.size())
        damaged("a root names no entity of the segment");
}

void SegmentReader::loadEntities(const VisitorContext& context)
{
    const VisitorContext segmentContext = context.withSegment(&m_segment);
    try {
        if (m_mode == EStreamMode::eBinary) {
            const std::span<const std::uint8_t> bytes(m_bytes);
            for (const Entry& entry : m_entries) {
                const BinaryReadStream body(bytes.subspan(entry.offset, entry.length));
                (void)entry.metaType->load(*entry.entity, &body, segmentContext);
            }
            return;
        }
        for (const Entry& entry : m_entries)
            (void)entry.metaType->load(*entry.entity, m_xml.get(), segmentContext.withEntity(nullptr, entry.element));
    } catch (const Exception& error) {
        throw Exception(error.userText(), m_entryName + ": " + error.detail());
    }
}

} // namespace Kx
