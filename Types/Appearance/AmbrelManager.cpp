#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/internal/InstanceShortcuts.h"

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <assets/ILocalizationManager.h>
#include <base/AppLogMgr.h>
#include <base/Assert.h>
#include <base/OperationContext.h>
#include <base/Options.h>
#include <base/OS.h>
#include <core/Strings.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace Kx {

AmbrelManager* AmbrelManager::GetAmbrelManager(bool load)
{
    // Never destroyed: instances handed out may be released while the process ends.
    static AmbrelManager* s_manager = [] {
        auto* manager = new AmbrelManager([] { return Assets::GetIAssetLibraryManager(); });
        manager->m_isApplicationManager = true;
        return manager;
    }();
    if (load) {
        s_manager->LoadLibs(false);
    }
    return s_manager;
}

AmbrelManager::AmbrelManager(LibraryManagerSource source)
    : m_source(std::move(source)), m_shortcuts(std::make_unique<InstanceShortcuts>())
{
}

AmbrelManager::~AmbrelManager()
{
    std::lock_guard lock(m_mutex);
    releaseCacheAndLibraries();
}

void AmbrelManager::releaseCacheAndLibraries()
{
    // First, so that no reader holds a shortcut to an instance or a library about to go.
    m_shortcuts->forgetAll();
    for (auto& [key, instance] : m_instanceCache) {
        const int count = instance->GetReferenceCount();
        KX_ASSERT(count > 0);
        instance->Release();
    }
    m_instanceCache.clear();
    for (WideString& id : m_libraryIds) {
        id.clear();
    }
    if (m_libMgr != nullptr) {
        for (Assets::IAssetLibrary*& pLib : m_libraries) {
            if (pLib != nullptr) {
                m_libMgr->ReleaseAssetLibrary(pLib);
                pLib = nullptr;
            }
        }
        for (auto& [path, record] : m_userLibraryRecords) {
            Assets::IAssetLibrary* pLib = record.library;
            KX_ASSERT(pLib);
            m_libMgr->ReleaseAssetLibrary(pLib);
        }
        if (m_privateLibrary != nullptr) {
            m_libMgr->ReleaseAssetLibrary(m_privateLibrary);
        }
    }
    m_privateLibrary = nullptr;
    m_privateLibraryId.clear();
    m_userLibraryRecords.clear();
    m_userLibrariesInfoBuilt = false;
    m_librariesInfoBuilt = false;
    m_libraryFailures.clear();
}

std::string AmbrelManager::LanguageCodeForLocale(const std::string& localeTag)
{
    // "zn-TW" is the tag the application has always written for traditional Chinese; user files
    // carry it, so it is matched as it stands.
    static const std::map<std::string, std::string> s_codes{
        {"de-DE", "deu"}, {"en-US", "eng"}, {"cs-CZ", "csy"}, {"es-ES", "esp"}, {"fr-FR", "fra"},
        {"hu-HU", "hun"}, {"it-IT", "ita"}, {"ja-JP", "jpn"}, {"ko-KR", "kor"}, {"pl-PL", "plk"},
        {"pt-BR", "ptb"}, {"ru-RU", "rus"}, {"zh-CN", "chs"}, {"zn-TW", "cht"}};
    const auto found = s_codes.find(localeTag);
    return found != s_codes.end() ? found->second : "eng";
}

void AmbrelManager::initializeUserLanguage()
{
    m_userLanguage = LanguageCodeForLocale(BootstrapOptionGroup::get().userLanguage());
}

bool AmbrelManager::InitializeLibManager()
{
    if (m_libMgr != nullptr) {
        return true;
    }
    m_libMgr = m_source ? m_source() : nullptr;
    if (m_libMgr == nullptr) {
        return false;
    }
    (void)GetStandardLibraryDisplayNames();
    m_libMgr->SetConfigurationPath(Types::GetReducedLibraryPath());
    initializeUserLanguage();
    SetSystemLibPaths();
    return true;
}

