// What materials cost a document: 10,000 AppearanceTestor bodies using 200 distinct materials
// (120 physical materials, 80 appearances, from the standard content) saved and opened, beside the
// same bodies whose materials are plain id strings (PlainMaterialBody). The registry's own speed:
// registering one more use of a material (and one less) within a command's transaction, and looking
// an instance up by its reference, each beside the same work on a bare std::map.

#include <Types/Appearance/AmbrelAssetManager.h>
#include <Types/Appearance/AmbrelManager.h>
#include <Types/Testors/AppearanceTestor.h>

#include <core/Strings.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/IntrinsicMetaType.h>
#include <datamodel/MemberSet.h>
#include <datamodel/Segment.h>
#include <datamodel/TransactionManager.h>

#include "BenchDirectory.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace Kx {

// The baseline body: the same members, materials named by their ids only.
class PlainMaterialBody final : public Entity {
public:
    PlainMaterialBody() : Entity(s_metaType()) {}

    static EntityMetaType& s_metaType()
    {
        static TEntityMetaType<PlainMaterialBody> metaType("0E5C7A19-62B4-4D8F-93A1-C7F20B6D4E38", "PlainMaterialBody", 0);
        return metaType;
    }
    void declareMembers(unsigned, MemberSet* memberSet)
    {
        const auto& stringType = IntrinsicMetaType<std::wstring>::get();
        memberSet->addNewMember("name", &name, typeid(std::wstring).name(), stringType);
        memberSet->addNewMember("physical", &physicalId, typeid(std::wstring).name(), stringType);
        memberSet->addNewMember("visual", &visualId, typeid(std::wstring).name(), stringType);
    }

    std::wstring name;
    std::wstring physicalId;
    std::wstring visualId;
};

} // namespace Kx

namespace {

using namespace Kx;
using IAssetInstance = AmbrelAssetManager::IAssetInstance;

constexpr std::size_t kBodies = 10'000;
constexpr std::size_t kPhysical = 120;
constexpr std::size_t kVisual = 80;

const std::filesystem::path& benchDirectory()
{
    static const KxBench::BenchDirectory directory("materials");
    // The run's own user directory: the user's stays untouched.
    static const bool userDirectorySet = [] {
        std::filesystem::create_directories(directory.path() / "user");
        return ::setenv("KX_USER_DIR", (directory.path() / "user").c_str(), 1) == 0;
    }();
    (void)userDirectorySet;
    return directory.path();
}

using MaterialIds = std::vector<std::pair<std::wstring, std::wstring>>; // (material id, library id)

// The first `count` materials of the given libraries, in order.
MaterialIds materialsOf(const std::vector<WideString>& libraries, std::size_t count)
{
    AmbrelManager& manager = *AmbrelManager::GetAmbrelManager(true);
    MaterialIds ids;
    for (const WideString& library : libraries) {
        for (const auto& [id, name] : manager.GetAssetIDsAndNames(library)) {
            if (ids.size() == count)
                return ids;
            ids.emplace_back(telvarin::platform::core::toWide(id), library);
        }
    }
    if (ids.size() < count)
        throw std::runtime_error("the standard content holds too few materials");
    return ids;
}

struct Materials {
    MaterialIds physical;
    MaterialIds visual;
};

const Materials& materials()
{
    static const Materials chosen = [] {
        (void)benchDirectory();
        AmbrelManager* manager = AmbrelManager::GetAmbrelManager(true);
        if (manager == nullptr || !manager->LibsLoaded())
            throw std::runtime_error("the material libraries could not be loaded");
        return Materials{
            materialsOf({manager->GetPhysicalLibraryID(), manager->GetAdvancedPhysicalLibraryID()}, kPhysical),
            materialsOf({manager->GetVisualLibraryID(), manager->GetAdvancedVisualLibraryID()}, kVisual)};
    }();
    return chosen;
}

std::unique_ptr<Document> materialDocument()
{
    const Materials& chosen = materials();
    auto document = std::make_unique<Document>();
    Segment& segment = *document->createSegment("main");
    StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::findOrMake(&segment);
    for (std::size_t i = 0; i < kBodies; ++i) {
        AppearanceTestor& body = *segment.add(StrongRefCreator<AppearanceTestor>::create());
        body.name = L"body-" + std::to_wstring(i);
        const auto& [physicalId, physicalLibrary] = chosen.physical[i % kPhysical];
        const auto& [visualId, visualLibrary] = chosen.visual[i % kVisual];
        body.physical = PhysicalMaterial(physicalId, physicalLibrary);
        body.visual = VisualMaterial(visualId, visualLibrary);
        registry->registerMaterial(body.physical);
        registry->registerMaterial(body.visual);
    }
    if (registry->registeredPhysicalMaterials() != kPhysical || registry->registeredVisualMaterials() != kVisual)
        throw std::runtime_error("a material of the sample did not register");
    return document;
}

std::unique_ptr<Document> plainDocument()
{
    const Materials& chosen = materials();
    auto document = std::make_unique<Document>();
    Segment& segment = *document->createSegment("main");
    for (std::size_t i = 0; i < kBodies; ++i) {
        PlainMaterialBody& body = *segment.add(StrongRefCreator<PlainMaterialBody>::create());
        body.name = L"body-" + std::to_wstring(i);
        body.physicalId = chosen.physical[i % kPhysical].first;
        body.visualId = chosen.visual[i % kVisual].first;
    }
    return document;
}

// One document of each form for the whole run: building one is not what is measured.
Document& sample(bool withMaterials)
{
    static const std::unique_ptr<Document> withRegistry = materialDocument();
    static const std::unique_ptr<Document> plain = plainDocument();
    return withMaterials ? *withRegistry : *plain;
}

void roundTrip(benchmark::State& state, bool withMaterials, EStreamMode mode)
{
    Document& document = sample(withMaterials);
    const auto file = benchDirectory() / (withMaterials ? "materials.kxd" : "plain.kxd");
    for (auto _ : state) {
        DocumentFile::save(document, file, mode);
        std::unique_ptr<Document> opened = DocumentFile::open(file);
        benchmark::DoNotOptimize(opened.get());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kBodies));
    state.counters["file_bytes"] = static_cast<double>(std::filesystem::file_size(file));
}

