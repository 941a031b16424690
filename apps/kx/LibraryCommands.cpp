#include "LibraryCommands.h"

#include "MaterialCommands.h"
#include "Table.h"

#include <Types/Appearance/AmbrelManager.h>
#include <Types/Utility/TypesUtil.h>

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <base/AmbrelMaterialOptionGroup.h>
#include <base/Assert.h>
#include <base/Exception.h>
#include <base/Paths.h>
#include <base/Strings.h>

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>
#include <ostream>
#include <string>

namespace Kx::Console {

namespace {

using Assets::IAssetInstance;
using Assets::IAssetLibrary;
using Assets::InstancePtr;

struct LibraryArguments {
    CLI::App* add = nullptr;
    CLI::App* remove = nullptr;
    CLI::App* list = nullptr;
    CLI::App* open = nullptr;
    CLI::App* close = nullptr;
    CLI::App* history = nullptr;
    std::string material;
    std::string library;
    std::string path;
    std::string name;
};

LibraryArguments& arguments()
{
    static LibraryArguments held;
    return held;
}

const IAssetLibrary& favoritesOf(AmbrelManager& manager)
{
    const IAssetLibrary* favorites = manager.GetFavoritesLibrary();
    if (favorites == nullptr) {
        throw Exception(L"There are no favourites yet", ToUTF8(manager.GetFavoritesLibPath()));
    }
    return *favorites;
}

// The material in the library named (display name or identifier), or in the first open library
// that has it, favourites left out.
InstancePtr findMaterial(AmbrelManager& manager, const std::string& material, const std::string& wanted)
{
    const WideString key = ToIString(wanted);
    for (const auto& [name, entry] : manager.GetLibrariesInfo(true)) {
        const bool named = !wanted.empty() && (name == key || entry.second == key);
        if ((wanted.empty() && entry.second == manager.GetFavoritesLibraryID()) || (!wanted.empty() && !named)) {
            continue;
        }
        if (InstancePtr instance{manager.GetAssetUncacheInstance(material, entry.second)}) {
            return instance;
        }
        if (named) {
            break;
        }
    }
    throw Exception(L"No open material library has this material", wanted.empty() ? material : material + " in " + wanted);
}

void addFavorite(std::ostream& out, AmbrelManager& manager, const LibraryArguments& held)
{
    InstancePtr original = findMaterial(manager, held.material, held.library);
    if (const IAssetLibrary* favorites = manager.GetFavoritesLibrary();
        favorites != nullptr && favorites->FindAssetDefinition(held.material) != nullptr) {
        throw Exception(L"The material is a favourite already", held.material);
    }
    InstancePtr favorite{manager.AddMaterialToFavorites(original.get())};
    if (favorite == nullptr) {
        throw Exception(L"The material could not be added to the favourites", ToUTF8(manager.GetFavoritesLibPath()));
    }
    out << "added " << held.material << " (" << ToUTF8(manager.GetUIName(favorite.get())) << ") to the favourites\n";
}

void removeFavorite(std::ostream& out, AmbrelManager& manager, const LibraryArguments& held)
{
    const IAssetLibrary& favorites = favoritesOf(manager);
    InstancePtr favorite{favorites.CreateAssetInstance(held.material)};
    if (favorite == nullptr) {
        throw Exception(L"The material is not a favourite", held.material);
    }
    if (!manager.RemoveMaterialFromFavorites(favorite.get())) {
        throw Exception(L"The favourite could not be removed", ToUTF8(manager.GetFavoritesLibPath()));
    }
    out << "removed " << held.material << " from the favourites\n";
}

void listFavorites(std::ostream& out, AmbrelManager& manager)
{
    const IAssetLibrary* favorites = manager.GetFavoritesLibrary();
    if (favorites == nullptr || favorites->GetAssetCount() == 0) {
        out << "no favourites\n";
        return;
    }
    Table table({{"material id"}, {"name"}, {"kind"}, {"category"}});
    for (const Assets::IAssetDefinition* definition : favorites->GetAssetDefinitions()) {
        const bool physical = Assets::SchemaEquals(definition->GetSchemaName(), L"physicalmaterial");
        table.addRow({definition->GetMaterialId(),
            ToUTF8(favorites->GetAssetName(definition->GetMaterialId(), manager.GetUserLanguage())),
            physical ? "material" : "appearance", ToUTF8(definition->GetCategory())});
    }
    table.print(out);
}

void openLibrary(std::ostream& out, AmbrelManager& manager, const std::string& path)
{
    WideString name;
    if (!manager.LoadUserLib(ToIString(path), name)) {
        // The manager says only that it failed; the asset API says why.
        const auto probe = Assets::CreateAssetLibraryManager();
        Assets::AssetError error;
        IAssetLibrary* library = probe->OpenAssetLibrary(ToIString(path), &error);
        if (library != nullptr) {
            probe->ReleaseAssetLibrary(library);
        }
        throw Exception(L"The material library could not be opened",
            path + (error.message.empty() ? std::string() : ": " + error.message));
    }
    const auto& users = manager.GetUserLibrariesInfo(true);
    const IAssetLibrary* library = manager.GetLibraryByIdentifier(users.at(name).second);
    out << "opened " << ToUTF8(users.at(name).first) << " as \"" << ToUTF8(name) << "\" ("
        << (library != nullptr ? library->GetAssetCount() : 0) << " presets); it opens again at the next start\n";
}

void closeLibrary(std::ostream& out, AmbrelManager& manager, const std::string& name)
{
    if (manager.UnloadUserLib(ToIString(name))) {
        out << "closed \"" << name << "\"\n";
        return;
    }
    // A library that could not be opened at the start is still listed in the options: closing it
    // takes it off, so it is not tried again.
    AmbrelMaterialOptionGroup& options = AmbrelMaterialOptionGroup::get();
    const std::vector<std::wstring> names = options.libraryNames();
    const std::vector<std::wstring> paths = options.libraryPaths();
    for (std::size_t index = 0; index < names.size() && index < paths.size(); ++index) {
        if (names[index] == ToIString(name)) {
            options.removeLibraryPath(paths[index]);
            if (!options.save()) {
                throw Exception(L"The options could not be saved", options.persistFile().string());
            }
            out << "\"" << name << "\" was not open; it is no longer opened at the start\n";
            return;
        }
    }
    throw Exception(L"No user library is open under this name", name);
}

void printHistory(std::ostream& out)
{
    // The file is read once per process: its problems are caught here, where they can be shown.
    std::wstring current;
    std::vector<std::wstring> legacy;
    {
        ScopedAssertionCapture capture;
        current = Types::GetCurrentMaterialLibraryGUID();
        legacy = Types::GetLegacyMaterialLibraryGUID();
        for (const AssertionReport& report : capture.reports()) {
            std::cerr << "kx: warning: MaterialLibraryHistory.xml: " << report.condition << '\n';
        }
    }
    out << "history file: " << (Paths::contentRoot() / "MaterialLibraryHistory.xml").string() << '\n';
    Table table({{"set"}, {"GUID"}, {"folder"}});
    const auto folderOf = [](const std::wstring& guid) {
        const std::filesystem::path folder = Paths::userDirectory() / "libraries" / guid;
        std::error_code ignored;
        return guid.empty() ? std::string("-")
                            : folder.string() + (std::filesystem::exists(folder, ignored) ? "" : " (none)");
    };
    table.addRow({"current", current.empty() ? "-" : ToUTF8(current), folderOf(current)});
    for (std::size_t index = 0; index < legacy.size(); ++index) {
        table.addRow({"legacy " + std::to_string(index + 1), ToUTF8(legacy[index]), folderOf(legacy[index])});
    }
    table.print(out);
}

} // namespace

void addLibraryCommands(CLI::App& app)
{
    LibraryArguments& held = arguments();
    CLI::App* library = app.add_subcommand("library", "favourites, your own library files and the installed library sets");
    CLI::App* favorites = library->add_subcommand("favorites", "the favourites library");
    held.add = favorites->add_subcommand("add", "copy a material or appearance into the favourites");
    held.add->add_option("material", held.material, "material id")->required();
    held.add->add_option("--library", held.library, "display name or identifier (default: the first open library that has it)");
    held.add->footer("Example: kx library favorites add CorvexMaterial-018");
    held.remove = favorites->add_subcommand("remove", "delete a favourite");
    held.remove->add_option("material", held.material, "material id of the favourite")->required();
    held.remove->footer("Example: kx library favorites remove CorvexMaterial-018");
    held.list = favorites->add_subcommand("list", "list the favourites");
    held.list->footer("Example: kx library favorites list");
    favorites->require_subcommand(1);
    held.open = library->add_subcommand("open", "open a library file of your own; it opens again at every start");
    held.open->add_option("path", held.path, "the .tvrnlib file")->required();
    held.open->footer("Example: kx library open ~/materials/Mine.tvrnlib");
    held.close = library->add_subcommand("close", "close a library of your own; it is no longer opened at the start");
    held.close->add_option("name", held.name, "its display name, as `kx materials libraries` shows it")->required();
    held.close->footer("Example: kx library close Mine");
    held.history = library->add_subcommand("history", "the installed material library set and the earlier ones");
    held.history->footer("Example: kx library history");
    library->require_subcommand(1);
    library->footer("Example: kx library favorites list");
}

bool runLibraryCommand(std::ostream& out)
{
    LibraryArguments& held = arguments();
    if (held.history != nullptr && held.history->parsed()) {
        printHistory(out);
        return true;
    }
    const auto chosen = [](const CLI::App* command) { return command != nullptr && command->parsed(); };
    if (!chosen(held.add) && !chosen(held.remove) && !chosen(held.list) && !chosen(held.open) && !chosen(held.close)) {
        return false;
    }
    AmbrelManager& manager = loadedManager();
    if (chosen(held.add)) {
        addFavorite(out, manager, held);
    } else if (chosen(held.remove)) {
        removeFavorite(out, manager, held);
    } else if (chosen(held.list)) {
        listFavorites(out, manager);
    } else if (chosen(held.open)) {
        openLibrary(out, manager, held.path);
    } else {
        closeLibrary(out, manager, held.name);
    }
    return true;
}

} // namespace Kx::Console
