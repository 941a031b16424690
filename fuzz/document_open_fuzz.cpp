// Arbitrary bytes opened as a document (.kxd). The first byte chooses what the rest is:
//   0  the whole container (zip, manifest, streams, blob parts);
//   1  a binary segment stream, put in a sound container with a manifest of the test entities;
//   2  an XML segment stream, likewise.
// The wrapped forms let the fuzzer reach the segment reader and every value decoder behind the
// container's checksums. Opening must give a document or throw Kx::Exception; it must never crash,
// hang, read out of bounds or leak. An opened document is walked as JSON, so what was read is used.

#include <Types/Testors/GeLibTestor.h>
#include <Types/Testors/GeometryTestor.h>

#include <base/Exception.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/Segment.h>

#include <zip.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace {

// How many entities the stream says it holds, as the manifest must agree.
std::uint32_t entityCount(std::span<const std::uint8_t> stream, bool xml)
{
    if (!xml) {
        std::uint32_t count = 0;
        if (stream.size() >= 12)
            std::memcpy(&count, stream.data() + 8, sizeof count);
        return count;
    }
    const std::string text(stream.begin(), stream.end());
    std::uint32_t count = 0;
    for (const char* name : {"<GeometryTestor", "<GeLibTestor"}) {
        for (auto at = text.find(name); at != std::string::npos; at = text.find(name, at + 1))
            ++count;
    }
    return count;
}

std::string manifestFor(std::span<const std::uint8_t> stream, bool xml)
{
    std::string types;
    for (const Kx::EntityMetaType* type : {&Kx::GeometryTestor::s_metaType(), &Kx::GeLibTestor::s_metaType()}) {
        types += std::string(types.empty() ? "" : ",") + R"({"id":")" + type->metaTypeId() + R"(","name":")"
            + type->typeName() + R"(","kind":"entity","version":)" + std::to_string(type->version()) + "}";
    }
    return std::string(R"({"format":"KxDocument","formatVersion":1,"identifier":"FUZZ","stream":")") + (xml ? "xml" : "binary")
        + R"(","blobFolder":"flat","nextEntityId":1,"types":[)" + types + R"(],"segments":[{"name":"main","entry":"segments/0.)"
        + (xml ? "xml" : "bin") + R"(","entities":)" + std::to_string(entityCount(stream, xml)) + R"(}],"blobParts":[]})";
}

// A stored (uncompressed) zip container in memory with the manifest and the stream.
std::vector<std::uint8_t> containerWith(std::span<const std::uint8_t> stream, bool xml)
{
    const std::string manifest = manifestFor(stream, xml);
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* memory = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_source_keep(memory);
    zip_t* archive = zip_open_from_source(memory, ZIP_TRUNCATE, &error);
    const std::pair<const char*, std::span<const std::uint8_t>> entries[] = {
        {"manifest.json", {reinterpret_cast<const std::uint8_t*>(manifest.data()), manifest.size()}},
        {xml ? "segments/0.xml" : "segments/0.bin", stream},
    };
    for (const auto& [name, bytes] : entries) {
        zip_source_t* source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
        const zip_int64_t index = zip_file_add(archive, name, source, 0);
        zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0);
    }
    std::vector<std::uint8_t> container;
    if (zip_close(archive) == 0 && zip_source_open(memory) == 0) {
        std::uint8_t buffer[4096];
        for (zip_int64_t read; (read = zip_source_read(memory, buffer, sizeof buffer)) > 0;)
            container.insert(container.end(), buffer, buffer + read);
        zip_source_close(memory);
    }
    zip_source_free(memory);
    zip_error_fini(&error);
    return container;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::span<const std::uint8_t> rest(data + 1, size - 1);
    const std::vector<std::uint8_t> wrapped = data[0] % 3 == 0 ? std::vector<std::uint8_t>() : containerWith(rest, data[0] % 3 == 2);
    const std::span<const std::uint8_t> input = data[0] % 3 == 0 ? rest : std::span<const std::uint8_t>(wrapped);
    try {
        const std::unique_ptr<Kx::Document> document = Kx::DocumentFile::open(input);
        std::size_t length = 0;
        for (const auto& segment : document->segments()) {
            for (const auto& [id, entity] : segment->entities())
                length += Kx::entityToJSON(*entity).size();
        }
        volatile std::size_t sink = length;
        (void)sink;
    } catch (const Kx::Exception&) {
        // The stated failure of a document that cannot be opened.
    }
    return 0;
}
