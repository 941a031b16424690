#include "DocumentTestTypes.h"

#include <datamodel/BinaryStreams.h>
#include <datamodel/BlobFolder.h>
#include <datamodel/BlobPart.h>
#include <datamodel/DataModelCallback.h>
#include <datamodel/Document.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/Segment.h>
#include <datamodel/EntityChange.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/IntrinsicMetaType.h>
#include <datamodel/JSONStreams.h>
#include <datamodel/MemberSet.h>
#include <datamodel/StrongRefMetaType.h>
#include <datamodel/ValueMetaType.h>
#include <datamodel/VisitorContext.h>

#include <base/Exception.h>
#include <base/Strings.h>
#include <base/TempFile.h>

#include <zip.h>

#include <charconv>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <typeinfo>

namespace Kx {

namespace DocumentTest {

std::vector<Hook>& hookLog()
{
    static std::vector<Hook> log;
    return log;
}

std::vector<std::string> hookNames(const std::string& prefix)
{
    std::vector<std::string> names;
    for (const Hook& hook : hookLog()) {
        if (hook.name.starts_with(prefix))
            names.push_back(hook.name);
    }
    return names;
}

std::atomic<int>& liveEntities()
{
    static std::atomic<int> count{0};
    return count;
}

} // namespace DocumentTest

namespace {

using DocumentTest::hookLog;

template <class T>
void addScalar(MemberSet* memberSet, const char* name, T& field)
{
    memberSet->addNewMember(name, &field, typeid(T).name(), IntrinsicMetaType<T>::get());
}

void addMark(MemberSet* memberSet, const char* name, Mark& field)
{
    memberSet->addNewMember(name, &field, typeid(Mark).name(), &Mark::s_metaType());
}

std::string subjectOf(const Entity* entity)
{
    return entity == nullptr ? std::string("?") : entity->entityMetaType().typeName() + " " + std::to_string(entity->id());
}

void logValue(const char* hook, void* value, const VisitorContext& context)
{
    hookLog().push_back({hook, "Mark " + std::to_string(static_cast<Mark*>(value)->number), context.mode()});
}

void logEntity(const char* hook, Entity* entity, const VisitorContext& context)
{
    hookLog().push_back({hook, subjectOf(entity), context.mode()});
}

class MarkCallback final : public DataModelCallback {
public:
    MarkCallback() : DataModelCallback(true) {}

    void onSave(const void* value, IWriteStreamBase* stream, const VisitorContext& context) override
    {
        const Mark& mark = *static_cast<const Mark*>(value);
        if (BinaryWriteStream* binary = asBinary(stream)) {
            binary->write(mark.number);
            return;
        }
        XMLNode node = context.xmlNode();
        node["number"] = mark.number;
    }
    void onLoad(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) override
    {
        Mark& mark = *static_cast<Mark*>(value);
        const BinaryReadStream* binary = asBinary(stream);
        XMLNode node = context.xmlNode();
        if (version < 2)
            mark.legacyText = binary != nullptr ? [&] { std::string text; binary->read(text); return text; }() : node["text"].asString();
        else
            mark.number = binary != nullptr ? binary->read<std::int32_t>() : node["number"].asInt32();
    }
    void doGetJSON(void* value, JSONGetStream* stream, const VisitorContext&) override
    {
        stream->addText("{\"number\":" + std::to_string(static_cast<Mark*>(value)->number) + "}");
    }
    void doSetJSON(void* value, JSONSetStream* stream, const VisitorContext&) override
    {
        Mark& mark = *static_cast<Mark*>(value);
        std::int32_t number = 0;
        if (!stream->currentJSONRef()["number"].get(number) || number == mark.number)
            return;
        EntityChange change(stream->lastVisitedEntity(), eEntityModified, kAnyMember, eChangeUndoable | eChangeNotifies, 0, true);
        mark.number = number;
        stream->incrementMembersUpdated();
    }

