#include "AssetLibrary.h"

#include <base/TempFile.h>

#include <optional>
#include <system_error>

// The writer side of AssetLibrary: writer sessions, changes and saving a new library.
namespace telvarin::platform::assets {


bool AssetLibrary::beginWriting(AssetError* error)
{
    std::lock_guard lock(m_mutex);
    if (m_header.readOnly || m_db.isReadOnly()) {
        report(error, {EAssetError::eReadOnly, "the library is read-only"});
        return false;
    }
    if (m_writing) {
        report(error, {EAssetError::eBusy, "another writer holds the library"});
        return false;
    }
    m_writing = true;
    return true;
}

bool AssetLibrary::isWriting() const
{
    std::lock_guard lock(m_mutex);
    return m_writing;
}

AssetWriter& AssetLibrary::beginChange()
{
    if (!m_writing) {
        sqlite::fail(EAssetError::eInvalidArgument, "the library has no writer");
    }
    if (!m_db.inTransaction()) {
        m_db.execute("BEGIN IMMEDIATE");
    }
    if (!m_writer) {
        m_writer = std::make_unique<AssetWriter>(m_db);
    }
    return *m_writer;
}

bool AssetLibrary::commit(AssetError* error)
{
    return guarded(error, false, [&] {
        if (!m_writing) {
            sqlite::fail(EAssetError::eInvalidArgument, "the library has no writer");
        }
        if (m_db.inTransaction()) {
            m_db.execute("COMMIT");
        }
        return true;
    });
}

void AssetLibrary::endWriting()
{
    guarded(nullptr, false, [&] {
        m_writing = false;
        if (m_db.inTransaction()) {
            m_db.execute("ROLLBACK");
            changed();
            rereadHeader();
        }
        return true;
    });
}

bool AssetLibrary::CreateNewAssetPreset(IAssetInstance* instance, const UTF8String& materialId, AssetError* error)
{
    AssetPresetInfo info;
    info.materialId = materialId;
    if (instance != nullptr) {
        if (const IAssetDefinition* definition = instance->GetAssetDefinition()) {
            info.variant = definition->GetVariant();
            info.majorVersion = definition->GetMajorVersion();
            info.minorVersion = definition->GetMinorVersion();
            info.revision = definition->GetRevision();
            info.versionGUID = definition->GetVersionGUID();
            info.category = definition->GetCategory();
            info.subcategory = definition->GetSubcategory();
        }
    }
    return CreateNewAssetPreset(instance, info, error);
}

bool AssetLibrary::CreateNewAssetPreset(IAssetInstance* instance, const AssetPresetInfo& info, AssetError* error)
{
    return guarded(error, false, [&] {
        const AssetInstance* own = AssetInstance::from(instance);
        if (own == nullptr || info.materialId.empty()) {
            sqlite::fail(EAssetError::eInvalidArgument, "a preset needs an instance of this API and a material id");
        }
        AssetWriter& writer = beginChange();
        AssetRow row;
        row.assetId = info.materialId;
        row.schema = own->GetSchemaName();
        row.variant = info.variant;
        row.majorVersion = info.majorVersion;
        row.minorVersion = info.minorVersion;
        row.revision = info.revision;
        row.versionGuid = info.versionGUID;
        row.category = info.category;
        row.subcategory = info.subcategory;
        // One savepoint per preset: a preset that fails half-way leaves no rows behind, while the
        // writer's earlier changes stay.
        m_db.inSavepoint("preset", [&] { writer.write(*own, row); });
        changed();
        return true;
    });
}

bool AssetLibrary::DeleteAssetDefinition(IAssetDefinition* definition, AssetError* error)
{
    return guarded(error, false, [&] {
        if (definition == nullptr || definition->GetLibraryId() != m_header.id) {
            sqlite::fail(EAssetError::eInvalidArgument, "the definition is not one of this library");
        }
        const auto current = shareDefinition(definition->GetMaterialId(), definition->GetVariant());
        if (!current) {
            sqlite::fail(EAssetError::eNotFound, "no preset \"" + definition->GetMaterialId() + "\" in the library");
        }
        AssetWriter& writer = beginChange();
        m_db.inSavepoint("erase", [&] { writer.erase(current->key); });
        changed();
        return true;
    });
}

bool AssetLibrary::SetLibraryName(const WideString& name, AssetError* error)
{
    return guarded(error, false, [&] {
        beginChange();
        auto update = m_db.prepare("UPDATE library SET name = ?1");
        update.bind(1, name).run();
        m_header.name = name;
        return true;
    });
}

bool AssetLibrary::SetReadOnly(bool readOnly, AssetError* error)
{
    return guarded(error, false, [&] {
        beginChange();
        auto update = m_db.prepare("UPDATE library SET read_only = ?1");
        update.bind(1, std::int64_t{readOnly}).run();
        m_header.readOnly = readOnly;
        return true;
    });
}

bool AssetLibrary::SetLocalizedText(const WideString& key, const UTF8String& language, const WideString& text,
    AssetError* error)
{
    return guarded(error, false, [&] {
        beginChange();
        auto insert = m_db.prepare("INSERT OR REPLACE INTO localized_text (key, language, text) VALUES (?1, ?2, ?3)");
        insert.bind(1, key).bind(2, std::string_view(language)).bind(3, text).run();
        m_texts.reset();
        return true;
    });
}

WideString AssetLibrary::AddEmbeddedResource(const WideString& name, std::span<const std::uint8_t> bytes, AssetError* error)
{
    return guarded(error, WideString(), [&] {
        if (name.empty()) {
            sqlite::fail(EAssetError::eInvalidArgument, "a resource needs a name");
        }
        beginChange();
        auto insert = m_db.prepare("INSERT OR REPLACE INTO resource (name, data) VALUES (?1, ?2)");
        insert.bind(1, name).bindBlob(2, bytes).run();
        return WideString(s_resourcePrefix) + name;
    });
}

void AssetLibrary::save()
{
    std::lock_guard lock(m_mutex);
    if (!m_file.empty()) {
        return;
    }
    if (m_writing) {
        sqlite::fail(EAssetError::eBusy, "a writer holds the library");
    }
    if (m_target.empty()) {
        sqlite::fail(EAssetError::eInvalidArgument, "the library has no path to be saved at");
    }
    // Written beside the target and renamed over it: a failure never leaves half a library there.
    std::string problem;
    std::optional<Kx::TempFile> temporary = Kx::TempFile::tryBeside(m_target, &problem);
    if (!temporary) {
        sqlite::fail(EAssetError::eIOError, problem);
    }
    m_db.vacuumInto(temporary->path());
    std::error_code error;
    std::filesystem::rename(temporary->path(), m_target, error);
    if (error) {
        sqlite::fail(EAssetError::eIOError, "cannot write " + m_target.string() + ": " + error.message());
    }
    temporary->release();
    sqlite::Database reopened = sqlite::Database::openFile(m_target);
    std::error_code sizeError;
    const std::uintmax_t size = std::filesystem::file_size(m_target, sizeError);
    m_header = schema::validate(reopened, sizeError ? 0 : size);
    m_reader.reset();
    m_listing.reset();
    m_writer.reset();
    m_db = std::move(reopened);
    m_file = m_target;
    m_location = m_target.wstring();
    changed();
}

} // namespace telvarin::platform::assets
