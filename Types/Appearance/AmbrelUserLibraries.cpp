// User libraries: library files the user opens by path, reopened at the next start from the
// material options (AmbrelMaterialOptionGroup).
#include "Types/Appearance/AmbrelManager.h"

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <base/AmbrelMaterialOptionGroup.h>
#include <base/AppLogMgr.h>
#include <base/Assert.h>
#include <base/OS.h>
#include <core/Strings.h>

#include <filesystem>

namespace Kx {

namespace {

// The options keep the path for the next start, which may run from another folder.
WideString absolutePath(const WideString& path)
{
    std::error_code ignored;
    const std::filesystem::path absolute = std::filesystem::absolute(std::filesystem::path(path), ignored);
    return absolute.empty() ? path : absolute.lexically_normal().wstring();
}

} // namespace

bool AmbrelManager::LoadUserLib(const WideString& path, WideString& displayName)
{
    KX_ASSERT(OS::platformIsUIThread());
    if (path.empty()) {
        return false;
    }
    const WideString file = absolutePath(path);
    std::lock_guard lock(m_mutex);
    if (const auto open = m_userLibraryRecords.find(file); open != m_userLibraryRecords.end()) {
        displayName = open->second.displayName;
        return true;
    }
    if (m_libMgr == nullptr) {
        return false;
    }
    displayName = GenerateLibraryDisplayName(GetLibrariesInfo(true), file);
    Assets::AssetError error;
    Assets::IAssetLibrary* library = m_libMgr->OpenAssetLibrary(file, &error);
    if (library == nullptr) {
        AppLogMgr::appLogEx(ELogLevel::eWarning,
            L"Material library " + file + L" not opened: " + telvarin::platform::core::toWide(error.message));
        return false;
    }
    m_userLibraryRecords[file] = {displayName, library};
    m_userLibrariesInfoBuilt = false;
    m_librariesInfoBuilt = false;
    AmbrelMaterialOptionGroup& options = AmbrelMaterialOptionGroup::get();
    options.addLibraryPath(displayName, file);
    (void)options.save();
    return true;
}

bool AmbrelManager::UnloadUserLib(const WideString& displayName)
{
    KX_ASSERT(OS::platformIsUIThread());
    std::lock_guard lock(m_mutex);
    const auto record = std::find_if(m_userLibraryRecords.begin(), m_userLibraryRecords.end(),
        [&](const auto& entry) { return entry.second.displayName == displayName; });
    if (record == m_userLibraryRecords.end()) {
        return false;
    }
    const WideString libraryId = record->second.library->GetLibraryId();
    // Instances made from the library must not outlive it in the cache.
    dropCachedInstancesOf(libraryId);
    if (m_libMgr != nullptr) {
        m_libMgr->ReleaseAssetLibrary(record->second.library);
    }
    AmbrelMaterialOptionGroup& options = AmbrelMaterialOptionGroup::get();
    options.removeLibraryPath(record->first);
    (void)options.save();
    m_userLibraryRecords.erase(record);
    m_userLibrariesInfoBuilt = false;
    m_librariesInfoBuilt = false;
    return true;
}

} // namespace Kx