    void onPreSave(void* value, const VisitorContext& context) override { logValue("value.preSave", value, context); }
    void onPostSave(void* value, const VisitorContext& context) override { logValue("value.postSave", value, context); }
    void onPreLoad(void* value, const VisitorContext& context) override { logValue("value.preLoad", value, context); }
    void onPostLoad(void* value, const VisitorContext& context) override { logValue("value.postLoad", value, context); }
    void onPostAssetLoad(void* value, const VisitorContext& context) override { logValue("value.postAssetLoad", value, context); }
    void onPreCloneCopy(void* value, const VisitorContext& context) override { logValue("value.preCloneCopy", value, context); }
    void onPostClonePaste(void* value, const VisitorContext& context) override { logValue("value.postClonePaste", value, context); }
};

class MarkMetaType final : public ValueMetaType {
public:
    MarkMetaType() : ValueMetaType("0D6A1F3C-5B2E-4C7D-9E8F-10A2B3C4D5E6", "MarkValueMetaType", 2, "Mark", "") {}

protected:
    [[nodiscard]] std::size_t doSizeInBytes(const VisitorContext&) const override { return sizeof(Mark); }
    [[nodiscard]] void* doConstruct() override { return ready(new Mark()); }
    void* doConstruct(void* memory, const VisitorContext&) override { return ready(new (memory) Mark()); }
    void doDestruct(void* value) override { delete static_cast<Mark*>(value); }
    [[nodiscard]] const void* doQueryMTInterface(void* value) override { return static_cast<Mark*>(value)->queryMTInterface(this); }
    void onMigratingMemberSet(void* value, unsigned, MemberSet* memberSet, const VisitorContext&) override
    {
        declare(*static_cast<Mark*>(value), memberSet);
    }
    [[nodiscard]] MigrationHelper* doMigrationHelper(void* value) override { return static_cast<Mark*>(value)->migrationHelper(); }
    [[nodiscard]] MigrationHelper* doCreateMigrationHelper(void*, const VisitorContext&) override { return nullptr; }
    bool doDeleteMigrationHelper(void*, const VisitorContext&) override { return false; }
    void doMigratingVersion(void* value, unsigned version, const VisitorContext&) override
    {
        static_cast<Mark*>(value)->migratingVersion(version);
    }
    [[nodiscard]] unsigned doMigratingVersion(void* value, const VisitorContext&) override
    {
        return static_cast<Mark*>(value)->migratingVersion();
    }
    [[nodiscard]] bool doEquals(const void* first, const void* second) const override
    {
        return static_cast<const Mark*>(first)->number == static_cast<const Mark*>(second)->number;
    }
    void doCopy(void* target, const void* source) const override
    {
        static_cast<Mark*>(target)->number = static_cast<const Mark*>(source)->number;
    }
    EMigrationStatus onPostMigrate(void* value, unsigned version, const VisitorContext& context) override
    {
        Mark& mark = *static_cast<Mark*>(value);
        mark.migratedFrom = mark.migratingVersion();
        int parsed = 0;
        std::from_chars(mark.legacyText.data(), mark.legacyText.data() + mark.legacyText.size(), parsed);
        mark.number = parsed;
        mark.legacyText.clear();
        logValue("value.postMigrate", value, context);
        return eMigrationDone;
    }

private:
    void declare(Mark& mark, MemberSet* memberSet)
    {
        MemberSet::initialize(memberSet, &mark, "Mark");
        addScalar(memberSet, "number", mark.number);
        dataModelCallback(&s_callback);
    }
    Mark* ready(Mark* mark)
    {
        MemberSet* members = memberSet(~0u);
        if (!members->isComplete()) {
            MemberSet::Mutex::scoped_lock lock(members->mutex(), /*write=*/true);
            if (!members->isInitialized())
                declare(*mark, members);
            members->markComplete();
        }
        return mark;
    }

