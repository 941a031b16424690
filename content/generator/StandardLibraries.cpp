#include "StandardLibraries.h"

#include "German.h"
#include "Presets.h"

#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <stdexcept>

namespace Kx::Content {

using namespace telvarin::platform::assets;

namespace {

// The material preferences name these presets as the defaults of new documents.
constexpr int s_defaultPhysicalNumber = 18;                 // "CorvexMaterial-018"
constexpr const char* s_defaultPhysicalSource = "PM-STEEL-GENERIC";
constexpr int s_defaultAppearanceNumber = 256;              // "Corvex-256"
constexpr const char* s_defaultAppearanceSource = "AP-MANMADE-GRAY-CARD";

constexpr const wchar_t* s_revision = L"1.0";

// Additive manufacturing is done with these materials of the data (polymers for extrusion and
// sintering, the usual powder-bed metals).
const std::set<std::string> s_additive{"PM-PL-ABS", "PM-PL-PLA", "PM-PL-PA6", "PM-PL-PC-MOLDED", "PM-PL-PEEK",
    "PM-PL-PET", "PM-TI-6AL-4V", "PM-SS-X2CRNIMON17-13-3", "PM-AL-GENERIC"};

void check(bool done, const AssetError& error, const std::string& what)
{
    if (!done) {
        throw std::runtime_error(what + ": " + error.message);
    }
}

// One library being written: presets, the texts of their categories and the images they name.
class LibraryWriter {
public:
    LibraryWriter(IAssetLibraryManager& manager, const std::filesystem::path& folder, const StandardLibrary& library)
        : m_manager(manager)
        , m_what(library.file)
    {
        AssetError error;
        m_library = manager.CreateAssetLibrary((folder / library.file).wstring(), library.kind, library.id, &error);
        check(m_library != nullptr, error, m_what);
        m_writable = manager.GetWritableAssetLibrary(m_library, &error);
        check(m_writable != nullptr, error, m_what);
        check(m_writable->SetLibraryName(library.name, &error), error, m_what);
    }

    ~LibraryWriter()
    {
        if (m_writable != nullptr) {
            m_manager.ReleaseWritableAssetLibrary(m_writable);
        }
        m_manager.ReleaseAssetLibrary(m_library);
    }

    LibraryWriter(const LibraryWriter&) = delete;
    LibraryWriter& operator=(const LibraryWriter&) = delete;

    Resources& resources() { return m_resources; }

    void add(IAssetInstance& asset, const std::string& materialId, const std::string& category,
        const std::string& subcategory, const std::string& guidSeed)
    {
        AssetPresetInfo info;
        info.materialId = materialId;
        info.revision = s_revision;
        info.versionGUID = derivedGuid(guidSeed + "/version");
        info.category = telvarin::platform::core::toWide(category);
        info.subcategory = telvarin::platform::core::toWide(subcategory);
        AssetError error;
        check(m_writable->CreateNewAssetPreset(&asset, info, &error), error, m_what + " " + materialId);
        m_categories.insert(category);
        m_categories.insert(subcategory);
    }

