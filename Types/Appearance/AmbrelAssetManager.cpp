#include "Types/Appearance/AmbrelAssetManager.h"

#include "Types/Appearance/AmbrelAssetsBlobSerializer.h"
#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/MaterialEvent.h"
#include "Types/Appearance/PhysicalMaterial.h"
#include "Types/Appearance/VisualMaterial.h"
#include "Types/Appearance/internal/ListMemberMetaType.h"
#include "Types/Appearance/internal/MaterialValueSupport.h"

#include <Types/Geometry/ValueMetaTypeT.h>

#include <assets/AssetType.h>
#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibraryManager.h>
#include <assets/IAssetSerializer.h>
#include <base/Assert.h>
#include <base/OS.h>
#include <base/Exception.h>
#include <base/FaultInjection.h>
#include <core/io/FileDataStream.h>
#include <datamodel/BlobFolder.h>
#include <datamodel/BlobPart.h>
#include <core/Strings.h>
#include <datamodel/DataModelCallback.h>
#include <datamodel/Document.h>
#include <datamodel/EntityChange.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/Segment.h>
#include <datamodel/TransactionManager.h>
#include <datamodel/VisitorContext.h>

#include <boost/format.hpp>

#include <memory>
#include <algorithm>
#include <atomic>
#include <mutex>
#include <optional>

namespace Kx {

namespace MV = MaterialValues;
using IAssetInstance = AmbrelAssetManager::IAssetInstance;
using WriteLock = oneapi::tbb::spin_rw_mutex::scoped_lock;

namespace {

// Undo and redo restore the registry's members (its references and counts); the maps follow them.
class AmbrelAssetManagerDMCallback final : public DataModelCallback {
public:
    AmbrelAssetManagerDMCallback() : DataModelCallback(false) {}
    void onPostLoad(Entity* entity, const VisitorContext& context) override
    {
        if (context.isUndoRedoOrAbort()) {
            static_cast<AmbrelAssetManager*>(entity)->restoreFromPersistedForm();
        }
    }

    void onPreAssetSave(Entity* entity, const VisitorContext&) override
    {
        StrongRef<AmbrelAssetManager> rAmbrelAssetManager(static_cast<AmbrelAssetManager*>(entity));
        KX_ASSERT(rAmbrelAssetManager);
        Document* document = entity != nullptr ? entity->asset() : nullptr;
        if (document != nullptr) {
            rAmbrelAssetManager->prepareBlobPreSave(document->blobFolder(), false, nullptr);
        }
    }

    void onPostAssetLoad(Entity* entity, const VisitorContext&) override
    {
        StrongRef<AmbrelAssetManager> rAmbrelAssetManager(static_cast<AmbrelAssetManager*>(entity));
        KX_ASSERT(rAmbrelAssetManager);
        Document* document = entity != nullptr ? entity->asset() : nullptr;
        IBlobFolder* folder = document != nullptr ? document->blobFolder() : nullptr;
        if (folder == nullptr) {
            throw Exception(L"The file you are trying to open is corrupt! The current operation will be aborted!",
                "Blob folder does not exist!");
        }
        rAmbrelAssetManager->syncToBlobAfterLoad(folder, false, nullptr);
    }
};

// A change of the registry's members that undo can take back: the before-image is taken when it
// opens, so the vectors must mirror the maps by then.
// Named changes (adding and deleting document materials) are an undo step of their own name when
// no transaction of the caller's is open; otherwise they join it.
class RegistryChange {
public:
    explicit RegistryChange(AmbrelAssetManager& registry, const wchar_t* stepName = nullptr)
        : m_transaction(openStep(registry, stepName))
        , m_change(std::in_place, &registry, eEntityModified, kAnyMember, eChangeUndoable | eChangeNotifies, 0, true)
    {
    }
    ~RegistryChange()
    {
        // The change publishes first, then the step that holds it is committed.
        m_change.reset();
        if (m_transaction) {
            m_transaction->commit();
        }
    }

private:
    static std::unique_ptr<Transaction> openStep(AmbrelAssetManager& registry, const wchar_t* stepName)
    {
        Document* document = registry.asset();
        if (stepName == nullptr || document == nullptr || document->transactions().isReplaying()) {
            return nullptr;
        }
        return std::make_unique<Transaction>(*document, stepName);
    }

