#include "MaterialCommands.h"

#include <Types/Appearance/AmbrelManager.h>

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <base/Exception.h>
#include <base/Strings.h>

#include <CLI/CLI.hpp>

#include <iomanip>
#include <optional>
#include <ostream>
#include <sstream>
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

AmbrelManager& loadedManager()
{
    AmbrelManager* manager = AmbrelManager::GetAmbrelManager(true);
    if (!manager->LibsLoaded()) {
        throw Exception(L"The material libraries could not be loaded", ToUTF8(Types::GetReducedLibraryPath()));
    }
    return *manager;
}

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

std::string formatted(std::optional<double> value, double scale, int precision, const char* unit)
{
    if (!value) {
        return "-";
    }
    std::ostringstream text;
    text << std::fixed << std::setprecision(precision) << *value / scale << ' ' << unit;
    return text.str();
}

// One line per material: name, density, Young's modulus and the colour of its appearance.
void printMaterial(std::ostream& out, AmbrelManager& manager, const std::string& materialId,
    const WideString& libraryId)
{
    const Assets::InstancePtr material(manager.GetAssetInstance(materialId, libraryId, MaterialTweak{}));
    if (material == nullptr) {
        return;
    }
    std::string name = ToUTF8(manager.GetUIName(material.get()));
    if (name.size() > 40) {
        name = name.substr(0, 37) + "...";
    }
    out << std::setfill(' ') << "  " << std::left << std::setw(26) << materialId << std::setw(42) << name << std::right << std::setw(14)
        << formatted(structuralValue(manager, material.get(), L"structural_Density"), 1.0, 0, "kg/m3")
        << std::setw(12)
        << formatted(structuralValue(manager, material.get(), L"structural_Young_modulus"), 1e9, 1, "GPa")
        << "  " << describeColor(manager, material.get()) << '\n';
}

void printLibraries(std::ostream& out, AmbrelManager& manager)
{
    for (const auto& [name, entry] : manager.GetLibrariesInfo()) {
        const Assets::IAssetLibrary* library = manager.GetLibraryByIdentifier(entry.second);
        out << std::setfill(' ') << "  " << std::left << std::setw(40) << ToUTF8(name) << std::setw(38) << ToUTF8(entry.second)
            << std::right << std::setw(5) << (library != nullptr ? library->GetAssetCount() : 0) << " presets\n";
    }
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
    unsigned shown = 0;
    for (const UTF8String& id : materials) {
        if (limit != 0 && shown++ == limit) {
            break;
        }
        printMaterial(out, manager, id, libraryId);
    }
}

} // namespace

void addMaterialCommands(CLI::App& app)
{
    MaterialOptions& held = options();
    CLI::App* materials = app.add_subcommand("materials", "the material libraries");
    held.libraries = materials->add_subcommand("libraries", "list the open libraries with their identifiers");
    held.list = materials->add_subcommand("list", "list physical materials with density, Young's modulus and colour");
    held.list->add_option("--library", held.library, "display name or identifier (default: the advanced library)");
    held.list->add_option("--limit", held.limit, "list at most this many");
    materials->require_subcommand(1);
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
    for (const char* id : {"CorvexMaterial-018", "CorvexMaterial-001", "CorvexMaterial-005", "CorvexMaterial-010",
             "CorvexMaterial-030"}) {
        printMaterial(out, manager, id, advanced);
    }
}

} // namespace Kx::Console
