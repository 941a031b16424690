#include "AssetLibraryManager.h"

#include "AssetInstance.h"
#include "AssetSerializer.h"

#include "assets/LibraryLocation.h"

#include <base/Paths.h>

#include <algorithm>

namespace telvarin::platform::assets {

namespace {

// Two locations name the same library when they name the same file, however they spell it. Asked
// of the file system only when the spellings differ: one status of each file, where making both
// canonical would ask about every component of both paths.
bool sameFile(const std::filesystem::path& left, const std::filesystem::path& right)
{
    std::error_code error;
    return left == right || std::filesystem::equivalent(left, right, error);
}

} // namespace

AssetLibraryManager::AssetLibraryManager()
    : m_localization(*this)
{
}

AssetLibraryManager::~AssetLibraryManager() = default;

void AssetLibraryManager::SetConfigurationPath(const WideString& path)
{
    std::lock_guard lock(m_mutex);
    m_configurationPath = path;
}

WideString AssetLibraryManager::GetConfigurationPath() const
{
    std::lock_guard lock(m_mutex);
    return m_configurationPath;
}

std::filesystem::path AssetLibraryManager::resolve(const WideString& location) const
{
    if (location.empty()) {
        sqlite::fail(EAssetError::eInvalidArgument, "no library location");
    }
    if (IsNetfsUri(location)) {
        auto file = ResolveNetfsUri(location, Kx::Paths::contentRoot(), Kx::Paths::userDirectory());
        if (!file) {
            sqlite::fail(EAssetError::eInvalidArgument, "malformed netfs URI " + core::toUTF8(location));
        }
        return *file;
    }
    std::filesystem::path file(location);
    if (file.is_relative() && !m_configurationPath.empty()) {
        file = std::filesystem::path(m_configurationPath) / file;
    }
    return file;
}

AssetLibraryManager::Entry* AssetLibraryManager::find(const IAssetLibrary* library)
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
        [&](const Entry& entry) { return library != nullptr && entry.library.get() == library; });
    return found != m_entries.end() ? &*found : nullptr;
}

const AssetLibraryManager::Entry* AssetLibraryManager::findRegistered(const WideString& libraryId) const
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
        [&](const Entry& entry) { return entry.registered && entry.library->GetLibraryId() == libraryId; });
    return found != m_entries.end() ? &*found : nullptr;
}

IAssetLibrary* AssetLibraryManager::OpenAssetLibrary(const WideString& location, AssetError* error)
{
    try {
        std::lock_guard lock(m_mutex);
        const std::filesystem::path file = resolve(location);
        for (Entry& entry : m_entries) {
            const std::filesystem::path open = entry.library->file();
            if (!open.empty() && sameFile(open, file)) {
                ++entry.openings;
                return entry.library.get();
            }
        }
        auto library = AssetLibrary::openFile(file, location);
        if (findRegistered(library->GetLibraryId()) != nullptr) {
            sqlite::fail(EAssetError::eDuplicate,
                "a library with the identifier " + core::toUTF8(library->GetLibraryId()) + " is open already");
        }
        m_entries.push_back(Entry{std::move(library), 1, true});
        return m_entries.back().library.get();
    } catch (const sqlite::Failure& failure) {
        report(error, failure.error());
    } catch (const std::exception& failure) {
        report(error, {EAssetError::eIOError, failure.what()});
    }
    return nullptr;
}

IAssetLibrary* AssetLibraryManager::CreateAssetLibrary(const WideString& path, int kind, const WideString& libraryId,
    AssetError* error)
{
    try {
        std::lock_guard lock(m_mutex);
        std::filesystem::path target = resolve(path);
        schema::LibraryHeader header;
        header.id = libraryId.empty() ? schema::newGuid() : libraryId;
        header.name = target.stem().wstring();
        header.kind = kind;
        m_entries.push_back(Entry{AssetLibrary::createInMemory(std::move(target), header), 1, false});
        return m_entries.back().library.get();
    } catch (const sqlite::Failure& failure) {
        report(error, failure.error());
    }
    return nullptr;
}

