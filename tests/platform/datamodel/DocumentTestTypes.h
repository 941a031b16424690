#pragma once

// Small entities, a value and a blob kind for the document tests: enough of each hook, reference
// and migration path to watch the data model run them.

#include <datamodel/Blob.h>
#include <datamodel/BlobSerializer.h>
#include <datamodel/BlobSerializerTrigger.h>
#include <datamodel/Entity.h>
#include <datamodel/MigrationHelper.h>
#include <datamodel/StrongRef.h>
#include <datamodel/Value.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace Kx {

class Document;
class EntityMetaType;
class MemberSet;
class ValueMetaType;
class VisitorContext;

namespace DocumentTest {

// What ran, in order: the hook, whose it was ("Node 3", "Mark 7", "store") and the visit's mode.
struct Hook {
    std::string name;
    std::string subject;
    std::uint32_t mode;
};
std::vector<Hook>& hookLog();
// The hook names alone, optionally only those whose name starts with `prefix`.
std::vector<std::string> hookNames(const std::string& prefix = {});

// Test entities alive right now: a document that fails to open or is closed must leave none.
std::atomic<int>& liveEntities();

} // namespace DocumentTest

// A value with a callback of its own. Version 2 stores the number as an int32 ("number" in XML);
// version 1 stored it as decimal text ("text"), which onPostMigrate turns into the number.
struct Mark final : Value {
    Mark() = default;
    explicit Mark(std::int32_t value) : number(value) {}
    [[nodiscard]] static ValueMetaType& s_metaType();
    const void* queryMTInterface(const MetaType* metaType) const override;

    std::int32_t number = 0;
    // Only while a value stored with version 1 migrates.
    std::string legacyText;
    // The migrating version seen by onPostMigrate (0 when it never ran).
    std::uint32_t migratedFrom = 0;
};

// An entity with two member sets: version 0 had a title and the sides of a rectangle; version 1
// keeps the title, stores the area and has a Mark.
class Shape final : public Entity {
public:
    Shape();
    ~Shape() override;
    [[nodiscard]] static EntityMetaType& s_metaType();
    void declareMembers(unsigned version, MemberSet* memberSet);
    EMigrationStatus onPostMigrate(unsigned storedVersion, const VisitorContext& context);

    std::wstring title;
    double area = 0;
    Mark mark;
    // Members of version 0, read only while migrating.
    std::int32_t legacyWidth = 0;
    std::int32_t legacyHeight = 0;
};

// An entity with references and a callback that logs every entity hook.
class Node final : public Entity {
public:
    Node();
    ~Node() override;
    [[nodiscard]] static EntityMetaType& s_metaType();
    void declareMembers(unsigned version, MemberSet* memberSet);

    std::wstring label;
    StrongRef<Node> next;
    StrongRef<Shape> shape;
    Mark mark;
};

// A blob serializer trigger without a callback: its payload travels in a blob part of kind "store".
class Store final : public BlobSerializerTrigger {
public:
    Store();
    ~Store() override;
    [[nodiscard]] static EntityMetaType& s_metaType();
    void declareMembers(unsigned version, MemberSet* memberSet);
    void prepareBlobPreSave(IBlobFolder* blobFolder, bool forCloning, CloningStream* stream) override;
    void syncToBlobAfterLoad(IBlobFolder* blobFolder, bool forCloning, CloningStream* stream) override;

    std::string name;
    // Kept in the blob part, not in the segment's stream.
    std::string payload;
};

class StoreBlob final : public Blob {
public:
    StoreBlob(Document* asset, BlobPart* part, BlobSerializer* serializer, std::string content)
        : Blob(asset, part, serializer)
        , content(std::move(content))
    {
    }
    std::string content;
};

// Moves a StoreBlob through a temporary file, as serializers of foreign formats do.
class StoreBlobSerializer final : public BlobSerializer {
public:
    static StoreBlobSerializer& get();
    void doSave(Blob* blob, BlobStatus& status) override;
    [[nodiscard]] Blob* doLoad(Document* asset, BlobPart* part, BlobStatus& status) override;

    // Set to make the next doLoad report a failure through the status.
    bool failNextLoad = false;

private:
    StoreBlobSerializer() : BlobSerializer("store") {}
};

namespace DocumentTest {

// Every segment of the document with its roots and each entity's id, type and JSON: two documents
// with equal snapshots hold the same data.
std::string snapshot(const Document& document);
// Sets a node's label inside an EntityChange, as code that changes members directly must.
void setLabel(Node& node, const std::wstring& label);

using ZipEntries = std::vector<std::pair<std::string, std::vector<std::uint8_t>>>;
// The entries of a zip file, in order, names as stored.
ZipEntries readZip(const std::filesystem::path& file);
// Writes the entries as they are (names unchecked), deflated or stored.
void writeZip(const std::filesystem::path& file, const ZipEntries& entries, bool deflate = true);
std::vector<std::uint8_t>& entry(ZipEntries& entries, const std::string& name);
std::vector<std::uint8_t> bytesOf(const std::string& text);
std::string textOf(const std::vector<std::uint8_t>& bytes);

} // namespace DocumentTest
} // namespace Kx