    std::unique_ptr<Transaction> m_transaction;
    std::optional<EntityChange> m_change;
};

} // namespace

// --- data-model plumbing ---

AmbrelAssetManager::AmbrelAssetManager() : BlobSerializerTrigger(s_metaType())
{
    m_materialEventSource.subscribe(&m_documentSite);
}

AmbrelAssetManager::~AmbrelAssetManager()
{
    m_materialEventSource.unsubscribeAll(&m_documentSite);
    for (auto& [reference, instance] : m_heldInstances) {
        MV::release(instance);
    }
}

EntityMetaType& AmbrelAssetManager::s_metaType()
{
    static TEntityMetaType<AmbrelAssetManager> metaType(s_metaTypeId(), "AmbrelAssetManager", 0);
    static AmbrelAssetManagerDMCallback callback;
    static const bool attached = (metaType.dataModelCallback(&callback), true);
    (void)attached;
    return metaType;
}

const std::string& AmbrelAssetManager::s_metaTypeId()
{
    static const std::string id = "2C54F6D6-5C2B-4C4A-89A2-2AB486EF152D";
    return id;
}

const std::string& AmbrelAssetManager::segmentRootId()
{
    static const std::string id = "AmbrelAssetManager";
    return id;
}

void AmbrelAssetManager::declareMembers(unsigned, MemberSet* memberSet)
{
    declareTriggerMembers(memberSet);
    addMember(memberSet, "NextReferenceNumber", m_nextReferenceNumber);
    addListMember(memberSet, "PhysicalMaterialAssetReferences", m_physicalMaterialAssetReferences);
    addListMember(memberSet, "VisualMaterialAssetReferences", m_visualMaterialAssetReferences);
    addListMember(memberSet, "PhysicalMaterialRefCountVector", m_physicalMaterialRefCountVector);
    addListMember(memberSet, "VisualMaterialRefCountVector", m_visualMaterialRefCountVector);
}

void* AmbrelAssetManager::queryInterface(std::string_view interfaceId)
{
    if (interfaceId == s_interfaceId) {
        return this;
    }
    return BlobSerializerTrigger::queryInterface(interfaceId);
}

StrongRefCreator<AmbrelAssetManager> AmbrelAssetManager::make(Segment* pSeg)
{
    KX_ASSERT(!AmbrelAssetManager::find(pSeg));
    StrongRefCreator<AmbrelAssetManager> created(new AmbrelAssetManager());
    if (pSeg != nullptr) {
        pSeg->addRoot(segmentRootId(), *created.get());
    }
    return created;
}

StrongRef<AmbrelAssetManager> AmbrelAssetManager::find(const Segment* segment)
{
    if (segment == nullptr) {
        return {};
    }
    Entity* root = segment->root(segmentRootId());
    if (root == nullptr) {
        return {};
    }
    return StrongRef<AmbrelAssetManager>(static_cast<AmbrelAssetManager*>(root->queryInterface(s_interfaceId)));
}

StrongRef<AmbrelAssetManager> AmbrelAssetManager::find(const Document* asset)
{
    if (asset == nullptr) {
        return {};
    }
    for (const auto& segment : asset->segments()) {
        if (segment->isTransient()) {
            continue;
        }
        if (StrongRef<AmbrelAssetManager> found = find(segment.get())) {
            return found;
        }
    }
    return {};
}

StrongRef<AmbrelAssetManager> AmbrelAssetManager::findOrMake(Segment* segment)
{
    if (StrongRef<AmbrelAssetManager> found = find(segment)) {
        return found;
    }
    StrongRefCreator<AmbrelAssetManager> created = make(segment);
    return StrongRef<AmbrelAssetManager>(created.get());
}

// --- kinds and references ---

AmbrelAssetManager::EKind AmbrelAssetManager::kindOf(const IAssetInstance* instance) const
{
    if (instance == nullptr) {
        return EKind::eNone;
    }
    AmbrelManager* manager = MV::libraryManager();
    const auto isOfType = [&](const char* type) {
        return manager != nullptr ? manager->IsAssetOfType(instance, type)
                                  : telvarin::platform::assets::SchemaIsOfType(instance->GetSchemaName(),
                                        telvarin::platform::core::toWide(type));
    };
    if (isOfType("materialappearance")) {
        return EKind::eVisual;
    }
    if (isOfType("physicalmaterial")) {
        return EKind::ePhysical;
    }
    return EKind::eNone;
}

AmbrelAssetManager::KindMaps AmbrelAssetManager::maps(EKind kind)
{
    if (kind == EKind::ePhysical) {
        return {&m_physicalMaterialAIToReferenceMap, &m_physicalMaterialAIToRefCountMap, &m_physicalMaterialReferenceToAIMap};
    }
    return {&m_visualMaterialAIToReferenceMap, &m_visualMaterialAIToRefCountMap, &m_visualMaterialReferenceToAIMap};
}

std::wstring AmbrelAssetManager::issueReference()
{
    // Skips numbers whose reference is still held for undo (a registry restored by an undo may
    // have a counter behind references issued after it).
    std::wstring reference;
    do {
        reference = std::to_wstring(m_nextReferenceNumber++);
    } while (m_heldInstances.count(reference) != 0);
    return reference;
}

void AmbrelAssetManager::remember(const std::wstring& reference, IAssetInstance* instance)
{
    auto [position, inserted] = m_heldInstances.try_emplace(reference, instance);
    if (inserted) {
        MV::retain(instance);
    } else if (position->second != instance) {
        MV::release(position->second);
        position->second = MV::retain(instance);
    }
}

void AmbrelAssetManager::mirrorIntoVectors()
{
    clearAssetReferences();
    for (const auto& [reference, instance] : m_physicalMaterialReferenceToAIMap) {
        m_physicalMaterialAssetReferences.push_back(reference);
        m_physicalMaterialRefCountVector.push_back(m_physicalMaterialAIToRefCountMap[instance]);
    }
    for (const auto& [reference, instance] : m_visualMaterialReferenceToAIMap) {
        m_visualMaterialAssetReferences.push_back(reference);
        m_visualMaterialRefCountVector.push_back(m_visualMaterialAIToRefCountMap[instance]);
    }
}

void AmbrelAssetManager::mirrorUseCount(EKind kind, IAssetInstance* instance)
{
    // A use more or less changes one count: the vectors are in the reference map's order, so the
    // entry is found by bisection instead of copying the whole registry again.
    KindMaps kindMaps = maps(kind);
    auto& references = kind == EKind::ePhysical ? m_physicalMaterialAssetReferences : m_visualMaterialAssetReferences;
    auto& counts = kind == EKind::ePhysical ? m_physicalMaterialRefCountVector : m_visualMaterialRefCountVector;
    const auto reference = kindMaps.aiToReference->find(instance);
    const auto count = kindMaps.aiToRefCount->find(instance);
    if (reference != kindMaps.aiToReference->end() && count != kindMaps.aiToRefCount->end()
        && references.size() == kindMaps.referenceToAI->size() && counts.size() == references.size()) {
        const auto at = std::lower_bound(references.begin(), references.end(), reference->second);
        if (at != references.end() && *at == reference->second) {
            counts[static_cast<std::size_t>(at - references.begin())] = count->second;
            return;
        }
    }
    mirrorIntoVectors();
}

void AmbrelAssetManager::clearAssetReferences()
{
    m_physicalMaterialAssetReferences.clear();
    m_visualMaterialAssetReferences.clear();
    m_physicalMaterialRefCountVector.clear();
    m_visualMaterialRefCountVector.clear();
}

void AmbrelAssetManager::restoreFromPersistedForm()
{
    WriteLock lock(m_lock, true);
    m_physicalMaterialAIToReferenceMap.clear();
    m_physicalMaterialAIToRefCountMap.clear();
    m_physicalMaterialReferenceToAIMap.clear();
    m_visualMaterialAIToReferenceMap.clear();
    m_visualMaterialAIToRefCountMap.clear();
    m_visualMaterialReferenceToAIMap.clear();
    const auto restore = [&](const std::vector<std::wstring>& references, const std::vector<std::uint32_t>& counts,
                             EKind kind) {
        KindMaps kindMaps = maps(kind);
        for (std::size_t i = 0; i < references.size() && i < counts.size(); ++i) {
            const auto held = m_heldInstances.find(references[i]);
            if (held == m_heldInstances.end()) {
                continue;
            }
            (*kindMaps.aiToReference)[held->second] = references[i];
            (*kindMaps.aiToRefCount)[held->second] = counts[i];
            (*kindMaps.referenceToAI)[references[i]] = held->second;
        }
    };
    restore(m_physicalMaterialAssetReferences, m_physicalMaterialRefCountVector, EKind::ePhysical);
    restore(m_visualMaterialAssetReferences, m_visualMaterialRefCountVector, EKind::eVisual);
}

// --- registration ---

// Both kinds of material are registered alike, in maps of their own; each check reports the text
// that names the map of its kind.
struct AmbrelAssetManager::KindTexts {
    const char* countFound;
    const char* countAbsent;
    const char* referenceFree;
    const char* referenceMatches;
};

#define KX_REGISTRY_KIND_TEXTS(kind)                                                                              \
    AmbrelAssetManager::KindTexts                                                                               \
    {                                                                                                            \
        "iter2 != m_" #kind "MaterialAIToRefCountMap.end()",                                                     \
            "m_" #kind "MaterialAIToRefCountMap.find(pAssetInstance) == m_" #kind "MaterialAIToRefCountMap.end()", \
            "m_" #kind "MaterialReferenceToAIMap.find(assetReference) == m_" #kind "MaterialReferenceToAIMap.end()", \
            "m_" #kind "MaterialAIToReferenceMap[pAssetInstance] == assetReference"                              \
    }

const AmbrelAssetManager::KindTexts& AmbrelAssetManager::texts(EKind kind)
{
    static const KindTexts physical = KX_REGISTRY_KIND_TEXTS(physical);
    static const KindTexts visual = KX_REGISTRY_KIND_TEXTS(visual);
    return kind == EKind::ePhysical ? physical : visual;
}

std::wstring AmbrelAssetManager::registerInstance(EKind kind, IAssetInstance* pAssetInstance)
{
    const KindTexts& text = texts(kind);
    KindMaps kindMaps = maps(kind);
    const int count = pAssetInstance->GetReferenceCount();
    KX_ASSERT(count >= 1);
    const auto iter = kindMaps.aiToReference->find(pAssetInstance);
    if (iter != kindMaps.aiToReference->end()) {
        const auto iter2 = kindMaps.aiToRefCount->find(pAssetInstance);
        KX_ASSERT_TEXT(iter2 != kindMaps.aiToRefCount->end(), text.countFound);
        ++(*kindMaps.aiToRefCount)[pAssetInstance];
        return iter->second;
    }
    KX_ASSERT_TEXT(kindMaps.aiToRefCount->find(pAssetInstance) == kindMaps.aiToRefCount->end(), text.countAbsent);
    for (const auto& [pAI, reference] : *kindMaps.aiToReference) {
        KX_ASSERT(pAI->GetReferenceCount() > 0);
    }
    const std::wstring assetReference = issueReference();
    KX_ASSERT_TEXT(kindMaps.referenceToAI->find(assetReference) == kindMaps.referenceToAI->end(), text.referenceFree);
    remember(assetReference, pAssetInstance);
    (*kindMaps.aiToReference)[pAssetInstance] = assetReference;
    (*kindMaps.aiToRefCount)[pAssetInstance] = 1;
    (*kindMaps.referenceToAI)[assetReference] = pAssetInstance;
    return assetReference;
}

bool AmbrelAssetManager::unregisterInstance(EKind kind, IAssetInstance* pAssetInstance)
{
    const KindTexts& text = texts(kind);
    KindMaps kindMaps = maps(kind);
    const auto iter2 = kindMaps.aiToRefCount->find(pAssetInstance);
    KX_ASSERT_TEXT(iter2 != kindMaps.aiToRefCount->end(), text.countFound);
    if (iter2 == kindMaps.aiToRefCount->end()) {
        return false;
    }
    const auto reference = kindMaps.referenceToAI->find((*kindMaps.aiToReference)[pAssetInstance]);
    const std::wstring assetReference = reference != kindMaps.referenceToAI->end() ? reference->first : std::wstring{};
    KX_ASSERT_TEXT((*kindMaps.aiToReference)[pAssetInstance] == assetReference, text.referenceMatches);
    if (iter2->second == 0) {
        return false;
    }
    --iter2->second;
    return true;
}

std::wstring AmbrelAssetManager::registerPhysicalMaterial(IAssetInstance* pAssetInstance)
{
    return registerInstance(EKind::ePhysical, pAssetInstance);
}

std::wstring AmbrelAssetManager::registerVisualMaterial(IAssetInstance* pAssetInstance)
{
    return registerInstance(EKind::eVisual, pAssetInstance);
}

bool AmbrelAssetManager::unregisterPhysicalMaterial(IAssetInstance* pAssetInstance)
{
    return unregisterInstance(EKind::ePhysical, pAssetInstance);
}

bool AmbrelAssetManager::unregisterVisualMaterial(IAssetInstance* pAssetInstance)
{
    return unregisterInstance(EKind::eVisual, pAssetInstance);
}

template <class Material>
std::wstring AmbrelAssetManager::registerValue(EKind kind, Material& material)
{
    IAssetInstance* instance = material.assetInstance();
    if (instance == nullptr) {
        return {};
    }
    if (!material.assetReference().empty() && material.ambrelAssetManager().get() == this) {
        return material.assetReference();
    }
    RegistryChange change(*this);
    std::wstring reference;
    {
        WriteLock lock(m_lock, true);
        reference = registerInstance(kind, instance);
        mirrorUseCount(kind, instance);
    }
    material.ambrelAssetManager(StrongRef<AmbrelAssetManager>(this));
    material.assetReference(reference);
    return reference;
}

template <class Material>
bool AmbrelAssetManager::unregisterValue(EKind kind, Material& material)
{
    bool result = false;
    if (IAssetInstance* instance = material.assetInstance()) {
        RegistryChange change(*this);
        WriteLock lock(m_lock, true);
        result = unregisterInstance(kind, instance);
        mirrorUseCount(kind, instance);
    }
    material.ambrelAssetManager(nullptr);
    material.assetReference(std::wstring{});
    return result;
}

std::wstring AmbrelAssetManager::registerMaterial(PhysicalMaterial& material)
{
    return registerValue(EKind::ePhysical, material);
}

std::wstring AmbrelAssetManager::registerMaterial(VisualMaterial& material)
{
    return registerValue(EKind::eVisual, material);
}

bool AmbrelAssetManager::unregisterMaterial(PhysicalMaterial& physicalMaterial)
{
    if (!physicalMaterial.ambrelAssetManager()) {
        KX_ASSERT(physicalMaterial.assetReference().empty());
        return false;
    }
    return unregisterValue(EKind::ePhysical, physicalMaterial);
}

bool AmbrelAssetManager::unregisterMaterial(VisualMaterial& visualMaterial)
{
    if (!visualMaterial.ambrelAssetManager()) {
        KX_ASSERT(visualMaterial.assetReference().empty());
        return false;
    }
    return unregisterValue(EKind::eVisual, visualMaterial);
}

// --- lookups ---

IAssetInstance* AmbrelAssetManager::instanceByReference(EKind kind, const std::wstring& assetReference) const
{
    KX_ASSERT(assetReference.size());
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    const auto& referenceToAI = *const_cast<AmbrelAssetManager*>(this)->maps(kind).referenceToAI;
    const auto found = referenceToAI.find(assetReference);
    if (found == referenceToAI.end()) {
        return nullptr;
    }
    IAssetInstance* pAssetInstance = found->second;
    KX_ASSERT(pAssetInstance->GetReferenceCount() > 0);
    return pAssetInstance;
}

std::wstring AmbrelAssetManager::referenceOf(EKind kind, IAssetInstance* pAssetInstance) const
{
    if (pAssetInstance == nullptr) {
        return {};
    }
    KX_ASSERT(pAssetInstance->GetReferenceCount() > 0);
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    const auto& aiToReference = *const_cast<AmbrelAssetManager*>(this)->maps(kind).aiToReference;
    const auto found = aiToReference.find(pAssetInstance);
    return found != aiToReference.end() ? found->second : std::wstring{};
}

void AmbrelAssetManager::instancesOf(EKind kind, std::vector<IAssetInstance*>& instances) const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    for (const auto& [reference, instance] : *const_cast<AmbrelAssetManager*>(this)->maps(kind).referenceToAI) {
        KX_ASSERT(instance->GetReferenceCount() >= 1);
        instances.push_back(instance);
    }
}

