// Arbitrary bytes as the index of an online material library (index.json), as a hostile server
// could send them: the reader refuses with Kx::Exception or answers an index whose paths are all
// safe, which writes and reads back to itself. It never crashes, and a text of many items costs
// linear time and bounded memory.

#include <Types/Online/OnlineLibraryIndex.h>

#include <base/Exception.h>

#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Kx::Types::OnlineLibraryIndex index;
    try {
        index = Kx::Types::readOnlineLibraryIndex(text);
    } catch (const Kx::Exception&) {
        return 0;
    }
    for (const Kx::Types::OnlineMaterial& material : index.materials) {
        if (!Kx::Types::isSafeOnlinePath(material.file.path))
            __builtin_trap();
        for (const Kx::Types::OnlineTexture& texture : material.textures) {
            if (!Kx::Types::isSafeOnlinePath(texture.file.path) || texture.id.rfind(material.uuid + "/", 0) != 0)
                __builtin_trap();
        }
    }
    try {
        if (Kx::Types::readOnlineLibraryIndex(Kx::Types::writeOnlineLibraryIndex(index)) != index)
            __builtin_trap();
    } catch (const Kx::Exception&) {
        __builtin_trap();
    }
    return 0;
}
