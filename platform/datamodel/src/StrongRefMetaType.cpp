#include "datamodel/StrongRefMetaType.h"

#include "datamodel/BinaryStreams.h"
#include "datamodel/EntityChange.h"
#include "datamodel/EntityMetaType.h"
#include "datamodel/JSONStreams.h"
#include "datamodel/Segment.h"
#include "datamodel/VisitorContext.h"

#include <base/AppLogMgr.h>
#include <base/Strings.h>

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace Kx {

namespace {

std::string readableName(const std::type_info& type)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> demangled(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return status == 0 && demangled ? std::string(demangled.get()) : std::string(type.name());
}

const StrongRefBase& refOf(const void* value)
{
    return *static_cast<const StrongRefBase*>(value);
}

} // namespace

StrongRefMetaTypeBase::StrongRefMetaTypeBase(const std::type_info& referenced)
    : MemberMetaType("Kx.StrongRef<" + readableName(referenced) + ">", "StrongRefMetaType", 0,
          "StrongRef<" + readableName(referenced) + ">")
{
}

void StrongRefMetaTypeBase::set(void* value, Entity* entity)
{
    static_cast<StrongRefBase*>(value)->assign(entity);
}

Entity* StrongRefMetaTypeBase::resolve(EntityId id, const IEntityResolver* resolver) const
{
    if (id == kNoEntityId)
        return nullptr;
    Entity* entity = resolver != nullptr ? resolver->resolveEntity(id) : nullptr;
    if (entity == nullptr || !accepts(*entity)) {
        AppLogMgr::appLogEx(ELogLevel::eWarning,
            L"A reference to entity " + std::to_wstring(id) + L" was dropped: "
                + (entity == nullptr ? std::wstring(L"no such entity") : L"it is a " + ToIString(entity->entityMetaType().typeName()))
                + L" where a " + ToIString(typeName()) + L" was expected.");
        return nullptr;
    }
    return entity;
}

void StrongRefMetaTypeBase::save(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const
{
    const EntityId id = refOf(value).id();
    if (BinaryWriteStream* binary = asBinary(stream)) {
        binary->write(static_cast<std::uint64_t>(id));
        return;
    }
    XMLNode node = context.xmlNode();
    node[context.member()->name] = static_cast<std::uint64_t>(id);
}

void StrongRefMetaTypeBase::load(void* value, unsigned, const IReadStreamBase* stream, const VisitorContext& context) const
{
    EntityId id = kNoEntityId;
    if (const BinaryReadStream* binary = asBinary(stream)) {
        id = binary->read<std::uint64_t>();
    } else {
        XMLNode node = context.xmlNode();
        id = node[context.member()->name].asUInt64(kNoEntityId);
    }
    set(value, resolve(id, context.resolver()));
}

std::wstring StrongRefMetaTypeBase::toString(const void* value, const VisitorContext&) const
{
    const StrongRefBase& reference = refOf(value);
    return reference ? reference.entity()->onToString() : std::wstring(L"null");
}

void StrongRefMetaTypeBase::getJSON(const void* value, JSONGetStream* stream, const VisitorContext&) const
{
    const StrongRefBase& reference = refOf(value);
    stream->addText(reference ? std::to_string(reference.id()) : std::string("null"));
}

void StrongRefMetaTypeBase::setJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const
{
    const JSONRef json = stream->currentJSONRef();
    Entity* target = nullptr;
    if (!json.isNull()) {
        std::uint64_t id = 0;
        if (!json.get(id)) {
            stream->refuseValue();
            return;
        }
        const Entity* owner = stream->lastVisitedEntity();
        const IEntityResolver* resolver = context.resolver() != nullptr ? context.resolver()
            : owner != nullptr                                          ? owner->segment()
                                                                        : nullptr;
        target = resolve(id, resolver);
        // An id that names nothing, or an entity of another class, cannot be referred to.
        if (target == nullptr) {
            stream->refuseValue();
            return;
        }
    }
    if (target == refOf(value).entity())
        return;
    stream->recordChange([&] { set(value, target); });
}

bool StrongRefMetaTypeBase::readJSON(void* value, const JSONRef& json) const
{
    if (json.isNull() && json.exists()) {
        set(value, nullptr);
        return true;
    }
    std::uint64_t id = 0;
    return json.get(id) && id == refOf(value).id() && id != kNoEntityId;
}

bool StrongRefMetaTypeBase::equals(const void* first, const void* second) const
{
    return refOf(first).entity() == refOf(second).entity();
}

void StrongRefMetaTypeBase::copy(void* target, const void* source) const
{
    set(target, refOf(source).entity());
}

void StrongRefMetaTypeBase::clearReferences(void* value) const
{
    set(value, nullptr);
}

} // namespace Kx
