#include "DocumentCommands.h"

#include "Arguments.h"
#include "Table.h"

#include <Types/Appearance/AmbrelAssetManager.h>
#include <Types/Appearance/AmbrelManager.h>
#include <Types/Appearance/DocumentMissingMaterialRecordMgr.h>
#include <Types/Geometry/ValueMetaTypes.h>
#include <Types/Testors/AppearanceTestor.h>
#include <Types/Testors/GeLibTestor.h>
#include <Types/Testors/GeometryTestor.h>

#include <assets/IAssetInstance.h>
#include <base/Exception.h>
#include <core/Strings.h>
#include <base/Strings.h>
#include <datamodel/BlobFolder.h>
#include <datamodel/BlobPart.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/Segment.h>
#include <datamodel/TransactionManager.h>

#include <CLI/CLI.hpp>

#include <cmath>
#include <filesystem>
#include <limits>
#include <ostream>
#include <string>

namespace Kx::Console {

namespace {

struct DocumentOptions {
    CLI::App* create = nullptr;
    CLI::App* open = nullptr;
    CLI::App* dump = nullptr;
    CLI::App* save = nullptr;
    CLI::App* set = nullptr;
    CLI::App* assign = nullptr;
    CLI::App* list = nullptr;
    CLI::App* remove = nullptr;
    unsigned bodies = 0;
    std::string material;
    std::string reference;
    bool visual = false;
    std::string file;
    std::string target;
    unsigned count = 10;
    unsigned limit = 0;
    bool xml = false;
    bool kernel = false;
    bool copy = false;
    bool force = false;
    EntityId id = 0;
    std::string json;
    std::string name = "Set from the console";
};

DocumentOptions& options()
{
    static DocumentOptions held;
    return held;
}

const char* streamName(EStreamMode mode)
{
    return mode == EStreamMode::eBinary ? "binary" : "XML";
}

// Deterministic, varied content: the same command line makes the same document.
void fillGeometryTestor(GeometryTestor& entity, unsigned index)
{
    const auto n = static_cast<std::int32_t>(index);
    entity.point = Point2(n, -n);
    entity.size = Size2(n % 640, n % 480);
    entity.rect = Rect2(n, n + 1, n + 100, n + 50);
    entity.border = Border4(1, 2, 3, 4);
    entity.color = Color(static_cast<float>(index % 256) / 255.0f, 0.5f, 0.25f, 1.0f);
    entity.label = GlobalizedString(L"Testor " + std::to_wstring(index));
    entity.count = n;
    entity.name = L"testor-" + std::to_wstring(index);
}

void fillGeLibTestor(GeLibTestor& entity)
{
    entity.point3d = TmGePoint3d(1.0 / 3.0, 2, 3);
    entity.matrix3d = TmGeMatrix3d::rotation(M_PI / 6, TmGeVector3d(0, 0, 1), TmGePoint3d(1, 1, 0));
    entity.circArc3d = TmGeCircArc3d(TmGePoint3d(0, 0, 0), TmGeVector3d(0, 0, 1), TmGeVector3d(1, 0, 0), 2, 0, M_PI);
    entity.nurbCurve3d = TmGeNurbCurve3d(2, {0, 0, 0, 1, 1, 1}, {{0, 0, 0}, {1, 1, 0}, {2, 0, 0}});
}

// A command that writes a file leaves an existing one alone unless the user said --force: a typo in
// a name must not cost a document.
void refuseToOverwrite(const std::string& file)
{
    std::error_code ignored;
    if (!options().force && std::filesystem::exists(file, ignored))
        throw Exception(ToIString(file + " exists already; add --force to replace it"));
}

void create(std::ostream& out)
{
    const DocumentOptions& chosen = options();
    refuseToOverwrite(chosen.file);
    Document document;
    Segment& main = *document.createSegment("main");
    for (unsigned index = 0; index < chosen.count; ++index)
        fillGeometryTestor(*main.add(StrongRefCreator<GeometryTestor>::create()), index);
    if (chosen.kernel)
        fillGeLibTestor(*main.add(StrongRefCreator<GeLibTestor>::create()));
    for (unsigned index = 0; index < chosen.bodies; ++index)
        main.add(StrongRefCreator<AppearanceTestor>::create())->name = L"body-" + std::to_wstring(index);
    const EStreamMode mode = chosen.xml ? EStreamMode::eXML : EStreamMode::eBinary;
    DocumentFile::save(document, chosen.file, mode);
    out << "created " << chosen.file << ": " << main.size() << " entities, " << std::filesystem::file_size(chosen.file)
        << " bytes (" << streamName(mode) << ")\n";
}

void printSummary(std::ostream& out, const Document& document, const DocumentManifest& manifest)
{
    out << "document " << document.identifier() << "\n"
        << "  stream: " << streamName(manifest.streamMode) << ", blob folder: "
        << (manifest.multiLevelBlobFolder ? "multi-level" : "flat") << ", next entity id: " << document.nextEntityId() << "\n";
    for (const auto& segment : document.segments()) {
        out << "  segment \"" << segment->name() << "\": " << segment->size() << " entities\n";
        for (const auto& [rootId, id] : segment->roots())
            out << "    root " << rootId << " = #" << id << "\n";
    }
    for (const auto& [name, part] : document.blobFolder()->blobParts())
        out << "  blob part " << name << " (" << part->kind() << "): " << part->zipPart().size() << " bytes\n";
    // What could be found neither in the document nor in any library, and what stands in for it.
    for (const DocumentMissingMaterialRecordMgr::Record& missing :
        DocumentMissingMaterialRecordMgr::get().missingMaterials(document.identifier())) {
        const bool physical = missing.kind == DocumentMissingMaterialRecordMgr::EKind::ePhysical;
        out << "  replaced by the default " << (physical ? "material" : "appearance") << ": "
            << telvarin::platform::core::toUTF8(missing.materialId) << "\n";
    }
    out << "  types:\n";
    Table types({{"type"}, {"version", Table::EAlign::eRight}, {"identifier"}});
    for (const DocumentManifest::Type& type : manifest.types)
        types.addRow({type.name, std::to_string(type.version), type.id});
    types.print(out, "    ");
}

std::string quotedList(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "\"" : ", \"") + name + "\"";
    return text;
}

void dump(std::ostream& out, const Document& document, unsigned limit)
{
    for (const auto& segment : document.segments()) {
        out << "segment \"" << segment->name() << "\"\n";
        unsigned shown = 0;
        for (const auto& [id, entity] : segment->entities()) {
            if (limit != 0 && shown++ == limit) {
                out << "  … " << segment->size() - limit << " more\n";
                break;
            }
            out << "  #" << id << " " << entity->entityMetaType().typeName() << " " << entityToJSON(*entity) << "\n";
        }
    }
}

void set(std::ostream& out)
{
    const DocumentOptions& chosen = options();
    const DocumentManifest manifest = DocumentFile::readManifest(chosen.file);
    const std::unique_ptr<Document> document = DocumentFile::open(chosen.file);
    Entity* entity = document->resolveEntity(chosen.id);
    if (entity == nullptr)
        throw Exception(L"The document has no entity with that id.", "#" + std::to_string(chosen.id));
    const std::string subject = entity->entityMetaType().typeName() + " #" + std::to_string(chosen.id);
    // All or nothing: a refused member rolls the whole change back (the transaction is not
    // committed) and the file is not written.
    Transaction change(*document, ToIString(chosen.name));
    const EntityJSONSetReport report = entityFromJSONWithReport(*entity, chosen.json);
    if (!report.unknownMembers.empty())
        throw Exception(ToIString(subject + " has no member " + quotedList(report.unknownMembers) + "; the document is unchanged"));
    if (!report.refusedMembers.empty())
        throw Exception(ToIString("The value for " + quotedList(report.refusedMembers) + " cannot be stored in " + subject
            + " (wrong kind or out of range); the document is unchanged"));
    if (report.updated == 0) {
        out << subject << " has these values already; the document is unchanged\n";
        return;
    }
    change.commit();
    DocumentFile::save(*document, chosen.file, manifest.streamMode);
    out << "updated " << report.updated << " member(s) of " << subject << "\n";
}

// --- materials of a document's bodies ---

AmbrelManager& libraries()
{
    AmbrelManager* manager = AmbrelManager::GetAmbrelManager(true);
    if (manager == nullptr || !manager->LibsLoaded())
        throw Exception(L"the material libraries could not be loaded");
    return *manager;
}

// A material of the standard or advanced libraries by its id or its name (in the user's language
// or English); the id wins when both match. Answers (material id, library id).
std::pair<std::wstring, std::wstring> findMaterial(const std::string& wanted, bool visual)
{
    AmbrelManager& manager = libraries();
    const std::vector<WideString> searched = visual
        ? std::vector<WideString>{manager.GetVisualLibraryID(), manager.GetAdvancedVisualLibraryID()}
        : std::vector<WideString>{manager.GetPhysicalLibraryID(), manager.GetAdvancedPhysicalLibraryID()};
    const std::wstring wideName = telvarin::platform::core::toWide(wanted);
    for (const WideString& library : searched) {
        for (const auto& [id, name] : manager.GetAssetIDsAndNames(library)) {
            if (id == wanted)
                return {telvarin::platform::core::toWide(id), library};
        }
    }
    for (const WideString& library : searched) {
        for (const auto& [id, name] : manager.GetAssetIDsAndNames(library)) {
            if (name == wideName || manager.GetUIName(id, library) == wideName)
                return {telvarin::platform::core::toWide(id), library};
        }
    }
    throw Exception(ToIString("no " + std::string(visual ? "appearance" : "physical material") + " has the id or name \""
        + wanted + "\""));
}

AppearanceTestor& bodyOf(Document& document, EntityId id)
{
    auto* body = dynamic_cast<AppearanceTestor*>(document.resolveEntity(id));
    if (body == nullptr)
        throw Exception(ToIString("entity #" + std::to_string(id) + " is no AppearanceTestor body (see kx doc dump)"));
    return *body;
}

StrongRef<AmbrelAssetManager> registryOf(Document& document)
{
    if (document.segments().empty())
        throw Exception(L"the document has no segment");
    return AmbrelAssetManager::findOrMake(document.segments().front().get());
}

// A material the document holds already (read back from its assets, so another instance than the
// library's) is shared, as a paste shares it: one registry entry, its use count raised.
template <class Material>
std::wstring registerShared(AmbrelAssetManager& registry, Material& material)
{
    auto* instance = material.assetInstance();
    if (instance != nullptr && !registry.containsMaterial(instance)) {
        if (auto* equivalent = registry.getEquivalentMaterial(instance, false))
            material.assetInstance(equivalent);
    }
    return registry.registerMaterial(material);
}

void assign(std::ostream& out)
{
    const DocumentOptions& chosen = options();
    const DocumentManifest manifest = DocumentFile::readManifest(chosen.file);
    const std::unique_ptr<Document> document = DocumentFile::open(chosen.file);
    AppearanceTestor& body = bodyOf(*document, chosen.id);
    const auto [materialId, libraryId] = findMaterial(chosen.material, chosen.visual);
    StrongRef<AmbrelAssetManager> registry = registryOf(*document);
    std::wstring reference;
    {
        Transaction change(*document, L"Assign Material");
        if (chosen.visual) {
            body.visual.unregister();
            body.visual = VisualMaterial(materialId, libraryId);
            reference = registerShared(*registry, body.visual);
        } else {
            body.physical.unregister();
            body.physical = PhysicalMaterial(materialId, libraryId);
            reference = registerShared(*registry, body.physical);
        }
        change.commit();
    }
    if (reference.empty())
        throw Exception(ToIString("the material \"" + chosen.material + "\" could not be read from its library"));
    DocumentFile::save(*document, chosen.file, manifest.streamMode);
    out << "assigned " << (chosen.visual ? "appearance " : "material ") << telvarin::platform::core::toUTF8(materialId)
        << " to #" << chosen.id << " (document reference " << telvarin::platform::core::toUTF8(reference) << ")\n";
}

void listMaterials(std::ostream& out, Document& document)
{
    StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(&document);
    if (!registry) {
        out << "the document has no materials\n";
        return;
    }
    AmbrelManager& manager = libraries();
    Table table({{"reference", Table::EAlign::eRight}, {"kind"}, {"material id"}, {"name"}, {"uses", Table::EAlign::eRight}});
    registry->forEachRegisteredMaterial([&](AmbrelAssetManager::IAssetInstance* instance, const std::wstring& reference, bool visual) {
        table.addRow({telvarin::platform::core::toUTF8(reference), visual ? "appearance" : "physical",
            telvarin::platform::core::toUTF8(manager.GetAssetInstanceMaterialID(instance)),
            telvarin::platform::core::toUTF8(manager.GetUIName(instance)), std::to_string(registry->useCount(instance))});
    });
    if (table.rowCount() == 0) {
        out << "the document has no materials\n";
        return;
    }
    table.print(out, "");
}

void removeMaterial(std::ostream& out)
{
    const DocumentOptions& chosen = options();
    const DocumentManifest manifest = DocumentFile::readManifest(chosen.file);
    const std::unique_ptr<Document> document = DocumentFile::open(chosen.file);
    StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(document.get());
    const std::wstring reference = telvarin::platform::core::toWide(chosen.reference);
    AmbrelAssetManager::IAssetInstance* instance = nullptr;
    if (registry && !reference.empty()) {
        instance = registry->physicalMaterialAssetInstance(reference);
        if (instance == nullptr)
            instance = registry->visualMaterialAssetInstance(reference);
    }
    if (instance == nullptr)
        throw Exception(ToIString("the document has no material under the reference " + chosen.reference + " (see kx doc material list)"));
    const std::uint32_t uses = registry->useCount(instance);
    if (uses != 0)
        throw Exception(ToIString("the material " + chosen.reference + " is used by " + std::to_string(uses)
            + " bod" + (uses == 1 ? "y" : "ies") + "; assign them another material first"));
    if (!registry->deleteMaterial(instance))
        throw Exception(ToIString("the material " + chosen.reference + " could not be removed"));
    DocumentFile::save(*document, chosen.file, manifest.streamMode);
    out << "removed the material " << chosen.reference << " from " << chosen.file << "\n";
}

} // namespace