void saveOnly(benchmark::State& state, bool withMaterials, EStreamMode mode)
{
    Document& document = sample(withMaterials);
    const auto file = benchDirectory() / (withMaterials ? "materials-save.kxd" : "plain-save.kxd");
    for (auto _ : state)
        DocumentFile::save(document, file, mode);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kBodies));
}

void openOnly(benchmark::State& state, bool withMaterials, EStreamMode mode)
{
    const auto file = benchDirectory() / (withMaterials ? "materials-open.kxd" : "plain-open.kxd");
    DocumentFile::save(sample(withMaterials), file, mode);
    for (auto _ : state) {
        std::unique_ptr<Document> opened = DocumentFile::open(file);
        benchmark::DoNotOptimize(opened.get());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kBodies));
}

// The registry of the sample document and its physical materials' references.
struct SampleRegistry {
    StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(&sample(true));
    std::vector<std::wstring> references = registry->physicalMaterialAssetReferences();
};

const SampleRegistry& sampleRegistry()
{
    static const SampleRegistry sampled;
    return sampled;
}

// A body given a registered material: one more use counted, then one less.
void registerUse(benchmark::State& state)
{
    const SampleRegistry& sampled = sampleRegistry();
    std::vector<PhysicalMaterial> values;
    for (const std::wstring& reference : sampled.references)
        values.emplace_back(sampled.registry->physicalMaterialAssetInstance(reference));
    // As a command of the host assigns materials: inside one transaction, which keeps a single
    // before-image of the registry however many uses change.
    Transaction command(sample(true), L"Assign Materials");
    std::size_t next = 0;
    for (auto _ : state) {
        PhysicalMaterial& value = values[next];
        benchmark::DoNotOptimize(sampled.registry->registerMaterial(value));
        sampled.registry->unregisterMaterial(value);
        next = next + 1 == values.size() ? 0 : next + 1;
    }
    command.abort();
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * 2));
}

void registerUseBaseline(benchmark::State& state)
{
    const SampleRegistry& sampled = sampleRegistry();
    std::map<IAssetInstance*, std::uint32_t> counts;
    std::vector<IAssetInstance*> instances;
    for (const std::wstring& reference : sampled.references) {
        instances.push_back(sampled.registry->physicalMaterialAssetInstance(reference));
        counts[instances.back()] = 1;
    }
    std::size_t next = 0;
    for (auto _ : state) {
        ++counts[instances[next]];
        benchmark::DoNotOptimize(--counts[instances[next]]);
        next = next + 1 == instances.size() ? 0 : next + 1;
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * 2));
}

void lookup(benchmark::State& state)
{
    const SampleRegistry& sampled = sampleRegistry();
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(sampled.registry->physicalMaterialAssetInstance(sampled.references[next]));
        next = next + 1 == sampled.references.size() ? 0 : next + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

void lookupBaseline(benchmark::State& state)
{
    const SampleRegistry& sampled = sampleRegistry();
    std::map<std::wstring, IAssetInstance*> map;
    for (const std::wstring& reference : sampled.references)
        map[reference] = sampled.registry->physicalMaterialAssetInstance(reference);
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(sampled.references[next])->second);
        next = next + 1 == sampled.references.size() ? 0 : next + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

} // namespace

BENCHMARK_CAPTURE(roundTrip, binary, true, EStreamMode::eBinary)
    ->Name("bodies.binary-save+open/materials")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(roundTrip, binary-plain, false, EStreamMode::eBinary)
    ->Name("bodies.binary-save+open/baseline")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(roundTrip, xml, true, EStreamMode::eXML)
    ->Name("bodies.xml-save+open/materials")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(roundTrip, xml-plain, false, EStreamMode::eXML)
    ->Name("bodies.xml-save+open/baseline")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(saveOnly, binary, true, EStreamMode::eBinary)->Name("bodies.binary-save/materials")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(saveOnly, binary-plain, false, EStreamMode::eBinary)->Name("bodies.binary-save/baseline")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openOnly, binary, true, EStreamMode::eBinary)->Name("bodies.binary-open/materials")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openOnly, binary-plain, false, EStreamMode::eBinary)->Name("bodies.binary-open/baseline")->Unit(benchmark::kMillisecond);
BENCHMARK(registerUse)->Name("registry.register-use/registry");
BENCHMARK(registerUseBaseline)->Name("registry.register-use/baseline");
BENCHMARK(lookup)->Name("registry.lookup/registry");
BENCHMARK(lookupBaseline)->Name("registry.lookup/baseline");

BENCHMARK_MAIN();
