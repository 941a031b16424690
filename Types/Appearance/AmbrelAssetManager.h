#pragma once

#include <Types/Appearance/DocumentMaterialSite.h>
#include <Types/Appearance/MaterialEventSource.h>

#include <datamodel/BlobSerializerTrigger.h>
#include <datamodel/StrongRef.h>

#include <oneapi/tbb/spin_rw_mutex.h>

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace telvarin::platform::assets {
class IAssetInstance;
} // namespace telvarin::platform::assets

namespace Kx {

class Document;
class EntityMetaType;
class MaterialEvent;
class MemberSet;
class PhysicalMaterial;
class Segment;
class VisitorContext;
class VisualMaterial;

// The registry of the material assets a document uses: one per segment, kept as the segment's root
// "AmbrelAssetManager". Every material value of the segment names its asset by a short reference
// issued here (the decimal text of one counter shared by both kinds, so references never collide);
// the registry holds one reference on each registered instance and counts the values that use it.
// A use count of 0 is a document material nobody uses yet: it stays until deleteMaterial.
//
// The six maps are the live registry; the four vectors its persisted form. They mirror the maps
// after every change, so that undo and redo (which restore the registry's members) bring the maps
// back too; the registry keeps every instance it ever registered until it goes, for that purpose.
class AmbrelAssetManager final : public BlobSerializerTrigger {
public:
    using IAssetInstance = telvarin::platform::assets::IAssetInstance;
    static constexpr std::string_view s_interfaceId = "Kx.AmbrelAssetManager";

    // Made by the data model when it loads a segment.
    AmbrelAssetManager();
    ~AmbrelAssetManager() override;

    // The registry of `pSeg`, added to it as its root (asserted: it has none yet).
    [[nodiscard]] static StrongRefCreator<AmbrelAssetManager> make(Segment* pSeg);
    [[nodiscard]] static StrongRef<AmbrelAssetManager> find(const Segment* segment);
    // The first registry among the document's segments, transient ones skipped.
    [[nodiscard]] static StrongRef<AmbrelAssetManager> find(const Document* asset);
    // The registry of `segment`, made when it has none.
    [[nodiscard]] static StrongRef<AmbrelAssetManager> findOrMake(Segment* segment);
    [[nodiscard]] static const std::string& segmentRootId();
    [[nodiscard]] static EntityMetaType& s_metaType();
    [[nodiscard]] static const std::string& s_metaTypeId();
    void declareMembers(unsigned version, MemberSet* memberSet);
    [[nodiscard]] void* queryInterface(std::string_view interfaceId) override;

    // --- registration from values ---
    // The value's reference, registering its resolved asset (one more use) unless the value is
    // already registered here; empty when the value resolves no asset.
    std::wstring registerMaterial(PhysicalMaterial& material);
    std::wstring registerMaterial(VisualMaterial& material);
    // One use less; the value loses its registry and reference. False when nothing was counted.
    bool unregisterMaterial(PhysicalMaterial& physicalMaterial);
    bool unregisterMaterial(VisualMaterial& visualMaterial);