IAssetInstance* AmbrelAssetManager::physicalMaterialAssetInstance(const std::wstring& assetReference) const
{
    return instanceByReference(EKind::ePhysical, assetReference);
}

IAssetInstance* AmbrelAssetManager::visualMaterialAssetInstance(const std::wstring& assetReference) const
{
    return instanceByReference(EKind::eVisual, assetReference);
}

IAssetInstance* AmbrelAssetManager::visualMaterialAssetInstance(const std::wstring& materialId,
    const std::wstring& libraryId) const
{
    const std::string id = telvarin::platform::core::toUTF8(materialId);
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    for (const auto& [instance, reference] : m_visualMaterialAIToReferenceMap) {
        const auto* definition = instance->GetAssetDefinition();
        if (definition != nullptr && definition->GetMaterialId() == id
            && (libraryId.empty() || definition->GetLibraryId() == libraryId)) {
            return instance;
        }
    }
    return nullptr;
}

std::wstring AmbrelAssetManager::physicalMaterialAssetReference(IAssetInstance* pAssetInstance) const
{
    return referenceOf(EKind::ePhysical, pAssetInstance);
}

std::wstring AmbrelAssetManager::visualMaterialAssetReference(IAssetInstance* pAssetInstance) const
{
    return referenceOf(EKind::eVisual, pAssetInstance);
}

