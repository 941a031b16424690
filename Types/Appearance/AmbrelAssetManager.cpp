#include "Types/Appearance/AmbrelAssetManager.h"

#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/PhysicalMaterial.h"
#include "Types/Appearance/VisualMaterial.h"
#include "Types/Appearance/internal/ListMemberMetaType.h"
#include "Types/Appearance/internal/MaterialValueSupport.h"

#include <Types/Geometry/ValueMetaTypeT.h>

#include <assets/AssetType.h>
#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <base/Assert.h>
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

AmbrelAssetManager::AmbrelAssetManager() : BlobSerializerTrigger(s_metaType()) {}

AmbrelAssetManager::~AmbrelAssetManager()
{
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
    static const std::string id = "A3E1B7C2-5D84-4F19-9C6A-2B7E0D1F8A53";
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

std::wstring AmbrelAssetManager::registerPhysicalMaterial(IAssetInstance* pAssetInstance)
{
    const int count = pAssetInstance->GetReferenceCount();
    KX_ASSERT(count >= 1);
    const auto iter = m_physicalMaterialAIToReferenceMap.find(pAssetInstance);
    if (iter != m_physicalMaterialAIToReferenceMap.end()) {
        const auto iter2 = m_physicalMaterialAIToRefCountMap.find(pAssetInstance);
        KX_ASSERT(iter2 != m_physicalMaterialAIToRefCountMap.end());
        ++m_physicalMaterialAIToRefCountMap[pAssetInstance];
        return iter->second;
    }
    KX_ASSERT(m_physicalMaterialAIToRefCountMap.find(pAssetInstance) == m_physicalMaterialAIToRefCountMap.end());
    for (const auto& [pAI, reference] : m_physicalMaterialAIToReferenceMap) {
        KX_ASSERT(pAI->GetReferenceCount() > 0);
    }
    const std::wstring assetReference = issueReference();
    KX_ASSERT(m_physicalMaterialReferenceToAIMap.find(assetReference) == m_physicalMaterialReferenceToAIMap.end());
    remember(assetReference, pAssetInstance);
    m_physicalMaterialAIToReferenceMap[pAssetInstance] = assetReference;
    m_physicalMaterialAIToRefCountMap[pAssetInstance] = 1;
    m_physicalMaterialReferenceToAIMap[assetReference] = pAssetInstance;
    return assetReference;
}

std::wstring AmbrelAssetManager::registerVisualMaterial(IAssetInstance* pAssetInstance)
{
    const int count = pAssetInstance->GetReferenceCount();
    KX_ASSERT(count >= 1);
    const auto iter = m_visualMaterialAIToReferenceMap.find(pAssetInstance);
    if (iter != m_visualMaterialAIToReferenceMap.end()) {
        const auto iter2 = m_visualMaterialAIToRefCountMap.find(pAssetInstance);
        KX_ASSERT(iter2 != m_visualMaterialAIToRefCountMap.end());
        ++m_visualMaterialAIToRefCountMap[pAssetInstance];
        return iter->second;
    }
    KX_ASSERT(m_visualMaterialAIToRefCountMap.find(pAssetInstance) == m_visualMaterialAIToRefCountMap.end());
    for (const auto& [pAI, reference] : m_visualMaterialAIToReferenceMap) {
        KX_ASSERT(pAI->GetReferenceCount() > 0);
    }
    const std::wstring assetReference = issueReference();
    KX_ASSERT(m_visualMaterialReferenceToAIMap.find(assetReference) == m_visualMaterialReferenceToAIMap.end());
    remember(assetReference, pAssetInstance);
    m_visualMaterialAIToReferenceMap[pAssetInstance] = assetReference;
    m_visualMaterialAIToRefCountMap[pAssetInstance] = 1;
    m_visualMaterialReferenceToAIMap[assetReference] = pAssetInstance;
    return assetReference;
}

std::wstring AmbrelAssetManager::registerMaterial(PhysicalMaterial& material)
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
        reference = registerPhysicalMaterial(instance);
        mirrorIntoVectors();
    }
    material.ambrelAssetManager(StrongRef<AmbrelAssetManager>(this));
    material.assetReference(reference);
    return reference;
}

std::wstring AmbrelAssetManager::registerMaterial(VisualMaterial& material)
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
        reference = registerVisualMaterial(instance);
        mirrorIntoVectors();
    }
    material.ambrelAssetManager(StrongRef<AmbrelAssetManager>(this));
    material.assetReference(reference);
    return reference;
}

bool AmbrelAssetManager::unregisterPhysicalMaterial(IAssetInstance* pAssetInstance)
{
    const auto iter2 = m_physicalMaterialAIToRefCountMap.find(pAssetInstance);
    KX_ASSERT(iter2 != m_physicalMaterialAIToRefCountMap.end());
    if (iter2 == m_physicalMaterialAIToRefCountMap.end()) {
        return false;
    }
    const auto reference = m_physicalMaterialReferenceToAIMap.find(m_physicalMaterialAIToReferenceMap[pAssetInstance]);
    const std::wstring assetReference = reference != m_physicalMaterialReferenceToAIMap.end() ? reference->first : std::wstring{};
    KX_ASSERT(m_physicalMaterialAIToReferenceMap[pAssetInstance] == assetReference);
    if (iter2->second == 0) {
        return false;
    }
    --iter2->second;
    return true;
}

