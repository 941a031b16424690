#include "Types/Appearance/AmbrelManager.h"

#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <assets/LibraryLocation.h>
#include <base/AppLogMgr.h>
#include <base/Paths.h>
#include <base/StringTable.h>
#include <core/Strings.h>

#include <cstdlib>
#include <filesystem>

namespace Kx {

namespace {

WideString reducedLibraryFile(const wchar_t* file)
{
    return (std::filesystem::path(Types::GetReducedLibraryPath()) / file).wstring();
}

// Servers have no content service: they read the installed files directly.
WideString standardLibraryLocation(const wchar_t* file, const wchar_t* contentPath)
{
    if (Types::IsServerOrCloudTranslatorEdition()) {
        return reducedLibraryFile(file);
    }
    return L"netfs://" + Types::GetLocalMaterialLibraryID() + contentPath;
}

// The part of the private library's path that names the user.
WideString userPart()
{
    const char* user = std::getenv("USER");
    return telvarin::platform::core::toWide(user != nullptr && *user != '\0' ? user : "default");
}

} // namespace

WideString AmbrelManager::pathOf(ELibrary which) const
{
    std::lock_guard lock(m_mutex);
    return m_paths[which];
}

WideString AmbrelManager::idOf(ELibrary which) const
{
    std::lock_guard lock(m_mutex);
    return m_libraryIds[which];
}

const Assets::IAssetLibrary* AmbrelManager::libraryOf(ELibrary which) const
{
    std::lock_guard lock(m_mutex);
    return m_libraries[which];
}

void AmbrelManager::SetSystemLibPaths()
{
    m_paths[eSystemVisual] = standardLibraryLocation(L"assetlibrary_base.tvrnlib", L":/slib/content/appearance");
    m_paths[eSystemPhysical] = standardLibraryLocation(L"PhysicalMaterial.tvrnlib", L":/slib/content/physical");
    m_paths[eAdvancedVisual] =
        standardLibraryLocation(L"assetlibrary_advanced.tvrnlib", L":/slib/content/advancedappearance");
    m_paths[eAdvancedPhysical] =
        standardLibraryLocation(L"PhysicalMaterialAdvanced.tvrnlib", L":/slib/content/advancedphysical");
    m_paths[eAdditive] = reducedLibraryFile(L"Additive.tvrnlib");
    m_paths[eNonlinear] = reducedLibraryFile(L"Nonlinear Material Library.tvrnlib");
    m_paths[eFavorites] = GetApplicationFavoritesFile();
}

WideString AmbrelManager::GetApplicationFavoritesFile() const
{
    return reducedLibraryFile(Types::s_favoritesFileName);
}

WideString AmbrelManager::GetPrivateVisualAssetFile() const
{
    return L"netfs://" + Types::GetLocalMaterialLibraryID() + L":/user/" + userPart() + L"/content/private";
}

WideString AmbrelManager::GetPhysicalLibraryPath() const { return pathOf(eSystemPhysical); }
WideString AmbrelManager::GetVisualLibraryPath() const { return pathOf(eSystemVisual); }
WideString AmbrelManager::GetAdvancedPhysicalLibraryPath() const { return pathOf(eAdvancedPhysical); }
WideString AmbrelManager::GetAdvancedVisualLibraryPath() const { return pathOf(eAdvancedVisual); }
WideString AmbrelManager::GetAdditivePhysicalLibraryPath() const { return pathOf(eAdditive); }
WideString AmbrelManager::GetNonlinearPhysicalLibraryPath() const { return pathOf(eNonlinear); }
WideString AmbrelManager::GetFavoritesLibPath() const { return pathOf(eFavorites); }

WideString AmbrelManager::GetPrivateVisualLibPath() const
{
    return GetPrivateVisualAssetFile();
}

WideString AmbrelManager::GetVisualLibraryTextureFolder() const
{
    if (!Types::IsServerOrCloudTranslatorEdition()) {
        if (auto file = Assets::ResolveNetfsUri(GetVisualLibraryPath(), Paths::contentRoot())) {
            return (file->parent_path() / "assetlibrary_base.fbm").wstring();
        }
    }
    return (std::filesystem::path(GetVisualLibraryPath()).parent_path() / "assetlibrary_base.fbm").wstring();
}

WideString AmbrelManager::GetPhysicalLibraryID() const { return idOf(eSystemPhysical); }
WideString AmbrelManager::GetVisualLibraryID() const { return idOf(eSystemVisual); }
WideString AmbrelManager::GetAdvancedPhysicalLibraryID() const { return idOf(eAdvancedPhysical); }
WideString AmbrelManager::GetAdvancedVisualLibraryID() const { return idOf(eAdvancedVisual); }
WideString AmbrelManager::GetAdditivePhysicalLibraryID() const { return idOf(eAdditive); }
WideString AmbrelManager::GetNonlinearPhysicalLibraryID() const { return idOf(eNonlinear); }
WideString AmbrelManager::GetFavoritesLibraryID() const { return idOf(eFavorites); }
WideString AmbrelManager::GetPrivateVisualLibID() const
{
    std::lock_guard lock(m_mutex);
    return m_privateLibraryId;
}

const Assets::IAssetLibrary* AmbrelManager::GetPhysicalAssetLibrary() const { return libraryOf(eSystemPhysical); }
const Assets::IAssetLibrary* AmbrelManager::GetVisualAssetLibrary() const { return libraryOf(eSystemVisual); }
const Assets::IAssetLibrary* AmbrelManager::GetAdvancedPhysicalAssetLibrary() const
{
    return libraryOf(eAdvancedPhysical);
}
const Assets::IAssetLibrary* AmbrelManager::GetAdvancedVisualAssetLibrary() const { return libraryOf(eAdvancedVisual); }
const Assets::IAssetLibrary* AmbrelManager::GetFavoritesLibrary() const { return libraryOf(eFavorites); }
const Assets::IAssetLibrary* AmbrelManager::GetPrivateVisualAssetLibrary() const
{
    std::lock_guard lock(m_mutex);
    return m_libraries[eSystemVisual] != nullptr ? openPrivateLibrary(true) : nullptr;
}

Assets::IAssetLibrary* AmbrelManager::openPrivateLibrary(bool create) const
{
    if (m_privateLibrary != nullptr || m_libMgr == nullptr) {
        return m_privateLibrary;
    }
    const WideString location = GetPrivateVisualAssetFile();
    const auto file = Assets::ResolveNetfsUri(location, Paths::contentRoot(), Paths::userDirectory());
    std::error_code ignored;
    if (!file || (!std::filesystem::exists(*file, ignored) && !create)) {
        return nullptr;
    }
    if (!std::filesystem::exists(*file, ignored)) {
        // Made empty and writable on first use, with the appearance kind of the user's libraries.
        std::filesystem::create_directories(file->parent_path(), ignored);
        Assets::AssetError error;
        Assets::IAssetLibrary* created = m_libMgr->CreateAssetLibrary(file->wstring(), 5, {}, &error);
        const bool saved = created != nullptr && m_libMgr->SaveAssetLibrary(created, &error);
        if (created != nullptr) {
            m_libMgr->ReleaseAssetLibrary(created);
        }
        if (!saved) {
            AppLogMgr::appLogEx(ELogLevel::eWarning, L"Private library " + location + L" not created: "
                + telvarin::platform::core::toWide(error.message));
            return nullptr;
        }
    }
    Assets::AssetError error;
    m_privateLibrary = m_libMgr->OpenAssetLibrary(location, &error);
    if (m_privateLibrary == nullptr) {
        AppLogMgr::appLogEx(ELogLevel::eWarning,
            L"Private library " + location + L" not opened: " + telvarin::platform::core::toWide(error.message));
        return nullptr;
    }
    m_privateLibraryId = m_privateLibrary->GetLibraryId();
    // The lists of libraries now have one more.
    const_cast<AmbrelManager*>(this)->m_librariesInfoBuilt = false;
    return m_privateLibrary;
}

const std::vector<WideString>& AmbrelManager::GetStandardLibraryDisplayNames()
{
    // In EDisplayName order. The standard material and appearance libraries are looked up under the
    // keys the material preferences use for them, so both always show the same name; the advanced
    // ones under keys of their own. The additive and nonlinear libraries are looked up by their older
    // "Simulation" keys, with the current English names as the text shown without a translation.
    static const std::vector<WideString> s_names{
        StringTable::getLocalizedString("KxTypes", "Telvarin Advanced Appearance Library", "Orvane Appearance Library"),
        StringTable::getLocalizedString("KxTypes", "Telvarin Advanced Material Library", "Orvane Material Library"),
        StringTable::getLocalizedString("KxTypes", "AdvancedAppearanceLibraryName",
            "Telvarin Advanced Appearance Library"),
        StringTable::getLocalizedString("KxTypes", "AdvancedMaterialLibraryName",
            "Telvarin Advanced Material Library"),
        StringTable::getLocalizedString("KxTypes", "Favorites Library", "Favorites Library"),
        StringTable::getLocalizedString("KxTypes", "Simulation Additive Material Library",
            "Orvane Additive Material Library"),
        StringTable::getLocalizedString("KxTypes", "Simulation Nonlinear Material Library",
            "Orvane Nonlinear Material Library"),
        StringTable::getLocalizedString("KxTypes", "Private Visual Library", "Private Visual Library")};
    return s_names;
}

WideString AmbrelManager::GenerateLibraryDisplayName(const LibraryInfoMap& known, const WideString& path)
{
    std::size_t separator = path.rfind(L'\\');
    if (separator == WideString::npos) {
        separator = path.rfind(L'/');
    }
    WideString base = separator == WideString::npos ? path : path.substr(separator + 1);
    if (const std::size_t dot = base.rfind(L'.'); dot != WideString::npos) {
        base.erase(dot);
    }
    if (known.count(base) == 0) {
        return base;
    }
    for (unsigned counter = 1;; ++counter) {
        WideString candidate = base + std::to_wstring(counter);
        if (known.count(candidate) == 0) {
            return candidate;
        }
    }
}

const LibraryInfoMap& AmbrelManager::GetLibrariesInfo(bool rebuild)
{
    std::lock_guard lock(m_mutex);
    if (!rebuild && m_librariesInfoBuilt) {
        return m_librariesInfo;
    }
    m_librariesInfo.clear();
    const std::vector<WideString>& names = GetStandardLibraryDisplayNames();
    for (int which = 0; which < eLibraryCount; ++which) {
        if (m_libraries[which] != nullptr) {
            m_librariesInfo[names[which]] = {m_paths[which], m_libraryIds[which]};
        }
    }
    if (m_privateLibrary != nullptr) {
        m_librariesInfo[names[ePrivateVisualName]] = {GetPrivateVisualAssetFile(), m_privateLibraryId};
    }
    // A user library named like one already listed is listed under a numbered name, not dropped.
    for (const auto& [path, record] : m_userLibraryRecords) {
        const WideString shown = m_librariesInfo.count(record.displayName) == 0
            ? record.displayName
            : GenerateLibraryDisplayName(m_librariesInfo, record.displayName);
        m_librariesInfo[shown] = {path, record.library->GetLibraryId()};
    }
    m_librariesInfoBuilt = true;
    return m_librariesInfo;
}

const LibraryInfoMap& AmbrelManager::GetUserLibrariesInfo(bool rebuild)
{
    std::lock_guard lock(m_mutex);
    if (rebuild || !m_userLibrariesInfoBuilt) {
        m_userLibrariesInfo.clear();
        for (const auto& [path, record] : m_userLibraryRecords) {
            m_userLibrariesInfo[record.displayName] = {path, record.library->GetLibraryId()};
        }
        m_userLibrariesInfoBuilt = true;
    }
    return m_userLibrariesInfo;
}

} // namespace Kx
