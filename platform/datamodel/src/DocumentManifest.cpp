#include "datamodel/DocumentManifest.h"

#include "datamodel/BlobFolder.h"
#include "internal/DocumentErrors.h"

#include <base/JSONNode.h>

#include <set>

namespace Kx {

namespace {

constexpr const char* kFormatName = "KxDocument";
constexpr std::size_t kMaxNameLength = 1024;
constexpr std::size_t kMaxIdentifierLength = 64;
constexpr std::size_t kMaxListLength = 1u << 20;

const char* kindName(DocumentManifest::ETypeKind kind)
{
    switch (kind) {
    case DocumentManifest::ETypeKind::eEntity:
        return "entity";
    case DocumentManifest::ETypeKind::eValue:
        return "value";
    case DocumentManifest::ETypeKind::eMember:
        break;
    }
    return "member";
}

[[noreturn]] void damaged(const std::string& why)
{
    throw DocumentErrors::corrupt("manifest: " + why);
}

template <class T>
T required(const JSONRef& object, const char* key)
{
    T value{};
    if (!object[key].get(value))
        damaged(std::string("\"") + key + "\" is missing or of the wrong kind");
    return value;
}

std::string requiredName(const JSONRef& object, const char* key, std::size_t maxLength)
{
    std::string value = required<std::string>(object, key);
    if (value.empty() || value.size() > maxLength)
        damaged(std::string("\"") + key + "\" is empty or too long");
    return value;
}

JSONRef requiredList(const JSONRef& object, const char* key)
{
    const JSONRef list = object[key];
    if (!list.isArray() || list.size() > kMaxListLength)
        damaged(std::string("\"") + key + "\" is not a list");
    return list;
}

DocumentManifest::ETypeKind typeKind(const std::string& text)
{
    if (text == "entity")
        return DocumentManifest::ETypeKind::eEntity;
    if (text == "value")
        return DocumentManifest::ETypeKind::eValue;
    if (text == "member")
        return DocumentManifest::ETypeKind::eMember;
    damaged("unknown type kind \"" + text + "\"");
}

} // namespace

std::string DocumentManifest::segmentEntry(std::size_t index, EStreamMode mode)
{
    return "segments/" + std::to_string(index) + (mode == EStreamMode::eBinary ? ".bin" : ".xml");
}

std::string DocumentManifest::blobEntry(const std::string& partName)
{
    return "blobs/" + partName;
}

std::string DocumentManifest::toJSON() const
{
    JSONNode root;
    root["format"] = kFormatName;
    root["formatVersion"] = static_cast<std::uint32_t>(formatVersion);
    root["identifier"] = identifier;
    root["stream"] = streamMode == EStreamMode::eBinary ? "binary" : "xml";
    root["blobFolder"] = multiLevelBlobFolder ? "multiLevel" : "flat";
    root["nextEntityId"] = static_cast<std::uint64_t>(nextEntityId);
    JSONNode typeList(std::string_view("[]"));
    for (const Type& type : types) {
        JSONNode item;
        item["id"] = type.id;
        item["name"] = type.name;
        item["kind"] = kindName(type.kind);
        item["version"] = static_cast<std::uint32_t>(type.version);
        typeList.append(item);
    }
    root["types"] = typeList;
    JSONNode segmentList(std::string_view("[]"));
    for (const Segment& segment : segments) {
        JSONNode item;
        item["name"] = segment.name;
        item["entry"] = segment.entry;
        item["entities"] = static_cast<std::uint64_t>(segment.entities);
        segmentList.append(item);
    }
    root["segments"] = segmentList;
    JSONNode partList(std::string_view("[]"));
    for (const BlobPart& part : blobParts) {
        JSONNode item;
        item["name"] = part.name;
        item["kind"] = part.kind;
        item["entry"] = part.entry;
        item["size"] = static_cast<std::uint64_t>(part.size);
        partList.append(item);
    }
    root["blobParts"] = partList;
    return root.stringify(true);
}

DocumentManifest DocumentManifest::fromJSON(std::string_view text)
{
    std::string error;
    const std::optional<JSONNode> parsed = JSONNode::parse(text, &error);
    if (!parsed)
        damaged("not JSON: " + error);
    const JSONRef root = parsed->ref();
    if (!root.isObject())
        damaged("not an object");
    if (required<std::string>(root, "format") != kFormatName)
        damaged("not a document manifest");

    DocumentManifest manifest;
    manifest.formatVersion = required<std::uint32_t>(root, "formatVersion");
    if (manifest.formatVersion > s_formatVersion)
        throw DocumentErrors::tooNew("document format " + std::to_string(manifest.formatVersion));
    manifest.identifier = requiredName(root, "identifier", kMaxIdentifierLength);
    const std::string stream = required<std::string>(root, "stream");
    if (stream != "binary" && stream != "xml")
        damaged("unknown stream kind \"" + stream + "\"");
    manifest.streamMode = stream == "binary" ? EStreamMode::eBinary : EStreamMode::eXML;
    const std::string folder = required<std::string>(root, "blobFolder");
    if (folder != "flat" && folder != "multiLevel")
        damaged("unknown blob folder kind \"" + folder + "\"");
    manifest.multiLevelBlobFolder = folder == "multiLevel";
    manifest.nextEntityId = required<std::uint64_t>(root, "nextEntityId");

    std::set<std::string> typeIds;
    const JSONRef types = requiredList(root, "types");
    for (std::size_t index = 0; index < types.size(); ++index) {
        const JSONRef item = types[index];
        Type type{requiredName(item, "id", kMaxNameLength), requiredName(item, "name", kMaxNameLength),
            typeKind(required<std::string>(item, "kind")), required<std::uint32_t>(item, "version")};
        if (!typeIds.insert(type.id).second)
            damaged("type " + type.id + " is listed twice");
        manifest.types.push_back(std::move(type));
    }

    std::set<std::string> segmentNames;
    const JSONRef segments = requiredList(root, "segments");
    for (std::size_t index = 0; index < segments.size(); ++index) {
        const JSONRef item = segments[index];
        Segment segment{requiredName(item, "name", kMaxNameLength), required<std::string>(item, "entry"),
            required<std::uint64_t>(item, "entities")};
        // Entry names are made by the writer, never taken from the file: nothing else is accepted.
        if (segment.entry != segmentEntry(index, manifest.streamMode))
            damaged("segment entry \"" + segment.entry + "\" is not where the format puts it");
        if (!segmentNames.insert(segment.name).second)
            damaged("segment \"" + segment.name + "\" is listed twice");
        manifest.segments.push_back(std::move(segment));
    }

    std::set<std::string> partNames;
    const JSONRef parts = requiredList(root, "blobParts");
    for (std::size_t index = 0; index < parts.size(); ++index) {
        const JSONRef item = parts[index];
        BlobPart part{required<std::string>(item, "name"), required<std::string>(item, "kind"),
            required<std::string>(item, "entry"), required<std::uint64_t>(item, "size")};
        if (!BlobFolder::isValidPartName(part.name, manifest.multiLevelBlobFolder) || !BlobFolder::isValidKind(part.kind))
            damaged("blob part name \"" + part.name + "\" or kind \"" + part.kind + "\" is not valid");
        if (part.entry != blobEntry(part.name))
            damaged("blob part entry \"" + part.entry + "\" is not where the format puts it");
        if (!partNames.insert(part.name).second)
            damaged("blob part \"" + part.name + "\" is listed twice");
        manifest.blobParts.push_back(std::move(part));
    }
    return manifest;
}

} // namespace Kx
