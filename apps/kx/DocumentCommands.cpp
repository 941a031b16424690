#include "DocumentCommands.h"

#include <Types/Geometry/ValueMetaTypes.h>
#include <Types/Testors/GeLibTestor.h>
#include <Types/Testors/GeometryTestor.h>

#include <base/Exception.h>
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
    std::string file;
    std::string target;
    unsigned count = 10;
    unsigned limit = 0;
    bool xml = false;
    bool kernel = false;
    bool copy = false;
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

void create(std::ostream& out)
{
    const DocumentOptions& chosen = options();
    Document document;
    Segment& main = *document.createSegment("main");
    for (unsigned index = 0; index < chosen.count; ++index)
        fillGeometryTestor(*main.add(StrongRefCreator<GeometryTestor>::create()), index);
    if (chosen.kernel)
        fillGeLibTestor(*main.add(StrongRefCreator<GeLibTestor>::create()));
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
    out << "  types:\n";
    for (const DocumentManifest::Type& type : manifest.types)
        out << "    " << type.name << " version " << type.version << " (" << type.id << ")\n";
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
    Transaction change(*document, ToIString(chosen.name));
    const unsigned updated = entityFromJSON(*entity, chosen.json);
    change.commit();
    DocumentFile::save(*document, chosen.file, manifest.streamMode);
    out << "updated " << updated << " member(s) of " << entity->entityMetaType().typeName() << " #" << chosen.id << "\n";
}

} // namespace

void addDocumentCommands(CLI::App& app)
{
    DocumentOptions& chosen = options();
    CLI::App* doc = app.add_subcommand("doc", "create, open, dump, convert and edit documents (.kxd) of test entities");
    doc->require_subcommand(1);

    chosen.create = doc->add_subcommand("create", "create a document of GeometryTestor entities");
    chosen.create->add_option("file", chosen.file, "the document to write")->required();
    chosen.create->add_option("--count", chosen.count, "how many GeometryTestor entities (default 10)");
    chosen.create->add_flag("--xml", chosen.xml, "write the segments as XML instead of binary");
    chosen.create->add_flag("--kernel", chosen.kernel, "add a GeLibTestor with geometry kernel values");

    chosen.open = doc->add_subcommand("open", "open a document and print its manifest, segments and blob parts");
    chosen.open->add_option("file", chosen.file, "the document to open")->required()->check(CLI::ExistingFile);

    chosen.dump = doc->add_subcommand("dump", "print every entity of a document as JSON");
    chosen.dump->add_option("file", chosen.file, "the document to open")->required()->check(CLI::ExistingFile);
    chosen.dump->add_option("--limit", chosen.limit, "entities shown per segment (0: all)");

    chosen.save = doc->add_subcommand("save", "open a document and save it under another name or stream kind");
    chosen.save->add_option("file", chosen.file, "the document to open")->required()->check(CLI::ExistingFile);
    chosen.save->add_option("target", chosen.target, "the document to write")->required();
    chosen.save->add_flag("--xml", chosen.xml, "write the segments as XML instead of binary");
    chosen.save->add_flag("--copy", chosen.copy, "open as a copy: the new document gets its own identifier");

    chosen.set = doc->add_subcommand("set", "set an entity's members from JSON, as one undoable change, and save");
    chosen.set->add_option("file", chosen.file, "the document to change")->required()->check(CLI::ExistingFile);
    chosen.set->add_option("id", chosen.id, "the entity's id (see dump)")->required();
    chosen.set->add_option("json", chosen.json, "a JSON object of the members to set")->required();
    chosen.set->add_option("--name", chosen.name, "the name of the change");
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
        const std::unique_ptr<Document> document = DocumentFile::open(chosen.file, DocumentOpenOptions{.asCopy = chosen.copy});
        const EStreamMode mode = chosen.xml ? EStreamMode::eXML : EStreamMode::eBinary;
        DocumentFile::save(*document, chosen.target, mode);
        out << "saved " << chosen.target << " (" << streamName(mode) << ", " << std::filesystem::file_size(chosen.target)
            << " bytes), document " << document->identifier() << "\n";
    } else if (chosen.set != nullptr && chosen.set->parsed()) {
        set(out);
    } else {
        return false;
    }
    return true;
}

} // namespace Kx::Console