Assets::IAssetLibrary* AmbrelManager::openLibrary(const WideString& location, const WideString& name)
{
    Assets::AssetError error;
    Assets::IAssetLibrary* library = m_libMgr->OpenAssetLibrary(location, &error);
    if (library == nullptr) {
        AppLogMgr::appLogEx(ELogLevel::eWarning,
            L"Material library " + location + L" not opened: " + telvarin::platform::core::toWide(error.message));
        m_libraryFailures.push_back({name, location, error.message});
    }
    return library;
}

bool AmbrelManager::_LoadLibs()
{
    m_libsLoadFailed = false;
    m_libraryFailures.clear();
    if (!InitializeLibManager() || m_paths[eSystemVisual].empty()) {
        m_libsLoadFailed = true;
        return false;
    }
    // The reduced library folder is the user's copy of the installed set, beside the favourites; it
    // is brought up to date at every load, so a forced load after a repair sees the repaired files.
    // A set-up that fails shows as libraries that do not open, each with its reason.
    (void)Types::SetUpSharedInstall();
    const std::vector<WideString>& names = GetStandardLibraryDisplayNames();
    m_libraries[eSystemVisual] = openLibrary(m_paths[eSystemVisual], names[eSystemVisual]);
    if (m_libraries[eSystemVisual] == nullptr) {
        m_libsLoadFailed = true;
        return false;
    }
    m_libraryIds[eSystemVisual] = m_libraries[eSystemVisual]->GetLibraryId();
    for (ELibrary which : {eSystemPhysical, eAdvancedVisual, eAdvancedPhysical}) {
        m_libraries[which] = openLibrary(m_paths[which], names[which]);
        if (m_libraries[which] != nullptr) {
            m_libraryIds[which] = m_libraries[which]->GetLibraryId();
        }
    }
    m_librariesInfoBuilt = false;
    m_userLibrariesInfoBuilt = false;
    // Optional libraries: their absence is a normal installation, not a failure.
    for (ELibrary which : {eAdditive, eNonlinear, eFavorites}) {
        std::error_code ignored;
        if (!m_paths[which].empty() && std::filesystem::exists(m_paths[which], ignored)) {
            m_libraries[which] = openLibrary(m_paths[which], names[which]);
            if (m_libraries[which] != nullptr) {
                m_libraryIds[which] = m_libraries[which]->GetLibraryId();
            }
        }
    }
    // The localisation objects find their library by identifier at each call, so the first ones
    // serve every later load.
    if (!m_localizationsObtained) {
        // Reading the visual library's appearances once loads its catalogue before the first
        // document asks; a visual library without any cannot dress a material, which the log says.
        if (GetVisualMaterialsByLibrary(m_libraryIds[eSystemVisual]).empty()) {
            AppLogMgr::appLogEx(ELogLevel::eWarning,
                L"Material library " + m_paths[eSystemVisual] + L" holds no material appearance");
        }
        if (Assets::ILocalizationManager* localization = m_libMgr->GetLocalizationManager()) {
            const std::array<ELibrary, 4> order{eSystemVisual, eSystemPhysical, eAdvancedPhysical, eAdvancedVisual};
            for (std::size_t i = 0; i < order.size(); ++i) {
                m_localizations[i] = localization->GetILocalization(m_userLanguage, m_libraryIds[order[i]]);
            }
            m_localizationsObtained = true;
        }
    }
    // The private library is made on first use; one that exists opens with the others.
    (void)openPrivateLibrary(false);
    loadUserLibraries();
    return !m_libsLoadFailed;
}

void AmbrelManager::loadUserLibraries()
{
    const AmbrelMaterialOptionGroup& options = AmbrelMaterialOptionGroup::get();
    const std::vector<std::wstring> userLibNames = options.libraryNames();
    const std::vector<std::wstring> userLibs = options.libraryPaths();
    KX_ASSERT(userLibNames.size() == userLibs.size());
    if (userLibNames.size() != userLibs.size()) {
        return;
    }
    for (std::size_t i = 0; i < userLibs.size(); ++i) {
        // The user listed this library: a file gone missing is worth telling, unlike an optional
        // standard library that was never installed.
        std::error_code ignored;
        if (!std::filesystem::exists(userLibs[i], ignored)) {
            AppLogMgr::appLogEx(ELogLevel::eWarning, L"Material library " + userLibs[i] + L" not opened: the file does not exist");
            m_libraryFailures.push_back({userLibNames[i], userLibs[i], "the file does not exist"});
            continue;
        }
        if (m_userLibraryRecords.count(userLibs[i]) != 0) {
            continue; // listed twice: opened once
        }
        Assets::IAssetLibrary* library = openLibrary(userLibs[i], userLibNames[i]);
        if (library == nullptr) {
            continue;
        }
        m_userLibraryRecords[userLibs[i]] = {userLibNames[i], library};
    }
}