void AmbrelAssetManager::physicalMaterialAssetInstances(std::set<IAssetInstance*>& instances) const
{
    std::vector<IAssetInstance*> all;
    instancesOf(EKind::ePhysical, all);
    instances.insert(all.begin(), all.end());
}

void AmbrelAssetManager::visualMaterialAssetInstances(std::set<IAssetInstance*>& instances) const
{
    std::vector<IAssetInstance*> all;
    instancesOf(EKind::eVisual, all);
    instances.insert(all.begin(), all.end());
}

void AmbrelAssetManager::getAllRegisteredPhysicalMaterials(std::vector<IAssetInstance*>& instances) const
{
    instancesOf(EKind::ePhysical, instances);
}

void AmbrelAssetManager::getAllRegisteredVisualMaterials(std::vector<IAssetInstance*>& instances) const
{
    instancesOf(EKind::eVisual, instances);
}

void AmbrelAssetManager::forEachRegisteredMaterial(
    const std::function<void(IAssetInstance*, const std::wstring&, bool)>& visit) const
{
    // Taken first and visited without the lock: a visitor may ask the registry again.
    std::vector<std::pair<IAssetInstance*, std::wstring>> registered[2];
    {
        oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
        for (const auto& [reference, instance] : m_physicalMaterialReferenceToAIMap)
            registered[0].emplace_back(instance, reference);
        for (const auto& [reference, instance] : m_visualMaterialReferenceToAIMap)
            registered[1].emplace_back(instance, reference);
    }
    for (const bool visual : {false, true}) {
        for (const auto& [instance, reference] : registered[visual ? 1 : 0])
            visit(instance, reference, visual);
    }
}

bool AmbrelAssetManager::containsMaterial(IAssetInstance* instance) const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    switch (kindOf(instance)) {
    case EKind::ePhysical:
        return m_physicalMaterialAIToReferenceMap.count(instance) != 0;
    case EKind::eVisual:
        return m_visualMaterialAIToReferenceMap.count(instance) != 0;
    case EKind::eNone:
        break;
    }
    return false;
}

