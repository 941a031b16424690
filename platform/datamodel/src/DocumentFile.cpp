#include "datamodel/DocumentFile.h"

#include "datamodel/Blob.h"
#include "datamodel/BlobFolder.h"
#include "datamodel/BlobPart.h"
#include "datamodel/BlobSerializer.h"
#include "datamodel/Document.h"
#include "datamodel/DocumentAdapter.h"
#include "datamodel/EntityMetaType.h"
#include "datamodel/MemberSet.h"
#include "datamodel/MetaTypeRegistry.h"
#include "datamodel/MigrationLog.h"
#include "datamodel/MigrationStep.h"
#include "datamodel/Segment.h"
#include "datamodel/ValueMetaType.h"
#include "datamodel/VisitorContext.h"
#include "internal/DocumentErrors.h"
#include "internal/MemberVisitor.h"
#include "internal/SegmentStream.h"
#include "internal/ZipArchive.h"

#include <base/FaultInjection.h>
#include <base/TempFile.h>

#include <fcntl.h>
#include <unistd.h>

#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace Kx {

namespace {

void failAt(const char* point)
{
    if (FaultInjection::shouldFail(point))
        throw DocumentErrors::saveFailed(std::string("fault injected at ") + point);
}

std::vector<std::uint8_t> bytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

// The manifest's list of types: every entity type of the saved segments, then the types of their
// members (and of the members of values saved member by member), each once.
class TypeCollector {
public:
    explicit TypeCollector(DocumentManifest& manifest) : m_manifest(manifest) {}

    void addEntityType(EntityMetaType& metaType)
    {
        if (m_index.count(&metaType) != 0)
            return;
        m_index.emplace(&metaType, static_cast<std::uint32_t>(m_manifest.types.size()));
        m_manifest.types.push_back({metaType.metaTypeId(), metaType.typeName(), DocumentManifest::ETypeKind::eEntity, metaType.version()});
        addMembers(metaType.memberSet());
    }
    [[nodiscard]] const TypeIndex& index() const noexcept { return m_index; }

private:
    void addMembers(const MemberSet& members)
    {
        for (const Member& member : members.members()) {
            const MemberMetaType* metaType = member.metaType;
            if (!m_members.insert(metaType).second)
                continue;
            const ValueMetaType* value = metaType->asValueMetaType();
            m_manifest.types.push_back({metaType->metaTypeId(), metaType->typeName(),
                value != nullptr ? DocumentManifest::ETypeKind::eValue : DocumentManifest::ETypeKind::eMember,
                metaType->version()});
            if (value != nullptr) {
                const MemberSet& nested = value->currentMemberSet();
                if (value->dataModelCallback() == nullptr)
                    addMembers(nested);
            }
        }
    }

    DocumentManifest& m_manifest;
    TypeIndex m_index;
    std::unordered_set<const MemberMetaType*> m_members;
};

// The temporary file a save writes, beside its target; removed unless it was renamed over the target.
class SaveTarget {
public:
    explicit SaveTarget(const std::filesystem::path& target) : m_target(target), m_temporary(besideTarget(target)) {}

    [[nodiscard]] const std::filesystem::path& temporary() const noexcept { return m_temporary.path(); }

    // Flushes the written file to storage and puts it in the target's place.
    void replaceTarget()
    {
        const int descriptor = ::open(temporary().c_str(), O_RDONLY | O_CLOEXEC);
        const bool synced = descriptor >= 0 && ::fsync(descriptor) == 0;
        if (descriptor >= 0)
            ::close(descriptor);
        if (!synced)
            throw DocumentErrors::saveFailed("cannot flush " + temporary().string());
        failAt("DocumentFile.save.rename");
        std::error_code error;
        std::filesystem::rename(temporary(), m_target, error);
        if (error)
            throw DocumentErrors::saveFailed("cannot replace " + m_target.string() + ": " + error.message());
        m_temporary.release();
    }

private:
    static TempFile besideTarget(const std::filesystem::path& target)
    {
        try {
            return TempFile::beside(target);
        } catch (const Exception& error) {
            throw DocumentErrors::saveFailed(error.detail());
        }
    }

