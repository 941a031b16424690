#include "MaterialCommands.h"

#include "Arguments.h"
#include "Table.h"

#include <Types/Appearance/AmbrelManager.h>

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <base/Exception.h>
#include <base/Strings.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <iostream>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Kx::Console {

namespace {

using Assets::IAssetInstance;

struct MaterialOptions {
    CLI::App* libraries = nullptr;
    CLI::App* list = nullptr;
    std::string library;
    unsigned limit = 0;
};

MaterialOptions& options()
{
    static MaterialOptions held;
    return held;
}

std::string describe(const AmbrelManager::LibraryFailure& failure)
{
    return "\"" + ToUTF8(failure.name) + "\" (" + ToUTF8(failure.location) + "): " + failure.reason;
}

} // namespace

AmbrelManager& loadedManager()
{
    AmbrelManager* manager = AmbrelManager::GetAmbrelManager(true);
    const std::vector<AmbrelManager::LibraryFailure> failures = manager->GetLibraryFailures();
    if (!manager->LibsLoaded()) {
        throw Exception(L"The material libraries could not be loaded",
            failures.empty() ? ToUTF8(Types::GetReducedLibraryPath()) : describe(failures.front()));
    }
    for (const AmbrelManager::LibraryFailure& failure : failures) {
        std::cerr << "kx: warning: material library not opened: " << describe(failure) << '\n';
    }
    return *manager;
}

namespace {

std::optional<double> structuralValue(const AmbrelManager& manager, const IAssetInstance* material,
    const wchar_t* property)
{
    const Assets::InstancePtr structural(manager.GetConnectedAssetInstance(material, L"Structural"));
    double value = 0.0;
    if (structural == nullptr || !structural->GetDoubleValue(property, value)) {
        return std::nullopt;
    }
    return value;
}

std::string describeColor(const AmbrelManager& manager, const IAssetInstance* material)
{
    const Assets::InstancePtr appearance(manager.GetConnectedAssetInstance(material, L"materialappearance"));
    Color color;
    if (appearance == nullptr) {
        return "no appearance";
    }
    if (!manager.GetAssetInstanceColor(appearance.get(), color)) {
        return "textured";
    }
    return ToUTF8(color.toHex(false));
}

std::string formatted(std::optional<double> value, double scale, int precision)
{
    return value ? fmt::format("{:.{}f}", *value / scale, precision) : std::string("-");
}

Table materialTable()
{
    return Table({{"material id"}, {"name"}, {"density kg/m3", Table::EAlign::eRight},
        {"Young's modulus GPa", Table::EAlign::eRight}, {"colour"}});
}

// One row per material: id, name, density, Young's modulus and the colour of its appearance.
void addMaterial(Table& table, AmbrelManager& manager, const std::string& materialId, const WideString& libraryId)
{
    const Assets::InstancePtr material(manager.GetAssetInstance(materialId, libraryId, MaterialTweak{}));
    if (material == nullptr) {
        return;
    }
    table.addRow({materialId, ToUTF8(manager.GetUIName(material.get())),
        formatted(structuralValue(manager, material.get(), L"structural_Density"), 1.0, 0),
        formatted(structuralValue(manager, material.get(), L"structural_Young_modulus"), 1e9, 1),
        describeColor(manager, material.get())});
}

void printLibraries(std::ostream& out, AmbrelManager& manager)
{
    Table table({{"library"}, {"identifier"}, {"presets", Table::EAlign::eRight}});
    for (const auto& [name, entry] : manager.GetLibrariesInfo()) {
        const Assets::IAssetLibrary* library = manager.GetLibraryByIdentifier(entry.second);
        table.addRow({ToUTF8(name), ToUTF8(entry.second), std::to_string(library != nullptr ? library->GetAssetCount() : 0)});
    }
    table.print(out);
}

// A library by display name or identifier; the advanced physical library when none is named.
WideString chosenLibrary(AmbrelManager& manager, const std::string& wanted)
{
    if (wanted.empty()) {
        return manager.GetAdvancedPhysicalLibraryID();
    }
    const WideString key = ToIString(wanted);
    for (const auto& [name, entry] : manager.GetLibrariesInfo()) {
        if (name == key || entry.second == key) {
            return entry.second;
        }
    }
    throw Exception(L"No open material library has this name or identifier", wanted);
}

void listMaterials(std::ostream& out, AmbrelManager& manager, const std::string& wanted, unsigned limit)
{
    const WideString libraryId = chosenLibrary(manager, wanted);
    const std::vector<UTF8String> materials = manager.GetPhysicalMaterialsByLibrary(libraryId);
    if (materials.empty()) {
        out << "no physical materials in " << (wanted.empty() ? "the advanced physical library" : wanted) << '\n';
        return;
    }
    Table table = materialTable();
    for (const UTF8String& id : materials) {
        if (limit != 0 && table.rowCount() == limit) {
            break;
        }
        addMaterial(table, manager, id, libraryId);
    }
    table.print(out);
}

} // namespace

void addMaterialCommands(CLI::App& app)
{
    MaterialOptions& held = options();
    CLI::App* materials = app.add_subcommand("materials", "the material libraries");
    held.libraries = materials->add_subcommand("libraries", "list the open libraries with their identifiers");
    held.libraries->footer("Example: kx materials libraries");
    held.list = materials->add_subcommand("list", "list physical materials with density, Young's modulus and colour");
    held.list->add_option("--library", held.library, "display name or identifier (default: the advanced library)");
    held.list->add_option("--limit", held.limit, "list at most this many (0: all)")->transform(wholeNumber());
    held.list->footer("Example: kx materials list --library \"Orvane Material Library\" --limit 5");
    materials->require_subcommand(1);
    materials->footer("Example: kx materials libraries");
}

bool runMaterialCommand(std::ostream& out)
{
    MaterialOptions& held = options();
    if (held.libraries != nullptr && held.libraries->parsed()) {
        printLibraries(out, loadedManager());
        return true;
    }
    if (held.list != nullptr && held.list->parsed()) {
        listMaterials(out, loadedManager(), held.library, held.limit);
        return true;
    }
    return false;
}

void printMaterialTour(std::ostream& out)
{
    AmbrelManager& manager = loadedManager();
    out << "\nMaterial libraries:\n";
    printLibraries(out, manager);
    out << "\nA few physical materials (density, Young's modulus, colour of the appearance):\n";
    const WideString advanced = manager.GetAdvancedPhysicalLibraryID();
    Table table = materialTable();
    for (const char* id : {"CorvexMaterial-018", "CorvexMaterial-001", "CorvexMaterial-005", "CorvexMaterial-010",
             "CorvexMaterial-030"}) {
        addMaterial(table, manager, id, advanced);
    }
    table.print(out);
}

} // namespace Kx::Console
