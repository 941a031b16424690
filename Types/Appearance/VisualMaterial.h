#pragma once

#include <Types/Geometry/Color.h>

#include <datamodel/StrongRef.h>
#include <datamodel/Value.h>

#include <oneapi/tbb/spin_rw_mutex.h>

#include <atomic>
#include <cstdint>
#include <string>

namespace telvarin::platform::assets {
class IAssetInstance;
} // namespace telvarin::platform::assets

namespace Kx {

class AmbrelAssetManager;
class Segment;
class ValueMetaType;

// How a face, body or component looks: an appearance asset named by library identity or by a
// reference into the document's registry, with the user's tweaks of it (a customized colour, the
// texture scale and rotation). The tweaks take part in resolving, so a tweaked value resolves to a
// tweaked instance. Same threading as PhysicalMaterial.
class VisualMaterial : public Value {
public:
    using IAssetInstance = telvarin::platform::assets::IAssetInstance;

    // Ends with no asset instance.
    VisualMaterial();
    VisualMaterial(const std::wstring& materialId, const std::wstring& libraryId);
    explicit VisualMaterial(IAssetInstance* instance);
    VisualMaterial(const VisualMaterial& other);
    VisualMaterial& operator=(const VisualMaterial& other);
    ~VisualMaterial() override;

    // Null until the material meta types are registered at start-up.
    [[nodiscard]] static ValueMetaType* s_metaType();
    const void* queryMTInterface(const MetaType* metaType) const override;

    // --- identity ---
    [[nodiscard]] std::wstring name() const;
    void name(const std::wstring& name);
    [[nodiscard]] std::wstring safeName() const;
    // The name, followed by "[rrggbbaa]" of the customized colour when one is in use.
    [[nodiscard]] std::wstring customizedName() const;
    [[nodiscard]] std::wstring ambrelMaterialID() const;
    [[nodiscard]] std::wstring libraryID() const;
    // Read from the resolved asset the first time it is asked for while empty.
    [[nodiscard]] std::wstring ambrelVersionGUID() const;
    [[nodiscard]] const std::wstring& assetReference() const { return m_assetReference; }
    void assetReference(const std::wstring& reference) { m_assetReference = reference; }
    [[nodiscard]] bool hasIdentity() const;
    // Refused while the value holds an asset reference.
    bool clearIdentity();
    [[nodiscard]] bool existsInLibrary() const { return hasDefinition(); }
    [[nodiscard]] bool hasDefinition() const { return assetInstance() != nullptr; }

    // --- tweaks ---
    [[nodiscard]] bool useCustomizedColor() const { return m_useCustomizedColor; }
    void useCustomizedColor(bool use) { m_useCustomizedColor = use; }
    [[nodiscard]] const Color& customizedColor() const { return m_customizedColor; }
    void customizedColor(const Color& color);
    [[nodiscard]] float ambrelMaterialScale() const { return m_scale; }
    void ambrelMaterialScale(float scale) { m_scale = scale; }
    [[nodiscard]] float ambrelMaterialRotation() const { return m_rotation; }
    void ambrelMaterialRotation(float rotation) { m_rotation = rotation; }
    // Compared exactly: an almost neutral tweak is still a different look.
    [[nodiscard]] bool isTweaked() const;
    // The asset's own values; the flag receives whether the asset has a single colour.
    [[nodiscard]] Color originalColor(bool* hasColor) const;
    [[nodiscard]] float originalScale() const;
    [[nodiscard]] float originalRotation() const;

    // --- asset ---
    // Resolves, first hit wins: the cached instance; the registry by asset reference; the libraries
    // by material id with the value's tweak. Nothing found is not cached: the next call tries again.
    [[nodiscard]] IAssetInstance* assetInstance() const;
    void assetInstance(IAssetInstance* instance);
    [[nodiscard]] bool IsEqual(IAssetInstance* other) const;
    void setDefaultAssetInstance();
    [[nodiscard]] const StrongRef<AmbrelAssetManager>& ambrelAssetManager() const { return m_rAmbrelAssetManager; }
    void unregister();

    // --- comparison ---
    // Equal assets when this value resolves one; else names, id, version and tweaks (scale and
    // rotation within 0.0001). The library id is not compared: the same appearance moves between
    // the standard and the advanced library.
    [[nodiscard]] bool operator==(const VisualMaterial& other) const;
    [[nodiscard]] bool operator!=(const VisualMaterial& other) const { return !(*this == other); }
    [[nodiscard]] bool operator<(const VisualMaterial& other) const;

    // The name, id, reference and library on their own lines, then the scale and rotation; the
    // parenthesis it opens is left open, as readers of this text expect.
    [[nodiscard]] std::wstring toString() const;
    [[nodiscard]] std::uint32_t instanceNumber() const { return m_instanceNumber; }
    [[nodiscard]] Segment* segmentLoadedFrom() const { return m_pSegmentLoadedFrom; }

private:
    friend class AmbrelAssetManager;
    friend class VisualMaterialValueMetaType;
    friend class VisualMaterialDMCallback;
    friend class MaterialValueAccess;

    void ambrelAssetManager(const StrongRef<AmbrelAssetManager>& rAmbrelAssetManager);
    void copyFrom(const VisualMaterial& other);

public:
    std::wstring m_name;
    std::wstring m_fallbackName;
    std::wstring m_materialId;
    std::wstring m_libraryId;
    mutable std::wstring m_versionGUID;
    bool m_useCustomizedColor = false;
    Color m_customizedColor;
    float m_scale = 1.0f;
    float m_rotation = 0.0f;
    mutable std::atomic<IAssetInstance*> m_pAssetInstance{nullptr};
    StrongRef<AmbrelAssetManager> m_rAmbrelAssetManager;
    std::wstring m_assetReference;
    Segment* m_pSegmentLoadedFrom = nullptr;
    std::uint32_t m_instanceNumber = 0;
    mutable oneapi::tbb::spin_rw_mutex m_lock;
};

} // namespace Kx