IAssetInstance* AmbrelAssetManager::getEquivalentMaterial(IAssetInstance* instance, bool excludeItself) const
{
    const EKind kind = kindOf(instance);
    if (kind == EKind::eNone) {
        return nullptr;
    }
    AmbrelManager* manager = MV::libraryManager();
    std::unique_lock<std::recursive_mutex> managerLock;
    if (manager != nullptr) {
        managerLock = std::unique_lock(manager->mutex());
    }
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    const auto& registered = kind == EKind::ePhysical ? m_physicalMaterialAIToReferenceMap : m_visualMaterialAIToReferenceMap;
    for (const auto& [candidate, reference] : registered) {
        if (excludeItself && candidate == instance) {
            continue;
        }
        if (MV::isEqual(candidate, instance)) {
            return candidate;
        }
    }
    return nullptr;
}

std::uint32_t AmbrelAssetManager::useCount(IAssetInstance* instance) const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    if (const auto found = m_physicalMaterialAIToRefCountMap.find(instance); found != m_physicalMaterialAIToRefCountMap.end()) {
        return found->second;
    }
    if (const auto found = m_visualMaterialAIToRefCountMap.find(instance); found != m_visualMaterialAIToRefCountMap.end()) {
        return found->second;
    }
    return 0;
}

// --- use ---

void AmbrelAssetManager::fireWhereUsed(MaterialEvent& event)
{
    // Events reach nobody off the UI thread; a document opened on a worker still needs its counts,
    // so there the registry's own site answers alone.
    if (OS::platformIsUIThread()) {
        m_materialEventSource.fireWhereUsed(&event);
    } else {
        m_documentSite.onWhereUsed(&event);
    }
}

unsigned AmbrelAssetManager::numLiveUsers(IAssetInstance* instance)
{
    switch (kindOf(instance)) {
    case EKind::ePhysical: {
        MaterialEvent event(PhysicalMaterial(instance), Event::ePre);
        fireWhereUsed(event);
        return event.refCount();
    }
    case EKind::eVisual: {
        MaterialEvent event(VisualMaterial(instance), Event::ePre);
        fireWhereUsed(event);
        return event.refCount();
    }
    case EKind::eNone:
        break;
    }
    KX_ASSERT(false);
    return 0;
}

bool AmbrelAssetManager::isMaterialUsed(IAssetInstance* pAssetInstance) const
{
    return pAssetInstance != nullptr && useCount(pAssetInstance) != 0;
}

void AmbrelAssetManager::getUnusedPhysicalMaterials(std::vector<IAssetInstance*>& instances) const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    for (const auto& [instance, count] : m_physicalMaterialAIToRefCountMap) {
        if (count == 0) {
            instances.push_back(instance);
        }
    }
}

void AmbrelAssetManager::getUnusedVisualMaterials(std::vector<IAssetInstance*>& instances) const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    for (const auto& [instance, count] : m_visualMaterialAIToRefCountMap) {
        if (count == 0) {
            instances.push_back(instance);
        }
    }
}

std::vector<IAssetInstance*> AmbrelAssetManager::getUnusedOfType(IAssetInstance* instance) const
{
    std::vector<IAssetInstance*> unused;
    switch (kindOf(instance)) {
    case EKind::ePhysical:
        getUnusedPhysicalMaterials(unused);
        break;
    case EKind::eVisual:
        getUnusedVisualMaterials(unused);
        break;
    case EKind::eNone:
        break;
    }
    return unused;
}

bool AmbrelAssetManager::hasUnusedOfType(IAssetInstance* instance) const { return !getUnusedOfType(instance).empty(); }

void AmbrelAssetManager::fixRefCounts()
{
    KX_ASSERT(AmbrelAssetManager::find(asset()) == this);
    // Counted first, without the lock: the listeners resolve values, which reads the registry.
    std::vector<std::pair<IAssetInstance*, unsigned>> live;
    for (const auto* counts : {&m_physicalMaterialAIToRefCountMap, &m_visualMaterialAIToRefCountMap}) {
        for (const auto& [instance, count] : *counts) {
            KX_ASSERT(instance->GetReferenceCount() > 0);
            live.emplace_back(instance, 0);
        }
    }
    for (auto& [instance, count] : live) {
        count = numLiveUsers(instance);
    }
    RegistryChange change(*this);
    WriteLock lock(m_lock, true);
    for (const auto& [instance, count] : live) {
        if (kindOf(instance) == EKind::ePhysical) {
            const auto iter2 = m_physicalMaterialAIToReferenceMap.find(instance);
            KX_ASSERT(iter2 != m_physicalMaterialAIToReferenceMap.end());
            m_physicalMaterialAIToRefCountMap[instance] = count;
        } else {
            const auto iter2 = m_visualMaterialAIToReferenceMap.find(instance);
            KX_ASSERT(iter2 != m_visualMaterialAIToReferenceMap.end());
            m_visualMaterialAIToRefCountMap[instance] = count;
        }
    }
    mirrorIntoVectors();
}

// --- document materials ---

bool AmbrelAssetManager::addMaterial(IAssetInstance* instance)
{
    const EKind kind = kindOf(instance);
    if (kind == EKind::eNone || containsMaterial(instance)) {
        return false;
    }
    RegistryChange change(*this, L"Add Document Material");
    WriteLock lock(m_lock, true);
    KindMaps kindMaps = maps(kind);
    KX_ASSERT(kindMaps.aiToReference->find(instance) == kindMaps.aiToReference->end());
    KX_ASSERT(kindMaps.aiToRefCount->find(instance) == kindMaps.aiToRefCount->end());
    const std::wstring reference = issueReference();
    remember(reference, instance);
    (*kindMaps.aiToReference)[instance] = reference;
    (*kindMaps.aiToRefCount)[instance] = 0;
    (*kindMaps.referenceToAI)[reference] = instance;
    mirrorIntoVectors();
    return true;
}

bool AmbrelAssetManager::deleteMaterial(IAssetInstance* instance)
{
    const EKind kind = kindOf(instance);
    if (kind == EKind::eNone) {
        return false;
    }
    KindMaps kindMaps = maps(kind);
    {
        oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
        const auto iter2 = kindMaps.aiToRefCount->find(instance);
        KX_ASSERT_TEXT(iter2 != kindMaps.aiToRefCount->end(), texts(kind).countFound);
        if (iter2 == kindMaps.aiToRefCount->end()) {
            return false;
        }
        if (iter2->second != 0) {
            // A stored count can be stale (a copy, an older document): the listeners decide.
            lock.release();
            if (numLiveUsers(instance) != 0) {
                return false;
            }
        }
    }
    RegistryChange change(*this, L"Delete Document Material");
    WriteLock lock(m_lock, true);
    const std::wstring reference = (*kindMaps.aiToReference)[instance];
    kindMaps.aiToReference->erase(instance);
    kindMaps.aiToRefCount->erase(instance);
    kindMaps.referenceToAI->erase(reference);
    mirrorIntoVectors();
    return true;
}