bool AmbrelManager::LoadLibs(bool force)
{
    if (m_libsLoadAttempted && (!m_libsLoadFailed || !force)) {
        return !m_libsLoadFailed;
    }
    std::lock_guard lock(m_mutex);
    if (m_libsLoadAttempted && (!m_libsLoadFailed || !force)) {
        return !m_libsLoadFailed;
    }
    const bool loaded = _LoadLibs();
    m_libsLoadAttempted = true;
    return loaded;
}

std::vector<AmbrelManager::LibraryFailure> AmbrelManager::GetLibraryFailures() const
{
    std::lock_guard lock(m_mutex);
    return m_libraryFailures;
}

bool AmbrelManager::LibsLoaded() const
{
    return m_libsLoadAttempted && !m_libsLoadFailed;
}

void AmbrelManager::ReleaseLib()
{
    KX_ASSERT(OS::platformIsUIThread());
    std::lock_guard lock(m_mutex);
    if (!m_libsLoadAttempted || OperationContext::isOperationActive(2)) {
        return;
    }
    releaseCacheAndLibraries();
    m_libMgr = nullptr;
    m_libsLoadAttempted = false;
    m_libsLoadFailed = false;
}

void AmbrelManager::RefreshLibraryByIdentifier(const WideString& libraryId)
{
    KX_ASSERT(OS::platformIsUIThread());
    Assets::IAssetLibrary* library = GetLibraryByIdentifier(libraryId);
    if (library == nullptr) {
        return;
    }
    std::lock_guard lock(m_mutex);
    m_libMgr->RefreshAssetLibrary(library);
    dropCachedInstancesOf(libraryId);
}

Assets::IAssetLibrary* AmbrelManager::GetLibraryByIdentifier(const WideString& libraryId) const
{
    std::lock_guard lock(m_mutex);
    if (libraryId.empty()) {
        return nullptr;
    }
    for (Assets::IAssetLibrary* library : m_libraries) {
        if (library != nullptr && library->GetLibraryId() == libraryId) {
            return library;
        }
    }
    for (const auto& [path, record] : m_userLibraryRecords) {
        if (record.library->GetLibraryId() == libraryId) {
            return record.library;
        }
    }
    if (m_privateLibrary != nullptr && m_privateLibraryId == libraryId) {
        return m_privateLibrary;
    }
    return m_libMgr != nullptr ? m_libMgr->GetAssetLibrary(libraryId) : nullptr;
}

bool AmbrelManager::ownsLibrary(const Assets::IAssetLibrary* library) const
{
    return library != nullptr
        && (std::find(m_libraries.begin(), m_libraries.end(), library) != m_libraries.end()
            || library == m_privateLibrary
            || std::any_of(m_userLibraryRecords.begin(), m_userLibraryRecords.end(),
                [&](const auto& entry) { return entry.second.library == library; }));
}

Assets::IAssetLibraryManager* AmbrelManager::GetAssetLibMgr() const
{
    return m_libMgr;
}

bool AmbrelManager::IsSystemMaterialLibrary(const WideString& libraryId) const
{
    if (libraryId.empty()) {
        return false;
    }
    std::lock_guard lock(m_mutex);
    for (ELibrary which : {eSystemVisual, eSystemPhysical, eAdvancedVisual, eAdvancedPhysical, eAdditive, eNonlinear}) {
        if (m_libraryIds[which] == libraryId) {
            return true;
        }
    }
    return false;
}


} // namespace Kx
