#include "Types/Online/DownloadedMaterialLibrary.h"

#include "Types/Appearance/AmbrelManager.h"
#include "Types/Online/PresetCopy.h"

#include <assets/IAssetDefinition.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <base/Assert.h>
#include <base/OS.h>
#include <core/Strings.h>

#include <memory>
#include <mutex>

namespace Kx::Types {

namespace {

using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

} // namespace

DownloadedMaterialLibrary::DownloadedMaterialLibrary(AmbrelManager& libraries, std::filesystem::path file)
    : m_libraries(libraries), m_file(std::move(file))
{
}

Assets::IAssetLibrary* DownloadedMaterialLibrary::open(bool create, std::string& problem)
{
    KX_ASSERT(OS::platformIsUIThread());
    if (!m_libraryId.empty()) {
        if (Assets::IAssetLibrary* open = m_libraries.GetLibraryByIdentifier(m_libraryId))
            return open;
        m_libraryId.clear();
    }
    Assets::IAssetLibrary* found = findOrOpen(create, problem);
    if (found != nullptr)
        m_libraryId = found->GetLibraryId();
    return found;
}

Assets::IAssetLibrary* DownloadedMaterialLibrary::findOrOpen(bool create, std::string& problem)
{
    std::error_code ignored;
    const bool exists = std::filesystem::exists(m_file, ignored);
    if (!exists && !create)
        return nullptr;
    if (!m_libraries.LibsLoaded())
        (void)m_libraries.LoadLibs(false);
    const std::wstring path = m_file.lexically_normal().wstring();
    for (const auto& [name, entry] : m_libraries.GetUserLibrariesInfo(true)) {
        if (entry.first == path)
            return m_libraries.GetLibraryByIdentifier(entry.second);
    }
    Assets::IAssetLibraryManager* assets = m_libraries.GetAssetLibMgr();
    if (assets == nullptr) {
        problem = "the material libraries are not loaded";
        return nullptr;
    }
    if (!exists) {
        std::filesystem::create_directories(m_file.parent_path(), ignored);
        Assets::AssetError error;
        const Assets::LibraryPtr created(
            assets->CreateAssetLibrary(path, Assets::eUserLibrary, {}, &error), Assets::ReleaseLibrary{assets});
        if (!created || !assets->SaveAssetLibrary(created.get(), &error)) {
            problem = "the library of downloaded materials cannot be created: " + error.message;
            return nullptr;
        }
    }
    std::wstring name;
    if (!m_libraries.LoadUserLib(path, name)) {
        problem = "the library of downloaded materials cannot be opened: " + m_file.string();
        return nullptr;
    }
    return m_libraries.GetLibraryByIdentifier(m_libraries.GetUserLibrariesInfo(true).at(name).second);
}

std::string DownloadedMaterialLibrary::install(const std::filesystem::path& source, const OnlineMaterial& material)
{
    std::lock_guard lock(m_libraries.mutex());
    std::string problem;
    Assets::IAssetLibrary* target = open(true, problem);
    if (target == nullptr)
        return problem;
    // The downloaded file is read by a manager of its own: it is no library of the application.
    const std::unique_ptr<Assets::IAssetLibraryManager> reader = Assets::CreateAssetLibraryManager();
    Assets::AssetError error;
    const Assets::LibraryPtr downloaded(
        reader->OpenAssetLibrary(source.wstring(), &error), Assets::ReleaseLibrary{reader.get()});
    if (!downloaded)
        return "the downloaded file of " + material.uuid + " is no material library: " + error.message;
    const Assets::IAssetDefinition* definition = downloaded->FindAssetDefinition(material.materialId);
    if (definition == nullptr)
        return "the downloaded file of " + material.uuid + " does not hold the material " + material.materialId;

    Assets::IAssetLibraryManager* assets = m_libraries.GetAssetLibMgr();
    Assets::IWritableAssetLibrary* writer = assets->GetWritableAssetLibrary(target, &error);
    if (writer == nullptr)
        return "the library of downloaded materials cannot be written: " + error.message;
    if (Assets::IAssetDefinition* older = writer->FindAssetDefinition(material.materialId, definition->GetVariant()))
        (void)writer->DeleteAssetDefinition(older, &error);
    const bool copied = CopyPreset(*downloaded, *definition, *writer, error) && assets->CommitAssetLibrary(writer, &error);
    // Without a commit the writer rolls back: the library is left as it was.
    assets->ReleaseWritableAssetLibrary(writer);
    return copied ? std::string() : "the material " + material.materialId + " could not be installed: " + error.message;
}

bool DownloadedMaterialLibrary::has(const std::string& materialId)
{
    std::lock_guard lock(m_libraries.mutex());
    std::string problem;
    const Assets::IAssetLibrary* library = open(false, problem);
    return library != nullptr && library->FindAssetDefinition(materialId) != nullptr;
}

std::wstring DownloadedMaterialLibrary::libraryId()
{
    std::lock_guard lock(m_libraries.mutex());
    std::string problem;
    const Assets::IAssetLibrary* library = open(false, problem);
    return library != nullptr ? library->GetLibraryId() : std::wstring();
}

} // namespace Kx::Types
