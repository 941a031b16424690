// The data model's view of the material values: their meta types with every member set a document
// may hold, and the callbacks that keep each value registered, with a correct use count, in the
// registry of its segment across saves, opens, pastes and migrations.

#include "Types/Appearance/Meta/MaterialMetaTypes.h"

#include "Types/Appearance/AmbrelAssetManager.h"
#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/DocumentMissingMaterialRecordMgr.h"
#include "Types/Appearance/PhysicalMaterial.h"
#include "Types/Appearance/VisualMaterial.h"
#include "Types/Appearance/internal/MaterialValueSupport.h"

#include <Types/Geometry/ValueMetaTypes.h>

#include <base/Assert.h>
#include <core/Strings.h>
#include <datamodel/CloningContext.h>
#include <datamodel/DataModelCallback.h>
#include <datamodel/Document.h>
#include <datamodel/IntrinsicMetaType.h>
#include <datamodel/MemberSet.h>
#include <datamodel/Segment.h>
#include <datamodel/Streams.h>
#include <datamodel/StrongRefMetaType.h>
#include <datamodel/ValueMetaType.h>
#include <datamodel/VisitorContext.h>

#include <atomic>
#include <typeinfo>

namespace Kx {

namespace MV = MaterialValues;

namespace {

// A cached property is an atomic double in the value; it is stored as the plain double.
class AtomicDoubleMetaType final : public MemberMetaType {
public:
    static const AtomicDoubleMetaType* get()
    {
        static const AtomicDoubleMetaType instance;
        return &instance;
    }
    [[nodiscard]] std::size_t sizeInBytes(const VisitorContext& c) const override { return plain()->sizeInBytes(c); }
    void save(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const override
    {
        const double number = atomic(value).load();
        plain()->save(&number, stream, context);
    }
    void load(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const override
    {
        double number = -1.0;
        plain()->load(&number, version, stream, context);
        atomic(value).store(number);
    }
    [[nodiscard]] std::wstring toString(const void* value, const VisitorContext& context) const override
    {
        const double number = atomic(value).load();
        return plain()->toString(&number, context);
    }
    void getJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const override
    {
        const double number = atomic(value).load();
        plain()->getJSON(&number, stream, context);
    }
    void setJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const override
    {
        double number = atomic(value).load();
        plain()->setJSON(&number, stream, context);
        atomic(value).store(number);
    }
    [[nodiscard]] bool readJSON(void* value, const JSONRef& json) const override
    {
        double number = 0.0;
        if (!plain()->readJSON(&number, json)) {
            return false;
        }
        atomic(value).store(number);
        return true;
    }
    [[nodiscard]] bool equals(const void* first, const void* second) const override
    {
        return atomic(first).load() == atomic(second).load();
    }
    void copy(void* target, const void* source) const override { atomic(target).store(atomic(source).load()); }
    [[nodiscard]] bool storedAsXmlAttribute() const noexcept override { return true; }

private:
    AtomicDoubleMetaType() : MemberMetaType("Kx.AtomicDouble", "AtomicDoubleMetaType", 0, "atomic<double>") {}
    static const IntrinsicMetaType<double>* plain() { return IntrinsicMetaType<double>::get(); }
    static std::atomic<double>& atomic(void* value) { return *static_cast<std::atomic<double>*>(value); }
    static const std::atomic<double>& atomic(const void* value) { return *static_cast<const std::atomic<double>*>(value); }
};

template <class T>
void addScalar(MemberSet* memberSet, const char* name, T& field)
{
    memberSet->addNewMember(name, &field, typeid(T).name(), IntrinsicMetaType<T>::get());
}

void addCached(MemberSet* memberSet, const char* name, std::atomic<double>& field)
{
    memberSet->addNewMember(name, &field, typeid(std::atomic<double>).name(), AtomicDoubleMetaType::get());
}

Document* documentOf(const VisitorContext& context)
{
    return context.segment() != nullptr ? context.segment()->asset() : nullptr;
}

// The registry of the context's segment; made when the segment has none, so that a document written
// before it had materials gets one the first time a material is read into it.
StrongRef<AmbrelAssetManager> registryOf(const VisitorContext& context)
{
    return context.segment() != nullptr ? AmbrelAssetManager::findOrMake(context.segment()) : StrongRef<AmbrelAssetManager>{};
}

void recordMissing(PhysicalMaterial&, Document* document, const std::wstring& materialId)
{
    if (document != nullptr) {
        DocumentMissingMaterialRecordMgr::get().registerMissingPhysicalMaterial(document->identifier(), document->path(), materialId);
    }
}
void recordMissing(VisualMaterial&, Document* document, const std::wstring& materialId)
{
    if (document != nullptr) {
        DocumentMissingMaterialRecordMgr::get().registerMissingVisualMaterial(document->identifier(), document->path(), materialId);
    }
}

PhysicalMaterial::IAssetInstance* lookUp(AmbrelAssetManager& registry, PhysicalMaterial&, const std::wstring& reference)
{
    return registry.physicalMaterialAssetInstance(reference);
}
VisualMaterial::IAssetInstance* lookUp(AmbrelAssetManager& registry, VisualMaterial&, const std::wstring& reference)
{
    return registry.visualMaterialAssetInstance(reference);
}

std::wstring referenceIn(AmbrelAssetManager& registry, PhysicalMaterial&, PhysicalMaterial::IAssetInstance* instance)
{
    return registry.physicalMaterialAssetReference(instance);
}
std::wstring referenceIn(AmbrelAssetManager& registry, VisualMaterial&, VisualMaterial::IAssetInstance* instance)
{
    return registry.visualMaterialAssetReference(instance);
}

} // namespace

// Reaches the values' private registry fields for the callbacks below.
class MaterialValueAccess {
public:
    template <class V>
    static void setRegistry(V& value, const StrongRef<AmbrelAssetManager>& registry)
    {
        value.ambrelAssetManager(registry);
    }
    static void setReference(PhysicalMaterial& value, const std::wstring& reference) { value.assetReference(reference); }
    static void setReference(VisualMaterial& value, const std::wstring& reference) { value.assetReference(reference); }
    template <class V>
    static void clearInstance(V& value)
    {
        MV::release(value.m_pAssetInstance.exchange(nullptr));
    }
    template <class V>
    static void clearFallbackName(V& value)
    {
        value.m_fallbackName.clear();
    }
    template <class V>
    static void setSegmentLoadedFrom(V& value, Segment* segment)
    {
        value.m_pSegmentLoadedFrom = segment;
    }
};

namespace {

using Access = MaterialValueAccess;

// The callback of both value types; V is PhysicalMaterial or VisualMaterial.
template <class V>
class MaterialDMCallback final : public DataModelCallback {
public:
    MaterialDMCallback() : DataModelCallback(false) {}