bool AssetLibraryManager::SaveAssetLibrary(IAssetLibrary* library, AssetError* error)
{
    try {
        std::lock_guard lock(m_mutex);
        Entry* entry = find(library);
        if (entry == nullptr) {
            sqlite::fail(EAssetError::eInvalidArgument, "not a library of this manager");
        }
        entry->library->save();
        return true;
    } catch (const sqlite::Failure& failure) {
        report(error, failure.error());
    }
    return false;
}

bool AssetLibraryManager::RegisterAssetLibrary(IAssetLibrary* library, AssetError* error)
{
    std::lock_guard lock(m_mutex);
    Entry* entry = find(library);
    if (entry == nullptr) {
        report(error, {EAssetError::eInvalidArgument, "not a library of this manager"});
        return false;
    }
    if (entry->registered) {
        return true;
    }
    if (findRegistered(library->GetLibraryId()) != nullptr) {
        report(error, {EAssetError::eDuplicate, "a library with that identifier is registered already"});
        return false;
    }
    entry->registered = true;
    return true;
}

bool AssetLibraryManager::ReleaseAssetLibrary(IAssetLibrary* library)
{
    std::unique_ptr<AssetLibrary> closing;
    {
        std::lock_guard lock(m_mutex);
        Entry* entry = find(library);
        if (entry == nullptr) {
            return false;
        }
        if (--entry->openings > 0) {
            return true;
        }
        closing = std::move(entry->library);
        m_entries.erase(m_entries.begin() + (entry - m_entries.data()));
    }
    return true;
}

IAssetLibrary* AssetLibraryManager::GetAssetLibrary(const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    const Entry* entry = findRegistered(libraryId);
    return entry != nullptr ? entry->library.get() : nullptr;
}

std::vector<IAssetLibrary*> AssetLibraryManager::GetAssetLibraries() const
{
    std::lock_guard lock(m_mutex);
    std::vector<IAssetLibrary*> libraries;
    for (const Entry& entry : m_entries) {
        if (entry.registered) {
            libraries.push_back(entry.library.get());
        }
    }
    return libraries;
}

bool AssetLibraryManager::RefreshAssetLibrary(IAssetLibrary* library)
{
    std::lock_guard lock(m_mutex);
    Entry* entry = find(library);
    if (entry == nullptr) {
        return false;
    }
    entry->library->Refresh();
    return true;
}

IWritableAssetLibrary* AssetLibraryManager::GetWritableAssetLibrary(IAssetLibrary* library, AssetError* error)
{
    std::lock_guard lock(m_mutex);
    Entry* entry = find(library);
    if (entry == nullptr) {
        report(error, {EAssetError::eInvalidArgument, "not a library of this manager"});
        return nullptr;
    }
    return entry->library->beginWriting(error) ? entry->library.get() : nullptr;
}

bool AssetLibraryManager::CommitAssetLibrary(IWritableAssetLibrary* library, AssetError* error)
{
    std::lock_guard lock(m_mutex);
    Entry* entry = find(library);
    if (entry == nullptr) {
        report(error, {EAssetError::eInvalidArgument, "not a library of this manager"});
        return false;
    }
    return entry->library->commit(error);
}

void AssetLibraryManager::ReleaseWritableAssetLibrary(IWritableAssetLibrary* library)
{
    std::lock_guard lock(m_mutex);
    if (Entry* entry = find(library)) {
        entry->library->endWriting();
    }
}

IAssetInstance* AssetLibraryManager::CreateAssetInstance(const WideString& schema, const UTF8String& assetId)
{
    return new AssetInstance(assetId.empty() ? core::toUTF8(schema::newGuid()) : assetId, schema, nullptr);
}

std::unique_ptr<IAssetSerializer> AssetLibraryManager::CreateAssetSerializer()
{
    return std::make_unique<AssetSerializer>();
}

std::unique_ptr<IAssetDeSerializer> AssetLibraryManager::CreateAssetDeSerializer()
{
    return std::make_unique<AssetDeSerializer>();
}

IAssetLibraryManager* GetIAssetLibraryManager()
{
    static IAssetLibraryManager* const s_manager = new AssetLibraryManager();
    return s_manager;
}

std::unique_ptr<IAssetLibraryManager> CreateAssetLibraryManager()
{
    return std::make_unique<AssetLibraryManager>();
}

} // namespace telvarin::platform::assets