    // --- lookups; instances are the registry's (no reference for the caller) ---
    [[nodiscard]] IAssetInstance* physicalMaterialAssetInstance(const std::wstring& assetReference) const;
    [[nodiscard]] IAssetInstance* visualMaterialAssetInstance(const std::wstring& assetReference) const;
    // The registered appearance made from the material (any tweak), or null.
    [[nodiscard]] IAssetInstance* visualMaterialAssetInstance(const std::wstring& materialId,
        const std::wstring& libraryId) const;
    [[nodiscard]] std::wstring physicalMaterialAssetReference(IAssetInstance* pAssetInstance) const;
    [[nodiscard]] std::wstring visualMaterialAssetReference(IAssetInstance* pAssetInstance) const;
    void physicalMaterialAssetInstances(std::set<IAssetInstance*>& instances) const;
    void visualMaterialAssetInstances(std::set<IAssetInstance*>& instances) const;
    void getAllRegisteredPhysicalMaterials(std::vector<IAssetInstance*>& instances) const;
    void getAllRegisteredVisualMaterials(std::vector<IAssetInstance*>& instances) const;
    // Calls `visit` for every registered material, physical materials first, each kind in the
    // order of its references.
    void forEachRegisteredMaterial(
        const std::function<void(IAssetInstance* instance, const std::wstring& reference, bool visual)>& visit) const;
    [[nodiscard]] std::size_t registeredPhysicalMaterials() const { return m_physicalMaterialAIToReferenceMap.size(); }
    [[nodiscard]] std::size_t registeredVisualMaterials() const { return m_visualMaterialAIToReferenceMap.size(); }
    [[nodiscard]] bool containsMaterial(IAssetInstance* instance) const;
    // The first registered instance of the same kind whose content equals `instance`'s. The flag
    // leaves out `instance` itself when it is registered (a caller looking for a duplicate).
    [[nodiscard]] IAssetInstance* getEquivalentMaterial(IAssetInstance* instance, bool excludeItself) const;
    // The stored use count; 0 for an unknown instance.
    [[nodiscard]] std::uint32_t useCount(IAssetInstance* instance) const;

    // --- use ---
    // Where the document's listeners answer where-used queries.
    [[nodiscard]] MaterialEventSource& materialEventSource() { return m_materialEventSource; }
    // How many users the document's listeners report for the instance (a where-used query): the
    // registry's own site counts the material values of its segment, a host's sites add theirs
    // (off the UI thread, where events reach nobody, the registry's site alone).
    [[nodiscard]] unsigned numLiveUsers(IAssetInstance* instance);
    [[nodiscard]] bool isMaterialUsed(IAssetInstance* pAssetInstance) const;
    void getUnusedPhysicalMaterials(std::vector<IAssetInstance*>& instances) const;
    void getUnusedVisualMaterials(std::vector<IAssetInstance*>& instances) const;
    [[nodiscard]] std::vector<IAssetInstance*> getUnusedOfType(IAssetInstance* instance) const;
    [[nodiscard]] bool hasUnusedOfType(IAssetInstance* instance) const;
    // Sets every stored use count to the live count (numLiveUsers): after a copy or a migration
    // changed which values use what.
    void fixRefCounts();

    // --- document materials, undoable ---
    // Registers the instance unused (use count 0); false for null, another kind, or registered.
    bool addMaterial(IAssetInstance* instance);
    // Removes a document material; refused for null, another kind, unknown materials, and for one
    // both counted as used and reported in use by the listeners.
    bool deleteMaterial(IAssetInstance* instance);
    void clearAssetReferences();

    // --- persistence (the blob part "AmbrelAsset.ambrel") ---
    void prepareBlobPreSave(IBlobFolder* blobFolder, bool forCloning, CloningStream* stream) override;
    void syncToBlobAfterLoad(IBlobFolder* blobFolder, bool forCloning, CloningStream* stream) override;
    [[nodiscard]] bool fullyBaked() const;

    // --- checking and text ---
    [[nodiscard]] bool validate() const;
    [[nodiscard]] std::wstring onToString() const override;

    [[nodiscard]] std::uint32_t nextReferenceNumber() const { return m_nextReferenceNumber; }
    [[nodiscard]] const std::vector<std::wstring>& physicalMaterialAssetReferences() const
    {
        return m_physicalMaterialAssetReferences;
    }
    [[nodiscard]] const std::vector<std::wstring>& visualMaterialAssetReferences() const
    {
        return m_visualMaterialAssetReferences;
    }
    [[nodiscard]] const std::vector<std::uint32_t>& physicalMaterialRefCountVector() const
    {
        return m_physicalMaterialRefCountVector;
    }
    [[nodiscard]] const std::vector<std::uint32_t>& visualMaterialRefCountVector() const
    {
        return m_visualMaterialRefCountVector;
    }

    // The process-wide switch of the density bounds check made on every material read from a document.
    static void materialValidation(bool on);