    // What is written is the registry's current reference for the value's asset.
    void onPreSave(void* value, const VisitorContext& context) override
    {
        V* pMaterial = static_cast<V*>(value);
        KX_ASSERT(pMaterial);
        if (pMaterial == nullptr || pMaterial->ambrelMaterialID().empty()) {
            return;
        }
        if (!pMaterial->ambrelAssetManager()) {
            KX_ASSERT(context.isUndoRedoOrAbort() || context.segment()->asset()->adapter() == NULL
                || pMaterial->assetInstance() == NULL);
            return;
        }
        if (context.isUndoRedoOrAbort() || context.segment() == nullptr) {
            return;
        }
        StrongRef<AmbrelAssetManager> rAmbrelAssetManager = AmbrelAssetManager::find(context.segment());
        KX_ASSERT(pMaterial->ambrelAssetManager() == rAmbrelAssetManager);
        if (!rAmbrelAssetManager) {
            return;
        }
        const std::wstring assetReference = referenceIn(*rAmbrelAssetManager, *pMaterial, pMaterial->assetInstance());
        if (assetReference.empty()) {
            KX_ASSERT(assetReference.size());
            Access::setRegistry(*pMaterial, StrongRef<AmbrelAssetManager>{});
        }
        Access::setReference(*pMaterial, assetReference);
    }