    static inline MarkCallback s_callback;
};

class NodeCallback final : public DataModelCallback {
public:
    NodeCallback() : DataModelCallback(false) {}
    void onPreSave(Entity* entity, const VisitorContext& context) override { logEntity("entity.preSave", entity, context); }
    void onPostSave(Entity* entity, const VisitorContext& context) override { logEntity("entity.postSave", entity, context); }
    void onPreLoad(Entity* entity, const VisitorContext& context) override { logEntity("entity.preLoad", entity, context); }
    void onPostLoad(Entity* entity, const VisitorContext& context) override { logEntity("entity.postLoad", entity, context); }
    void onPreAssetSave(Entity* entity, const VisitorContext& context) override { logEntity("entity.preAssetSave", entity, context); }
    void onPostAssetLoad(Entity* entity, const VisitorContext& context) override { logEntity("entity.postAssetLoad", entity, context); }
    void onPreCloneCopy(Entity* entity, const VisitorContext& context) override { logEntity("entity.preCloneCopy", entity, context); }
    void onPostClonePaste(Entity* entity, const VisitorContext& context) override { logEntity("entity.postClonePaste", entity, context); }
};

} // namespace

ValueMetaType& Mark::s_metaType()
{
    static MarkMetaType metaType;
    return metaType;
}

const void* Mark::queryMTInterface(const MetaType* metaType) const
{
    return metaType == &s_metaType() ? this : nullptr;
}

Shape::Shape() : Entity(s_metaType()) { ++DocumentTest::liveEntities(); }
Shape::~Shape() { --DocumentTest::liveEntities(); }

EntityMetaType& Shape::s_metaType()
{
    static TEntityMetaType<Shape> metaType("7B3E0A6C-1D2F-4E58-A9B0-C1D2E3F40516", "Shape", 1);
    return metaType;
}

void Shape::declareMembers(unsigned version, MemberSet* memberSet)
{
    addScalar(memberSet, "title", title);
    if (version == 0) {
        addScalar(memberSet, "width", legacyWidth);
        addScalar(memberSet, "height", legacyHeight);
        return;
    }
    addScalar(memberSet, "area", area);
    addMark(memberSet, "mark", mark);
}

EMigrationStatus Shape::onPostMigrate(unsigned storedVersion, const VisitorContext& context)
{
    logEntity("entity.postMigrate", this, context);
    if (storedVersion == 0)
        area = static_cast<double>(legacyWidth) * legacyHeight;
    return eMigrationDone;
}

Node::Node() : Entity(s_metaType()) { ++DocumentTest::liveEntities(); }
Node::~Node() { --DocumentTest::liveEntities(); }

EntityMetaType& Node::s_metaType()
{
    static NodeCallback callback;
    static EntityMetaType& metaType = []() -> EntityMetaType& {
        static TEntityMetaType<Node> made("4A9D2C7E-3B1F-4E60-8D75-96A0B1C2D3E4", "Node", 0);
        made.dataModelCallback(&callback);
        return made;
    }();
    return metaType;
}

void Node::declareMembers(unsigned, MemberSet* memberSet)
{
    addScalar(memberSet, "label", label);
    addMember(memberSet, "next", next);
    addMember(memberSet, "shape", shape);
    addMark(memberSet, "mark", mark);
}

Store::Store() : BlobSerializerTrigger(s_metaType()) { ++DocumentTest::liveEntities(); }
Store::~Store() { --DocumentTest::liveEntities(); }

EntityMetaType& Store::s_metaType()
{
    static TEntityMetaType<Store> metaType("2E8C4B1A-7F3D-4A69-B5C0-D1E2F3A4B5C6", "Store", 0);
    return metaType;
}

void Store::declareMembers(unsigned, MemberSet* memberSet)
{
    declareTriggerMembers(memberSet);
    addScalar(memberSet, "name", name);
}

void Store::prepareBlobPreSave(IBlobFolder* blobFolder, bool, CloningStream*)
{
    hookLog().push_back({"trigger.prepare", name, eVisitSave});
    // Made afresh for every save, as triggers whose data lives outside the document do.
    (void)deleteBlobPart(blobFolder);
    BlobPart* part = makeBlobPart(blobFolder, name, "store");
    part->markUsed();
    auto blob = std::make_unique<StoreBlob>(asset(), part, nullptr, payload);
    blob->markUsed();
    part->blob(std::move(blob));
}

void Store::syncToBlobAfterLoad(IBlobFolder* blobFolder, bool, CloningStream*)
{
    hookLog().push_back({"trigger.sync", name, eVisitLoad});
    BlobPart* part = blobPart(blobFolder);
    auto* blob = part != nullptr ? dynamic_cast<StoreBlob*>(part->blob()) : nullptr;
    if (blob == nullptr)
        throw Exception(L"The store's blob is missing.", "Store " + name);
    payload = blob->content;
}

StoreBlobSerializer& StoreBlobSerializer::get()
{
    static StoreBlobSerializer serializer;
    return serializer;
}

void StoreBlobSerializer::doSave(Blob* blob, BlobStatus& status)
{
    hookLog().push_back({"blob.doSave", blob->blobPart()->name(), eVisitSave});
    const TempFile file("store");
    {
        std::ofstream out(file.path(), std::ios::binary);
        out << static_cast<StoreBlob*>(blob)->content;
    }
    if (!blob->blobPart()->createZipPartFromFile(file.path()))
        status.fail(L"The store could not be written.", file.path().string());
}

Blob* StoreBlobSerializer::doLoad(Document* asset, BlobPart* part, BlobStatus& status)
{
    hookLog().push_back({"blob.doLoad", part->name(), eVisitLoad});
    if (std::exchange(failNextLoad, false)) {
        status.fail(L"The store cannot be read.", part->name());
        return nullptr;
    }
    const TempFile file("store");
    if (!part->extractZipPartToFile(file.path())) {
        status.fail(L"The store cannot be read.", part->name());
        return nullptr;
    }
    std::ifstream in(file.path(), std::ios::binary);
    std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return new StoreBlob(asset, part, this, std::move(content));
}

namespace {
// Registered when the test program starts, as a library registers its types when it loads: a
// document names its types, and opening one must find them before anything else made them.
const bool s_typesRegistered = ((void)Mark::s_metaType(), (void)Shape::s_metaType(), (void)Node::s_metaType(),
    (void)Store::s_metaType(), (void)StoreBlobSerializer::get(), true);
} // namespace

namespace DocumentTest {

std::string snapshot(const Document& document)
{
    std::string text;
    for (const auto& segment : document.segments()) {
        text += "segment " + segment->name() + (segment->isTransient() ? " (transient)" : "") + "\n";
        for (const auto& [rootId, id] : segment->roots())
            text += "  root " + rootId + " = " + std::to_string(id) + "\n";
        for (const auto& [id, entity] : segment->entities())
            text += "  " + std::to_string(id) + " " + entity->entityMetaType().typeName() + " " + entityToJSON(*entity) + "\n";
    }
    return text;
}

void setLabel(Node& node, const std::wstring& label)
{
    EntityChange change(&node, eEntityModified, kAnyMember, eChangeUndoable | eChangeNotifies, 0, true);
    node.label = label;
}

ZipEntries readZip(const std::filesystem::path& file)
{
    int error = 0;
    zip_t* archive = zip_open(file.c_str(), ZIP_RDONLY, &error);
    if (archive == nullptr)
        throw std::runtime_error("cannot open " + file.string());
    ZipEntries entries;
    for (zip_int64_t index = 0; index < zip_get_num_entries(archive, 0); ++index) {
        zip_stat_t stat;
        zip_stat_index(archive, index, ZIP_FL_ENC_RAW, &stat);
        std::vector<std::uint8_t> bytes(stat.size);
        zip_file_t* entry = zip_fopen_index(archive, index, 0);
        if (stat.size != 0)
            zip_fread(entry, bytes.data(), stat.size);
        zip_fclose(entry);
        entries.emplace_back(zip_get_name(archive, index, ZIP_FL_ENC_RAW), std::move(bytes));
    }
    zip_discard(archive);
    return entries;
}

void writeZip(const std::filesystem::path& file, const ZipEntries& entries, bool deflate)
{
    int error = 0;
    zip_t* archive = zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (archive == nullptr)
        throw std::runtime_error("cannot create " + file.string());
    for (const auto& [name, bytes] : entries) {
        zip_source_t* source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
        const zip_int64_t index = zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_RAW);
        if (index < 0) {
            zip_source_free(source);
            zip_discard(archive);
            throw std::runtime_error("cannot add " + name);
        }
        zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), deflate ? ZIP_CM_DEFLATE : ZIP_CM_STORE, 0);
    }
    if (zip_close(archive) != 0) {
        zip_discard(archive);
        throw std::runtime_error("cannot write " + file.string());
    }
}

std::vector<std::uint8_t>& entry(ZipEntries& entries, const std::string& name)
{
    for (auto& [entryName, bytes] : entries) {
        if (entryName == name)
            return bytes;
    }
    throw std::runtime_error("no entry " + name);
}

std::vector<std::uint8_t> bytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::string textOf(const std::vector<std::uint8_t>& bytes)
{
    return {bytes.begin(), bytes.end()};
}

} // namespace DocumentTest
} // namespace Kx
