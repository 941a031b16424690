// Read access to the material libraries: the open libraries, the materials of one, a material found
// by id or name, and its properties.
#include "Bindings.h"

#include <Types/Appearance/AmbrelManager.h>

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <base/Exception.h>
#include <core/Strings.h>

#include <pybind11/stl.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace py = pybind11;
using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

namespace KxPython {

namespace {

namespace Assets = telvarin::platform::assets;

Kx::AmbrelManager& loadedLibraries()
{
    Kx::AmbrelManager* manager = Kx::AmbrelManager::GetAmbrelManager(true);
    if (manager == nullptr || !manager->LibsLoaded())
        throw Kx::Exception(L"The material libraries could not be loaded");
    return *manager;
}

// One material of a library, holding its instance while Python holds it.
class Material {
public:
    Material(Assets::InstancePtr instance, std::wstring libraryId)
        : m_instance(std::move(instance))
        , m_libraryId(std::move(libraryId))
    {
    }

    [[nodiscard]] std::string id() const { return toUTF8(loadedLibraries().GetAssetInstanceMaterialID(m_instance.get())); }
    [[nodiscard]] std::string libraryId() const { return toUTF8(m_libraryId); }
    [[nodiscard]] std::string name() const { return toUTF8(loadedLibraries().GetUIName(m_instance.get())); }
    [[nodiscard]] std::string schema() const { return toUTF8(m_instance->GetSchemaName()); }

    // A property's value: str, bool, int, float, (r, g, b, a), list; for a reference to other assets,
    // the material id of the first one connected; None when the material has no such property.
    [[nodiscard]] py::object property(const std::string& name) const
    {
        const std::wstring key = toWide(name);
        const Assets::IAssetInstance& instance = *m_instance;
        switch (instance.GetPropertyType(key)) {
        case Assets::EPropertyType::eString: {
            std::wstring value;
            return instance.GetStringValue(key, value) ? py::object(py::str(toUTF8(value))) : py::none();
        }
        case Assets::EPropertyType::eBoolean: {
            bool value = false;
            return instance.GetBoolValue(key, value) ? py::object(py::bool_(value)) : py::none();
        }
        case Assets::EPropertyType::eInteger:
        case Assets::EPropertyType::eChoice: {
            int value = 0;
            const bool read = instance.GetPropertyType(key) == Assets::EPropertyType::eChoice ? instance.GetChoiceValue(key, value)
                                                                                                : instance.GetIntegerValue(key, value);
            return read ? py::object(py::int_(value)) : py::none();
        }
        case Assets::EPropertyType::eDouble: {
            double value = 0;
            return instance.GetDoubleValue(key, value) ? py::object(py::float_(value)) : py::none();
        }
        case Assets::EPropertyType::eColor: {
            Assets::AssetColor value;
            return instance.GetColorValue(key, value) ? py::object(py::make_tuple(value.r, value.g, value.b, value.a)) : py::none();
        }
        case Assets::EPropertyType::eIntegerArray: {
            std::vector<int> value;
            return instance.GetIntegerArrayValue(key, value) ? py::object(py::cast(value)) : py::none();
        }
        case Assets::EPropertyType::eDoubleArray: {
            std::vector<double> value;
            return instance.GetDoubleArrayValue(key, value) ? py::object(py::cast(value)) : py::none();
        }
        case Assets::EPropertyType::eReference: {
            const Assets::IAssetInstance* connected = instance.GetConnectedAsset(key);
            return connected ? py::object(py::str(connected->GetAssetId())) : py::none();
        }
        case Assets::EPropertyType::eUndefined:
            break;
        }
        return py::none();
    }

    [[nodiscard]] py::dict properties() const
    {
        py::dict all;
        for (const std::wstring& name : m_instance->GetPropertyNames())
            all[py::str(toUTF8(name))] = property(toUTF8(name));
        return all;
    }

