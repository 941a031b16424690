// Writes a material library through the asset API, as a user's library tool would, for the
// console tests that list a user library: kx_make_library <file> <library id>. One physical
// material, "mine-brass", named "Brass (mine)" in English and "Messing (geschützt)" in German,
// with a density of 8500 kg/m³. Exit status 1, with the reason, when the library cannot be written.

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>

#include <filesystem>
#include <iostream>
#include <string>

using namespace telvarin::platform::assets;

namespace {

int failed(const std::string& step, const AssetError& error)
{
    std::cerr << "kx_make_library: " << step << ": " << error.message << '\n';
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: kx_make_library <file> <library id>\n";
        return 2;
    }
    const std::filesystem::path file = argv[1];
    const std::string id = argv[2];
    std::filesystem::create_directories(file.parent_path());

    const std::unique_ptr<IAssetLibraryManager> manager = CreateAssetLibraryManager();
    AssetError error;
    IAssetLibrary* library = manager->CreateAssetLibrary(file.wstring(), eUserLibrary, std::wstring(id.begin(), id.end()), &error);
    if (library == nullptr)
        return failed("create", error);
    IWritableAssetLibrary* writable = manager->GetWritableAssetLibrary(library, &error);
    if (writable == nullptr)
        return failed("open for writing", error);

    const InstancePtr material(manager->CreateAssetInstance(L"physicalmaterial"));
    const InstancePtr structural(manager->CreateAssetInstance(L"structural"));
    material->SetName("eng", L"Brass (mine)");
    material->SetName("deu", L"Messing (geschützt)");
    if (!structural->SetDoubleValue(L"structural_Density", 8500.0) || !material->SetConnectedAsset(L"Structural", structural.get())
        || !writable->CreateNewAssetPreset(material.get(), AssetPresetInfo{"mine-brass", {}, 1, 0, {}, {}, L"Metal", {}}, &error))
        return failed("add the preset", error);
    if (!manager->CommitAssetLibrary(writable, &error))
        return failed("commit", error);
    manager->ReleaseWritableAssetLibrary(writable);
    if (!manager->SaveAssetLibrary(library, &error))
        return failed("save", error);
    manager->ReleaseAssetLibrary(library);
    return 0;
}