    std::filesystem::path m_target;
    TempFile m_temporary;
};

void runPreAssetSave(Document& document)
{
    const VisitorContext saving(eVisitSave);
    for (const auto& segment : document.segments()) {
        if (segment->isTransient())
            continue;
        for (Entity* entity : segment->inHookOrder())
            entity->entityMetaType().preAssetSave(*entity, saving.withSegment(segment.get()).withEntity(entity, XMLNode()));
    }
}

void saveBlobParts(Document& document, DocumentManifest& manifest, ZipWriter& zip)
{
    for (const auto& [name, part] : document.blobFolder()->blobParts()) {
        if (!part->isUsed())
            continue;
        failAt("DocumentFile.save.blob");
        if (Blob* blob = part->blob()) {
            if (BlobSerializer* serializer = BlobSerializer::find(part->kind())) {
                BlobStatus status;
                serializer->doSave(blob, status);
                if (!status.ok)
                    throw Exception(status.message, status.detail);
            }
        }
        if (!part->hasZipPart())
            throw DocumentErrors::saveFailed("blob part " + name + " is used but has no content");
        const std::string entry = DocumentManifest::blobEntry(name);
        manifest.blobParts.push_back({name, part->kind(), entry, part->zipPart().size()});
        zip.add(entry, part->zipPart(), DocumentLimits::s_maxPartSize);
    }
}

DocumentManifest manifestOf(const ZipReader& zip, const DocumentLimits& limits)
{
    const std::vector<std::uint8_t> bytes = zip.read(DocumentManifest::s_entryName, limits.maxManifestSize);
    return DocumentManifest::fromJSON(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

// Every entity's post-asset-load hook (roots first in each segment), then those of the values that
// have one.
void runPostAssetLoad(Document& document, const VisitorContext& loading)
{
    std::vector<std::vector<Entity*>> hookOrder;
    std::vector<VisitorContext> segmentContexts;
    for (const auto& segment : document.segments()) {
        hookOrder.push_back(segment->inHookOrder());
        segmentContexts.push_back(loading.withSegment(segment.get()));
    }
    for (std::size_t index = 0; index < hookOrder.size(); ++index) {
        for (Entity* entity : hookOrder[index])
            entity->entityMetaType().postAssetLoad(*entity, segmentContexts[index].withEntity(entity, XMLNode()));
    }
    // Per entity type, found once: most value types have no document hooks to run.
    std::unordered_map<const EntityMetaType*, std::vector<MemberVisitor::ValuePlace>> hookedValues;
    const EntityMetaType* lastType = nullptr;
    const std::vector<MemberVisitor::ValuePlace>* places = nullptr;
    for (std::size_t index = 0; index < hookOrder.size(); ++index) {
        for (Entity* entity : hookOrder[index]) {
            EntityMetaType& type = entity->entityMetaType();
            if (&type != lastType) {
                auto [found, inserted] = hookedValues.try_emplace(&type);
                if (inserted)
                    found->second = MemberVisitor::valuesHearingDocumentHooks(type.memberSet());
                lastType = &type;
                places = &found->second;
            }
            if (places->empty())
                continue;
            const VisitorContext context = segmentContexts[index].withEntity(entity, XMLNode());
            for (const auto& [offset, metaType] : *places)
                metaType->postAssetLoad(reinterpret_cast<char*>(static_cast<void*>(entity)) + offset, context);
        }
    }
}

std::unique_ptr<Document> openFrom(const ZipReader& zip, const DocumentOpenOptions& options)
{
    const DocumentManifest manifest = manifestOf(zip, options.limits);

    StoredVersions versions;
    std::vector<EntityMetaType*> entityTypes(manifest.types.size(), nullptr);
    for (std::size_t index = 0; index < manifest.types.size(); ++index) {
        const DocumentManifest::Type& type = manifest.types[index];
        MetaType* known = MetaTypeRegistry::get().find(type.id);
        if (known != nullptr && type.version > known->version())
            throw DocumentErrors::tooNew(type.name + " version " + std::to_string(type.version));
        if (type.kind == DocumentManifest::ETypeKind::eEntity) {
            entityTypes[index] = dynamic_cast<EntityMetaType*>(known);
            if (entityTypes[index] == nullptr)
                throw DocumentErrors::unknownType("entity type " + type.name + " (" + type.id + ")");
        }
        // Only versions that differ are listed: every member of a document asks, and most
        // documents are as current as the build reading them.
        if (known == nullptr || type.version != known->version())
            versions.emplace(type.id, type.version);
    }

    auto document = std::make_unique<Document>(manifest.multiLevelBlobFolder ? EBlobFolderKind::eMultiLevel : EBlobFolderKind::eFlat);
    document->identifier(options.asCopy ? Document::newIdentifier() : manifest.identifier);
    auto& folder = static_cast<BlobFolder&>(*document->blobFolder());
    for (const DocumentManifest::BlobPart& stored : manifest.blobParts) {
        std::vector<std::uint8_t> bytes = zip.read(stored.entry, options.limits.maxPartSize);
        if (bytes.size() != stored.size)
            throw DocumentErrors::corrupt(stored.entry + ": not the size the manifest gives");
        BlobPart* part = folder.addBlobPart(stored.name, stored.kind);
        if (part == nullptr)
            throw DocumentErrors::corrupt(stored.entry + ": the part cannot be placed");
        part->zipPart(std::move(bytes));
        part->markUsed();
        if (BlobSerializer* serializer = BlobSerializer::find(stored.kind)) {
            BlobStatus status;
            std::unique_ptr<Blob> blob(serializer->doLoad(document.get(), part, status));
            if (!status.ok)
                throw Exception(status.message, status.detail);
            if (blob) {
                blob->markUsed();
                part->blob(std::move(blob));
            }
        }
    }

    std::vector<std::unique_ptr<SegmentReader>> readers;
    for (const DocumentManifest::Segment& stored : manifest.segments) {
        Segment* segment = document->createSegment(stored.name);
        readers.push_back(std::make_unique<SegmentReader>(*segment, stored.entry, zip.read(stored.entry, options.limits.maxPartSize), manifest.streamMode));
    }
    for (std::size_t index = 0; index < readers.size(); ++index) {
        readers[index]->createEntities(entityTypes);
        if (readers[index]->entityCount() != manifest.segments[index].entities)
            throw DocumentErrors::corrupt(manifest.segments[index].entry + ": not the number of entities the manifest gives");
    }
    document->nextEntityId(manifest.nextEntityId);

    MigrationLog log;
    const VisitorContext loading = VisitorContext(eVisitLoad | (options.asCopy ? eVisitCopiedAsset : eVisitNone))
                                       .withStoredVersions(versions.empty() ? nullptr : &versions);
    for (const auto& reader : readers)
        reader->loadEntities(loading.withMigrationLog(&log));
    readers.clear();
    log.complete(loading);

    runPostAssetLoad(*document, loading);
    if (!log.migratedTypes().empty() || options.asCopy)
        MigrationSteps::runAll(*document, log, options.asCopy);
    return document;
}

} // namespace

void DocumentFile::save(Document& document, const std::filesystem::path& path, EStreamMode mode)
{
    runPreAssetSave(document);

    DocumentManifest manifest;
    manifest.identifier = document.identifier();
    manifest.streamMode = mode;
    manifest.multiLevelBlobFolder = document.blobFolder()->multiLevelFolder();
    manifest.nextEntityId = document.nextEntityId();
    TypeCollector types(manifest);
    std::vector<const Segment*> saved;
    for (const auto& segment : document.segments()) {
        if (segment->isTransient())
            continue;
        saved.push_back(segment.get());
        for (const auto& [id, entity] : segment->entities())
            types.addEntityType(entity->entityMetaType());
    }

    std::error_code ignored;
    const bool replacing = std::filesystem::exists(path, ignored);
    try {
        SaveTarget target(path);
        ZipWriter zip(target.temporary());
        const VisitorContext saving(eVisitSave);
        for (std::size_t index = 0; index < saved.size(); ++index) {
            failAt("DocumentFile.save.segment");
            const std::string entry = DocumentManifest::segmentEntry(index, mode);
            manifest.segments.push_back({saved[index]->name(), entry, saved[index]->size()});
            zip.add(entry, writeSegmentStream(*saved[index], mode, types.index(), saving), DocumentLimits::s_maxPartSize);
        }
        saveBlobParts(document, manifest, zip);
        zip.add(DocumentManifest::s_entryName, bytesOf(manifest.toJSON()), DocumentLimits::s_maxManifestSize);
        failAt("DocumentFile.save.commit");
        zip.commit();
        target.replaceTarget();
    } catch (const Exception& failure) {
        throw DocumentErrors::saveFailed(failure, replacing);
    }

    document.path(path);
    if (IDocumentAdapter* adapter = document.adapter())
        adapter->onDocumentSaved(document, path);
}

std::unique_ptr<Document> DocumentFile::open(const std::filesystem::path& path, const DocumentOpenOptions& options)
{
    const ZipReader zip(path, options.limits);
    std::unique_ptr<Document> document = openFrom(zip, options);
    if (!options.asCopy)
        document->path(path);
    return document;
}

std::unique_ptr<Document> DocumentFile::open(std::span<const std::uint8_t> bytes, const DocumentOpenOptions& options)
{
    const ZipReader zip(bytes, options.limits);
    return openFrom(zip, options);
}

DocumentManifest DocumentFile::readManifest(const std::filesystem::path& path)
{
    const DocumentLimits limits;
    return manifestOf(ZipReader(path, limits), limits);
}

} // namespace Kx