    void onPostLoad(void* value, const VisitorContext& context) override
    {
        V* pMaterial = static_cast<V*>(value);
        KX_ASSERT(pMaterial);
        if (pMaterial == nullptr) {
            return;
        }
        // Never trusted from a stream: it is the name of whatever asset resolved last time.
        Access::clearFallbackName(*pMaterial);
        // What the value resolved before an undo or redo loaded it may be another material now;
        // a copy's reference names an asset of the copy's registry, set by its migration step.
        if (context.isUndoRedoOrAbort() || (context.isLoadingCopiedAsset() && !pMaterial->assetReference().empty())) {
            Access::clearInstance(*pMaterial);
        }
    }

    // The registry's maps are rebuilt by now (roots run first): resolve, or fall back to the
    // default material and remember what was missing, then tie the value to the registry.
    void onPostAssetLoad(void* value, const VisitorContext& context) override
    {
        V& material = *static_cast<V*>(value);
        StrongRef<AmbrelAssetManager> rAmbrelAssetManager = registryOf(context);
        const std::wstring materialId = material.m_materialId;
        if (!materialId.empty() && material.assetInstance() == nullptr) {
            recordMissing(material, documentOf(context), materialId);
            Access::setRegistry(material, StrongRef<AmbrelAssetManager>{});
            Access::setReference(material, std::wstring{});
            material.setDefaultAssetInstance();
        }
        if (!rAmbrelAssetManager || material.assetInstance() == nullptr) {
            return;
        }
        if (material.ambrelAssetManager() != rAmbrelAssetManager || material.assetReference().empty()) {
            // Written without a registry (or its default stood in): it becomes a counted user now.
            Access::setRegistry(material, StrongRef<AmbrelAssetManager>{});
            Access::setReference(material, std::wstring{});
            (void)rAmbrelAssetManager->registerMaterial(material);
        }
        KX_ASSERT(material.ambrelAssetManager() == rAmbrelAssetManager);
    }

