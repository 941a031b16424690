#pragma once

namespace Kx {

class Entity;
class IReadStreamBase;
class IWriteStreamBase;
class JSONGetStream;
class JSONSetStream;
class VisitorContext;

// A type's own encoder, attached to its meta type. When a meta type has one, the data model hands
// it the type's save and load traffic, and its JSON when it says it implements JSON (otherwise the
// JSON goes member by member, as for a type without a callback); the lifecycle hooks run around
// saves, loads, asset saves and clones. Every hook's default does nothing.
class DataModelCallback {
public:
    explicit DataModelCallback(bool implementsJSON) : m_implementsJSON(implementsJSON) {}
    virtual ~DataModelCallback() = default;

    DataModelCallback(const DataModelCallback&) = delete;
    DataModelCallback& operator=(const DataModelCallback&) = delete;

    virtual void onPreSave(void* value, const VisitorContext& context) {}
    virtual void onPreSave(Entity* entity, const VisitorContext& context) {}
    virtual void onPostSave(void* value, const VisitorContext& context) {}
    virtual void onPostSave(Entity* entity, const VisitorContext& context) {}
    virtual void onPreLoad(void* value, const VisitorContext& context) {}
    virtual void onPreLoad(Entity* entity, const VisitorContext& context) {}
    virtual void onPostLoad(void* value, const VisitorContext& context) {}
    virtual void onPostLoad(Entity* entity, const VisitorContext& context) {}
    virtual void onPostMigrate(void* value, const VisitorContext& context) {}
    virtual void onPostMigrate(Entity* entity, const VisitorContext& context) {}
    virtual void onPreAssetSave(Entity* entity, const VisitorContext& context) {}
    virtual void onPostAssetLoad(void* value, const VisitorContext& context) {}
    virtual void onPostAssetLoad(Entity* entity, const VisitorContext& context) {}
    virtual void onPreCloneCopy(void* value, const VisitorContext& context) {}
    virtual void onPreCloneCopy(Entity* entity, const VisitorContext& context) {}
    virtual void onPostClonePaste(void* value, const VisitorContext& context) {}
    virtual void onPostClonePaste(Entity* entity, const VisitorContext& context) {}

    virtual void onSave(const void* value, IWriteStreamBase* stream, const VisitorContext& context) {}
    virtual void onLoad(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) {}
    virtual void doVisitables(void* value, const VisitorContext& context) {}
    [[nodiscard]] virtual bool doImplementJSON() const { return m_implementsJSON; }
    [[nodiscard]] virtual bool doIncludeJSON(void* value, JSONGetStream* stream, const VisitorContext& context) { return value != nullptr; }
    virtual void doGetJSON(void* value, JSONGetStream* stream, const VisitorContext& context) {}
    virtual void doSetJSON(void* value, JSONSetStream* stream, const VisitorContext& context) {}

private:
    bool m_implementsJSON;
};

} // namespace Kx
