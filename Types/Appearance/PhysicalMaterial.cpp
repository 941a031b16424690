#include "Types/Appearance/PhysicalMaterial.h"

#include "Types/Appearance/AmbrelAssetManager.h"
#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/DefaultMaterialOptions.h"
#include "Types/Appearance/Meta/MaterialMetaTypes.h"
#include "Types/Appearance/internal/MaterialValueSupport.h"

#include <assets/IAssetInstance.h>
#include <base/Assert.h>
#include <core/Strings.h>
#include <datamodel/Segment.h>
#include <datamodel/ValueMetaType.h>

#include <boost/format.hpp>

#include <array>
#include <cmath>
#include <mutex>

namespace Kx {

using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;
namespace MV = MaterialValues;

const std::wstring PhysicalMaterial::StructuralAspect = L"Structural";
const std::wstring PhysicalMaterial::ThermalAspect = L"Thermal";
const std::wstring PhysicalMaterial::FatigueAspect = L"Fatigue";

namespace {

// Not protected: the number only tells values apart in logs.
std::uint32_t s_physicalInstanceCounter = 0;

enum ECachedProperty : std::size_t {
    eDensity, eYoungsModulus, ePoissonsRatio, eYieldStrength, eUltimateTensileStrength, eThermalConductivity,
    eLinearExpansion, eSpecificHeat, eCachedPropertyCount
};

constexpr double kNotRead = -1.0;
constexpr double kTolerance = 1e-6;

// Asset properties of the cached doubles, in ECachedProperty order; all of them, the thermal ones
// too, are read in the structural aspect.
const std::array<const wchar_t*, eCachedPropertyCount> s_propertyNames{
    L"structural_Density",
    L"structural_Young_modulus",
    L"structural_Poisson_ratio",
    L"structural_Minimum_yield_stress",
    L"structural_Minimum_tensile_strength",
    L"structural_Thermal_conductivity",
    L"structural_Thermal_expansion_coefficient",
    L"structural_Specific_heat",
};

using WriteLock = oneapi::tbb::spin_rw_mutex::scoped_lock;

// The double `name` of the asset connected under `aspect`; NaN-free -1 when there is none, the same
// mark as "not read", so a material without the property reads it again next time (its library
// may have been fixed meanwhile) and compares by the mark.
double readAspectDouble(PhysicalMaterial::IAssetInstance* instance, const std::wstring& aspect, const wchar_t* name)
{
    AmbrelManager* manager = MV::libraryManager();
    if (instance == nullptr || manager == nullptr) {
        return kNotRead;
    }
    std::lock_guard lock(manager->mutex());
    telvarin::platform::assets::InstancePtr connected(manager->GetConnectedAssetInstance(instance, aspect));
    double value = kNotRead;
    if (connected == nullptr || !connected->GetDoubleValue(name, value)) {
        return kNotRead;
    }
    return value;
}

} // namespace

// --- construction ---

PhysicalMaterial::PhysicalMaterial() : m_instanceNumber(++s_physicalInstanceCounter)
{
    setDefaultConfig();
}

PhysicalMaterial::PhysicalMaterial(const std::wstring& materialId, const std::wstring& libraryId)
    : m_materialId(materialId), m_libraryId(libraryId), m_instanceNumber(++s_physicalInstanceCounter)
{
    setDefaultConfig();
}

PhysicalMaterial::PhysicalMaterial(IAssetInstance* instance) : m_instanceNumber(++s_physicalInstanceCounter)
{
    setDefaultConfig();
    m_pAssetInstance.store(MV::retain(instance));
}

PhysicalMaterial::PhysicalMaterial(const PhysicalMaterial& other)
    : Value(other), m_instanceNumber(++s_physicalInstanceCounter)
{
    setDefaultConfig();
    copyFrom(other);
}

PhysicalMaterial& PhysicalMaterial::operator=(const PhysicalMaterial& other)
{
    if (this != &other) {
        Value::operator=(other);
        copyFrom(other);
    }
    return *this;
}

PhysicalMaterial::~PhysicalMaterial()
{
    MV::release(m_pAssetInstance.exchange(nullptr));
}

void PhysicalMaterial::copyFrom(const PhysicalMaterial& other)
{
    m_materialId = other.m_materialId;
    m_libraryId = other.m_libraryId;
    IAssetInstance* instance = MV::retain(other.m_pAssetInstance.load());
    MV::replace(m_pAssetInstance, instance);
    KX_ASSERT(!m_pAssetInstance || m_pAssetInstance.load()->GetReferenceCount() > 0);
    // A value copied out of its document (into a clipboard, an event) is no user of the registry.
    if (other.m_rAmbrelAssetManager && other.m_rAmbrelAssetManager->segment() != nullptr) {
        m_rAmbrelAssetManager = other.m_rAmbrelAssetManager;
        m_assetReference = other.m_assetReference;
    } else {
        m_rAmbrelAssetManager = nullptr;
        m_assetReference.clear();
    }
    m_pSegmentLoadedFrom = nullptr;
    oneapi::tbb::spin_rw_mutex::scoped_lock source(other.m_lock, false);
    WriteLock lock(m_lock, true);
    m_name = other.m_name;
    m_fallbackName = other.m_fallbackName;
    for (std::size_t i = 0; i < eCachedPropertyCount; ++i) {
        m_cached[i].store(other.m_cached[i].load());
    }
    mapPropKey2Int = other.mapPropKey2Int;
    mapPropKey2Double = other.mapPropKey2Double;
    mapPropKey2Bool = other.mapPropKey2Bool;
    mapPropKey2String = other.mapPropKey2String;
    mapPropKey2IntArr = other.mapPropKey2IntArr;
    mapPropKey2DoubleArr = other.mapPropKey2DoubleArr;
    mapPropKey2Color = other.mapPropKey2Color;
}

ValueMetaType* PhysicalMaterial::s_metaType() { return &physicalMaterialValueMetaType(); }

const void* PhysicalMaterial::queryMTInterface(const MetaType* metaType) const
{
    return metaType != nullptr && metaType == static_cast<const MetaType*>(s_metaType()) ? this : nullptr;
}

void PhysicalMaterial::setDefaultConfig()
{
    for (std::atomic<double>& cached : m_cached) {
        cached.store(kNotRead);
    }
}

// --- identity ---

std::wstring PhysicalMaterial::ambrelMaterialID() const
{
    if (!m_materialId.empty()) {
        return m_materialId;
    }
    IAssetInstance* instance = assetInstance();
    AmbrelManager* manager = MV::libraryManager();
    return instance != nullptr && manager != nullptr ? manager->GetAssetInstanceMaterialID(instance) : std::wstring{};
}

std::wstring PhysicalMaterial::libraryID() const { return m_libraryId; }

std::wstring PhysicalMaterial::safeName() const
{
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    return m_name.empty() ? m_fallbackName : m_name;
}

std::wstring PhysicalMaterial::name() const
{
    if (safeName().empty()) {
        IAssetInstance* instance = assetInstance();
        AmbrelManager* manager = MV::libraryManager();
        std::wstring fallback = L"Unknown";
        if (instance != nullptr && manager != nullptr) {
            std::lock_guard managerLock(manager->mutex());
            fallback = instance->GetName(manager->GetUserLanguage());
        }
        WriteLock lock(m_lock, true);
        const_cast<PhysicalMaterial*>(this)->m_fallbackName = fallback;
    }
    oneapi::tbb::spin_rw_mutex::scoped_lock lock(m_lock, false);
    return m_name.empty() ? m_fallbackName : m_name;
}

void PhysicalMaterial::name(const std::wstring& name)
{
    WriteLock lock(m_lock, true);
    m_name = name;
}

bool PhysicalMaterial::hasIdentity() const { return !m_materialId.empty() && !m_libraryId.empty(); }

bool PhysicalMaterial::clearIdentity()
{
    if (!m_assetReference.empty()) {
        return false;
    }
    MV::release(m_pAssetInstance.exchange(nullptr));
    WriteLock lock(m_lock, true);
    m_materialId.clear();
    m_libraryId.clear();
    m_name.clear();
    m_fallbackName.clear();
    return true;
}

void PhysicalMaterial::setPostMigrationIdentity(const std::wstring& materialId, const std::wstring& libraryId)
{
    m_materialId = materialId;
    m_libraryId = libraryId;
    MV::release(m_pAssetInstance.exchange(nullptr));
}

bool PhysicalMaterial::hasAspect(const std::wstring& aspect) const
{
    IAssetInstance* instance = assetInstance();
    AmbrelManager* manager = MV::libraryManager();
    if (instance == nullptr || manager == nullptr) {
        return false;
    }
    std::lock_guard lock(manager->mutex());
    telvarin::platform::assets::InstancePtr connected(manager->GetConnectedAssetInstance(instance, aspect));
    return connected != nullptr;
}

bool PhysicalMaterial::hasValidAppearance() const { return hasAspect(L"materialappearance"); }

// --- asset ---

PhysicalMaterial::IAssetInstance* PhysicalMaterial::assetInstance() const
{
    if (IAssetInstance* cached = m_pAssetInstance.load()) {
        return cached;
    }
    if (m_rAmbrelAssetManager && !m_assetReference.empty()) {
        KX_ASSERT(!m_pSegmentLoadedFrom || m_pSegmentLoadedFrom == m_rAmbrelAssetManager->segment());
        if (IAssetInstance* registered = m_rAmbrelAssetManager->physicalMaterialAssetInstance(m_assetReference)) {
            return MV::storeResolved(m_pAssetInstance, MV::retain(registered));
        }
    }
    if (!m_materialId.empty()) {
        AmbrelManager* pPM = MV::libraryManager();
        KX_ASSERT(pPM->LibsLoaded());
        const std::string materialId = toUTF8(m_materialId);
        IAssetInstance* found = nullptr;
        // The value's own library first; a material that moved to the advanced library (or was
        // saved from it) is still found there, and the standard library is the last resort.
        if (!m_libraryId.empty()) {
            found = pPM->GetAssetInstance(materialId, m_libraryId, MaterialTweak{});
        }
        if (found == nullptr) {
            found = pPM->GetAssetInstance(materialId, pPM->GetAdvancedPhysicalLibraryID(), MaterialTweak{});
        }
        if (found == nullptr) {
            found = pPM->GetAssetInstance(materialId, pPM->GetPhysicalLibraryID(), MaterialTweak{});
        }
        if (found != nullptr) {
            return MV::storeResolved(m_pAssetInstance, found);
        }
    }
    return nullptr;
}

void PhysicalMaterial::assetInstance(IAssetInstance* instance)
{
    MV::replace(m_pAssetInstance, MV::retain(instance));
}

PhysicalMaterial::IAssetInstance* PhysicalMaterial::visualMaterialInstance() const
{
    IAssetInstance* physical = assetInstance();
    AmbrelManager* manager = MV::libraryManager();
    if (physical == nullptr || manager == nullptr) {
        return nullptr;
    }
    IAssetInstance* appearance = manager->GetConnectedAssetInstance(physical, L"materialappearance");
    if (appearance == nullptr || !m_rAmbrelAssetManager || m_rAmbrelAssetManager->containsMaterial(appearance)) {
        return appearance;
    }
    IAssetInstance* equivalent = m_rAmbrelAssetManager->getEquivalentMaterial(appearance, false);
    if (equivalent == nullptr) {
        return appearance;
    }
    // The document keeps its own copy of the appearance: connect that one, so that every body of
    // this material shows the document's appearance, edits included.
    bool bSucceeded = false;
    {
        std::lock_guard lock(manager->mutex());
        bSucceeded = physical->SetConnectedAsset(L"materialappearance", equivalent);
    }
    KX_ASSERT(bSucceeded);
    appearance->Release();
    return MV::retain(equivalent);
}

void PhysicalMaterial::setDefaultAssetInstance()
{
    AmbrelManager* manager = MV::libraryManager();
    DefaultMaterialOptionGroup* options = DefaultMaterialOptionGroup::get();
    if (manager == nullptr || options == nullptr) {
        return;
    }
    IAssetInstance* instance =
        manager->GetAssetInstance(toUTF8(options->PhysicalMaterialID()), options->PhysicalMaterialLibraryId(), MaterialTweak{});
    WriteLock lock(m_lock, true);
    MV::replace(m_pAssetInstance, instance);
}

bool PhysicalMaterial::IsEqual(IAssetInstance* other) const
{
    return MV::isEqual(assetInstance(), other);
}

void PhysicalMaterial::ambrelAssetManager(const StrongRef<AmbrelAssetManager>& rAmbrelAssetManager)
{
    KX_ASSERT(!m_pSegmentLoadedFrom || !rAmbrelAssetManager || m_pSegmentLoadedFrom == rAmbrelAssetManager->segment());
    m_rAmbrelAssetManager = rAmbrelAssetManager;
}

void PhysicalMaterial::unregister()
{
    if (!m_rAmbrelAssetManager) {
        return;
    }
    KX_ASSERT(m_assetReference.size());
    KX_ASSERT(!m_pSegmentLoadedFrom || m_pSegmentLoadedFrom == m_rAmbrelAssetManager->segment());
    // The registry clears this value's manager: hold it while it works.
    StrongRef<AmbrelAssetManager> registry = m_rAmbrelAssetManager;
    registry->unregisterMaterial(*this);
}

// --- properties ---

double PhysicalMaterial::cachedProperty(std::size_t index) const
{
    if (m_cached[index].load() == kNotRead) {
        const double value = readAspectDouble(assetInstance(), StructuralAspect, s_propertyNames[index]);
        WriteLock lock(m_lock, true);
        m_cached[index].store(value);
    }
    return m_cached[index].load();
}

#define KX_PHYSICAL_PROPERTY(Name, Index)                                                            \
    double PhysicalMaterial::Name() const { return cachedProperty(Index); }                          \
    void PhysicalMaterial::Name(double value) { m_cached[Index].store(value); }

KX_PHYSICAL_PROPERTY(density, eDensity)
KX_PHYSICAL_PROPERTY(youngsModulus, eYoungsModulus)
KX_PHYSICAL_PROPERTY(poissonsRatio, ePoissonsRatio)
KX_PHYSICAL_PROPERTY(yieldStrength, eYieldStrength)
KX_PHYSICAL_PROPERTY(ultimateTensileStrength, eUltimateTensileStrength)
KX_PHYSICAL_PROPERTY(thermalConductivity, eThermalConductivity)
KX_PHYSICAL_PROPERTY(linearExpansion, eLinearExpansion)
KX_PHYSICAL_PROPERTY(specificHeat, eSpecificHeat)
#undef KX_PHYSICAL_PROPERTY

int PhysicalMaterial::structuralBehavior() const
{
    IAssetInstance* instance = assetInstance();
    AmbrelManager* manager = MV::libraryManager();
    if (instance == nullptr || manager == nullptr) {
        return -1;
    }
    std::lock_guard lock(manager->mutex());
    telvarin::platform::assets::InstancePtr structural(manager->GetConnectedAssetInstance(instance, StructuralAspect));
    int value = -1;
    if (structural == nullptr || !structural->GetChoiceValue(L"structural_Behavior", value)) {
        return -1;
    }
    return value;
}

// --- private asset access ---

namespace {

template <class Read>
bool readProperty(PhysicalMaterial::IAssetInstance* instance, Read&& read)
{
    AmbrelManager* manager = MV::libraryManager();
    if (instance == nullptr || manager == nullptr) {
        return false;
    }
    std::lock_guard lock(manager->mutex());
    return read(*instance);
}

} // namespace

bool PhysicalMaterial::getPropertyValueDouble(IAssetInstance* instance, const std::wstring& name, double& value)
{
    return readProperty(instance, [&](IAssetInstance& i) { return i.GetDoubleValue(name, value); });
}
bool PhysicalMaterial::getPropertyValueInt(IAssetInstance* instance, const std::wstring& name, int& value)
{
    return readProperty(instance, [&](IAssetInstance& i) { return i.GetIntegerValue(name, value); });
}
bool PhysicalMaterial::getPropertyValueBool(IAssetInstance* instance, const std::wstring& name, bool& value)
{
    return readProperty(instance, [&](IAssetInstance& i) { return i.GetBoolValue(name, value); });
}
bool PhysicalMaterial::getPropertyValueChoice(IAssetInstance* instance, const std::wstring& name, int& value)
{
    return readProperty(instance, [&](IAssetInstance& i) { return i.GetChoiceValue(name, value); });
}
bool PhysicalMaterial::getPropertyValueString(IAssetInstance* instance, const std::wstring& name, std::wstring& value)
{
    return readProperty(instance, [&](IAssetInstance& i) { return i.GetStringValue(name, value); });
}
bool PhysicalMaterial::getPropertyValueColor(IAssetInstance* instance, const std::wstring& name, Color& value)
{
    return readProperty(instance, [&](IAssetInstance& i) {
        telvarin::platform::assets::AssetColor color{};
        if (!i.GetColorValue(name, color)) {
            return false;
        }
        value = Color(color.r, color.g, color.b, color.a);
        return true;
    });
}
bool PhysicalMaterial::getPropertyValueArray(IAssetInstance* instance, const std::wstring& name,
    std::vector<double>& value)
{
    return readProperty(instance, [&](IAssetInstance& i) { return i.GetDoubleArrayValue(name, value); });
}

bool PhysicalMaterial::setPropertyValueDouble(IAssetInstance* instance, const std::wstring& name, const double* value,
    double scaleConversion)
{
    KX_ASSERT(scaleConversion > 0.0);
    if (!(scaleConversion > 0.0) || value == nullptr) {
        return false;
    }
    const double converted = *value / scaleConversion;
    return readProperty(instance, [&](IAssetInstance& i) { return i.SetDoubleValue(name, converted); });
}

bool PhysicalMaterial::setPropertyValueArray(IAssetInstance* instance, const std::wstring& name,
    const std::vector<double>* value, double scaleConversion)
{
    KX_ASSERT(scaleConversion > 0.0);
    if (!(scaleConversion > 0.0) || value == nullptr) {
        return false;
    }
    std::vector<double> converted(*value);
    for (double& element : converted) {
        element /= scaleConversion;
    }
    return readProperty(instance, [&](IAssetInstance& i) { return i.SetDoubleArrayValue(name, converted); });
}

PhysicalMaterial::IAssetInstance* PhysicalMaterial::GetConnectedAssetInstance(IAssetInstance* instance,
    const std::wstring& name)
{
    AmbrelManager* manager = MV::libraryManager();
    return manager != nullptr ? manager->GetConnectedAssetInstance(instance, name) : nullptr;
}

// --- comparison ---

bool PhysicalMaterial::matches(const std::wstring& first, const std::wstring& second) { return first == second; }

bool PhysicalMaterial::matches(double first, double second) { return std::fabs(first - second) < kTolerance; }

bool PhysicalMaterial::matches(const std::vector<double>& prop1, const std::vector<double>& prop2)
{
    auto iter2 = prop2.begin();
    for (const double element : prop1) {
        KX_ASSERT(iter2 != prop2.end());
        if (iter2 == prop2.end() || !matches(element, *iter2)) {
            return false;
        }
        ++iter2;
    }
    return true;
}

bool PhysicalMaterial::matches(const std::map<std::wstring, double>& map1, const std::map<std::wstring, double>& map2)
{
    for (const auto& [key, value] : map1) {
        const auto iter2 = map2.find(key);
        KX_ASSERT(iter2 != map2.end());
        if (iter2 == map2.end() || !matches(value, iter2->second)) {
            return false;
        }
    }
    return true;
}

bool PhysicalMaterial::matches(const std::map<std::wstring, std::vector<double>>& map1,
    const std::map<std::wstring, std::vector<double>>& map2)
{
    for (const auto& [key, value] : map1) {
        const auto iter2 = map2.find(key);
        KX_ASSERT(iter2 != map2.end());
        if (iter2 == map2.end() || !matches(value, iter2->second)) {
            return false;
        }
    }
    return true;
}

bool PhysicalMaterial::lessThan(const std::wstring& first, const std::wstring& second) { return first < second; }

bool PhysicalMaterial::lessThan(double first, double second) { return first < second; }

bool PhysicalMaterial::operator==(const PhysicalMaterial& other) const
{
    if (IAssetInstance* mine = assetInstance()) {
        return MV::isEqual(mine, other.assetInstance());
    }
    if (!matches(m_materialId, other.m_materialId) || !matches(m_libraryId, other.libraryID())) {
        return false;
    }
    if (!matches(safeName(), other.safeName()) && !matches(name(), other.name())) {
        return false;
    }
    // Specific heat (the last slot) is not compared; see the header.
    for (std::size_t i = 0; i < eSpecificHeat; ++i) {
        if (!matches(m_cached[i].load(), other.m_cached[i].load()) && !matches(cachedProperty(i), other.cachedProperty(i))) {
            return false;
        }
    }
    return true;
}

bool PhysicalMaterial::operator<(const PhysicalMaterial& other) const
{
    IAssetInstance* mine = m_pAssetInstance.load();
    IAssetInstance* theirs = other.m_pAssetInstance.load();
    if (mine != nullptr && theirs != nullptr && mine != theirs) {
        return std::less<IAssetInstance*>{}(mine, theirs);
    }
    if (m_materialId != other.m_materialId) {
        return lessThan(m_materialId, other.m_materialId);
    }
    if (safeName() != other.safeName()) {
        const std::wstring myName = name();
        const std::wstring theirName = other.name();
        if (myName != theirName) {
            return lessThan(myName, theirName);
        }
    }
    for (std::size_t i = 0; i < eCachedPropertyCount; ++i) {
        double mineValue = m_cached[i].load();
        double theirValue = other.m_cached[i].load();
        if (matches(mineValue, theirValue)) {
            continue;
        }
        mineValue = cachedProperty(i);
        theirValue = other.cachedProperty(i);
        if (!matches(mineValue, theirValue)) {
            return lessThan(mineValue, theirValue);
        }
    }
    return false;
}

std::wstring PhysicalMaterial::toString() const
{
    return (boost::wformat(L"%1%\r\n%2%\r\n%3%\r\n%4%") % safeName() % m_materialId % m_assetReference % m_libraryId).str();
}

} // namespace Kx