    // A value pasted into a segment uses the registry there: the same asset when the registry holds
    // an equal one, else its own, registered and counted.
    void onPostClonePaste(void* value, const VisitorContext& context) override
    {
        V& material = *static_cast<V*>(value);
        StrongRef<AmbrelAssetManager> rAmbrelAssetManager = registryOf(context);
        KX_ASSERT(rAmbrelAssetManager);
        if (!rAmbrelAssetManager) {
            return;
        }
        // The reference it came with is one of the source segment's registry: its asset is found
        // there, never in the target's registry, where the same number may name another material.
        typename V::IAssetInstance* instance = nullptr;
        CloningContext* cloning = context.cloningContext();
        Entity* source = cloning != nullptr ? cloning->sourceOf(context.entity()) : nullptr;
        StrongRef<AmbrelAssetManager> sourceRegistry =
            source != nullptr ? AmbrelAssetManager::find(source->segment()) : StrongRef<AmbrelAssetManager>{};
        const std::wstring sourceReference = material.assetReference();
        Access::setRegistry(material, StrongRef<AmbrelAssetManager>{});
        Access::setReference(material, std::wstring{});
        Access::clearInstance(material);
        if (sourceRegistry && !sourceReference.empty()) {
            instance = lookUp(*sourceRegistry, material, sourceReference);
            material.assetInstance(instance);
        } else {
            instance = material.assetInstance();
        }
        if (instance == nullptr) {
            return;
        }
        if (!rAmbrelAssetManager->containsMaterial(instance)) {
            if (auto* equivalent = rAmbrelAssetManager->getEquivalentMaterial(instance, false)) {
                material.assetInstance(equivalent);
            }
        }
        (void)rAmbrelAssetManager->registerMaterial(material);
    }
};

// Members by version. Physical: 2 is the current set; 1 had the names, identity and the eight
// properties; 0 had only a name and the properties under their plain names.
void declarePhysical(PhysicalMaterial& m, unsigned version, MemberSet* memberSet)
{
    MemberSet::initialize(memberSet, &m, "PhysicalMaterial");
    if (version == 0) {
        addScalar(memberSet, "visualMaterialName", m.m_name);
        const char* names[] = {"density", "youngsModulus", "poissonsRatio", "yieldStrength", "ultimateTensileStrength",
            "thermalConductivity", "linearExpansion", "specificHeat"};
        for (std::size_t i = 0; i < 8; ++i) {
            addCached(memberSet, names[i], m.m_cached[i]);
        }
        return;
    }
    addScalar(memberSet, "name", m.m_name);
    addScalar(memberSet, "ambrelMaterialID", m.m_materialId);
    if (version >= 2) {
        addScalar(memberSet, "libraryID", m.m_libraryId);
    }
    const char* internals[] = {"internalDensity", "internalYoungsModulus", "internalPoissonsRatio",
        "internalYieldStrength", "internalUltimateTensileStrength", "internalThermalConductivity",
        "internalLinearExpansion", "internalSpecificHeat"};
    for (std::size_t i = 0; i < 8; ++i) {
        addCached(memberSet, internals[i], m.m_cached[i]);
    }
    if (version >= 2) {
        addScalar(memberSet, "assetReference", m.m_assetReference);
        addMember(memberSet, "AmbrelAssetManager", m.m_rAmbrelAssetManager);
    }
}

// Visual: 1 is the current set; 0 had the identity without library and the tweaks.
void declareVisual(VisualMaterial& m, unsigned version, MemberSet* memberSet)
{
    MemberSet::initialize(memberSet, &m, "VisualMaterial");
    addScalar(memberSet, "ambrelMaterialID", m.m_materialId);
    if (version >= 1) {
        addScalar(memberSet, "libraryID", m.m_libraryId);
    }
    addScalar(memberSet, "UseCustomizedColor", m.m_useCustomizedColor);
    addMember(memberSet, "CustomizedColor", m.m_customizedColor);
    addScalar(memberSet, "ambrelMaterialScale", m.m_scale);
    addScalar(memberSet, "ambrelMaterialRotation", m.m_rotation);
    if (version >= 1) {
        addScalar(memberSet, "assetReference", m.m_assetReference);
        addMember(memberSet, "AmbrelAssetManager", m.m_rAmbrelAssetManager);
    }
}

template <class V>
struct MaterialTraits;

template <>
struct MaterialTraits<PhysicalMaterial> {
    static constexpr const char* id = "A62C82F6-7CF7-4FF3-9C12-D87FF3965C9C";
    static constexpr const char* metaTypeName = "PhysicalMaterialValueMetaType";
    static constexpr const char* typeName = "PhysicalMaterial";
    static constexpr unsigned version = 2;
    static void declare(PhysicalMaterial& m, unsigned version, MemberSet* s) { declarePhysical(m, version, s); }
    static ValueMetaType*& slot() { return MV::s_physicalMaterialMetaType; }
};

template <>
struct MaterialTraits<VisualMaterial> {
    static constexpr const char* id = "EA46307F-1FD6-4B11-9C97-353B74F5E413";
    static constexpr const char* metaTypeName = "VisualMaterialValueMetaType";
    static constexpr const char* typeName = "VisualMaterial";
    static constexpr unsigned version = 1;
    static void declare(VisualMaterial& m, unsigned version, MemberSet* s) { declareVisual(m, version, s); }
    static ValueMetaType*& slot() { return MV::s_visualMaterialMetaType; }
};

// Finds a physical material of the standard libraries by its name in the user's language or in
// English; the oldest documents named their material and nothing else.
bool identityByName(const std::wstring& name, std::wstring& materialId, std::wstring& libraryId)
{
    AmbrelManager* manager = MV::libraryManager();
    if (manager == nullptr || !manager->LoadLibs(false)) {
        return false;
    }
    for (const std::wstring& library : {manager->GetPhysicalLibraryID(), manager->GetAdvancedPhysicalLibraryID()}) {
        for (const auto& [id, uiName] : manager->GetAssetIDsAndNames(library)) {
            if (uiName == name) {
                materialId = telvarin::platform::core::toWide(id);
                libraryId = library;
                return true;
            }
        }
    }
    return false;
}

template <class V>
class MaterialValueMetaType final : public ValueMetaType {
public:
    using Traits = MaterialTraits<V>;

