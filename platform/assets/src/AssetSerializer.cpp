#include "AssetSerializer.h"

#include "AssetLibrary.h"
#include "AssetStore.h"
#include "LibrarySchema.h"
#include "Sqlite.h"

#include <algorithm>
#include <map>

namespace telvarin::platform::assets {

namespace {

// Document asset parts are not libraries anyone opens: they all carry this identifier.
constexpr const wchar_t* s_documentAssetsId = L"00000000-0000-0000-0000-000000000000";

struct StoredAsset {
    std::int64_t key = 0;
    WideString instanceKey;
    AssetRow row;
};

} // namespace

// ---- AssetSerializer ----

bool AssetSerializer::RegisterAssetInstance(IAssetInstance* instance, const WideString& key)
{
    AssetInstance* own = AssetInstance::from(instance);
    if (own == nullptr ||
        std::any_of(m_instances.begin(), m_instances.end(), [&](const auto& entry) { return entry.first == key; })) {
        return false;
    }
    m_instances.emplace_back(key, InstanceRef::share(own));
    return true;
}

bool AssetSerializer::SerializeToBytes(std::vector<std::uint8_t>& bytes, AssetError* error)
{
    try {
        sqlite::Database db = sqlite::Database::openMemory();
        schema::create(db, {s_documentAssetsId, L"Document assets", eDocumentAssetsLibrary, false});
        db.execute("BEGIN");
        {
            AssetWriter writer(db);
            for (const auto& [key, instance] : m_instances) {
                AssetRow row;
                row.schema = instance->GetSchemaName();
                row.instanceKey = key;
                row.assetId = instance->GetAssetId();
                if (const AssetDefinition* definition = instance->definition().get()) {
                    row.assetId = definition->materialId;
                    row.originLibrary = *definition->libraryId;
                    row.variant = *definition->variant;
                    row.majorVersion = definition->majorVersion;
                    row.minorVersion = definition->minorVersion;
                    row.revision = definition->GetRevision();
                    row.versionGuid = definition->GetVersionGUID();
                    row.category = *definition->category;
                    row.subcategory = *definition->subcategory;
                }
                writer.write(*instance.get(), row);
            }
        }
        db.execute("COMMIT");
        bytes = db.serialize();
        return true;
    } catch (const sqlite::Failure& failure) {
        report(error, failure.error());
    }
    return false;
}

bool AssetSerializer::Serialize(core::io::IDataWriteStream& stream, AssetError* error)
{
    std::vector<std::uint8_t> bytes;
    if (!SerializeToBytes(bytes, error)) {
        return false;
    }
    if (stream.write(bytes.data(), bytes.size()) != bytes.size()) {
        report(error, {EAssetError::eIOError, "the stream took only part of the serialized assets"});
        return false;
    }
    return true;
}

// ---- AssetDeSerializer ----

bool AssetDeSerializer::Deserialize(core::io::IDataReadStream& stream, IAssetLibraryRequest* resolver, AssetError* error)
{
    std::vector<std::uint8_t> bytes;
    std::uint8_t chunk[65536];
    while (const std::uint64_t count = stream.read(chunk, sizeof chunk)) {
        bytes.insert(bytes.end(), chunk, chunk + count);
    }
    return DeserializeFromBytes(bytes, resolver, error);
}

bool AssetDeSerializer::DeserializeFromBytes(std::span<const std::uint8_t> bytes, IAssetLibraryRequest* resolver,
    AssetError* error)
{
    try {
        sqlite::Database db = sqlite::Database::fromBytes(bytes);
        if (schema::validate(db, bytes.size()).kind != eDocumentAssetsLibrary) {
            sqlite::fail(EAssetError::eNotALibrary, "a material library, not the assets of a document");
        }
        std::vector<StoredAsset> stored;
        {
            auto rows = db.prepare("SELECT asset_key, instance_key, asset_id, origin_library, variant, version_major, "
                                   "version_minor, revision, version_guid, category, subcategory, schema FROM asset "
                                   "WHERE instance_key IS NOT NULL ORDER BY asset_key");
            while (rows.step()) {
                StoredAsset asset;
                asset.key = rows.columnInt64(0);
                asset.instanceKey = rows.columnWide(1);
                asset.row.assetId = UTF8String(rows.columnText(2));
                if (!rows.isNull(3)) {
                    asset.row.originLibrary = rows.columnWide(3);
                }
                asset.row.variant = rows.columnWide(4);
                asset.row.majorVersion = static_cast<int>(rows.columnInt64(5));
                asset.row.minorVersion = static_cast<int>(rows.columnInt64(6));
                asset.row.revision = rows.columnWide(7);
                asset.row.versionGuid = rows.columnWide(8);
                asset.row.category = rows.columnWide(9);
                asset.row.subcategory = rows.columnWide(10);
                asset.row.schema = rows.columnWide(11);
                stored.push_back(std::move(asset));
            }
        }

        AssetReader reader(db);
        auto rebuilt = std::make_shared<Catalogue>();
        std::map<WideString, AssetLibrary*> libraries;
        std::vector<std::pair<WideString, InstanceRef>> instances;
        for (const StoredAsset& asset : stored) {
            if (std::any_of(instances.begin(), instances.end(), [&](const auto& entry) { return entry.first == asset.instanceKey; })) {
                sqlite::fail(EAssetError::eCorrupt, "the key \"" + core::toUTF8(asset.instanceKey) + "\" repeats");
            }
            std::shared_ptr<const AssetDefinition> definition;
            if (asset.row.originLibrary) {
                const WideString& libraryId = *asset.row.originLibrary;
                if (resolver != nullptr && !libraries.contains(libraryId)) {
                    libraries[libraryId] = dynamic_cast<AssetLibrary*>(resolver->RequestAssetLibrary(libraryId));
                }
                if (AssetLibrary* library = libraries[libraryId]) {
                    definition = library->shareDefinition(asset.row.assetId, asset.row.variant);
                }
                if (!definition) {
                    AssetDefinition& own = rebuilt->add();
                    own.libraryId = rebuilt->intern(libraryId);
                    own.materialId = asset.row.assetId;
                    own.variant = rebuilt->intern(asset.row.variant);
                    own.majorVersion = asset.row.majorVersion;
                    own.minorVersion = asset.row.minorVersion;
                    own.revision = core::toUTF8(asset.row.revision);
                    own.versionGuid = core::toUTF8(asset.row.versionGuid);
                    own.category = rebuilt->intern(asset.row.category);
                    own.subcategory = rebuilt->intern(asset.row.subcategory);
                    own.schema = rebuilt->intern(asset.row.schema);
                    definition = rebuilt->share(own);
                }
            }
            instances.emplace_back(asset.instanceKey, reader.read(asset.key, definition));
        }
        m_instances = std::move(instances);
        return true;
    } catch (const sqlite::Failure& failure) {
        report(error, failure.error());
    }
    return false;
}

std::vector<WideString> AssetDeSerializer::GetKeys() const
{
    std::vector<WideString> keys;
    for (const auto& entry : m_instances) {
        keys.push_back(entry.first);
    }
    return keys;
}

IAssetInstance* AssetDeSerializer::TakeAssetInstance(const WideString& key)
{
    const auto found = std::find_if(m_instances.begin(), m_instances.end(), [&](const auto& entry) { return entry.first == key; });
    return found != m_instances.end() ? found->second.release() : nullptr;
}

} // namespace telvarin::platform::assets
