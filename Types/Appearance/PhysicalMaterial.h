#pragma once

#include <Types/Geometry/Color.h>

#include <datamodel/StrongRef.h>
#include <datamodel/Value.h>

#include <oneapi/tbb/spin_rw_mutex.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace telvarin::platform::assets {
class IAssetInstance;
} // namespace telvarin::platform::assets

namespace Kx {

class AmbrelAssetManager;
class Segment;
class ValueMetaType;

// What a body or component is made of. The value names a material asset, by its identity in a
// library or by a reference into its document's registry, and reads the engineering properties from
// the resolved asset on demand, caching each one. It owns nothing of the data model; the asset
// instance it caches carries a reference taken by whoever resolved it.
//
// Values are read from several threads: the instance pointer and the eight cached properties are
// atomics, the names and caches are guarded by the value's own reader/writer spin lock.
class PhysicalMaterial : public Value {
public:
    using IAssetInstance = telvarin::platform::assets::IAssetInstance;

    static const std::wstring StructuralAspect; // "Structural"
    static const std::wstring ThermalAspect;    // "Thermal"
    static const std::wstring FatigueAspect;    // "Fatigue"

    PhysicalMaterial();
    PhysicalMaterial(const std::wstring& materialId, const std::wstring& libraryId);
    // Takes `instance` as the resolved asset (the caller's reference stays the caller's).
    explicit PhysicalMaterial(IAssetInstance* instance);
    PhysicalMaterial(const PhysicalMaterial& other);
    PhysicalMaterial& operator=(const PhysicalMaterial& other);
    ~PhysicalMaterial() override;

    // Null until the material meta types are registered at start-up.
    [[nodiscard]] static ValueMetaType* s_metaType();
    const void* queryMTInterface(const MetaType* metaType) const override;

    // --- identity ---
    // The material id; for a value known only by its asset reference, the id of the resolved asset.
    [[nodiscard]] std::wstring ambrelMaterialID() const;
    [[nodiscard]] std::wstring libraryID() const;
    // The name set on the value, else the asset's name in the user's language, else "Unknown".
    [[nodiscard]] std::wstring name() const;
    void name(const std::wstring& name);
    // The name set, else the fallback name filled by name(); never resolves.
    [[nodiscard]] std::wstring safeName() const;
    [[nodiscard]] const std::wstring& assetReference() const { return m_assetReference; }
    [[nodiscard]] bool hasIdentity() const;
    // Refused while the value holds an asset reference: the registry still counts it.
    bool clearIdentity();
    void setPostMigrationIdentity(const std::wstring& materialId, const std::wstring& libraryId);
    [[nodiscard]] bool existsInLibrary() const { return hasDefinition(); }
    [[nodiscard]] bool hasDefinition() const { return assetInstance() != nullptr; }
    [[nodiscard]] bool hasAspect(const std::wstring& aspect) const;
    [[nodiscard]] bool hasValidAppearance() const;

    // --- asset ---
    // Resolves, first hit wins: the cached instance; the registry by asset reference; the libraries
    // by material id (own library, the advanced physical library, the physical library).
    [[nodiscard]] IAssetInstance* assetInstance() const;
    void assetInstance(IAssetInstance* instance);
    // The appearance connected to the material, with a reference for the caller; the registry's
    // equal appearance takes its place when the registry does not hold the connected one itself.
    [[nodiscard]] IAssetInstance* visualMaterialInstance() const;
    void setDefaultAssetInstance();
    [[nodiscard]] bool IsEqual(IAssetInstance* other) const;
    [[nodiscard]] const StrongRef<AmbrelAssetManager>& ambrelAssetManager() const { return m_rAmbrelAssetManager; }
    void unregister();

    // --- properties: read from the "Structural" aspect once, then cached; setters only cache ---
    [[nodiscard]] double density() const;
    void density(double value);
    [[nodiscard]] double youngsModulus() const;
    void youngsModulus(double value);
    [[nodiscard]] double poissonsRatio() const;
    void poissonsRatio(double value);
    [[nodiscard]] double yieldStrength() const;
    void yieldStrength(double value);
    [[nodiscard]] double ultimateTensileStrength() const;
    void ultimateTensileStrength(double value);
    [[nodiscard]] double thermalConductivity() const;
    void thermalConductivity(double value);
    [[nodiscard]] double linearExpansion() const;
    void linearExpansion(double value);
    [[nodiscard]] double specificHeat() const;
    void specificHeat(double value);
    // The "structural_Behavior" choice; -1 without an asset or property.
    [[nodiscard]] int structuralBehavior() const;
    // Puts the "not read yet" mark (-1) into all eight cached properties.
    void setDefaultConfig();