// --- persistence: the blob part, see AmbrelAssetsBlobSerializer ---

void AmbrelAssetManager::prepareBlobPreSave(IBlobFolder* pIBlobFolder, bool, CloningStream*)
{
    IBlobFolder* pBlobFolder = pIBlobFolder;
    KX_ASSERT(pBlobFolder);
    if (pIBlobFolder == nullptr) {
        return;
    }
    KX_ASSERT(!pIBlobFolder->multiLevelFolder());
    // Made afresh for every save: a part an earlier save left is deleted first, its name kept.
    if (blobPart(pIBlobFolder) != nullptr) {
        (void)deleteBlobPart(pIBlobFolder);
    }
    BlobPart* pBlobPart = makeBlobPart(pIBlobFolder, "AmbrelAsset", "ambrel");
    KX_ASSERT(pBlobPart);
    if (pBlobPart == nullptr) {
        throw Exception(L"AmbrelAssetManager::prepareBlobPreSave - Could not make the Ambrel Asset blob part!");
    }
    pBlobPart->markUsed();
    std::unique_ptr<AmbrelAssetsBlob> blob = AmbrelAssetsBlob::make(asset(), pBlobPart);
    blob->markUsed();
    AmbrelAssetsBlob* pBlob = blob.get();
    pBlobPart->blob(std::move(blob));

    AmbrelManager* manager = MV::loadedLibraryManager();
    Assets::IAssetLibraryManager* libraries = manager != nullptr ? manager->GetAssetLibMgr() : nullptr;
    if (libraries == nullptr) {
        KX_ASSERT(false);
        throw Exception(L"AmbrelAssetManager::prepareBlobPreSave - Could not access Ambrel Asset Library Manager!");
    }
    std::lock_guard managerLock(manager->mutex());
    std::unique_ptr<Assets::IAssetSerializer> serializer = libraries->CreateAssetSerializer();
    if (!serializer) {
        throw Exception(L"AmbrelAssetManager::prepareBlobPreSave - Could not create Ambrel Asset Serializer!");
    }
    WriteLock lock(m_lock, true);
    clearAssetReferences();
    for (const auto& [assetReference, pAssetInstance] : m_physicalMaterialReferenceToAIMap) {
        KX_ASSERT(pAssetInstance->GetReferenceCount() > 0);
        const auto iter2 = m_physicalMaterialAIToRefCountMap.find(pAssetInstance);
        KX_ASSERT(iter2 != m_physicalMaterialAIToRefCountMap.end());
        if (!serializer->RegisterAssetInstance(pAssetInstance, assetReference)) {
            throw Exception(L"AmbrelAssetManager::prepareBlobPreSave - Problem registering Physical Materials with the "
                            L"Ambrel Asset Serializer!");
        }
        m_physicalMaterialAssetReferences.push_back(assetReference);
        m_physicalMaterialRefCountVector.push_back(iter2 != m_physicalMaterialAIToRefCountMap.end() ? iter2->second : 0);
    }
    for (const auto& [assetReference, pAssetInstance] : m_visualMaterialReferenceToAIMap) {
        KX_ASSERT(pAssetInstance->GetReferenceCount() > 0);
        const auto iter2 = m_visualMaterialAIToRefCountMap.find(pAssetInstance);
        KX_ASSERT(iter2 != m_visualMaterialAIToRefCountMap.end());
        if (!serializer->RegisterAssetInstance(pAssetInstance, assetReference)) {
            throw Exception(L"AmbrelAssetManager::prepareBlobPreSave - Problem registering Visual Materials with the "
                            L"Ambrel Asset Serializer!");
        }
        m_visualMaterialAssetReferences.push_back(assetReference);
        m_visualMaterialRefCountVector.push_back(iter2 != m_visualMaterialAIToRefCountMap.end() ? iter2->second : 0);
    }
    pBlob->ambrelSerializer(std::move(serializer));
    KX_ASSERT(m_physicalMaterialRefCountVector.size() == m_physicalMaterialAssetReferences.size());
    KX_ASSERT(m_visualMaterialRefCountVector.size() == m_visualMaterialAssetReferences.size());
}