    // The asset connected under a reference property ("Structural", "materialappearance").
    [[nodiscard]] std::shared_ptr<Material> connected(const std::string& name) const
    {
        Assets::InstancePtr instance(loadedLibraries().GetConnectedAssetInstance(m_instance.get(), toWide(name)));
        return instance ? std::make_shared<Material>(std::move(instance), m_libraryId) : nullptr;
    }

private:
    Assets::InstancePtr m_instance;
    std::wstring m_libraryId;
};

// A library by display name or identifier.
std::wstring libraryIdOf(Kx::AmbrelManager& manager, const std::string& wanted)
{
    const std::wstring key = toWide(wanted);
    for (const auto& [name, entry] : manager.GetLibrariesInfo())
        if (name == key || entry.second == key)
            return entry.second;
    throw py::key_error("no open material library has the name or identifier \"" + wanted + "\"");
}

std::vector<std::wstring> searchedLibraries(Kx::AmbrelManager& manager, const std::optional<std::string>& library)
{
    if (library)
        return {libraryIdOf(manager, *library)};
    std::vector<std::wstring> all;
    for (const auto& [name, entry] : manager.GetLibrariesInfo())
        all.push_back(entry.second);
    return all;
}

// By material id first in every library searched, then by name: an id is exact, a name may repeat.
std::shared_ptr<Material> findMaterial(const std::string& idOrName, const std::optional<std::string>& library)
{
    Kx::AmbrelManager& manager = loadedLibraries();
    const std::vector<std::wstring> searched = searchedLibraries(manager, library);
    const std::wstring wideName = toWide(idOrName);
    for (const bool byName : {false, true}) {
        for (const std::wstring& libraryId : searched) {
            for (const auto& [id, name] : manager.GetAssetIDsAndNames(libraryId)) {
                if (byName ? (name == wideName || manager.GetUIName(id, libraryId) == wideName) : id == idOrName) {
                    Assets::InstancePtr instance(manager.GetAssetUncacheInstance(id, libraryId));
                    if (instance)
                        return std::make_shared<Material>(std::move(instance), libraryId);
                }
            }
        }
    }
    return nullptr;
}

} // namespace

void bindMaterials(py::module_& module)
{
    py::class_<Material, std::shared_ptr<Material>>(module, "Material", "A material or appearance of an open library")
        .def_property_readonly("id", &Material::id)
        .def_property_readonly("library_id", &Material::libraryId)
        .def_property_readonly("name", &Material::name, "the name in the user's language")
        .def_property_readonly("schema", &Material::schema)
        .def("property", &Material::property, py::arg("name"))
        .def("properties", &Material::properties, "every property by name")
        .def("connected", &Material::connected, py::arg("name"), "the asset connected under a reference property, or None")
        .def("__repr__", [](const Material& m) { return "Material(" + m.id() + ", " + m.name() + ")"; });

    module.def("libraries", [] {
        Kx::AmbrelManager& manager = loadedLibraries();
        py::list listed;
        for (const auto& [name, entry] : manager.GetLibrariesInfo()) {
            const Assets::IAssetLibrary* library = manager.GetLibraryByIdentifier(entry.second);
            py::dict row;
            row["name"] = toUTF8(name);
            row["id"] = toUTF8(entry.second);
            row["location"] = toUTF8(entry.first);
            row["count"] = library ? library->GetAssetCount() : 0;
            listed.append(row);
        }
        return listed;
    }, "the open material libraries: dicts of name, id, location and count");
    module.def("materials", [](const std::string& library) {
        Kx::AmbrelManager& manager = loadedLibraries();
        std::vector<std::pair<std::string, std::string>> listed;
        for (const auto& [id, name] : manager.GetAssetIDsAndNames(libraryIdOf(manager, library)))
            listed.emplace_back(id, toUTF8(name));
        return listed;
    }, py::arg("library"), "the (material id, name) of every asset of a library, by display name or identifier");
    module.def("find_material", &findMaterial, py::arg("id_or_name"), py::arg("library") = py::none(),
        "a material by id, else by name, in one library or in all; None when there is none");
}

} // namespace KxPython
