#include "Types/Appearance/AmbrelManager.h"

#include "Types/Appearance/AppearanceColors.h"
#include "Types/Appearance/AssetParameterTable.h"

#include <assets/AssetType.h>
#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <base/Assert.h>
#include <base/OS.h>

#include <array>

namespace Kx {

using Assets::IAssetInstance;
using P = EAssetParameter;

namespace {

// Runs `access` on the instance, or on its aspect, that holds the parameter for the instance's schema.
template <class Instance, class Access>
bool accessParameter(const AmbrelManager& manager, Instance* instance, P parameter, Access&& access)
{
    if (instance == nullptr) {
        return false;
    }
    const AssetParameterSource* source = FindAssetParameterSource(parameter, instance->GetSchemaName());
    if (source == nullptr) {
        return false;
    }
    const WideString property(source->property);
    if (source->aspect.empty()) {
        return access(*instance, property);
    }
    const Assets::InstancePtr aspect(manager.GetConnectedAssetInstance(instance, WideString(source->aspect)));
    return aspect != nullptr && access(*aspect, property);
}

bool readValue(const IAssetInstance& instance, const WideString& name, double& value)
{
    return instance.GetDoubleValue(name, value);
}
bool readValue(const IAssetInstance& instance, const WideString& name, bool& value)
{
    return instance.GetBoolValue(name, value);
}
bool readValue(const IAssetInstance& instance, const WideString& name, Color& value)
{
    Assets::AssetColor color;
    if (!instance.GetColorValue(name, color)) {
        return false;
    }
    value = Color(color.r, color.g, color.b, color.a);
    return true;
}
bool writeValue(IAssetInstance& instance, const WideString& name, double value)
{
    return instance.SetDoubleValue(name, value);
}
bool writeValue(IAssetInstance& instance, const WideString& name, bool value)
{
    return instance.SetBoolValue(name, value);
}
bool writeValue(IAssetInstance& instance, const WideString& name, const Color& value)
{
    return instance.SetColorValue(name, {value.red(), value.green(), value.blue(), value.alpha()});
}

template <class T>
bool getParameter(const AmbrelManager& manager, const IAssetInstance* instance, P parameter, T& value)
{
    return accessParameter(manager, instance, parameter,
        [&](const IAssetInstance& target, const WideString& name) { return readValue(target, name, value); });
}

template <class T>
bool setParameter(const AmbrelManager& manager, IAssetInstance* instance, P parameter, const T& value)
{
    return accessParameter(manager, instance, parameter,
        [&](IAssetInstance& target, const WideString& name) { return writeValue(target, name, value); });
}

bool getBounds(const AmbrelManager& manager, const IAssetInstance* instance, P parameter,
    Assets::NumericConstraint& constraint)
{
    return accessParameter(manager, instance, parameter, [&](const IAssetInstance& target, const WideString& name) {
        return target.GetNumericConstraint(name, constraint);
    });
}

bool getBounds(const AmbrelManager& manager, const IAssetInstance* instance, P parameter, bool& hasMinimum,
    double& minimum, bool& hasMaximum, double& maximum, double& increment, bool& logarithmic)
{
    Assets::NumericConstraint constraint;
    if (!getBounds(manager, instance, parameter, constraint)) {
        return false;
    }
    hasMinimum = constraint.hasMinimum;
    minimum = constraint.minimum;
    hasMaximum = constraint.hasMaximum;
    maximum = constraint.maximum;
    increment = constraint.increment;
    logarithmic = constraint.logarithmic;
    return true;
}

} // namespace

// --- schema tests ---

bool AmbrelManager::IsCorvexMaterial(const IAssetInstance* instance) const
{
    KX_ASSERT(OS::platformIsUIThread());
    return instance != nullptr && IsCorvexSchema(instance->GetSchemaName());
}

bool AmbrelManager::IsCorvexWoodMaterial(const IAssetInstance* instance) const
{
    KX_ASSERT(OS::platformIsUIThread());
    return instance != nullptr && Assets::SchemaEquals(instance->GetSchemaName(), L"CorvexWoodSchema");
}

bool AmbrelManager::IsEnvironmentAsset(const IAssetInstance* instance) const
{
    KX_ASSERT(OS::platformIsUIThread());
    return instance != nullptr && Assets::SchemaEquals(instance->GetSchemaName(), L"CorvexIBLSchema");
}

bool AmbrelManager::IsAssetOfType(const IAssetInstance* instance, const std::string& schema) const
{
    KX_ASSERT(OS::platformIsUIThread());
    // The schema's name or its type: "materialappearance" is every appearance schema.
    return instance != nullptr
        && Assets::SchemaIsOfType(instance->GetSchemaName(), telvarin::platform::core::toWide(schema));
}

// --- parameters ---

bool AmbrelManager::GetAssetInstanceDensity(const IAssetInstance* instance, double& value) const
{
    // A negative density is a damaged value, not a material: the caller keeps its own.
    double density = 0.0;
    if (!getParameter(*this, instance, P::eDensity, density) || !(density >= 0.0)) {
        return false;
    }
    value = density;
    return true;
}
bool AmbrelManager::SetAssetInstanceDensity(IAssetInstance* instance, double value)
{
    return setParameter(*this, instance, P::eDensity, value);
}

#define KX_AMBREL_PARAMETER(Name, Type, Parameter)                                                   \
    bool AmbrelManager::GetAssetInstance##Name(const IAssetInstance* instance, Type& value) const    \
    {                                                                                                \
        return getParameter(*this, instance, Parameter, value);                                      \
    }                                                                                                \
    bool AmbrelManager::SetAssetInstance##Name(IAssetInstance* instance, const Type value)           \
    {                                                                                                \
        return setParameter(*this, instance, Parameter, value);                                      \
    }

KX_AMBREL_PARAMETER(AbsorptionDist, double, P::eAbsorptionDistance)
KX_AMBREL_PARAMETER(Luminance, double, P::eLuminance)
KX_AMBREL_PARAMETER(LuminanceEnabled, bool, P::eLuminanceEnabled)
KX_AMBREL_PARAMETER(TranslucencyEnabled, bool, P::eTranslucencyEnabled)
KX_AMBREL_PARAMETER(TranslucencyDepth, double, P::eTranslucencyDepth)
KX_AMBREL_PARAMETER(Reflectance, double, P::eReflectance)
KX_AMBREL_PARAMETER(RefractiveIndex, double, P::eRefractiveIndex)
KX_AMBREL_PARAMETER(Roughness, double, P::eRoughness)
KX_AMBREL_PARAMETER(EarlywoodRoughness, double, P::eEarlywoodRoughness)
KX_AMBREL_PARAMETER(LateWoodColorEnabled, bool, P::eLateWoodColorEnabled)
KX_AMBREL_PARAMETER(LateWoodExp, double, P::eLateWoodExponent)
KX_AMBREL_PARAMETER(PoresEnabled, bool, P::ePoresEnabled)
KX_AMBREL_PARAMETER(RaysEnabled, bool, P::eRaysEnabled)
KX_AMBREL_PARAMETER(RingDepth, double, P::eRingDepth)
KX_AMBREL_PARAMETER(RingThickness, double, P::eRingThickness)

#undef KX_AMBREL_PARAMETER

bool AmbrelManager::GetAssetInstanceLateWoodColor(const IAssetInstance* instance, Color& value) const
{
    return getParameter(*this, instance, P::eLateWoodColor, value);
}
bool AmbrelManager::SetAssetInstanceLateWoodColor(IAssetInstance* instance, const Color& value)
{
    return setParameter(*this, instance, P::eLateWoodColor, value);
}

// --- texture scale and rotation ---

namespace {

bool readTextureValue(const AmbrelManager& manager, const IAssetInstance* instance, P parameter, float& value)
{
    if (instance == nullptr) {
        return false;
    }
    double read = 0.0;
    bool found = getParameter(manager, instance, parameter, read);
    if (!found) {
        const std::vector<IAssetInstance*> textures = manager.CollectTextureAssets(instance);
        found = !textures.empty() && getParameter(manager, textures.front(), parameter, read);
        for (IAssetInstance* texture : textures) {
            texture->Release();
        }
    }
    if (found) {
        value = static_cast<float>(read);
    }
    return found;
}

// The textures a scale or rotation applies to: the instance itself when it is a texture (textures
// carry their own scale and rotation), else every texture connected to it. With a reference each.
std::vector<IAssetInstance*> texturesOf(const AmbrelManager& manager, IAssetInstance* instance)
{
    if (Assets::SchemaEquals(instance->GetSchemaName(), L"texture")) {
        instance->AddRef();
        return {instance};
    }
    return manager.CollectTextureAssets(instance);
}

// The textures of the preset `instance` was made from, as its library holds them, in the order of
// texturesOf; empty when the instance comes from no open library's preset.
std::vector<IAssetInstance*> presetTexturesOf(const AmbrelManager& manager, const IAssetInstance* instance)
{
    const Assets::IAssetDefinition* definition = instance->GetAssetDefinition();
    const Assets::IAssetLibrary* library =
        definition != nullptr ? manager.GetLibraryByIdentifier(definition->GetLibraryId()) : nullptr;
    const Assets::InstancePtr preset(library != nullptr ? library->CreateAssetInstance(definition) : nullptr);
    return preset != nullptr ? texturesOf(manager, preset.get()) : std::vector<IAssetInstance*>{};
}

void releaseAll(std::vector<IAssetInstance*>& instances)
{
    for (IAssetInstance* instance : instances) {
        instance->Release();
    }
    instances.clear();
}

// Writes `value` into `properties` of every texture of the instance. A neutral value sets each
// texture back to what its preset has (so a tweaked copy becomes the library's look again), or to
// the neutral value itself for a texture that no preset describes.
void writeTextureValues(const AmbrelManager& manager, IAssetInstance* instance,
    std::initializer_list<std::wstring_view> properties, double value, bool neutral)
{
    std::vector<IAssetInstance*> textures = texturesOf(manager, instance);
    std::vector<IAssetInstance*> originals = neutral ? presetTexturesOf(manager, instance) : std::vector<IAssetInstance*>{};
    if (originals.size() != textures.size()) {
        releaseAll(originals);
    }
    for (std::size_t index = 0; index < textures.size(); ++index) {
        for (std::wstring_view property : properties) {
            double written = value;
            if (!originals.empty()) {
                (void)originals[index]->GetDoubleValue(WideString(property), written);
            }
            textures[index]->SetDoubleValue(WideString(property), written);
        }
    }
    releaseAll(textures);
    releaseAll(originals);
}

} // namespace

bool AmbrelManager::GetAssetInstanceTextureScale(const IAssetInstance* instance, float& value) const
{
    return readTextureValue(*this, instance, P::eTextureScale, value);
}

void AmbrelManager::SetAssetInstanceTextureScale(IAssetInstance* instance, const MaterialTweak& tweak)
{
    if (instance == nullptr) {
        return;
    }
    const bool neutral = tweak.scale == 1.0f;
    // A metal pattern scales by its own property; textures scale in both directions alike.
    if (Assets::SchemaEquals(instance->GetSchemaName(), L"MetalSchema")
        && instance->HasProperty(L"metal_pattern_scale")) {
        double scale = tweak.scale;
        if (neutral) {
            const Assets::IAssetDefinition* definition = instance->GetAssetDefinition();
            const Assets::IAssetLibrary* library =
                definition != nullptr ? GetLibraryByIdentifier(definition->GetLibraryId()) : nullptr;
            const Assets::InstancePtr preset(library != nullptr ? library->CreateAssetInstance(definition) : nullptr);
            if (preset != nullptr) {
                (void)preset->GetDoubleValue(L"metal_pattern_scale", scale);
            }
        }
        instance->SetDoubleValue(L"metal_pattern_scale", scale);
    }
    writeTextureValues(*this, instance, {L"texture_UScale", L"texture_VScale"}, tweak.scale, neutral);
}

bool AmbrelManager::GetAssetInstanceTextureRotate(const IAssetInstance* instance, float& value) const
{
    return readTextureValue(*this, instance, P::eTextureRotate, value);
}

void AmbrelManager::SetAssetInstanceTextureRotate(IAssetInstance* instance, const MaterialTweak& tweak)
{
    if (instance == nullptr) {
        return;
    }
    writeTextureValues(*this, instance, {L"texture_WAngle"}, tweak.rotation, tweak.rotation == 0.0f);
}

// --- colour ---

namespace {

// A colour property driven by a connected texture has no single colour.
bool textureDriven(const IAssetInstance& instance, const WideString& property)
{
    return instance.GetConnectedAssetCount(property) > 0;
}

bool tintCounts(const IAssetInstance& instance, const TintRule& rule)
{
    bool on = false;
    if (!rule.toggle.empty() && (!instance.GetBoolValue(WideString(rule.toggle), on) || !on)) {
        return false;
    }
    int selection = 0;
    return rule.selector.empty() ||
        (instance.GetChoiceValue(WideString(rule.selector), selection) && selection == rule.selection);
}

} // namespace

bool AmbrelManager::GetAssetInstanceColor(const IAssetInstance* instance, Color& value) const
{
    KX_ASSERT(OS::platformIsUIThread());
    if (instance == nullptr) {
        return false;
    }
    if (const AssetParameterSource* source = FindAssetParameterSource(P::eColor, instance->GetSchemaName())) {
        const WideString property(source->property);
        return !textureDriven(*instance, property) && readValue(*instance, property, value);
    }
    const TintRule& rule = FindTintRule(instance->GetSchemaName());
    const WideString property(rule.color);
    return tintCounts(*instance, rule) && !textureDriven(*instance, property) && readValue(*instance, property, value);
}

void AmbrelManager::SetAssetInstanceColor(IAssetInstance* instance, const MaterialTweak& tweak)
{
    // A vertex colour comes from the mesh, not from the asset: nothing to write.
    if (instance == nullptr || tweak.kind != MaterialTweak::eTintColor) {
        return;
    }
    const AssetParameterSource* source = FindAssetParameterSource(P::eColor, instance->GetSchemaName());
    const TintRule& rule = FindTintRule(instance->GetSchemaName());
    const WideString property(source != nullptr ? source->property : rule.color);
    // A texture-driven colour keeps its texture: a tint does not replace an image.
    if (textureDriven(*instance, property)) {
        return;
    }
    if (source == nullptr) {
        if (!rule.toggle.empty()) {
            instance->SetBoolValue(WideString(rule.toggle), true);
        }
        if (!rule.selector.empty()) {
            instance->SetChoiceValue(WideString(rule.selector), rule.selection);
        }
    }
    writeValue(*instance, property, tweak.color);
}

std::vector<WideString> AmbrelManager::GetMaterialPropertyNames(const WideString& schema) const
{
    const std::span<const std::wstring_view> properties = ColorPropertiesOf(schema);
    return {properties.begin(), properties.end()};
}

// --- bounds ---

bool AmbrelManager::GetAssetInstanceDensityBounds(const IAssetInstance* instance, bool& hasMinimum, double& minimum,
    bool& hasMaximum, double& maximum, double& increment, bool& logarithmic) const
{
    return getBounds(*this, instance, P::eDensity, hasMinimum, minimum, hasMaximum, maximum, increment, logarithmic);
}
bool AmbrelManager::GetAssetInstanceLuminanceBounds(const IAssetInstance* instance, bool& hasMinimum, double& minimum,
    bool& hasMaximum, double& maximum, double& increment, bool& logarithmic) const
{
    return getBounds(*this, instance, P::eLuminance, hasMinimum, minimum, hasMaximum, maximum, increment, logarithmic);
}
bool AmbrelManager::GetAssetInstanceReflectanceBounds(const IAssetInstance* instance, bool& hasMinimum,
    double& minimum, bool& hasMaximum, double& maximum, double& increment, bool& logarithmic) const
{
    return getBounds(*this, instance, P::eReflectance, hasMinimum, minimum, hasMaximum, maximum, increment,
        logarithmic);
}
bool AmbrelManager::GetAssetInstanceRoughnessBounds(const IAssetInstance* instance, bool& hasMinimum, double& minimum,
    bool& hasMaximum, double& maximum, double& increment, bool& logarithmic) const
{
    return getBounds(*this, instance, P::eRoughness, hasMinimum, minimum, hasMaximum, maximum, increment, logarithmic);
}
bool AmbrelManager::GetAssetInstanceTranslucencyDepthBounds(const IAssetInstance* instance, bool& hasMinimum,
    double& minimum, bool& hasMaximum, double& maximum, double& increment, bool& logarithmic) const
{
    return getBounds(*this, instance, P::eTranslucencyDepth, hasMinimum, minimum, hasMaximum, maximum, increment,
        logarithmic);
}
bool AmbrelManager::GetAssetInstanceRefractiveIndexBounds(const IAssetInstance* instance, bool& hasMinimum,
    double& minimum, bool& hasMaximum, double& maximum) const
{
    double increment = 0.0;
    bool logarithmic = false;
    return getBounds(*this, instance, P::eRefractiveIndex, hasMinimum, minimum, hasMaximum, maximum, increment,
        logarithmic);
}

} // namespace Kx