void AmbrelAssetManager::syncToBlobAfterLoad(IBlobFolder* pBlobFolder, bool, CloningStream*)
{
    if (FaultInjection::shouldFail("AmbrelAssetManager::syncToBlobAfterLoad - Simulated Exception")) {
        throw Exception(L"AmbrelAssetManager::syncToBlobAfterLoad - Simulated Exception");
    }
    const bool hasReferences = !m_physicalMaterialAssetReferences.empty() || !m_visualMaterialAssetReferences.empty();
    KX_ASSERT(!pBlobFolder->multiLevelFolder());
    BlobPart* part = blobPart(pBlobFolder);
    if (part == nullptr) {
        if (!hasReferences) {
            // A registry that had nothing to save has nothing to read.
            restoreFromPersistedForm();
            return;
        }
        KX_ASSERT(false);
        throw Exception(L"AmbrelAssetManager::syncToBlobAfterLoad - The file you are trying to open is corrupt! The "
                        L"current operation will be aborted! Blob part object pointer is NULL while there are some "
                        L"ambrel asset instances in memory!");
    }
    auto* pBlob = dynamic_cast<AmbrelAssetsBlob*>(part->blob());
    KX_ASSERT(dynamic_cast<AmbrelAssetsBlob*>(pBlob));
    if (pBlob == nullptr) {
        throw Exception(L"AmbrelAssetManager::syncToBlobAfterLoad - The file you are trying to open is corrupt! The "
                        L"current operation will be aborted!. Blob object pointer NULL error!");
    }
    AmbrelManager* manager = MV::loadedLibraryManager();
    Assets::IAssetLibraryManager* libraries = manager != nullptr ? manager->GetAssetLibMgr() : nullptr;
    if (libraries == nullptr) {
        throw Exception(L"AmbrelAssetManager::syncToBlobAfterLoad - Could not access Ambrel Asset Library Manager!");
    }
    auto stream = std::make_unique<telvarin::platform::core::io::FileDataStream>(pBlob->filePath(),
        telvarin::platform::core::io::FileDataStream::EOpenMode::eRead);
    (void)stream->open();
    pBlob->ambrelDeserializerFileStream(std::move(stream));
    std::lock_guard managerLock(manager->mutex());
    std::unique_ptr<Assets::IAssetDeSerializer> deserializer = libraries->CreateAssetDeSerializer();
    if (!deserializer) {
        throw Exception(L"AmbrelAssetManager::syncToBlobAfterLoad - Could not create Ambrel Asset De-serializer!");
    }
    Assets::AssetError error;
    if (!deserializer->Deserialize(*pBlob->ambrelDeserializerFileStream(), AmbrelAssetLibraryRequest::get(), &error)) {
        KX_ASSERT(false);
        pBlob->destroyDeserializerFileStream();
        throw Exception(L"The file you are trying to open is corrupt! The current operation will be aborted!",
            "Failed to load Ambrel Assets Blob: " + error.message);
    }
    pBlob->destroyDeserializerFileStream();

    WriteLock lock(m_lock, true);
    m_physicalMaterialAIToReferenceMap.clear();
    m_physicalMaterialAIToRefCountMap.clear();
    m_physicalMaterialReferenceToAIMap.clear();
    m_visualMaterialAIToReferenceMap.clear();
    m_visualMaterialAIToRefCountMap.clear();
    m_visualMaterialReferenceToAIMap.clear();
    // Everything is checked before anything is kept: a blob that lacks a listed asset is damage.
    std::vector<std::pair<std::wstring, IAssetInstance*>> taken;
    const auto take = [&](const std::vector<std::wstring>& references) {
        for (const std::wstring& assetReference : references) {
            IAssetInstance* pAssetInstance = deserializer->TakeAssetInstance(assetReference);
            if (pAssetInstance == nullptr) {
                for (auto& [reference, instance] : taken) {
                    instance->Release();
                }
                throw Exception(L"The file you are trying to open is corrupt! The current operation will be aborted!",
                    "Failed to load Ambrel Assets Blob: no asset under the reference " + telvarin::platform::core::toUTF8(assetReference));
            }
            taken.emplace_back(assetReference, pAssetInstance);
        }
    };
    take(m_physicalMaterialAssetReferences);
    take(m_visualMaterialAssetReferences);
    if (m_physicalMaterialRefCountVector.size() != m_physicalMaterialAssetReferences.size()
        || m_visualMaterialRefCountVector.size() != m_visualMaterialAssetReferences.size()) {
        for (auto& [reference, instance] : taken) {
            instance->Release();
        }
        throw Exception(L"The file you are trying to open is corrupt! The current operation will be aborted!",
            "Failed to load Ambrel Assets Blob: the references and use counts differ in number");
    }
    std::size_t next = 0;
    for (std::size_t i = 0; i < m_physicalMaterialAssetReferences.size(); ++i, ++next) {
        const std::wstring& assetReference = m_physicalMaterialAssetReferences[i];
        IAssetInstance* pAssetInstance = taken[next].second;
        KX_ASSERT(pAssetInstance->GetReferenceCount() == 1);
        validateMaterial(pAssetInstance, L"Phisical material loaded");
        KX_ASSERT(m_physicalMaterialAIToReferenceMap.find(pAssetInstance) == m_physicalMaterialAIToReferenceMap.end());
        KX_ASSERT(m_physicalMaterialAIToRefCountMap.find(pAssetInstance) == m_physicalMaterialAIToRefCountMap.end());
        KX_ASSERT(m_physicalMaterialReferenceToAIMap.find(assetReference) == m_physicalMaterialReferenceToAIMap.end());
        // The deserializer's reference becomes the registry's own.
        adopt(assetReference, pAssetInstance);
        m_physicalMaterialAIToReferenceMap[pAssetInstance] = assetReference;
        m_physicalMaterialAIToRefCountMap[pAssetInstance] = m_physicalMaterialRefCountVector[i];
        m_physicalMaterialReferenceToAIMap[assetReference] = pAssetInstance;
    }
    for (std::size_t i = 0; i < m_visualMaterialAssetReferences.size(); ++i, ++next) {
        const std::wstring& assetReference = m_visualMaterialAssetReferences[i];
        IAssetInstance* pAssetInstance = taken[next].second;
        KX_ASSERT(pAssetInstance->GetReferenceCount() == 1);
        validateMaterial(pAssetInstance, L"Visual material loaded");
        KX_ASSERT(m_visualMaterialAIToReferenceMap.find(pAssetInstance) == m_visualMaterialAIToReferenceMap.end());
        KX_ASSERT(m_visualMaterialAIToRefCountMap.find(pAssetInstance) == m_visualMaterialAIToRefCountMap.end());
        KX_ASSERT(m_visualMaterialReferenceToAIMap.find(assetReference) == m_visualMaterialReferenceToAIMap.end());
        adopt(assetReference, pAssetInstance);
        m_visualMaterialAIToReferenceMap[pAssetInstance] = assetReference;
        m_visualMaterialAIToRefCountMap[pAssetInstance] = m_visualMaterialRefCountVector[i];
        m_visualMaterialReferenceToAIMap[assetReference] = pAssetInstance;
    }
    // References issued from now on must not meet the loaded ones.
    for (const auto& [reference, instance] : taken) {
        try {
            m_nextReferenceNumber = std::max<std::uint32_t>(m_nextReferenceNumber, static_cast<std::uint32_t>(std::stoul(reference)) + 1);
        } catch (const std::exception&) {
        }
    }
}

void AmbrelAssetManager::adopt(const std::wstring& reference, IAssetInstance* instance)
{
    auto [position, inserted] = m_heldInstances.try_emplace(reference, instance);
    if (!inserted) {
        MV::release(position->second);
        position->second = instance;
    }
}