bool AmbrelAssetManager::unregisterVisualMaterial(IAssetInstance* pAssetInstance)
{
    const auto iter2 = m_visualMaterialAIToRefCountMap.find(pAssetInstance);
    KX_ASSERT(iter2 != m_visualMaterialAIToRefCountMap.end());
    if (iter2 == m_visualMaterialAIToRefCountMap.end()) {
        return false;
    }
    const auto reference = m_visualMaterialReferenceToAIMap.find(m_visualMaterialAIToReferenceMap[pAssetInstance]);
    const std::wstring assetReference = reference != m_visualMaterialReferenceToAIMap.end() ? reference->first : std::wstring{};
    KX_ASSERT(m_visualMaterialAIToReferenceMap[pAssetInstance] == assetReference);
    if (iter2->second == 0) {
        return false;
    }
    --iter2->second;
    return true;
}

bool AmbrelAssetManager::unregisterMaterial(PhysicalMaterial& physicalMaterial)
{
    if (!physicalMaterial.ambrelAssetManager()) {
        KX_ASSERT(physicalMaterial.assetReference().empty());
        return false;
    }
    bool result = false;
    if (IAssetInstance* instance = physicalMaterial.assetInstance()) {
        RegistryChange change(*this);
        WriteLock lock(m_lock, true);
        result = unregisterPhysicalMaterial(instance);
        mirrorIntoVectors();
    }
    physicalMaterial.ambrelAssetManager(nullptr);
    physicalMaterial.assetReference(std::wstring{});
    return result;
}

bool AmbrelAssetManager::unregisterMaterial(VisualMaterial& visualMaterial)
{
    if (!visualMaterial.ambrelAssetManager()) {
        KX_ASSERT(visualMaterial.assetReference().empty());
        return false;
    }
    bool result = false;
    if (IAssetInstance* instance = visualMaterial.assetInstance()) {
        RegistryChange change(*this);
        WriteLock lock(m_lock, true);
        result = unregisterVisualMaterial(instance);
        mirrorIntoVectors();
    }
    visualMaterial.ambrelAssetManager(nullptr);
    visualMaterial.assetReference(std::wstring{});
    return result;
}

// --- lookups ---

IAssetInstance* AmbrelAssetManager::physicalMaterialAssetInstance(const std::wstring& assetReference) const
{
    KX_ASSERT(assetReference.size());
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    const auto found = m_physicalMaterialReferenceToAIMap.find(assetReference);
    if (found == m_physicalMaterialReferenceToAIMap.end()) {
        return nullptr;
    }
    IAssetInstance* pAssetInstance = found->second;
    KX_ASSERT(pAssetInstance->GetReferenceCount() > 0);
    return pAssetInstance;
}

IAssetInstance* AmbrelAssetManager::visualMaterialAssetInstance(const std::wstring& assetReference) const
{
    KX_ASSERT(assetReference.size());
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    const auto found = m_visualMaterialReferenceToAIMap.find(assetReference);
    if (found == m_visualMaterialReferenceToAIMap.end()) {
        return nullptr;
    }
    IAssetInstance* pAssetInstance = found->second;
    KX_ASSERT(pAssetInstance->GetReferenceCount() > 0);
    return pAssetInstance;
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
    if (pAssetInstance == nullptr) {
        return {};
    }
    KX_ASSERT(pAssetInstance->GetReferenceCount() > 0);
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    const auto found = m_physicalMaterialAIToReferenceMap.find(pAssetInstance);
    return found != m_physicalMaterialAIToReferenceMap.end() ? found->second : std::wstring{};
}

std::wstring AmbrelAssetManager::visualMaterialAssetReference(IAssetInstance* pAssetInstance) const
{
    if (pAssetInstance == nullptr) {
        return {};
    }
    KX_ASSERT(pAssetInstance->GetReferenceCount() > 0);
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    const auto found = m_visualMaterialAIToReferenceMap.find(pAssetInstance);
    return found != m_visualMaterialAIToReferenceMap.end() ? found->second : std::wstring{};
}

void AmbrelAssetManager::physicalMaterialAssetInstances(std::set<IAssetInstance*>& instances) const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    for (const auto& [pAssetInstance, reference] : m_physicalMaterialAIToReferenceMap) {
        KX_ASSERT(pAssetInstance->GetReferenceCount() >= 1);
        instances.insert(pAssetInstance);
    }
}

void AmbrelAssetManager::visualMaterialAssetInstances(std::set<IAssetInstance*>& instances) const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    for (const auto& [pAssetInstance, reference] : m_visualMaterialAIToReferenceMap) {
        KX_ASSERT(pAssetInstance->GetReferenceCount() >= 1);
        instances.insert(pAssetInstance);
    }
}

void AmbrelAssetManager::getAllRegisteredPhysicalMaterials(std::vector<IAssetInstance*>& instances) const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    for (const auto& [reference, instance] : m_physicalMaterialReferenceToAIMap) {
        instances.push_back(instance);
    }
}

void AmbrelAssetManager::getAllRegisteredVisualMaterials(std::vector<IAssetInstance*>& instances) const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    for (const auto& [reference, instance] : m_visualMaterialReferenceToAIMap) {
        instances.push_back(instance);
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
        if (kind == EKind::ePhysical) {
            KX_ASSERT(iter2 != m_physicalMaterialAIToRefCountMap.end());
        } else {
            KX_ASSERT(iter2 != m_visualMaterialAIToRefCountMap.end());
        }
        if (iter2 == kindMaps.aiToRefCount->end() || iter2->second != 0) {
            return false;
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

void AmbrelAssetManager::prepareBlobPreSave(IBlobFolder*, bool, CloningStream*)
{
    WriteLock lock(m_lock, true);
    mirrorIntoVectors();
    KX_ASSERT(m_physicalMaterialRefCountVector.size() == m_physicalMaterialAssetReferences.size());
    KX_ASSERT(m_visualMaterialRefCountVector.size() == m_visualMaterialAssetReferences.size());
}

void AmbrelAssetManager::syncToBlobAfterLoad(IBlobFolder*, bool, CloningStream*)
{
    restoreFromPersistedForm();
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
