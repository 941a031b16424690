#include "datamodel/BlobSerializer.h"

#include <base/Assert.h>

#include <map>
#include <mutex>

namespace Kx {

namespace {

struct SerializerRegistry {
    std::mutex mutex;
    std::map<std::string, BlobSerializer*, std::less<>> byKind;
};

SerializerRegistry& registry()
{
    // Never destroyed: serializers of other libraries leave from their own static destructors.
    static auto* instance = new SerializerRegistry();
    return *instance;
}

} // namespace

BlobSerializer::BlobSerializer(std::string kind) : m_kind(std::move(kind))
{
    SerializerRegistry& serializers = registry();
    std::lock_guard lock(serializers.mutex);
    m_registered = serializers.byKind.emplace(m_kind, this).second;
    KX_ASSERT(m_registered);
}

BlobSerializer::~BlobSerializer()
{
    if (!m_registered)
        return;
    SerializerRegistry& serializers = registry();
    std::lock_guard lock(serializers.mutex);
    serializers.byKind.erase(m_kind);
}

BlobSerializer* BlobSerializer::find(std::string_view kind)
{
    SerializerRegistry& serializers = registry();
    std::lock_guard lock(serializers.mutex);
    const auto found = serializers.byKind.find(kind);
    return found == serializers.byKind.end() ? nullptr : found->second;
}

} // namespace Kx
