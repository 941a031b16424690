// Documents (.kxd) from Python: open one, list its entities with the materials of its bodies and
// the materials it holds, and save it. Failures of opening and saving raise kxtypes.Error with the
// library's message.
#include "Bindings.h"

#include <Types/Appearance/AmbrelAssetManager.h>
#include <Types/Appearance/AmbrelManager.h>
#include <Types/Testors/AppearanceTestor.h>

#include <core/Strings.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/Segment.h>

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <filesystem>
#include <memory>
#include <optional>

namespace py = pybind11;
using telvarin::platform::core::toUTF8;

namespace KxPython {

namespace {

class OpenDocument {
public:
    explicit OpenDocument(const std::filesystem::path& path)
        : m_mode(Kx::DocumentFile::readManifest(path).streamMode)
        , m_document(Kx::DocumentFile::open(path))
    {
    }

    // One dict per entity: id, segment, type, and for a body its "physical" and "appearance"
    // material ids ("" when it has none).
    [[nodiscard]] py::list entities() const
    {
        py::list listed;
        for (const auto& segment : m_document->segments()) {
            for (const auto& [id, entity] : segment->entities()) {
                py::dict row;
                row["id"] = id;
                row["segment"] = segment->name();
                row["type"] = entity->entityMetaType().typeName();
                if (const auto* body = dynamic_cast<const Kx::AppearanceTestor*>(entity.get())) {
                    row["name"] = toUTF8(body->name);
                    row["physical"] = toUTF8(body->physical.ambrelMaterialID());
                    row["appearance"] = toUTF8(body->visual.ambrelMaterialID());
                }
                listed.append(row);
            }
        }
        return listed;
    }

    [[nodiscard]] std::string entityJSON(Kx::EntityId id) const
    {
        const Kx::Entity* entity = m_document->resolveEntity(id);
        if (entity == nullptr)
            throw py::key_error("the document has no entity #" + std::to_string(id));
        return Kx::entityToJSON(*entity);
    }

    // The materials the document holds: reference, kind, material id, name and use count.
    [[nodiscard]] py::list materials() const
    {
        py::list listed;
        Kx::StrongRef<Kx::AmbrelAssetManager> registry = Kx::AmbrelAssetManager::find(m_document.get());
        Kx::AmbrelManager* manager = Kx::AmbrelManager::GetAmbrelManager(true);
        if (!registry || manager == nullptr)
            return listed;
        registry->forEachRegisteredMaterial([&](Kx::AmbrelAssetManager::IAssetInstance* instance, const std::wstring& reference, bool visual) {
            py::dict row;
            row["reference"] = toUTF8(reference);
            row["kind"] = visual ? "appearance" : "physical";
            row["material_id"] = toUTF8(manager->GetAssetInstanceMaterialID(instance));
            row["name"] = toUTF8(manager->GetUIName(instance));
            row["uses"] = registry->useCount(instance);
            listed.append(row);
        });
        return listed;
    }

    // Writes beside the target and renames, so a failed save leaves the file as it was.
    void save(const std::filesystem::path& path, std::optional<bool> xml)
    {
        const Kx::EStreamMode mode = xml ? (*xml ? Kx::EStreamMode::eXML : Kx::EStreamMode::eBinary) : m_mode;
        Kx::DocumentFile::save(*m_document, path, mode);
        m_mode = mode;
    }

    [[nodiscard]] std::string identifier() const { return m_document->identifier(); }

private:
    Kx::EStreamMode m_mode;
    std::unique_ptr<Kx::Document> m_document;
};

} // namespace

void bindDocuments(py::module_& module)
{
    py::class_<OpenDocument>(module, "Document", "An open document (.kxd)")
        .def_static("open", [](const std::filesystem::path& path) { return std::make_unique<OpenDocument>(path); }, py::arg("path"),
            "opens a document; kxtypes.Error with the library's message when it cannot be read")
        .def_property_readonly("identifier", &OpenDocument::identifier)
        .def("entities", &OpenDocument::entities)
        .def("entity_json", &OpenDocument::entityJSON, py::arg("id"))
        .def("materials", &OpenDocument::materials)
        .def("save", &OpenDocument::save, py::arg("path"), py::arg("xml") = py::none(),
            "saves to path, as binary or XML streams (default: as it was opened)");
}

} // namespace KxPython
