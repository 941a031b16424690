// Keeping the active document's materials tidy: where a material is used, replacing it everywhere
// as one undo step, and removing the document materials nothing uses. Uses are found through the
// document's material events, so a host's own sites take part.

#include "Types/TextCommands/MaterialTextCommands.h"

#include <Types/Appearance/AmbrelAssetManager.h>
#include <Types/Appearance/AmbrelManager.h>
#include <Types/Appearance/MaterialEvent.h>
#include <Types/Appearance/MaterialUses.h>

#include <assets/IAssetInstance.h>
#include <base/Strings.h>
#include <core/Strings.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentRegistry.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/Segment.h>
#include <datamodel/TransactionManager.h>

#include <boost/format.hpp>

#include <optional>
#include <string>
#include <vector>

namespace Kx {

namespace {

using IAssetInstance = AmbrelAssetManager::IAssetInstance;

std::wstring format(const wchar_t* pattern, const std::wstring& first, const std::wstring& second = {},
    const std::wstring& third = {})
{
    boost::wformat formatted(pattern);
    formatted.exceptions(boost::io::no_error_bits);
    return (formatted % first % second % third).str();
}

const std::wstring s_noDocument = L"No document is open: open one first (doc open FILE)";

// A material of the document: its registry, its registered instance and its kind.
struct DocumentMaterial {
    StrongRef<AmbrelAssetManager> registry;
    IAssetInstance* instance = nullptr;
    bool visual = false;
};

AmbrelManager* libraries()
{
    AmbrelManager* manager = AmbrelManager::GetAmbrelManager(true);
    return manager != nullptr && manager->LibsLoaded() ? manager : nullptr;
}

std::wstring nameOf(IAssetInstance* instance)
{
    AmbrelManager* manager = libraries();
    return manager != nullptr ? manager->GetUIName(instance) : std::wstring{};
}

std::wstring idOf(IAssetInstance* instance)
{
    AmbrelManager* manager = libraries();
    return manager != nullptr ? manager->GetAssetInstanceMaterialID(instance) : std::wstring{};
}

// Every registered material of the document, physical materials first.
std::vector<DocumentMaterial> materialsOf(const Document& document)
{
    std::vector<DocumentMaterial> materials;
    for (const auto& segment : document.segments()) {
        StrongRef<AmbrelAssetManager> registry = AmbrelAssetManager::find(segment.get());
        if (!registry)
            continue;
        registry->forEachRegisteredMaterial([&](IAssetInstance* instance, const std::wstring&, bool visual) {
            materials.push_back({registry, instance, visual});
        });
    }
    return materials;
}

// The document material with the id or name `wanted` (an id wins); appearances only with /Visual.
std::optional<DocumentMaterial> findInDocument(const Document& document, const std::wstring& wanted, bool visual)
{
    const std::vector<DocumentMaterial> materials = materialsOf(document);
    for (const auto matches : {&idOf, &nameOf}) {
        for (const DocumentMaterial& material : materials) {
            if (material.visual == visual && matches(material.instance) == wanted)
                return material;
        }
    }
    return std::nullopt;
}

MaterialEvent eventFor(const DocumentMaterial& material)
{
    return material.visual ? MaterialEvent(VisualMaterial(material.instance), Event::ePre)
                           : MaterialEvent(PhysicalMaterial(material.instance), Event::ePre);
}

std::wstring kindOf(bool visual) { return visual ? L"appearance" : L"physical material"; }

// The replacement: a material the document holds already, else one of the libraries, given as the
// registry holds it when it has an equal one.
std::optional<DocumentMaterial> replacementFor(const Document& document, const DocumentMaterial& from,
    const std::wstring& wanted)
{
    if (auto held = findInDocument(document, wanted, from.visual))
        return held;
    AmbrelManager* manager = libraries();
    if (manager == nullptr)
        return std::nullopt;
    const std::vector<std::wstring> searched = from.visual
        ? std::vector<std::wstring>{manager->GetVisualLibraryID(), manager->GetAdvancedVisualLibraryID()}
        : std::vector<std::wstring>{manager->GetPhysicalLibraryID(), manager->GetAdvancedPhysicalLibraryID()};
    for (const std::wstring& library : searched) {
        for (const auto& [id, name] : manager->GetAssetIDsAndNames(library)) {
            if (telvarin::platform::core::toWide(id) != wanted && name != wanted)
                continue;
            telvarin::platform::assets::InstancePtr instance(manager->GetAssetInstance(id, library, MaterialTweak{}));
            if (instance == nullptr)
                return std::nullopt;
            IAssetInstance* equivalent = from.registry->getEquivalentMaterial(instance.get(), false);
            if (equivalent != nullptr)
                return DocumentMaterial{from.registry, equivalent, from.visual};
            // The registry keeps its own reference once a value registers it.
            from.registry->addMaterial(instance.get());
            return DocumentMaterial{from.registry, instance.get(), from.visual};
        }
    }
    return std::nullopt;
}

} // namespace

std::wstring TextCmdMaterialsWhereUsed::execute(const TextCommandParameters& parameters) const
{
    if (parameters.parameters() != 1)
        return failure(L"You need to provide one material name or id (maybe using quotes)");
    Document* document = DocumentRegistry::get().active();
    if (document == nullptr)
        return failure(s_noDocument);
    const bool visual = parameters.hasFlag(L"Visual");
    const auto material = findInDocument(*document, parameters[0], visual);
    if (!material)
        return failure(format(L"The document has no %1% %2%", kindOf(visual), parameters[0]));
    MaterialEvent event = eventFor(*material);
    material->registry->materialEventSource().fireWhereUsed(&event);
    std::wstring out;
    for (const ObjectPath& path : event.getComponentPaths()) {
        Entity* entity = path.resolve(*document);
        if (entity == nullptr)
            continue;
        for (const MaterialUse& use : findMaterialUses(*entity->segment(), material->instance)) {
            if (use.entity.get() == entity)
                out += format(L"#%1% %2% %3%\n", path.toString(), ToIString(entity->entityMetaType().typeName()),
                    ToIString(use.member));
        }
    }
    return out + format(L"%1% uses of %2% (%3%)", std::to_wstring(event.refCount()), nameOf(material->instance),
                     idOf(material->instance));
}

std::wstring TextCmdMaterialsReplaceAll::execute(const TextCommandParameters& parameters) const
{
    if (parameters.parameters() != 2)
        return failure(L"You need to provide the material to replace and its replacement (name or id, maybe using quotes)");
    Document* document = DocumentRegistry::get().active();
    if (document == nullptr)
        return failure(s_noDocument);
    const bool visual = parameters.hasFlag(L"Visual");
    const auto from = findInDocument(*document, parameters[0], visual);
    if (!from)
        return failure(format(L"The document has no %1% %2%", kindOf(visual), parameters[0]));
    Transaction replace(*document, L"Replace Material");
    const auto to = replacementFor(*document, *from, parameters[1]);
    if (!to) {
        replace.abort();
        return failure(format(L"No %1% has the name or id %2%", kindOf(visual), parameters[1]));
    }
    if (to->instance == from->instance) {
        replace.abort();
        return failure(L"A material cannot replace itself");
    }
    const unsigned before = from->registry->numLiveUsers(from->instance);
    MaterialEvent event = visual ? MaterialEvent(VisualMaterial(from->instance), VisualMaterial(to->instance), Event::ePre)
                                 : MaterialEvent(PhysicalMaterial(from->instance), PhysicalMaterial(to->instance), Event::ePre);
    from->registry->materialEventSource().fireReplaceMaterial(&event);
    replace.commit();
    return format(L"Replaced %1% uses of %2% by %3%", std::to_wstring(before), nameOf(from->instance), nameOf(to->instance));
}

std::wstring TextCmdMaterialsPurgeUnused::execute(const TextCommandParameters& parameters) const
{
    Document* document = DocumentRegistry::get().active();
    if (document == nullptr)
        return failure(s_noDocument);
    const bool dryRun = parameters.hasFlag(L"DryRun");
    std::vector<DocumentMaterial> unused;
    for (const DocumentMaterial& material : materialsOf(*document)) {
        if (material.registry->numLiveUsers(material.instance) == 0)
            unused.push_back(material);
    }
    std::wstring out;
    std::size_t purged = 0;
    {
        Transaction purge(*document, L"Purge Unused Materials");
        for (const DocumentMaterial& material : unused) {
            const std::wstring named = format(L"%1% %2% (%3%)", kindOf(material.visual), nameOf(material.instance),
                idOf(material.instance));
            if (!dryRun && !material.registry->deleteMaterial(material.instance))
                continue;
            out += (dryRun ? L"would purge " : L"purged ") + named + L"\n";
            ++purged;
        }
        if (dryRun || purged == 0)
            purge.abort();
        else
            purge.commit();
    }
    return out + format(dryRun ? L"%1% unused materials would be purged" : L"%1% unused materials purged",
                     std::to_wstring(purged));
}

} // namespace Kx
