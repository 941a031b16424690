// Arbitrary bytes as a material library file (.tvrnlib, a SQLite database): written to a file and
// opened through the asset API, then everything a reader can ask is asked (presets, categories,
// names, every instance with every property by its type, choices, constraints, units, connected
// assets, embedded resources). The same bytes are also read as the asset blob of a document
// (IAssetDeSerializer), which takes the same schema from memory. A damaged library answers
// null/false/empty with an error; nothing may crash, hang, leak or throw across the API.

#include "FuzzScratch.h"

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <assets/IAssetSerializer.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace telvarin::platform::assets;

// Connected assets may be shared; each is walked once, and the depth is bounded by the API's own
// refusal of cycles.
void walk(IAssetInstance& instance, std::set<const IAssetInstance*>& seen)
{
    if (!seen.insert(&instance).second)
        return;
    (void)instance.GetAssetId();
    (void)instance.GetSchemaName();
    (void)instance.GetNames();
    (void)instance.GetThumbnailImageURI();
    for (const WideString& name : instance.GetPropertyNames()) {
        WideString text;
        bool flag = false;
        int integer = 0;
        double number = 0;
        AssetColor color;
        std::vector<int> integers;
        std::vector<double> numbers;
        std::vector<ChoiceItem> choices;
        NumericConstraint constraint;
        switch (instance.GetPropertyType(name)) {
        case EPropertyType::eString: (void)instance.GetStringValue(name, text); break;
        case EPropertyType::eBoolean: (void)instance.GetBoolValue(name, flag); break;
        case EPropertyType::eInteger: (void)instance.GetIntegerValue(name, integer); break;
        case EPropertyType::eDouble: (void)instance.GetDoubleValue(name, number); break;
        case EPropertyType::eColor: (void)instance.GetColorValue(name, color); break;
        case EPropertyType::eChoice:
            (void)instance.GetChoiceValue(name, integer);
            (void)instance.GetChoices(name, choices);
            break;
        case EPropertyType::eIntegerArray: (void)instance.GetIntegerArrayValue(name, integers); break;
        case EPropertyType::eDoubleArray: (void)instance.GetDoubleArrayValue(name, numbers); break;
        default: break;
        }
        (void)instance.GetNumericConstraint(name, constraint);
        (void)instance.GetPropertyUnit(name);
        for (int index = 0; index < instance.GetConnectedAssetCount(name); ++index) {
            if (InstancePtr connected{instance.GetConnectedAsset(name, index)})
                walk(*connected, seen);
        }
    }
    if (InstancePtr copy{instance.Clone()})
        (void)copy->IsEqual(&instance);
}

void readLibrary(IAssetLibraryManager& manager, const std::filesystem::path& file)
{
    AssetError error;
    IAssetLibrary* library = manager.OpenAssetLibrary(file.wstring(), &error);
    if (library == nullptr)
        return;
    (void)library->GetName();
    (void)library->GetLibraryKind();
    (void)library->GetAssetCount();
    (void)library->GetCategories();
    for (IAssetDefinition* definition : library->GetAssetDefinitions()) {
        (void)library->GetAssetName(definition->GetMaterialId(), "deu");
        (void)library->GetLocalizedText(definition->GetCategory(), "deu");
        InstancePtr instance{library->CreateAssetInstance(definition)};
        if (!instance)
            continue;
        std::set<const IAssetInstance*> seen;
        walk(*instance, seen);
        std::vector<std::uint8_t> bytes;
        (void)library->ReadEmbeddedResource(instance->GetThumbnailImageURI(), bytes);
    }
    (void)library->SearchByName(L"a");
    manager.ReleaseAssetLibrary(library);
}

void readDocumentAssets(IAssetLibraryManager& manager, const std::uint8_t* data, std::size_t size)
{
    const std::unique_ptr<IAssetDeSerializer> reader = manager.CreateAssetDeSerializer();
    AssetError error;
    if (!reader->DeserializeFromBytes({data, size}, nullptr, &error))
        return;
    for (const WideString& key : reader->GetKeys()) {
        if (InstancePtr instance{reader->TakeAssetInstance(key)}) {
            std::set<const IAssetInstance*> seen;
            walk(*instance, seen);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzScratch scratch("kx-library-fuzz");
    const std::filesystem::path file = scratch.path() / "fuzz.tvrnlib";
    {
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    // A manager per input: nothing one library leaves in a cache may hide a fault of the next.
    const std::unique_ptr<IAssetLibraryManager> manager = CreateAssetLibraryManager();
    readLibrary(*manager, file);
    readDocumentAssets(*manager, data, size);
    return 0;
}
