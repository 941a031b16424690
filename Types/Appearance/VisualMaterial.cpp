#include "Types/Appearance/VisualMaterial.h"

#include "Types/Appearance/AmbrelAssetManager.h"
#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/DefaultMaterialOptions.h"
#include "Types/Appearance/Meta/MaterialMetaTypes.h"
#include "Types/Appearance/internal/MaterialValueSupport.h"

#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <base/Assert.h>
#include <core/Strings.h>
#include <datamodel/Segment.h>
#include <datamodel/ValueMetaType.h>

#include <boost/format.hpp>

#include <cmath>
#include <functional>
#include <mutex>

namespace Kx {

using telvarin::platform::core::toUTF8;
namespace MV = MaterialValues;

namespace {

// Not protected, and separate from the physical materials' counter.
std::uint32_t s_visualInstanceCounter = 0;

constexpr float kTweakTolerance = 0.0001f;

using ReadLock = oneapi::tbb::spin_rw_mutex::scoped_lock;

} // namespace

VisualMaterial::VisualMaterial() : m_instanceNumber(++s_visualInstanceCounter)
{
    m_pAssetInstance.store(nullptr);
}

VisualMaterial::VisualMaterial(const std::wstring& materialId, const std::wstring& libraryId)
    : m_materialId(materialId), m_libraryId(libraryId), m_instanceNumber(++s_visualInstanceCounter)
{
}

VisualMaterial::VisualMaterial(IAssetInstance* instance) : m_instanceNumber(++s_visualInstanceCounter)
{
    m_pAssetInstance.store(MV::retain(instance));
    if (m_pAssetInstance.load() != nullptr) {
        KX_ASSERT(m_pAssetInstance.load()->GetReferenceCount() > 0);
    }
}

VisualMaterial::VisualMaterial(const VisualMaterial& other) : Value(other), m_instanceNumber(++s_visualInstanceCounter)
{
    copyFrom(other);
}

VisualMaterial& VisualMaterial::operator=(const VisualMaterial& other)
{
    if (this != &other) {
        Value::operator=(other);
        copyFrom(other);
    }
    return *this;
}

VisualMaterial::~VisualMaterial()
{
    MV::release(m_pAssetInstance.exchange(nullptr));
}

void VisualMaterial::copyFrom(const VisualMaterial& other)
{
    MV::replace(m_pAssetInstance, MV::retain(other.m_pAssetInstance.load()));
    KX_ASSERT(!m_pAssetInstance || m_pAssetInstance.load()->GetReferenceCount() > 0);
    if (other.m_rAmbrelAssetManager && other.m_rAmbrelAssetManager->segment() != nullptr) {
        m_rAmbrelAssetManager = other.m_rAmbrelAssetManager;
        m_assetReference = other.m_assetReference;
    } else {
        m_rAmbrelAssetManager = nullptr;
        m_assetReference.clear();
    }
    m_pSegmentLoadedFrom = nullptr;
    ReadLock source(other.m_lock, false);
    ReadLock lock(m_lock, true);
    m_name = other.m_name;
    m_fallbackName = other.m_fallbackName;
    m_materialId = other.m_materialId;
    m_libraryId = other.m_libraryId;
    m_versionGUID = other.m_versionGUID;
    m_useCustomizedColor = other.m_useCustomizedColor;
    m_customizedColor = other.m_customizedColor;
    m_scale = other.m_scale;
    m_rotation = other.m_rotation;
}

ValueMetaType* VisualMaterial::s_metaType() { return &visualMaterialValueMetaType(); }

const void* VisualMaterial::queryMTInterface(const MetaType* metaType) const
{
    return metaType != nullptr && metaType == static_cast<const MetaType*>(s_metaType()) ? this : nullptr;
}

// --- identity ---

std::wstring VisualMaterial::safeName() const
{
    ReadLock lock(m_lock, false);
    return m_name.empty() ? m_fallbackName : m_name;
}

std::wstring VisualMaterial::name() const
{
    if (safeName().empty()) {
        IAssetInstance* instance = assetInstance();
        AmbrelManager* manager = MV::libraryManager();
        std::wstring fallback = L"Unknown";
        if (instance != nullptr && manager != nullptr) {
            std::lock_guard managerLock(manager->mutex());
            fallback = instance->GetName(manager->GetUserLanguage());
        }
        ReadLock lock(m_lock, true);
        const_cast<VisualMaterial*>(this)->m_fallbackName = fallback;
    }
    ReadLock lock(m_lock, false);
    return m_name.empty() ? m_fallbackName : m_name;
}

void VisualMaterial::name(const std::wstring& name)
{
    ReadLock lock(m_lock, true);
    m_name = name;
}

std::wstring VisualMaterial::customizedName() const
{
    const std::wstring plain = name();
    if (!m_useCustomizedColor) {
        return plain;
    }
    // The components as stored: floats, which the "x" conversion shows in hexadecimal notation.
    return (boost::wformat(L"%1%[%2$2x%3$2x%4$2x%5$2x]") % plain % m_customizedColor.m_red % m_customizedColor.m_green
        % m_customizedColor.m_blue % m_customizedColor.m_alpha)
        .str();
}

std::wstring VisualMaterial::ambrelMaterialID() const
{
    ReadLock lock(m_lock, false);
    return m_materialId;
}

std::wstring VisualMaterial::libraryID() const
{
    ReadLock lock(m_lock, false);
    return m_libraryId;
}

std::wstring VisualMaterial::ambrelVersionGUID() const
{
    {
        ReadLock lock(m_lock, false);
        if (!m_versionGUID.empty()) {
            return m_versionGUID;
        }
    }
    IAssetInstance* instance = m_pAssetInstance.load();
    AmbrelManager* manager = MV::libraryManager();
    if (instance == nullptr || manager == nullptr) {
        return {};
    }
    std::wstring guid;
    {
        std::lock_guard managerLock(manager->mutex());
        if (const auto* definition = instance->GetAssetDefinition()) {
            guid = definition->GetVersionGUID();
        }
    }
    ReadLock lock(m_lock, true);
    m_versionGUID = guid;
    return m_versionGUID;
}

bool VisualMaterial::hasIdentity() const
{
    ReadLock lock(m_lock, false);
    return !m_materialId.empty() && !m_libraryId.empty();
}

bool VisualMaterial::clearIdentity()
{
    if (!m_assetReference.empty()) {
        return false;
    }
    MV::release(m_pAssetInstance.exchange(nullptr));
    ReadLock lock(m_lock, true);
    m_materialId.clear();
    m_versionGUID.clear();
    m_libraryId.clear();
    m_name.clear();
    m_fallbackName.clear();
    return true;
}

// --- tweaks ---

void VisualMaterial::customizedColor(const Color& color)
{
    m_customizedColor.m_red = color.m_red;
    m_customizedColor.m_green = color.m_green;
    m_customizedColor.m_blue = color.m_blue;
    m_customizedColor.m_alpha = color.m_alpha;
}

bool VisualMaterial::isTweaked() const { return m_useCustomizedColor || m_scale != 1.0f || m_rotation != 0.0f; }

Color VisualMaterial::originalColor(bool* hasColor) const
{
    Color color;
    IAssetInstance* instance = assetInstance();
    AmbrelManager* manager = MV::libraryManager();
    const bool found = instance != nullptr && manager != nullptr && manager->GetAssetInstanceColor(instance, color);
    if (hasColor != nullptr) {
        *hasColor = found;
    }
    return color;
}

float VisualMaterial::originalScale() const
{
    float scale = 1.0f;
    IAssetInstance* instance = assetInstance();
    AmbrelManager* manager = MV::libraryManager();
    if (instance == nullptr || manager == nullptr || !manager->GetAssetInstanceTextureScale(instance, scale)) {
        return 1.0f;
    }
    return scale;
}

float VisualMaterial::originalRotation() const
{
    float rotation = 0.0f;
    IAssetInstance* instance = assetInstance();
    AmbrelManager* manager = MV::libraryManager();
    if (instance == nullptr || manager == nullptr || !manager->GetAssetInstanceTextureRotate(instance, rotation)) {
        return 0.0f;
    }
    return rotation;
}

// --- asset ---

VisualMaterial::IAssetInstance* VisualMaterial::assetInstance() const
{
    if (IAssetInstance* cached = m_pAssetInstance.load()) {
        return cached;
    }
    if (m_rAmbrelAssetManager && !m_assetReference.empty()) {
        KX_ASSERT(!m_pSegmentLoadedFrom || m_pSegmentLoadedFrom == m_rAmbrelAssetManager->segment());
        if (IAssetInstance* registered = m_rAmbrelAssetManager->visualMaterialAssetInstance(m_assetReference)) {
            return MV::storeResolved(m_pAssetInstance, MV::retain(registered));
        }
    }
    std::wstring materialId;
    std::wstring libraryId;
    {
        ReadLock lock(m_lock, false);
        materialId = m_materialId;
        libraryId = m_libraryId;
    }
    if (materialId.empty()) {
        return nullptr;
    }
    MaterialTweak tweak;
    tweak.kind = m_useCustomizedColor ? MaterialTweak::eTintColor : MaterialTweak::eNone;
    tweak.color = m_useCustomizedColor ? m_customizedColor : Color(0.0f, 0.0f, 0.0f, 1.0f);
    tweak.scale = m_scale;
    tweak.rotation = m_rotation;
    AmbrelManager* manager = MV::libraryManager();
    if (manager == nullptr) {
        return nullptr;
    }
    const std::string utf8Id = toUTF8(materialId);
    IAssetInstance* pVisualAssetInstance = nullptr;
    if (!libraryId.empty()) {
        pVisualAssetInstance = manager->GetAssetInstance(utf8Id, libraryId, tweak);
    }
    if (pVisualAssetInstance == nullptr) {
        pVisualAssetInstance = manager->GetAssetInstance(utf8Id, manager->GetAdvancedVisualLibraryID(), tweak);
    }
    if (pVisualAssetInstance == nullptr) {
        pVisualAssetInstance = manager->GetAssetInstance(utf8Id, manager->GetVisualLibraryID(), tweak);
    }
    if (pVisualAssetInstance == nullptr) {
        return nullptr;
    }
    KX_ASSERT(!pVisualAssetInstance || pVisualAssetInstance->GetReferenceCount() > 0);
    return MV::storeResolved(m_pAssetInstance, pVisualAssetInstance);
}

void VisualMaterial::assetInstance(IAssetInstance* pAssetInstance)
{
    KX_ASSERT(!pAssetInstance || pAssetInstance->GetReferenceCount() > 0);
    MV::replace(m_pAssetInstance, MV::retain(pAssetInstance));
}

bool VisualMaterial::IsEqual(IAssetInstance* pOtherAsset) const
{
    KX_ASSERT(!pOtherAsset || pOtherAsset->GetReferenceCount() > 0);
    return MV::isEqual(assetInstance(), pOtherAsset);
}

void VisualMaterial::setDefaultAssetInstance()
{
    AmbrelManager* manager = MV::libraryManager();
    DefaultMaterialOptionGroup* options = DefaultMaterialOptionGroup::get();
    if (manager == nullptr || options == nullptr) {
        return;
    }
    const std::wstring materialId = options->VisualMaterialID();
    const std::wstring libraryId = options->VisualMaterialLibraryId();
    IAssetInstance* pVisualAssetInstance = manager->GetAssetInstance(toUTF8(materialId), libraryId, MaterialTweak{});
    if (pVisualAssetInstance == nullptr) {
        return;
    }
    KX_ASSERT(pVisualAssetInstance->GetReferenceCount() > 0);
    ReadLock lock(m_lock, true);
    MV::replace(m_pAssetInstance, pVisualAssetInstance);
    m_materialId = materialId;
    m_libraryId = libraryId;
}

void VisualMaterial::ambrelAssetManager(const StrongRef<AmbrelAssetManager>& rAmbrelAssetManager)
{
    KX_ASSERT(!m_pSegmentLoadedFrom || !rAmbrelAssetManager || m_pSegmentLoadedFrom == rAmbrelAssetManager->segment());
    m_rAmbrelAssetManager = rAmbrelAssetManager;
}

void VisualMaterial::unregister()
{
    if (!m_rAmbrelAssetManager) {
        return;
    }
    KX_ASSERT(m_assetReference.size());
    KX_ASSERT(!m_pSegmentLoadedFrom || m_pSegmentLoadedFrom == m_rAmbrelAssetManager->segment());
    StrongRef<AmbrelAssetManager> registry = m_rAmbrelAssetManager;
    registry->unregisterMaterial(*this);
}

// --- comparison ---

bool VisualMaterial::operator==(const VisualMaterial& rhs) const
{
    if (IAssetInstance* mine = assetInstance()) {
        KX_ASSERT(!rhs.assetInstance() || rhs.assetInstance()->GetReferenceCount() > 0);
        return MV::isEqual(mine, rhs.assetInstance());
    }
    if (safeName() != rhs.safeName() && name() != rhs.name()) {
        return false;
    }
    return ambrelMaterialID() == rhs.ambrelMaterialID() && m_useCustomizedColor == rhs.m_useCustomizedColor
        && ambrelVersionGUID() == rhs.ambrelVersionGUID()
        && (!m_useCustomizedColor || m_customizedColor == rhs.m_customizedColor)
        && std::fabs(m_scale - rhs.m_scale) < kTweakTolerance && std::fabs(m_rotation - rhs.m_rotation) < kTweakTolerance;
}

bool VisualMaterial::operator<(const VisualMaterial& rhs) const
{
    IAssetInstance* mine = m_pAssetInstance.load();
    if (mine != nullptr && mine != rhs.m_pAssetInstance.load()) {
        if (rhs.m_pAssetInstance.load() != nullptr) {
            KX_ASSERT(rhs.m_pAssetInstance.load()->GetReferenceCount() > 0);
        }
        return std::less<IAssetInstance*>{}(mine, rhs.m_pAssetInstance.load());
    }
    const std::wstring myId = ambrelMaterialID();
    const std::wstring theirId = rhs.ambrelMaterialID();
    if (myId != theirId) {
        return myId < theirId;
    }
    if (safeName() != rhs.safeName()) {
        const std::wstring myName = name();
        const std::wstring theirName = rhs.name();
        if (myName != theirName) {
            return myName < theirName;
        }
    }
    if (m_useCustomizedColor != rhs.m_useCustomizedColor) {
        return !m_useCustomizedColor;
    }
    if (m_useCustomizedColor && m_customizedColor != rhs.m_customizedColor) {
        return m_customizedColor < rhs.m_customizedColor;
    }
    if (std::fabs(m_scale - rhs.m_scale) > kTweakTolerance) {
        return m_scale < rhs.m_scale;
    }
    if (std::fabs(m_rotation - rhs.m_rotation) > kTweakTolerance) {
        return m_rotation < rhs.m_rotation;
    }
    return false;
}

std::wstring VisualMaterial::toString() const
{
    return safeName() + L"\r\n" + ambrelMaterialID() + L"\r\n" + m_assetReference + L"\r\n" + libraryID() + L"\r\n"
        + (boost::wformat(L"(AmbrelMaterialScale: %1%, AmbrelMaterialRotation: %2%") % m_scale % m_rotation).str();
}

} // namespace Kx
