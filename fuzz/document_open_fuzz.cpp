// Arbitrary bytes opened as a document (.kxd): the zip container, the manifest, the segment
// streams and the entities in them (the library's test entities, with every value type and the
// geometry kernel's). Opening must either give a document or throw Kx::Exception; it must never
// crash, hang, read out of bounds or leak. An opened document is walked as JSON, so that whatever
// was read is used.

#include <Types/Testors/GeLibTestor.h>
#include <Types/Testors/GeometryTestor.h>

#include <base/Exception.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/Segment.h>

#include <cstddef>
#include <cstdint>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        const std::unique_ptr<Kx::Document> document = Kx::DocumentFile::open(std::span<const std::uint8_t>(data, size));
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
