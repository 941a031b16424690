#include "AssetLibrary.h"

#include <algorithm>
#include <functional>
#include <system_error>

namespace telvarin::platform::assets {

namespace {

constexpr std::wstring_view s_resourcePrefix = L"tvp:?asset=";

// ASCII and Latin-1 letters, enough for the names the libraries carry.
wchar_t foldCase(wchar_t c)
{
    if ((c >= L'A' && c <= L'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7)) {
        return static_cast<wchar_t>(c + 0x20);
    }
    return c;
}

WideString folded(const WideString& text)
{
    WideString result(text);
    std::transform(result.begin(), result.end(), result.begin(), foldCase);
    return result;
}

void report(AssetError* error, const AssetError& what)
{
    if (error != nullptr) {
        *error = what;
    }
}

} // namespace

AssetLibrary::AssetLibrary(sqlite::Database db, std::filesystem::path file, std::filesystem::path target,
    WideString location, schema::LibraryHeader header)
    : m_db(std::move(db))
    , m_file(std::move(file))
    , m_target(std::move(target))
    , m_location(std::move(location))
    , m_header(std::move(header))
{
}

AssetLibrary::~AssetLibrary()
{
    if (m_writing) {
        endWriting();
    }
}

std::unique_ptr<AssetLibrary> AssetLibrary::openFile(const std::filesystem::path& file, WideString location)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (error) {
        sqlite::fail(std::filesystem::exists(file) ? EAssetError::eIOError : EAssetError::eNotFound,
            "cannot read " + file.string() + ": " + error.message());
    }
    sqlite::Database db = sqlite::Database::openFile(file);
    schema::LibraryHeader header = schema::validate(db, size);
    std::unique_ptr<AssetLibrary> library(
        new AssetLibrary(std::move(db), file, file, std::move(location), std::move(header)));
    // Compiling the statements of every read checks the columns too, so a library with a damaged
    // table is refused now rather than at its first search.
    library->prepareReaders();
    return library;
}

std::unique_ptr<AssetLibrary> AssetLibrary::createInMemory(std::filesystem::path target, const schema::LibraryHeader& header)
{
    sqlite::Database db = sqlite::Database::openMemory();
    schema::create(db, header);
    const WideString location = target.wstring();
    std::unique_ptr<AssetLibrary> library(new AssetLibrary(std::move(db), {}, std::move(target), location, header));
    library->prepareReaders();
    return library;
}

void AssetLibrary::prepareReaders() const
{
    m_reader = std::make_unique<AssetReader>(m_db);
    m_listing = std::make_unique<sqlite::Statement>(m_db.prepare(
        "SELECT asset_key, asset_id, schema, origin_library, variant, version_major, version_minor, revision, "
        "version_guid, category, subcategory FROM asset WHERE preset = 1 "
        "ORDER BY category, subcategory, asset_id, variant"));
}

template <typename Result, typename Operation>
Result AssetLibrary::guarded(AssetError* error, Result fallback, Operation&& operation) const
{
    std::lock_guard lock(m_mutex);
    try {
        return operation();
    } catch (const sqlite::Failure& failure) {
        m_lastError = failure.error();
        report(error, failure.error());
    } catch (const std::bad_alloc&) {
        m_lastError = AssetError{EAssetError::eIOError, "out of memory"};
        report(error, m_lastError);
    }
    return fallback;
}

// ---- reading ----

WideString AssetLibrary::GetName() const
{
    std::lock_guard lock(m_mutex);
    return m_header.name;
}

WideString AssetLibrary::GetFilePath() const
{
    std::lock_guard lock(m_mutex);
    return m_file.wstring();
}

std::filesystem::path AssetLibrary::file() const
{
    std::lock_guard lock(m_mutex);
    return m_file;
}

bool AssetLibrary::IsReadOnly() const
{
    std::lock_guard lock(m_mutex);
    return m_header.readOnly || m_db.isReadOnly();
}

std::shared_ptr<const Catalogue> AssetLibrary::catalogue() const
{
    if (m_catalogue) {
        return m_catalogue;
    }
    auto catalogue = std::make_shared<Catalogue>();
    const WideString* libraryId = catalogue->intern(m_header.id);
    sqlite::Statement& row = *m_listing;
    try {
        while (row.step()) {
            AssetDefinition& definition = catalogue->add();
            definition.key = row.columnInt64(0);
            definition.materialId = UTF8String(row.columnText(1));
            definition.schema = catalogue->intern(row.columnText(2));
            definition.libraryId = row.isNull(3) ? libraryId : catalogue->intern(row.columnText(3));
            definition.variant = catalogue->intern(row.columnText(4));
            definition.majorVersion = static_cast<int>(row.columnInt64(5));
            definition.minorVersion = static_cast<int>(row.columnInt64(6));
            definition.revision = UTF8String(row.columnText(7));
            definition.versionGuid = UTF8String(row.columnText(8));
            definition.category = catalogue->intern(row.columnText(9));
            definition.subcategory = catalogue->intern(row.columnText(10));
        }
    } catch (...) {
        row.reset();
        throw;
    }
    row.reset();
    m_catalogue = std::move(catalogue);
    return m_catalogue;
}

AssetSearchIterator AssetLibrary::select(const std::shared_ptr<const Catalogue>& catalogue,
    const std::function<bool(const AssetDefinition&)>& keep) const
{
    std::vector<IAssetDefinition*> results;
    for (const AssetDefinition& definition : catalogue->definitions) {
        if (keep(definition)) {
            results.push_back(const_cast<AssetDefinition*>(&definition));
        }
    }
    return AssetSearchIterator(this, std::move(results), catalogue);
}

std::size_t AssetLibrary::GetAssetCount() const
{
    return guarded(nullptr, std::size_t{0}, [&] { return catalogue()->definitions.size(); });
}

AssetSearchIterator AssetLibrary::GetAssetDefinitions() const
{
    return guarded(nullptr, AssetSearchIterator(),
        [&] { return select(catalogue(), [](const AssetDefinition&) { return true; }); });
}

std::vector<std::pair<WideString, WideString>> AssetLibrary::GetCategories() const
{
    return guarded(nullptr, std::vector<std::pair<WideString, WideString>>(), [&] {
        std::vector<std::pair<WideString, WideString>> categories;
        for (const AssetDefinition& definition : catalogue()->definitions) {
            if (categories.empty() || categories.back().first != *definition.category ||
                categories.back().second != *definition.subcategory) {
                categories.emplace_back(*definition.category, *definition.subcategory);
            }
        }
        return categories;
    });
}

IAssetDefinition* AssetLibrary::FindAssetDefinition(const UTF8String& materialId, const WideString& variant) const
{
    return guarded(nullptr, static_cast<IAssetDefinition*>(nullptr), [&]() -> IAssetDefinition* {
        for (AssetDefinition* definition : catalogue()->byMaterialId(materialId)) {
            if (*definition->variant == variant) {
                return definition;
            }
        }
        return nullptr;
    });
}

std::shared_ptr<const AssetDefinition> AssetLibrary::shareDefinition(const UTF8String& materialId,
    const WideString& variant) const
{
    return guarded(nullptr, std::shared_ptr<const AssetDefinition>(), [&]() -> std::shared_ptr<const AssetDefinition> {
        const auto current = catalogue();
        for (AssetDefinition* definition : current->byMaterialId(materialId)) {
            if (*definition->variant == variant) {
                return current->share(*definition);
            }
        }
        return nullptr;
    });
}

AssetSearchIterator AssetLibrary::SearchBySchema(const WideString& schema) const
{
    return guarded(nullptr, AssetSearchIterator(), [&] {
        return select(catalogue(), [&](const AssetDefinition& definition) { return SchemaEquals(*definition.schema, schema); });
    });
}

AssetSearchIterator AssetLibrary::SearchByCategory(const WideString& category, const WideString& subcategory) const
{
    return guarded(nullptr, AssetSearchIterator(), [&] {
        return select(catalogue(), [&](const AssetDefinition& definition) {
            return *definition.category == category && (subcategory.empty() || *definition.subcategory == subcategory);
        });
    });
}

AssetSearchIterator AssetLibrary::SearchByMaterialId(const UTF8String& materialId) const
{
    return guarded(nullptr, AssetSearchIterator(), [&] {
        return select(catalogue(), [&](const AssetDefinition& definition) { return definition.materialId == materialId; });
    });
}

const std::unordered_map<UTF8String, std::map<UTF8String, WideString>>& AssetLibrary::names() const
{
    if (!m_names) {
        std::unordered_map<UTF8String, std::map<UTF8String, WideString>> names;
        // The plain variant comes last, so its names win for the material id.
        auto row = m_db.prepare("SELECT a.asset_id, n.language, n.name FROM asset AS a "
                                "JOIN asset_name AS n ON n.asset_key = a.asset_key WHERE a.preset = 1 "
                                "ORDER BY a.variant DESC");
        while (row.step()) {
            names[UTF8String(row.columnText(0))][UTF8String(row.columnText(1))] = row.columnWide(2);
        }
        m_names = std::move(names);
    }
    return *m_names;
}

AssetSearchIterator AssetLibrary::SearchByName(const WideString& text, const UTF8String& language) const
{
    return guarded(nullptr, AssetSearchIterator(), [&] {
        const WideString wanted = folded(text);
        const auto& allNames = names();
        return select(catalogue(), [&](const AssetDefinition& definition) {
            const auto found = allNames.find(definition.materialId);
            if (found == allNames.end()) {
                return false;
            }
            return std::any_of(found->second.begin(), found->second.end(), [&](const auto& entry) {
                return (language.empty() || entry.first == language) && folded(entry.second).find(wanted) != WideString::npos;
            });
        });
    });
}

WideString AssetLibrary::GetAssetName(const UTF8String& materialId, const UTF8String& language) const
{
    return guarded(nullptr, WideString(), [&] {
        const auto& allNames = names();
        const auto found = allNames.find(materialId);
        if (found == allNames.end()) {
            return WideString();
        }
        for (const UTF8String& candidate : {language, UTF8String(s_englishLanguage)}) {
            if (const auto name = found->second.find(candidate); name != found->second.end()) {
                return name->second;
            }
        }
        return WideString();
    });
}

WideString AssetLibrary::GetLocalizedText(const WideString& key, const UTF8String& language) const
{
    return guarded(nullptr, WideString(), [&] {
        if (!m_texts) {
            std::map<std::pair<WideString, UTF8String>, WideString> texts;
            auto row = m_db.prepare("SELECT key, language, text FROM localized_text");
            while (row.step()) {
                texts.emplace(std::pair(row.columnWide(0), UTF8String(row.columnText(1))), row.columnWide(2));
            }
            m_texts = std::move(texts);
        }
        const auto found = m_texts->find(std::pair(key, language));
        return found != m_texts->end() ? found->second : WideString();
    });
}

IAssetInstance* AssetLibrary::CreateAssetInstance(const IAssetDefinition* definition) const
{
    if (definition == nullptr) {
        std::lock_guard lock(m_mutex);
        m_lastError = AssetError{EAssetError::eInvalidArgument, "no definition"};
        return nullptr;
    }
    if (definition->GetLibraryId() != m_header.id) {
        std::lock_guard lock(m_mutex);
        m_lastError = AssetError{EAssetError::eInvalidArgument, "the definition belongs to another library"};
        return nullptr;
    }
    return CreateAssetInstance(definition->GetMaterialId(), definition->GetVariant());
}

IAssetInstance* AssetLibrary::CreateAssetInstance(const UTF8String& materialId, const WideString& variant) const
{
    return guarded(nullptr, static_cast<IAssetInstance*>(nullptr), [&]() -> IAssetInstance* {
        const auto current = catalogue();
        for (AssetDefinition* definition : current->byMaterialId(materialId)) {
            if (*definition->variant == variant) {
                return m_reader->read(definition->key, current->share(*definition)).release();
            }
        }
        sqlite::fail(EAssetError::eNotFound, "no preset \"" + materialId + "\" in the library");
    });
}

bool AssetLibrary::ReadEmbeddedResource(const WideString& uri, std::vector<std::uint8_t>& bytes) const
{
    if (!uri.starts_with(s_resourcePrefix) || uri.size() == s_resourcePrefix.size()) {
        return false;
    }
    return guarded(nullptr, false, [&] {
        auto row = m_db.prepare("SELECT data FROM resource WHERE name = ?1");
        row.bind(1, uri.substr(s_resourcePrefix.size()));
        if (!row.step()) {
            return false;
        }
        const auto data = row.columnBlob(0);
        bytes.assign(data.begin(), data.end());
        return true;
    });
}

void AssetLibrary::Refresh()
{
    guarded(nullptr, false, [&] {
        changed();
        rereadHeader();
        return true;
    });
}

AssetError AssetLibrary::GetLastError() const
{
    std::lock_guard lock(m_mutex);
    return m_lastError;
}

void AssetLibrary::changed()
{
    m_catalogue.reset();
    m_names.reset();
    m_texts.reset();
}

void AssetLibrary::rereadHeader()
{
    auto row = m_db.prepare("SELECT name, read_only FROM library");
    if (row.step()) {
        m_header.name = row.columnWide(0);
        m_header.readOnly = row.columnInt64(1) != 0;
    }
}

// ---- writing ----

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
        m_db.execute("SAVEPOINT preset");
        try {
            writer.write(*own, row);
        } catch (...) {
            m_db.execute("ROLLBACK TO preset");
            m_db.execute("RELEASE preset");
            throw;
        }
        m_db.execute("RELEASE preset");
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
        m_db.execute("SAVEPOINT erase");
        try {
            writer.erase(current->key);
        } catch (...) {
            m_db.execute("ROLLBACK TO erase");
            m_db.execute("RELEASE erase");
            throw;
        }
        m_db.execute("RELEASE erase");
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
    std::filesystem::path temporary = m_target;
    temporary += L".saving-" + schema::newGuid();
    std::error_code ignored;
    try {
        m_db.vacuumInto(temporary);
        std::error_code error;
        std::filesystem::rename(temporary, m_target, error);
        if (error) {
            sqlite::fail(EAssetError::eIOError, "cannot write " + m_target.string() + ": " + error.message());
        }
    } catch (...) {
        std::filesystem::remove(temporary, ignored);
        throw;
    }
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
    prepareReaders();
}

} // namespace telvarin::platform::assets