void addDocumentCommands(CLI::App& app)
{
    DocumentOptions& chosen = options();
    CLI::App* doc = app.add_subcommand("doc", "create, open, dump, convert and edit documents (.kxd) of test entities");
    doc->require_subcommand(1);
    doc->footer("Example: kx doc create a.kxd --count 3 && kx doc dump a.kxd --limit 2");

    chosen.create = doc->add_subcommand("create", "create a document of GeometryTestor entities");
    chosen.create->add_option("file", chosen.file, "the document to write")->required();
    chosen.create->add_option("--count", chosen.count, "how many GeometryTestor entities (default 10)")->transform(wholeNumber());
    chosen.create->add_flag("--xml", chosen.xml, "write the segments as XML instead of binary");
    chosen.create->add_flag("--kernel", chosen.kernel, "add a GeLibTestor with geometry kernel values");
    chosen.create->add_option("--bodies", chosen.bodies, "add this many AppearanceTestor bodies, without materials")
        ->transform(wholeNumber());
    chosen.create->add_flag("--force", chosen.force, "replace the file if it exists");
    chosen.create->footer("Example: kx doc create a.kxd --count 3");

    chosen.open = doc->add_subcommand("open", "open a document and print its manifest, segments and blob parts");
    chosen.open->add_option("file", chosen.file, "the document to open")->required()->check(CLI::ExistingFile);
    chosen.open->footer("Example: kx doc open a.kxd");

    chosen.dump = doc->add_subcommand("dump", "print every entity of a document as JSON");
    chosen.dump->add_option("file", chosen.file, "the document to open")->required()->check(CLI::ExistingFile);
    chosen.dump->add_option("--limit", chosen.limit, "entities shown per segment (0: all)")->transform(wholeNumber());
    chosen.dump->footer("Example: kx doc dump a.kxd --limit 2");

    chosen.save = doc->add_subcommand("save", "open a document and save it under another name or stream kind");
    chosen.save->add_option("file", chosen.file, "the document to open")->required()->check(CLI::ExistingFile);
    chosen.save->add_option("target", chosen.target, "the document to write")->required();
    chosen.save->add_flag("--xml", chosen.xml, "write the segments as XML instead of binary");
    chosen.save->add_flag("--copy", chosen.copy, "open as a copy: the new document gets its own identifier");
    chosen.save->add_flag("--force", chosen.force, "replace the target if it exists");
    chosen.save->footer("Example: kx doc save a.kxd a-xml.kxd --xml");

    chosen.set = doc->add_subcommand("set", "set an entity's members from JSON, as one undoable change, and save");
    chosen.set->add_option("file", chosen.file, "the document to change")->required()->check(CLI::ExistingFile);
    chosen.set->add_option("id", chosen.id, "the entity's id (see dump)")
        ->required()
        ->transform(wholeNumber(std::numeric_limits<EntityId>::max()));
    chosen.set->add_option("json", chosen.json, "a JSON object of the members to set")->required();
    chosen.set->add_option("--name", chosen.name, "the name of the change");
    chosen.set->footer("Example: kx doc set a.kxd 2 '{\"count\":42,\"name\":\"edited\"}'");

    CLI::App* material = doc->add_subcommand("material", "assign, list and remove the materials of a document's bodies");
    material->require_subcommand(1);
    chosen.assign = material->add_subcommand("assign", "give an AppearanceTestor body a material or appearance, and save");
    chosen.assign->add_option("file", chosen.file, "the document to change")->required()->check(CLI::ExistingFile);
    chosen.assign->add_option("id", chosen.id, "the body's entity id (see dump)")
        ->required()
        ->transform(wholeNumber(std::numeric_limits<EntityId>::max()));
    chosen.assign->add_option("material", chosen.material, "the material's id or name in the standard libraries")->required();
    chosen.assign->add_flag("--visual", chosen.visual, "an appearance instead of a physical material");
    chosen.assign->footer("Example: kx doc material assign a.kxd 3 \"Concrete C25 (generic)\"");
    chosen.list = material->add_subcommand("list", "list the document's materials with their references and use counts");
    chosen.list->add_option("file", chosen.file, "the document to open")->required()->check(CLI::ExistingFile);
    chosen.list->footer("Example: kx doc material list a.kxd");
    chosen.remove = material->add_subcommand("remove", "remove a material no body uses from the document, and save");
    chosen.remove->add_option("file", chosen.file, "the document to change")->required()->check(CLI::ExistingFile);
    chosen.remove->add_option("reference", chosen.reference, "the material's reference (see list)")->required();
    chosen.remove->footer("Example: kx doc material remove a.kxd 2");
}