    // --- comparison ---
    // Equal assets when this value resolves one; else identity, names and seven properties within
    // 1e-6. Specific heat is left out on purpose: documents saved before it existed must still
    // compare equal to their library material.
    [[nodiscard]] bool operator==(const PhysicalMaterial& other) const;
    [[nodiscard]] bool operator!=(const PhysicalMaterial& other) const { return !(*this == other); }
    // Instance addresses, then material id, name and all eight properties, specific heat included:
    // sorting must still tell apart values that compare equal.
    [[nodiscard]] bool operator<(const PhysicalMaterial& other) const;

    [[nodiscard]] static bool matches(const std::wstring& first, const std::wstring& second);
    [[nodiscard]] static bool matches(double first, double second);
    // Walks `first`; `second` must not be shorter (asserted).
    [[nodiscard]] static bool matches(const std::vector<double>& first, const std::vector<double>& second);
    [[nodiscard]] static bool matches(const std::map<std::wstring, double>& first,
        const std::map<std::wstring, double>& second);
    [[nodiscard]] static bool matches(const std::map<std::wstring, std::vector<double>>& first,
        const std::map<std::wstring, std::vector<double>>& second);
    [[nodiscard]] static bool lessThan(const std::wstring& first, const std::wstring& second);
    [[nodiscard]] static bool lessThan(double first, double second);

    [[nodiscard]] std::wstring toString() const;
    [[nodiscard]] std::uint32_t instanceNumber() const { return m_instanceNumber; }
    [[nodiscard]] Segment* segmentLoadedFrom() const { return m_pSegmentLoadedFrom; }

private:
    friend class AmbrelAssetManager;
    friend class PhysicalMaterialValueMetaType;
    friend class PhysicalMaterialDMCallback;
    friend class MaterialValueAccess;

    void assetReference(const std::wstring& reference) { m_assetReference = reference; }
    void ambrelAssetManager(const StrongRef<AmbrelAssetManager>& rAmbrelAssetManager);
    void copyFrom(const PhysicalMaterial& other);
    double cachedProperty(std::size_t index) const;

    // Asset access, each under the library manager's lock. The scale conversion of the setters
    // turns the caller's unit into the asset's (the value is divided by it); 0 or less is refused.
    static bool getPropertyValueDouble(IAssetInstance* instance, const std::wstring& name, double& value);
    static bool getPropertyValueInt(IAssetInstance* instance, const std::wstring& name, int& value);
    static bool getPropertyValueBool(IAssetInstance* instance, const std::wstring& name, bool& value);
    static bool getPropertyValueChoice(IAssetInstance* instance, const std::wstring& name, int& value);
    static bool getPropertyValueString(IAssetInstance* instance, const std::wstring& name, std::wstring& value);
    static bool getPropertyValueColor(IAssetInstance* instance, const std::wstring& name, Color& value);
    static bool getPropertyValueArray(IAssetInstance* instance, const std::wstring& name, std::vector<double>& value);
    static bool setPropertyValueDouble(IAssetInstance* instance, const std::wstring& name, const double* value,
        double scaleConversion);
    static bool setPropertyValueArray(IAssetInstance* instance, const std::wstring& name,
        const std::vector<double>* value, double scaleConversion);
    static IAssetInstance* GetConnectedAssetInstance(IAssetInstance* instance, const std::wstring& name);
    // Instances are owned by whoever holds their reference; nothing to do here.
    static void DestroyAssetInstance(IAssetInstance*) {}

public:
    std::wstring m_materialId;
    std::wstring m_libraryId;
    std::wstring m_name;
    std::wstring m_fallbackName;
    mutable std::atomic<IAssetInstance*> m_pAssetInstance{nullptr};
    std::wstring m_assetReference;
    StrongRef<AmbrelAssetManager> m_rAmbrelAssetManager;
    Segment* m_pSegmentLoadedFrom = nullptr;
    // density, Young's modulus, Poisson's ratio, yield strength, ultimate tensile strength,
    // thermal conductivity, linear expansion, specific heat; -1 = not read yet.
    mutable std::atomic<double> m_cached[8];
    std::uint32_t m_instanceNumber = 0;
    mutable std::map<std::wstring, int> mapPropKey2Int;
    mutable std::map<std::wstring, double> mapPropKey2Double;
    mutable std::map<std::wstring, bool> mapPropKey2Bool;
    mutable std::map<std::wstring, std::wstring> mapPropKey2String;
    mutable std::map<std::wstring, std::vector<int>> mapPropKey2IntArr;
    mutable std::map<std::wstring, std::vector<double>> mapPropKey2DoubleArr;
    mutable std::map<std::wstring, Color> mapPropKey2Color;
    mutable oneapi::tbb::spin_rw_mutex m_lock;
};

} // namespace Kx