namespace {
std::atomic<bool> s_validateMaterials{false};
} // namespace

void AmbrelAssetManager::materialValidation(bool on) { s_validateMaterials.store(on); }

void validateMaterial(AmbrelAssetManager::IAssetInstance* instance, const std::wstring& context)
{
    if (!s_validateMaterials.load() || instance == nullptr) {
        return;
    }
    Assets::InstancePtr structural(instance->GetConnectedAsset(L"Structural"));
    double value = 0.0;
    Assets::NumericConstraint bounds;
    if (structural == nullptr || !structural->GetDoubleValue(L"structural_Density", value)
        || !structural->GetNumericConstraint(L"structural_Density", bounds)) {
        return;
    }
    std::wstring message;
    if (bounds.hasMaximum && value - bounds.maximum > 1e-6) {
        message = (boost::wformat(L" Structural_Density value bounds error, value %1% is bigger than maximum %2%.") % value
            % bounds.maximum)
                      .str();
    } else if (bounds.hasMinimum && bounds.minimum - value > 1e-6) {
        message = (boost::wformat(L" Structural_Density value bounds error, value %1% is less than minimum %2%.") % value
            % bounds.minimum)
                      .str();
    }
    if (!message.empty()) {
        const std::string text = telvarin::platform::core::toUTF8(context + message);
        reportAssertion(text.c_str(), "validateMaterial", KX_MODULE_NAME, __FILE__, __LINE__);
    }
}

bool AmbrelAssetManager::fullyBaked() const
{
    AmbrelManager* manager = MV::libraryManager();
    if (manager == nullptr) {
        return false;
    }
    std::lock_guard lock(manager->mutex());
    return manager->LibsLoaded();
}

// --- checking and text ---

bool AmbrelAssetManager::validate() const
{
    bool valid = true;
    const auto check = [&valid](bool condition) {
        valid = valid && condition;
        return condition;
    };
    if (segment() != nullptr) {
        KX_ASSERT(check(AmbrelAssetManager::find(segment()).get() == this));
    }
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    KX_ASSERT(check(m_physicalMaterialAIToReferenceMap.size() == m_physicalMaterialAIToRefCountMap.size()));
    KX_ASSERT(check(m_physicalMaterialAIToReferenceMap.size() >= m_physicalMaterialReferenceToAIMap.size()));
    for (const auto& [pAI, reference] : m_physicalMaterialAIToReferenceMap) {
        KX_ASSERT(check(pAI->GetReferenceCount() > 0));
        const auto back = m_physicalMaterialReferenceToAIMap.find(reference);
        check(back != m_physicalMaterialReferenceToAIMap.end() && back->second == pAI);
    }
    KX_ASSERT(check(m_visualMaterialAIToReferenceMap.size() == m_visualMaterialAIToRefCountMap.size()));
    KX_ASSERT(check(m_visualMaterialAIToReferenceMap.size() >= m_visualMaterialReferenceToAIMap.size()));
    for (const auto& [pAI, reference] : m_visualMaterialAIToReferenceMap) {
        KX_ASSERT(check(pAI->GetReferenceCount() > 0));
        const auto back = m_visualMaterialReferenceToAIMap.find(reference);
        check(back != m_visualMaterialReferenceToAIMap.end() && back->second == pAI);
    }
    return valid;
}

std::wstring AmbrelAssetManager::onToString() const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    std::wstring text = (boost::wformat(L"AmbrelAssetManager (base %1%), # of physical materials: %2%")
        % Entity::onToString() % m_physicalMaterialAIToReferenceMap.size())
                            .str();
    text += (boost::wformat(L", # of visual materials: %1%") % m_visualMaterialAIToReferenceMap.size()).str();
    text += (boost::wformat(L", Fully Baked: %1%.\n") % (fullyBaked() ? 1 : 0)).str();
    AmbrelManager* manager = MV::libraryManager();
    text += L"Physical Materials: {";
    for (const auto& [reference, instance] : m_physicalMaterialReferenceToAIMap) {
        const auto iter = m_physicalMaterialAIToRefCountMap.find(instance);
        KX_ASSERT(iter != m_physicalMaterialAIToRefCountMap.end());
        double density = -1.0;
        if (manager != nullptr) {
            (void)manager->GetAssetInstanceDensity(instance, density);
        }
        text += (boost::wformat(L" [AmbrelID: %1%, Asset Reference: %2%, Ref Count: %3%, Density: %4%")
            % telvarin::platform::core::toWide(instance->GetAssetId()) % reference
            % (iter != m_physicalMaterialAIToRefCountMap.end() ? iter->second : 0u) % density)
                    .str();
        telvarin::platform::assets::InstancePtr appearance(instance->GetConnectedAsset(L"materialappearance"));
        if (appearance != nullptr) {
            text += (boost::wformat(L" [Appearance info - AmbrelID: %1%]")
                % telvarin::platform::core::toWide(appearance->GetAssetId()))
                        .str();
        }
        text += L"]";
    }
    text += L"}\nVisual Materials: {";
    for (const auto& [reference, instance] : m_visualMaterialReferenceToAIMap) {
        const auto iter = m_visualMaterialAIToRefCountMap.find(instance);
        KX_ASSERT(iter != m_visualMaterialAIToRefCountMap.end());
        text += (boost::wformat(L" [AmbrelID: %1%, Asset Reference: %2%, Ref Count: %3%]")
            % telvarin::platform::core::toWide(instance->GetAssetId()) % reference
            % (iter != m_visualMaterialAIToRefCountMap.end() ? iter->second : 0u))
                    .str();
        if (manager != nullptr) {
            text += L"[Bitmaps: ";
            for (IAssetInstance* texture : manager->CollectTextureAssets(instance)) {
                for (const wchar_t* property : {L"unifiedbitmap_Bitmap", L"bumpmap_Bitmap"}) {
                    std::wstring bitmap;
                    if (texture->GetStringValue(property, bitmap)) {
                        text += (boost::wformat(L" %1%") % bitmap).str();
                    }
                }
                texture->Release();
            }
            text += L"]";
        }
    }
    text += L"}";
    return text;
}

namespace {
const bool s_registered = ((void)AmbrelAssetManager::s_metaType(), true);
} // namespace

} // namespace Kx
