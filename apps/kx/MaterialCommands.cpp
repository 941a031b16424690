#include "MaterialCommands.h"

#include "Arguments.h"
#include "MaterialCatalogue.h"
#include "MaterialEntries.h"
#include "MaterialFilters.h"
#include "Table.h"

#include <Types/Appearance/AmbrelManager.h>

#include <assets/IAssetLibrary.h>
#include <base/Exception.h>
#include <base/Strings.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Kx::Console {

namespace {

struct MaterialOptions {
    CLI::App* libraries = nullptr;
    CLI::App* list = nullptr;
    CLI::App* show = nullptr;
    CLI::App* find = nullptr;
    CLI::App* catalogue = nullptr;
    std::string library;
    unsigned limit = 0;
    std::string category;
    std::vector<std::string> conditions;
    std::string sort;
    bool descending = false;
    std::string text;
    std::string out;
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

std::string formatted(std::optional<double> value, double scale, int precision)
{
    return value ? fmt::format("{:.{}f}", *value / scale, precision) : std::string("-");
}

std::string colourOf(const MaterialEntry& entry)
{
    if (entry.colour) {
        return srgbHex(*entry.colour);
    }
    return entry.kind.empty() && entry.physical ? "no appearance" : "textured";
}

std::string categoryOf(const MaterialEntry& entry)
{
    return entry.subcategory.empty() || entry.subcategory == "default" ? entry.category
                                                                        : entry.category + " / " + entry.subcategory;
}

Table materialTable()
{
    return Table({{"material id"}, {"name"}, {"density kg/m3", Table::EAlign::eRight},
        {"Young's modulus GPa", Table::EAlign::eRight}, {"colour"}, {"category"}});
}

Table appearanceTable()
{
    return Table({{"material id"}, {"name"}, {"kind"}, {"colour"}, {"roughness", Table::EAlign::eRight}, {"category"}});
}

// One row per material: id, name, density, Young's modulus, the sRGB colour of its appearance and
// its category.
void addMaterial(Table& table, const MaterialEntry& entry)
{
    table.addRow({entry.id, entry.name, formatted(entry.values[0], 1.0, 0), formatted(entry.values[1], 1e9, 1),
        colourOf(entry), categoryOf(entry)});
}

void addAppearance(Table& table, const MaterialEntry& entry)
{
    table.addRow({entry.id, entry.name, entry.kind, colourOf(entry), formatted(entry.roughness, 1.0, 2),
        categoryOf(entry)});
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

void listMaterials(std::ostream& out, AmbrelManager& manager, const MaterialOptions& held)
{
    const WideString libraryId = chosenLibrary(manager, held.library);
    LibraryListing listing = readLibrary(manager, held.library, libraryId);
    std::vector<Condition> conditions;
    for (const std::string& text : held.conditions) {
        conditions.push_back(*parseCondition(text));
    }
    if (!listing.physical && !conditions.empty()) {
        throw Exception(L"A property condition needs a library of physical materials", held.library);
    }
    std::vector<MaterialEntry>& entries = listing.entries;
    std::erase_if(entries, [&](const MaterialEntry& entry) {
        return !inCategory(entry, held.category) ||
               !std::all_of(conditions.begin(), conditions.end(), [&](const Condition& c) { return c.holds(entry); });
    });
    if (!held.sort.empty()) {
        sortEntries(entries, held.sort, held.descending);
    }
    if (entries.empty()) {
        out << "no " << (listing.physical ? "physical materials" : "appearances") << " in "
            << (held.library.empty() ? "the advanced physical library" : held.library)
            << (held.category.empty() && conditions.empty() ? "" : " match") << '\n';
        return;
    }
    Table table = listing.physical ? materialTable() : appearanceTable();
    for (const MaterialEntry& entry : entries) {
        if (held.limit != 0 && table.rowCount() == held.limit) {
            break;
        }
        listing.physical ? addMaterial(table, entry) : addAppearance(table, entry);
    }
    table.print(out);
}

// A preset by material id, else by name (in the user's language or English, any case); the
// advanced libraries are searched first.
std::pair<MaterialEntry, std::string> findMaterial(AmbrelManager& manager, const std::string& wanted,
    const std::string& library)
{
    std::vector<std::pair<std::string, std::wstring>> libraries = openLibraries(manager);
    if (!library.empty()) {
        const WideString id = chosenLibrary(manager, library);
        std::erase_if(libraries, [&](const auto& entry) { return entry.second != id; });
    }
    std::vector<LibraryListing> listings;
    for (const auto& [name, id] : libraries) {
        listings.push_back(readLibrary(manager, name, id));
        for (const MaterialEntry& entry : listings.back().entries) {
            if (entry.id == wanted) {
                return {entry, name};
            }
        }
    }
    const std::string key = foldCase(wanted);
    for (const LibraryListing& listing : listings) {
        for (const MaterialEntry& entry : listing.entries) {
            if (foldCase(entry.name) == key || foldCase(entry.englishName) == key) {
                return {entry, listing.name};
            }
        }
    }
    throw Exception(L"No material of the open libraries has this id or name (try kx materials find)", wanted);
}

// "  label  value" lines, the values aligned.
void printFields(std::ostream& out, const std::vector<std::pair<std::string, std::string>>& fields)
{
    std::size_t width = 0;
    for (const auto& [label, value] : fields) {
        width = std::max(width, displayWidth(label));
    }
    for (const auto& [label, value] : fields) {
        out << "  " << label << std::string(width - displayWidth(label) + 2, ' ') << value << '\n';
    }
}

void showMaterial(std::ostream& out, AmbrelManager& manager, const MaterialOptions& held)
{
    const auto [entry, library] = findMaterial(manager, held.text, held.library);
    out << entry.name << '\n';
    std::vector<std::pair<std::string, std::string>> about{{"material id", entry.id}, {"library", library}};
    if (entry.englishName != entry.name && !entry.englishName.empty()) {
        about.emplace_back("English name", entry.englishName);
    }
    about.emplace_back("category", categoryOf(entry));
    about.emplace_back("source", entry.source.empty() ? "-" : entry.source);
    if (!entry.inheritedFrom.empty()) {
        about.emplace_back("inherited from", entry.inheritedFrom);
    }
    printFields(out, about);
    if (entry.physical) {
        for (const bool thermal : {false, true}) {
            out << (thermal ? "Thermal properties\n" : "Physical properties\n");
            Table values({{"property"}, {"value", Table::EAlign::eRight}, {"unit"}, {"note"}});
            for (std::size_t index = 0; index < s_materialPropertyCount; ++index) {
                const MaterialProperty& property = s_materialProperties[index];
                if (property.thermal == thermal) {
                    const auto value = entry.shown(index);
                    values.addRow({std::string(property.label), value ? formatValue(*value) : "-",
                        value ? std::string(property.unit) : "", entry.origins[index].empty() && !value
                            ? "not given by the source" : entry.origins[index]});
                }
            }
            values.print(out);
        }
    }
    out << "Appearance\n";
    std::vector<std::pair<std::string, std::string>> look;
    if (entry.physical) {
        look.emplace_back("name", entry.appearance.empty() ? "none" : entry.appearance);
    }
    look.emplace_back("kind", entry.kind.empty() ? "-" : entry.kind);
    look.emplace_back("colour (sRGB)", colourOf(entry));
    look.emplace_back("roughness", entry.roughness ? formatValue(*entry.roughness) : "-");
    printFields(out, look);
}

void findMaterials(std::ostream& out, AmbrelManager& manager, const std::string& text)
{
    const std::string key = foldCase(text);
    Table table({{"material id"}, {"name"}, {"library"}});
    for (const auto& [name, id] : openLibraries(manager)) {
        for (const MaterialEntry& entry : readLibrary(manager, name, id).entries) {
            if (foldCase(entry.name).find(key) != std::string::npos) {
                table.addRow({entry.id, entry.name, name});
            }
        }
    }
    if (table.rowCount() == 0) {
        out << "no material name contains \"" << text << "\"\n";
        return;
    }
    table.print(out);
}

} // namespace

void addMaterialCommands(CLI::App& app)
{
    MaterialOptions& held = options();
    const CLI::Validator notEmpty([](std::string& text) {
        return text.find_first_not_of(" \t") == std::string::npos ? std::string("is empty") : std::string();
    }, "TEXT", "not empty");
    CLI::App* materials = app.add_subcommand("materials", "the material libraries");
    held.libraries = materials->add_subcommand("libraries", "list the open libraries with their identifiers");
    held.libraries->footer("Example: kx materials libraries");

    held.list = materials->add_subcommand("list",
        "list physical materials (density, Young's modulus, colour) or a library's appearances");
    held.list->add_option("--library", held.library, "display name or identifier (default: the advanced library)");
    held.list->add_option("--limit", held.limit, "list at most this many (0: all)")->transform(wholeNumber());
    held.list->add_option("--category", held.category, "only this category or subcategory (e.g. Metal, Steel)");
    held.list->add_option("--where", held.conditions,
                 "only materials whose property compares so, in the unit `kx materials show` gives; repeatable "
                 "(properties: " + propertyKeys() + ")")
        ->type_name("CONDITION")
        ->check(CLI::Validator([](std::string& text) {
            return parseCondition(text) ? std::string() : "\"" + text + "\" is not PROPERTY<VALUE (" + propertyKeys() + ")";
        }, "PROPERTY<VALUE", "condition"));
    held.list->add_option("--sort", held.sort, "order by id, name or a property (materials without it last)")
        ->check(CLI::Validator([](std::string& key) {
            return key == "id" || key == "name" || findMaterialProperty(key) != nullptr
                       ? std::string()
                       : "cannot sort by \"" + key + "\" (id, name, " + propertyKeys() + ")";
        }, "KEY", "sort key"));
    held.list->add_flag("--descending", held.descending, "with --sort: largest first");
    held.list->footer("Example: kx materials list --category Metal --where \"density<3000\" --sort density");

    held.show = materials->add_subcommand("show", "every property of a material: values with units and their origin, "
                                                  "its appearance and its source");
    held.show->add_option("material", held.text, "a material id or a name")->required()->check(notEmpty);
    held.show->add_option("--library", held.library, "look only in this library (display name or identifier)");
    held.show->footer("Example: kx materials show CorvexMaterial-018");

    held.find = materials->add_subcommand("find", "the materials whose name, in the user's language, contains TEXT");
    held.find->add_option("text", held.text, "part of a name, any case")->required()->check(notEmpty);
    held.find->footer("Example: kx materials find steel");

    held.catalogue = materials->add_subcommand("catalogue",
        "write a static HTML catalogue of every open library: a page per library, swatches, sortable tables");
    held.catalogue->add_option("--out", held.out, "the folder to write (created when missing)")->required()->check(notEmpty);
    held.catalogue->footer("Example: kx materials catalogue --out ~/material-catalogue");

    materials->require_subcommand(1);
    materials->footer("Example: kx materials libraries");
}

bool runMaterialCommand(std::ostream& out)
{
    MaterialOptions& held = options();
    const auto chosen = [](CLI::App* command) { return command != nullptr && command->parsed(); };
    if (chosen(held.libraries)) {
        printLibraries(out, loadedManager());
    } else if (chosen(held.list)) {
        listMaterials(out, loadedManager(), held);
    } else if (chosen(held.show)) {
        showMaterial(out, loadedManager(), held);
    } else if (chosen(held.find)) {
        findMaterials(out, loadedManager(), held.text);
    } else if (chosen(held.catalogue)) {
        writeCatalogue(loadedManager(), held.out, out);
    } else {
        return false;
    }
    return true;
}

void printMaterialTour(std::ostream& out)
{
    AmbrelManager& manager = loadedManager();
    out << "\nMaterial libraries:\n";
    printLibraries(out, manager);
    out << "\nA few physical materials (density, Young's modulus, colour of the appearance):\n";
    const LibraryListing advanced = readLibrary(manager, "", manager.GetAdvancedPhysicalLibraryID());
    Table table = materialTable();
    for (const char* id : {"CorvexMaterial-018", "CorvexMaterial-001", "CorvexMaterial-005", "CorvexMaterial-010",
             "CorvexMaterial-030"}) {
        const auto found = std::find_if(advanced.entries.begin(), advanced.entries.end(),
            [&](const MaterialEntry& entry) { return entry.id == id; });
        if (found != advanced.entries.end()) {
            addMaterial(table, *found);
        }
    }
    table.print(out);
}

} // namespace Kx::Console