    MaterialValueMetaType()
        : ValueMetaType(Traits::id, Traits::metaTypeName, Traits::version, Traits::typeName, "")
    {
        Traits::slot() = this;
    }

protected:
    [[nodiscard]] std::size_t doSizeInBytes(const VisitorContext&) const override { return sizeof(V); }
    [[nodiscard]] void* doConstruct() override { return ready(new V()); }
    void* doConstruct(void* memory, const VisitorContext&) override { return ready(new (memory) V()); }
    void doDestruct(void* value) override { delete static_cast<V*>(value); }
    [[nodiscard]] const void* doQueryMTInterface(void* value) override { return static_cast<V*>(value)->queryMTInterface(this); }
    void initializeMemberSet(unsigned version, MemberSet* memberSet) override
    {
        V prototype;
        Traits::declare(prototype, version, memberSet);
        dataModelCallback(&s_callback);
    }
    void onMigratingMemberSet(void* value, unsigned version, MemberSet* memberSet, const VisitorContext&) override
    {
        Traits::declare(*static_cast<V*>(value), version, memberSet);
    }
    // Always member by member, in every version: the callback only adds the hooks.
    void onSave(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const override
    {
        saveMembers(value, stream, context);
    }
    void onLoad(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const override
    {
        loadMembers(value, version, stream, context);
    }
    [[nodiscard]] MigrationHelper* doMigrationHelper(void* value) override { return static_cast<V*>(value)->migrationHelper(); }
    [[nodiscard]] MigrationHelper* doCreateMigrationHelper(void*, const VisitorContext&) override { return nullptr; }
    bool doDeleteMigrationHelper(void*, const VisitorContext&) override { return false; }
    void doMigratingVersion(void* value, unsigned version, const VisitorContext&) override
    {
        static_cast<V*>(value)->migratingVersion(version);
    }
    [[nodiscard]] unsigned doMigratingVersion(void* value, const VisitorContext&) override
    {
        return static_cast<V*>(value)->migratingVersion();
    }
    [[nodiscard]] bool doEquals(const void* first, const void* second) const override
    {
        return *static_cast<const V*>(first) == *static_cast<const V*>(second);
    }
    void doCopy(void* target, const void* source) const override { *static_cast<V*>(target) = *static_cast<const V*>(source); }
    [[nodiscard]] std::wstring doToString(const void* value, const VisitorContext&) const override
    {
        return static_cast<const V*>(value)->toString();
    }

    EMigrationStatus onPostMigrate(void* value, unsigned version, const VisitorContext& context) override
    {
        V* pMaterial = static_cast<V*>(value);
        const unsigned stored = pMaterial->migratingVersion() != 0 ? pMaterial->migratingVersion() : version;
        if constexpr (std::is_same_v<V, PhysicalMaterial>) {
            if (stored == 0) {
                KX_ASSERT(pMaterial->ambrelMaterialID().empty());
                KX_ASSERT(!pMaterial->safeName().empty());
                std::wstring materialId;
                std::wstring libraryId;
                if (identityByName(pMaterial->safeName(), materialId, libraryId)) {
                    pMaterial->setPostMigrationIdentity(materialId, libraryId);
                }
                return eMigrationDone;
            }
        }
        if (stored > Traits::version) {
            KX_ASSERT(false);
            return eMigrationDone;
        }
        if (!pMaterial->m_materialId.empty() && pMaterial->assetInstance() == nullptr) {
            recordMissing(*pMaterial, documentOf(context), pMaterial->m_materialId);
            pMaterial->setDefaultAssetInstance();
        }
        Access::setSegmentLoadedFrom(*pMaterial, context.segment());
        return eMigrationDone;
    }

private:
    V* ready(V* value)
    {
        MemberSet* members = memberSet(~0u);
        if (!members->isComplete()) {
            MemberSet::Mutex::scoped_lock lock(members->mutex(), /*write=*/true);
            if (!members->isInitialized()) {
                Traits::declare(*value, Traits::version, members);
                dataModelCallback(&s_callback);
            }
            members->markComplete();
        }
        return value;
    }

    static inline MaterialDMCallback<V> s_callback;
};

} // namespace

ValueMetaType& physicalMaterialValueMetaType()
{
    static MaterialValueMetaType<PhysicalMaterial> metaType;
    return metaType;
}

ValueMetaType& visualMaterialValueMetaType()
{
    static MaterialValueMetaType<VisualMaterial> metaType;
    return metaType;
}

namespace {
// Made at start-up with the other value types, so that documents naming them open.
const bool s_registered = ((void)physicalMaterialValueMetaType(), (void)visualMaterialValueMetaType(), true);
} // namespace

} // namespace Kx