    // Rebuilds the maps from the vectors and the instances this registry has held (undo, redo).
    void restoreFromPersistedForm();

protected:
    std::wstring registerPhysicalMaterial(IAssetInstance* pAssetInstance);
    std::wstring registerVisualMaterial(IAssetInstance* pAssetInstance);
    bool unregisterPhysicalMaterial(IAssetInstance* pAssetInstance);
    bool unregisterVisualMaterial(IAssetInstance* pAssetInstance);

private:
    friend class AmbrelAssetsBlobSerializer;
    enum class EKind { eNone, ePhysical, eVisual };

    struct KindMaps {
        std::map<IAssetInstance*, std::wstring>* aiToReference;
        std::map<IAssetInstance*, std::uint32_t>* aiToRefCount;
        std::map<std::wstring, IAssetInstance*>* referenceToAI;
    };

    struct KindTexts;

    [[nodiscard]] EKind kindOf(const IAssetInstance* instance) const;
    [[nodiscard]] KindMaps maps(EKind kind);
    [[nodiscard]] static const KindTexts& texts(EKind kind);
    // The workers of both kinds: the caller holds the lock and mirrors the change.
    std::wstring registerInstance(EKind kind, IAssetInstance* pAssetInstance);
    bool unregisterInstance(EKind kind, IAssetInstance* pAssetInstance);
    template <class Material>
    std::wstring registerValue(EKind kind, Material& material);
    template <class Material>
    bool unregisterValue(EKind kind, Material& material);
    [[nodiscard]] IAssetInstance* instanceByReference(EKind kind, const std::wstring& assetReference) const;
    [[nodiscard]] std::wstring referenceOf(EKind kind, IAssetInstance* pAssetInstance) const;
    void instancesOf(EKind kind, std::vector<IAssetInstance*>& instances) const;
    [[nodiscard]] std::wstring issueReference();
    void fireWhereUsed(MaterialEvent& event);
    // Keeps a reference on `instance` for as long as the registry lives (see the class comment).
    void remember(const std::wstring& reference, IAssetInstance* instance);
    // As remember(), taking over the caller's reference.
    void adopt(const std::wstring& reference, IAssetInstance* instance);
    // Copies the maps into the vectors, in the maps' reference order.
    void mirrorIntoVectors();
    // Mirrors the use count of one registered instance (all of them when it is new).
    void mirrorUseCount(EKind kind, IAssetInstance* instance);

    MaterialEventSource m_materialEventSource;
    // Declared after the source: it leaves the source before the source goes.
    DocumentMaterialSite m_documentSite{*this};
    std::map<IAssetInstance*, std::wstring> m_physicalMaterialAIToReferenceMap;
    std::map<IAssetInstance*, std::uint32_t> m_physicalMaterialAIToRefCountMap;
    std::map<IAssetInstance*, std::wstring> m_visualMaterialAIToReferenceMap;
    std::map<IAssetInstance*, std::uint32_t> m_visualMaterialAIToRefCountMap;
    std::map<std::wstring, IAssetInstance*> m_physicalMaterialReferenceToAIMap;
    std::map<std::wstring, IAssetInstance*> m_visualMaterialReferenceToAIMap;
    std::uint32_t m_nextReferenceNumber = 0;
    std::uint32_t m_version = 0;
    std::vector<std::wstring> m_physicalMaterialAssetReferences;
    std::vector<std::wstring> m_visualMaterialAssetReferences;
    std::vector<std::uint32_t> m_physicalMaterialRefCountVector;
    std::vector<std::uint32_t> m_visualMaterialRefCountVector;
    // Every instance registered here, by reference, each with one reference of the registry's.
    std::map<std::wstring, IAssetInstance*> m_heldInstances;
    mutable oneapi::tbb::spin_rw_mutex m_lock;
};

// Reports, under `context`, a density outside the bounds its property carries; only while the
// switch (AmbrelAssetManager::materialValidation) is on.
void validateMaterial(AmbrelAssetManager::IAssetInstance* instance, const std::wstring& context);

} // namespace Kx