bool runDocumentCommand(std::ostream& out)
{
    const DocumentOptions& chosen = options();
    if (chosen.create != nullptr && chosen.create->parsed()) {
        create(out);
    } else if (chosen.open != nullptr && chosen.open->parsed()) {
        const std::unique_ptr<Document> document = DocumentFile::open(chosen.file);
        printSummary(out, *document, DocumentFile::readManifest(chosen.file));
    } else if (chosen.dump != nullptr && chosen.dump->parsed()) {
        dump(out, *DocumentFile::open(chosen.file), chosen.limit);
    } else if (chosen.save != nullptr && chosen.save->parsed()) {
        refuseToOverwrite(chosen.target);
        DocumentOpenOptions opening;
        opening.asCopy = chosen.copy;
        const std::unique_ptr<Document> document = DocumentFile::open(chosen.file, opening);
        const EStreamMode mode = chosen.xml ? EStreamMode::eXML : EStreamMode::eBinary;
        DocumentFile::save(*document, chosen.target, mode);
        out << "saved " << chosen.target << " (" << streamName(mode) << ", " << std::filesystem::file_size(chosen.target)
            << " bytes), document " << document->identifier() << "\n";
    } else if (chosen.set != nullptr && chosen.set->parsed()) {
        set(out);
    } else if (chosen.assign != nullptr && chosen.assign->parsed()) {
        assign(out);
    } else if (chosen.list != nullptr && chosen.list->parsed()) {
        listMaterials(out, *DocumentFile::open(chosen.file));
    } else if (chosen.remove != nullptr && chosen.remove->parsed()) {
        removeMaterial(out);
    } else {
        return false;
    }
    return true;
}

} // namespace Kx::Console