    void finish()
    {
        AssetError error;
        for (const std::string& category : m_categories) {
            const std::wstring key = telvarin::platform::core::toWide(category);
            check(m_writable->SetLocalizedText(key, s_englishLanguage, key, &error), error, m_what);
            check(m_writable->SetLocalizedText(key, s_germanLanguage,
                      telvarin::platform::core::toWide(germanCategory(category)), &error),
                error, m_what);
        }
        for (const auto& [name, bytes] : m_resources) {
            const std::wstring uri = m_writable->AddEmbeddedResource(telvarin::platform::core::toWide(name), bytes, &error);
            check(!uri.empty(), error, m_what + " " + name);
        }
        check(m_writable->SetReadOnly(true, &error), error, m_what);
        check(m_manager.CommitAssetLibrary(m_writable, &error), error, m_what);
        m_manager.ReleaseWritableAssetLibrary(m_writable);
        m_writable = nullptr;
        check(m_manager.SaveAssetLibrary(m_library, &error), error, m_what);
    }

private:
    IAssetLibraryManager& m_manager;
    std::string m_what;
    IAssetLibrary* m_library = nullptr;
    IWritableAssetLibrary* m_writable = nullptr;
    std::set<std::string> m_categories;
    Resources m_resources;
};

std::string numbered(const char* prefix, int number)
{
    char text[48];
    std::snprintf(text, sizeof text, "%s%03d", prefix, number);
    return text;
}

// Numbers 1, 2, 3 ... in the order of `ids`, except that `pinned` gets `pinnedNumber` (which the
// others skip).
std::vector<int> numbering(const std::vector<std::string>& ids, const std::string& pinned, int pinnedNumber)
{
    if (std::find(ids.begin(), ids.end(), pinned) == ids.end()) {
        throw std::runtime_error("the default " + pinned + " is not in the data");
    }
    std::vector<int> numbers;
    int next = 1;
    for (const std::string& id : ids) {
        if (id == pinned) {
            numbers.push_back(pinnedNumber);
            continue;
        }
        if (next == pinnedNumber) {
            ++next;
        }
        numbers.push_back(next++);
    }
    return numbers;
}

// `seedLibrary` is the library whose identifier seeds the derived GUIDs: a standard library that
// repeats materials of the advanced one passes the advanced library, so the copies are equal in
// every value, their ExchangeGUID included.
void writePhysical(IAssetLibraryManager& manager, const std::filesystem::path& folder, const StandardLibrary& library,
    const std::vector<PhysicalRecord>& records, const std::vector<AppearancePreset>& appearances,
    const std::vector<std::string>& materialIds, const StandardLibrary& seedLibrary)
{
    LibraryWriter writer(manager, folder, library);
    for (std::size_t index = 0; index < records.size(); ++index) {
        const PhysicalRecord& record = records[index];
        const std::string seed = telvarin::platform::core::toUTF8(seedLibrary.id) + "/" + materialIds[index];
        InstancePtr material = buildPhysical(manager, record, appearanceFor(record, appearances), seed, writer.resources());
        writer.add(*material, materialIds[index], record.category, record.subcategory, seed);
    }
    writer.finish();
}

void writeAppearance(IAssetLibraryManager& manager, const std::filesystem::path& folder, const StandardLibrary& library,
    const std::vector<AppearancePreset>& presets, const std::vector<std::string>& materialIds,
    const StandardLibrary& seedLibrary)
{
    LibraryWriter writer(manager, folder, library);
    for (std::size_t index = 0; index < presets.size(); ++index) {
        const std::string seed = telvarin::platform::core::toUTF8(seedLibrary.id) + "/" + materialIds[index];
        InstancePtr asset = buildAppearance(manager, presets[index], seed, writer.resources());
        writer.add(*asset, materialIds[index], presets[index].category, presets[index].subcategory, seed);
    }
    writer.finish();
}

} // namespace

const std::vector<StandardLibrary>& standardLibraries()
{
    static const std::vector<StandardLibrary> s_libraries{
        {"PhysicalMaterial.tvrnlib", L"8A3F52C1-6D0E-4B7A-9C15-2E84F7D3A601", L"Orvane Material Library",
            eSystemPhysicalLibrary, "/slib/content/physical"},
        {"assetlibrary_base.tvrnlib", L"1F6B9E24-C83A-4D5F-8E07-B4A2D95C3E12", L"Orvane Appearance Library",
            eSystemAppearanceLibrary, "/slib/content/appearance"},
        {"PhysicalMaterialAdvanced.tvrnlib", L"C4D81A73-2B5E-4F69-A3D0-7E16B8F24C35", L"Telvarin Advanced Material Library",
            eAdvancedPhysicalLibrary, "/slib/content/advancedphysical"},
        {"assetlibrary_advanced.tvrnlib", L"5E29C7B8-9A14-4E3D-B6F2-0C85D1A7E946",
            L"Telvarin Advanced Appearance Library", eAdvancedAppearanceLibrary, "/slib/content/advancedappearance"},
        {"Additive.tvrnlib", L"B7E03D95-4C2A-4A81-9F6E-3D58A2C1B077", L"Orvane Additive Material Library",
            eAdditivePhysicalLibrary, nullptr},
        {"Nonlinear Material Library.tvrnlib", L"2D94F6A8-E71B-4C03-8A5D-F6C3B0E9D188",
            L"Orvane Nonlinear Material Library", eNonlinearPhysicalLibrary, nullptr},
    };
    return s_libraries;
}

namespace {

void writeInto(IAssetLibraryManager& manager, const std::vector<PhysicalRecord>& physical,
    const std::vector<AppearanceRecord>& appearance, const std::string& lintReport, const std::filesystem::path& folder)
{
    const auto& libraries = standardLibraries();
    const std::vector<AppearancePreset> appearances = appearancePresets(appearance);

    std::vector<std::string> physicalIds;
    for (const PhysicalRecord& record : physical) {
        physicalIds.push_back(record.id);
    }
    std::vector<std::string> appearanceIds;
    for (const AppearancePreset& preset : appearances) {
        appearanceIds.push_back(preset.id);
    }

    std::vector<std::string> advancedPhysicalIds;
    for (int number : numbering(physicalIds, s_defaultPhysicalSource, s_defaultPhysicalNumber)) {
        advancedPhysicalIds.push_back(numbered("CorvexMaterial-", number));
    }
    std::vector<std::string> advancedAppearanceIds;
    for (int number : numbering(appearanceIds, s_defaultAppearanceSource, s_defaultAppearanceNumber)) {
        advancedAppearanceIds.push_back(numbered("Corvex-", number));
    }

    // The system libraries are a subset of the advanced ones, under the same material ids and with
    // the same values: one material per subcategory (its generic grade where the data has one, so
    // the default steel), and the appearances those are shown with, the default grey and the
    // authored presets. So the defaults the preferences name resolve in both.
    std::vector<PhysicalRecord> systemPhysical;
    std::vector<std::string> systemPhysicalIds;
    std::set<std::string> systemLooks{s_defaultAppearanceSource};
    {
        std::map<std::pair<std::string, std::string>, std::size_t> chosen;
        for (std::size_t index = 0; index < physical.size(); ++index) {
            const PhysicalRecord& record = physical[index];
            const auto key = std::make_pair(record.category, record.subcategory);
            const bool generic = record.id.ends_with("-GENERIC");
            const auto found = chosen.find(key);
            if (found == chosen.end() || (generic && !physical[found->second].id.ends_with("-GENERIC"))) {
                chosen[key] = index;
            }
        }
        std::set<std::size_t> indices;
        for (const auto& [key, index] : chosen) {
            indices.insert(index);
        }
        for (std::size_t index : indices) {
            systemPhysical.push_back(physical[index]);
            systemPhysicalIds.push_back(advancedPhysicalIds[index]);
            systemLooks.insert(appearanceFor(physical[index], appearances).id);
        }
    }
    std::vector<AppearancePreset> systemAppearances;
    std::vector<std::string> systemAppearanceIds;
    for (std::size_t index = 0; index < appearances.size(); ++index) {
        if (systemLooks.contains(appearances[index].id) || appearances[index].id.starts_with("AU-")) {
            systemAppearances.push_back(appearances[index]);
            systemAppearanceIds.push_back(advancedAppearanceIds[index]);
        }
    }

    writePhysical(manager, folder, libraries[0], systemPhysical, appearances, systemPhysicalIds, libraries[2]);
    writeAppearance(manager, folder, libraries[1], systemAppearances, systemAppearanceIds, libraries[3]);
    writePhysical(manager, folder, libraries[2], physical, appearances, advancedPhysicalIds, libraries[2]);
    writeAppearance(manager, folder, libraries[3], appearances, advancedAppearanceIds, libraries[3]);

    std::vector<PhysicalRecord> additive;
    std::vector<PhysicalRecord> nonlinear;
    for (const PhysicalRecord& record : physical) {
        if (s_additive.contains(record.id)) {
            additive.push_back(record);
        }
        // An elastic-plastic analysis needs at least the yield and the tensile strength, in that order.
        const auto& yield = record.value(EPhysicalProperty::eYieldStrength);
        const auto& tensile = record.value(EPhysicalProperty::eTensileStrength);
        if (yield && tensile && *yield < *tensile && record.value(EPhysicalProperty::eYoungsModulus)) {
            nonlinear.push_back(record);
        }
    }
    if (additive.size() != s_additive.size()) {
        throw std::runtime_error("a material of the additive library is missing from the data");
    }
    const auto idsOf = [](const std::vector<PhysicalRecord>& records) {
        std::vector<std::string> ids;
        for (const PhysicalRecord& record : records) {
            ids.push_back(record.id);
        }
        return ids;
    };
    writePhysical(manager, folder, libraries[4], additive, appearances, idsOf(additive), libraries[4]);
    writePhysical(manager, folder, libraries[5], nonlinear, appearances, idsOf(nonlinear), libraries[5]);

    std::ofstream mounts(folder / "netfs.mounts", std::ios::binary | std::ios::trunc);
    mounts << "# netfs path -> library file in this folder (docs/formats.md)\n";
    for (const StandardLibrary& library : libraries) {
        if (library.netfsPath != nullptr) {
            mounts << library.netfsPath << ' ' << library.file << '\n';
        }
    }
    std::ofstream report(folder / "lint-report.txt", std::ios::binary | std::ios::trunc);
    report << lintReport;
    if (!mounts.flush() || !report.flush()) {
        throw std::runtime_error("cannot write into " + folder.string());
    }
}

} // namespace

void writeStandardLibraries(IAssetLibraryManager& manager, const std::vector<PhysicalRecord>& physical,
    const std::vector<AppearanceRecord>& appearance, const std::string& lintReport, const std::filesystem::path& folder)
{
    // Everything is written into a staging folder first and moved into place only when all of it
    // succeeded, so a failure leaves the libraries of the previous build untouched.
    const std::filesystem::path staging = folder / ".generating";
    std::filesystem::remove_all(staging);
    std::filesystem::create_directories(staging);
    try {
        writeInto(manager, physical, appearance, lintReport, staging);
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove_all(staging, ignored);
        throw;
    }
    for (const auto& entry : std::filesystem::directory_iterator(staging)) {
        std::filesystem::rename(entry.path(), folder / entry.path().filename());
    }
    std::filesystem::remove(staging);
}

} // namespace Kx::Content
