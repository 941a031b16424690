#include "AssetLibrary.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <system_error>

namespace telvarin::platform::assets {

namespace {

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
    return std::unique_ptr<AssetLibrary>(
        new AssetLibrary(std::move(db), file, file, std::move(location), std::move(header)));
}

std::unique_ptr<AssetLibrary> AssetLibrary::createInMemory(std::filesystem::path target, const schema::LibraryHeader& header)
{
    sqlite::Database db = sqlite::Database::openMemory();
    schema::create(db, header);
    const WideString location = target.wstring();
    return std::unique_ptr<AssetLibrary>(new AssetLibrary(std::move(db), {}, std::move(target), location, header));
}

// Compiled at first use: opening a library reads only its header (the columns these read were
// checked then), and most libraries of a load are never searched or read from in a session.
AssetReader& AssetLibrary::reader() const
{
    if (!m_reader) {
        m_reader = std::make_unique<AssetReader>(m_db);
    }
    return *m_reader;
}

sqlite::Statement& AssetLibrary::listing() const
{
    if (!m_listing) {
        m_listing = std::make_unique<sqlite::Statement>(m_db.prepare(
            "SELECT asset_key, asset_id, schema, origin_library, variant, version_major, version_minor, revision, "
            "version_guid, category, subcategory FROM asset WHERE preset = 1 "
            "ORDER BY category, subcategory, asset_id, variant"));
    }
    return *m_listing;
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

const std::shared_ptr<const Catalogue>& AssetLibrary::catalogue() const
{
    if (m_catalogue) {
        return m_catalogue;
    }
    auto catalogue = std::make_shared<Catalogue>();
    const WideString* libraryId = catalogue->intern(m_header.id);
    sqlite::Statement& row = listing();
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
    const auto& definitions = catalogue->definitions;
    catalogue->orderedByCategory = std::is_sorted(definitions.begin(), definitions.end(),
        [](const AssetDefinition& left, const AssetDefinition& right) {
            return std::tie(*left.category, *left.subcategory) < std::tie(*right.category, *right.subcategory);
        });
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
    return guarded(nullptr, static_cast<IAssetDefinition*>(nullptr),
        [&]() -> IAssetDefinition* { return catalogue()->find(materialId, variant); });
}

std::shared_ptr<const AssetDefinition> AssetLibrary::shareDefinition(const UTF8String& materialId,
    const WideString& variant) const
{
    return guarded(nullptr, std::shared_ptr<const AssetDefinition>(), [&]() -> std::shared_ptr<const AssetDefinition> {
        const auto& current = catalogue();
        const AssetDefinition* definition = current->find(materialId, variant);
        return definition != nullptr ? current->share(*definition) : nullptr;
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
        const auto current = catalogue();
        if (!current->orderedByCategory) {
            return select(current, [&](const AssetDefinition& definition) {
                return *definition.category == category && (subcategory.empty() || *definition.subcategory == subcategory);
            });
        }
        // Listing a library category by category is the common way to show it: find each
        // category's run instead of scanning the whole library for every one.
        const auto key = [&](const AssetDefinition& definition) {
            return subcategory.empty() ? std::tie(*definition.category, subcategory)
                                       : std::tie(*definition.category, *definition.subcategory);
        };
        const auto wanted = std::tie(category, subcategory);
        const auto [first, last] = std::equal_range(current->definitions.begin(), current->definitions.end(), wanted,
            [&](const auto& left, const auto& right) {
                if constexpr (std::is_same_v<std::decay_t<decltype(left)>, AssetDefinition>) {
                    return key(left) < right;
                } else {
                    return left < key(right);
                }
            });
        std::vector<IAssetDefinition*> results;
        results.reserve(static_cast<std::size_t>(last - first));
        for (auto position = first; position != last; ++position) {
            results.push_back(const_cast<AssetDefinition*>(&*position));
        }
        return AssetSearchIterator(this, std::move(results), current);
    });
}

AssetSearchIterator AssetLibrary::SearchByMaterialId(const UTF8String& materialId) const
{
    return guarded(nullptr, AssetSearchIterator(), [&] {
        const auto& current = catalogue();
        const std::vector<AssetDefinition*>& found = current->byMaterialId(materialId);
        return AssetSearchIterator(this, std::vector<IAssetDefinition*>(found.begin(), found.end()), current);
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
        if (const AssetDefinition* definition = current->find(materialId, variant)) {
            return reader().read(definition->key, current->share(*definition)).release();
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
    m_changeCount.fetch_add(1, std::memory_order_acq_rel);
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

} // namespace telvarin::platform::assets
