#include "Types/Appearance/AmbrelManager.h"

#include <assets/IAssetLibrary.h>
#include <assets/LibraryLocation.h>
#include <base/Paths.h>
#include <base/StringTable.h>
#include <core/Strings.h>

#include <cstdlib>
#include <filesystem>

namespace Kx {

namespace Types {

WideString GetReducedLibraryPath()
{
    return (Paths::contentRoot() / "libraries").lexically_normal().wstring();
}

WideString GetLocalMaterialLibraryID()
{
    return L"LOCAL";
}

bool IsServerOrCloudTranslatorEdition()
{
    const std::string edition = Paths::edition();
    return edition == "server" || edition == "cloudtranslator";
}

} // namespace Types

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
    m_paths[eFavorites] = reducedLibraryFile(L"Favorites.tvrnlib");
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
    return L"netfs://" + Types::GetLocalMaterialLibraryID() + L":/user/" + userPart() + L"/content/private";
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
WideString AmbrelManager::GetPrivateVisualLibID() const { return {}; }

const Assets::IAssetLibrary* AmbrelManager::GetPhysicalAssetLibrary() const { return libraryOf(eSystemPhysical); }
const Assets::IAssetLibrary* AmbrelManager::GetVisualAssetLibrary() const { return libraryOf(eSystemVisual); }
const Assets::IAssetLibrary* AmbrelManager::GetAdvancedPhysicalAssetLibrary() const
{
    return libraryOf(eAdvancedPhysical);
}
const Assets::IAssetLibrary* AmbrelManager::GetAdvancedVisualAssetLibrary() const { return libraryOf(eAdvancedVisual); }
const Assets::IAssetLibrary* AmbrelManager::GetFavoritesLibrary() const { return libraryOf(eFavorites); }
const Assets::IAssetLibrary* AmbrelManager::GetPrivateVisualAssetLibrary() const { return nullptr; }

const std::vector<WideString>& AmbrelManager::GetStandardLibraryDisplayNames()
{
    // In ELibrary order. The additive and nonlinear libraries are looked up by their older
    // "Simulation" keys, with the current English names as the text shown without a translation.
    static const std::vector<WideString> s_names{
        StringTable::getLocalizedString("KxTypes", "Orvane Appearance Library", "Orvane Appearance Library"),
        StringTable::getLocalizedString("KxTypes", "Orvane Material Library", "Orvane Material Library"),
        StringTable::getLocalizedString("KxTypes", "Telvarin Advanced Appearance Library",
            "Telvarin Advanced Appearance Library"),
        StringTable::getLocalizedString("KxTypes", "Telvarin Advanced Material Library",
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

LibraryInfoMap AmbrelManager::GetLibrariesInfo() const
{
    std::lock_guard lock(m_mutex);
    LibraryInfoMap info;
    const std::vector<WideString>& names = GetStandardLibraryDisplayNames();
    for (int which = 0; which < eLibraryCount; ++which) {
        if (m_libraries[which] != nullptr) {
            info[names[which]] = {m_paths[which], m_libraryIds[which]};
        }
    }
    // A user library named like one already listed is listed under a numbered name, not dropped.
    for (const auto& [name, entry] : m_userLibraries) {
        const WideString shown = info.count(name) == 0 ? name : GenerateLibraryDisplayName(info, name);
        info[shown] = entry;
    }
    return info;
}

} // namespace Kx
