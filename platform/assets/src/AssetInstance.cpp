#include "AssetInstance.h"

#include <base/Assert.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace telvarin::platform::assets {

// ---- InstanceRef ----

InstanceRef InstanceRef::adopt(AssetInstance* instance)
{
    return InstanceRef(instance);
}

InstanceRef InstanceRef::share(AssetInstance* instance)
{
    if (instance != nullptr) {
        instance->AddRef();
    }
    return InstanceRef(instance);
}

InstanceRef::~InstanceRef()
{
    if (m_instance != nullptr) {
        m_instance->Release();
    }
}

InstanceRef::InstanceRef(const InstanceRef& other)
    : m_instance(other.m_instance)
{
    if (m_instance != nullptr) {
        m_instance->AddRef();
    }
}

InstanceRef& InstanceRef::operator=(const InstanceRef& other)
{
    InstanceRef copy(other);
    std::swap(m_instance, copy.m_instance);
    return *this;
}

InstanceRef& InstanceRef::operator=(InstanceRef&& other) noexcept
{
    InstanceRef taken(std::move(other));
    std::swap(m_instance, taken.m_instance);
    return *this;
}

// ---- AssetInstance ----

AssetInstance::AssetInstance(UTF8String assetId, WideString schema, std::shared_ptr<const AssetDefinition> definition)
    : m_assetId(std::move(assetId))
    , m_schema(std::move(schema))
    , m_definition(std::move(definition))
{
}

AssetInstance* AssetInstance::from(IAssetInstance* instance)
{
    return dynamic_cast<AssetInstance*>(instance);
}

const AssetInstance* AssetInstance::from(const IAssetInstance* instance)
{
    return dynamic_cast<const AssetInstance*>(instance);
}

int AssetInstance::AddRef()
{
    return m_references.fetch_add(1, std::memory_order_relaxed) + 1;
}

int AssetInstance::Release()
{
    const int remaining = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    KX_ASSERT(remaining >= 0);
    if (remaining == 0) {
        delete this;
    }
    return remaining;
}

int AssetInstance::GetReferenceCount() const
{
    return m_references.load(std::memory_order_acquire);
}

IAssetDefinition* AssetInstance::GetAssetDefinition() const
{
    // Definitions are immutable; the interface hands them out non-const because callers pass them
    // back into the API.
    return const_cast<AssetDefinition*>(m_definition.get());
}

std::vector<WideString> AssetInstance::GetPropertyNames() const
{
    std::vector<WideString> names;
    names.reserve(m_properties.size());
    for (const auto& entry : m_properties) {
        names.push_back(entry.first);
    }
    return names;
}

bool AssetInstance::HasProperty(const WideString& name) const
{
    return m_properties.contains(name);
}

EPropertyType AssetInstance::GetPropertyType(const WideString& name) const
{
    const auto found = m_properties.find(name);
    return found != m_properties.end() ? found->second.type : EPropertyType::eUndefined;
}

bool AssetInstance::RemoveProperty(const WideString& name)
{
    return m_properties.erase(name) > 0;
}

const Property* AssetInstance::find(const WideString& name, EPropertyType type) const
{
    const auto found = m_properties.find(name);
    return found != m_properties.end() && found->second.type == type ? &found->second : nullptr;
}

template <typename T>
bool AssetInstance::setValue(const WideString& name, EPropertyType type, T value)
{
    auto found = m_properties.find(name);
    if (found != m_properties.end() && found->second.type != type) {
        return false;
    }
    // A new property has no constraint yet, which still refuses NaN.
    const NumericConstraint unbounded;
    const NumericConstraint& constraint =
        found != m_properties.end() && found->second.constraint ? *found->second.constraint : unbounded;
    if constexpr (std::is_same_v<T, double> || std::is_same_v<T, int>) {
        if (!constraint.admits(static_cast<double>(value))) {
            return false;
        }
    } else if constexpr (std::is_same_v<T, std::vector<double>>) {
        if (!std::all_of(value.begin(), value.end(), [&](double element) { return constraint.admits(element); })) {
            return false;
        }
    }
    if (found == m_properties.end()) {
        Property property;
        property.type = type;
        property.value = std::move(value);
        m_properties.emplace(name, std::move(property));
        return true;
    }
    found->second.value = std::move(value);
    return true;
}

bool AssetInstance::GetStringValue(const WideString& name, WideString& value) const
{
    const Property* property = find(name, EPropertyType::eString);
    return property != nullptr && (value = std::get<WideString>(property->value), true);
}

bool AssetInstance::SetStringValue(const WideString& name, const WideString& value)
{
    return setValue(name, EPropertyType::eString, value);
}

bool AssetInstance::GetBoolValue(const WideString& name, bool& value) const
{
    const Property* property = find(name, EPropertyType::eBoolean);
    return property != nullptr && (value = std::get<bool>(property->value), true);
}

bool AssetInstance::SetBoolValue(const WideString& name, bool value)
{
    return setValue(name, EPropertyType::eBoolean, value);
}

bool AssetInstance::GetIntegerValue(const WideString& name, int& value) const
{
    const Property* property = find(name, EPropertyType::eInteger);
    return property != nullptr && (value = std::get<int>(property->value), true);
}

bool AssetInstance::SetIntegerValue(const WideString& name, int value)
{
    return setValue(name, EPropertyType::eInteger, value);
}

bool AssetInstance::GetDoubleValue(const WideString& name, double& value) const
{
    const Property* property = find(name, EPropertyType::eDouble);
    return property != nullptr && (value = std::get<double>(property->value), true);
}

bool AssetInstance::SetDoubleValue(const WideString& name, double value)
{
    return setValue(name, EPropertyType::eDouble, value);
}

bool AssetInstance::GetColorValue(const WideString& name, AssetColor& value) const
{
    const Property* property = find(name, EPropertyType::eColor);
    return property != nullptr && (value = std::get<AssetColor>(property->value), true);
}

bool AssetInstance::SetColorValue(const WideString& name, const AssetColor& value)
{
    return setValue(name, EPropertyType::eColor, value);
}

bool AssetInstance::GetChoiceValue(const WideString& name, int& value) const
{
    const Property* property = find(name, EPropertyType::eChoice);
    return property != nullptr && (value = std::get<int>(property->value), true);
}

bool AssetInstance::SetChoiceValue(const WideString& name, int value)
{
    const auto found = m_properties.find(name);
    if (found == m_properties.end() || found->second.type != EPropertyType::eChoice) {
        return false;
    }
    const auto& choices = found->second.choices;
    if (std::none_of(choices.begin(), choices.end(), [&](const ChoiceItem& item) { return item.value == value; })) {
        return false;
    }
    found->second.value = value;
    return true;
}

bool AssetInstance::GetIntegerArrayValue(const WideString& name, std::vector<int>& value) const
{
    const Property* property = find(name, EPropertyType::eIntegerArray);
    return property != nullptr && (value = std::get<std::vector<int>>(property->value), true);
}

bool AssetInstance::SetIntegerArrayValue(const WideString& name, const std::vector<int>& value)
{
    return setValue(name, EPropertyType::eIntegerArray, value);
}

bool AssetInstance::GetDoubleArrayValue(const WideString& name, std::vector<double>& value) const
{
    const Property* property = find(name, EPropertyType::eDoubleArray);
    return property != nullptr && (value = std::get<std::vector<double>>(property->value), true);
}

bool AssetInstance::SetDoubleArrayValue(const WideString& name, const std::vector<double>& value)
{
    return setValue(name, EPropertyType::eDoubleArray, value);
}

bool AssetInstance::GetChoices(const WideString& name, std::vector<ChoiceItem>& choices) const
{
    const Property* property = find(name, EPropertyType::eChoice);
    return property != nullptr && (choices = property->choices, true);
}

bool AssetInstance::SetChoices(const WideString& name, const std::vector<ChoiceItem>& choices)
{
    if (choices.empty()) {
        return false;
    }
    std::set<int> values;
    for (const ChoiceItem& item : choices) {
        // Labels are stored one per line.
        if (!values.insert(item.value).second || item.label.find(L'\n') != WideString::npos) {
            return false;
        }
    }
    auto found = m_properties.find(name);
    if (found == m_properties.end()) {
        Property property;
        property.type = EPropertyType::eChoice;
        property.value = choices.front().value;
        found = m_properties.emplace(name, std::move(property)).first;
    } else if (found->second.type != EPropertyType::eChoice) {
        return false;
    }
    found->second.choices = choices;
    if (!values.contains(std::get<int>(found->second.value))) {
        found->second.value = choices.front().value;
    }
    return true;
}

namespace {

bool takesConstraint(EPropertyType type)
{
    return type == EPropertyType::eInteger || type == EPropertyType::eDouble || type == EPropertyType::eDoubleArray;
}

} // namespace

bool AssetInstance::GetNumericConstraint(const WideString& name, NumericConstraint& constraint) const
{
    const auto found = m_properties.find(name);
    if (found == m_properties.end() || !found->second.constraint) {
        return false;
    }
    constraint = *found->second.constraint;
    return true;
}

bool AssetInstance::SetNumericConstraint(const WideString& name, const NumericConstraint& constraint)
{
    const auto found = m_properties.find(name);
    if (found == m_properties.end() || !takesConstraint(found->second.type) || std::isnan(constraint.minimum) ||
        std::isnan(constraint.maximum) || std::isnan(constraint.increment)) {
        return false;
    }
    if (constraint.hasMinimum && constraint.hasMaximum && constraint.minimum > constraint.maximum) {
        return false;
    }
    found->second.constraint = constraint;
    return true;
}

bool AssetInstance::ClearNumericConstraint(const WideString& name)
{
    const auto found = m_properties.find(name);
    if (found == m_properties.end() || !found->second.constraint) {
        return false;
    }
    found->second.constraint.reset();
    return true;
}

WideString AssetInstance::GetPropertyUnit(const WideString& name) const
{
    const auto found = m_properties.find(name);
    return found != m_properties.end() ? found->second.unit : WideString();
}

bool AssetInstance::SetPropertyUnit(const WideString& name, const WideString& unit)
{
    const auto found = m_properties.find(name);
    if (found == m_properties.end()) {
        return false;
    }
    found->second.unit = unit;
    return true;
}

int AssetInstance::GetConnectedAssetCount(const WideString& name) const
{
    const auto found = m_properties.find(name);
    return found != m_properties.end() ? static_cast<int>(found->second.connected.size()) : 0;
}

IAssetInstance* AssetInstance::GetConnectedAsset(const WideString& name, int index) const
{
    const auto found = m_properties.find(name);
    if (found == m_properties.end() || index < 0 || index >= static_cast<int>(found->second.connected.size())) {
        return nullptr;
    }
    AssetInstance* asset = found->second.connected[static_cast<std::size_t>(index)].get();
    asset->AddRef();
    return asset;
}

bool AssetInstance::reaches(const AssetInstance* target) const
{
    if (this == target) {
        return true;
    }
    for (const auto& entry : m_properties) {
        for (const InstanceRef& connected : entry.second.connected) {
            if (connected->reaches(target)) {
                return true;
            }
        }
    }
    return false;
}

bool AssetInstance::connect(const WideString& name, IAssetInstance* asset, bool replace)
{
    AssetInstance* own = from(asset);
    if (own == nullptr || own->reaches(this)) {
        return false;
    }
    auto found = m_properties.find(name);
    if (found == m_properties.end()) {
        Property property;
        property.type = EPropertyType::eReference;
        found = m_properties.emplace(name, std::move(property)).first;
    }
    if (replace) {
        found->second.connected.clear();
    }
    found->second.connected.push_back(InstanceRef::share(own));
    return true;
}

bool AssetInstance::SetConnectedAsset(const WideString& name, IAssetInstance* asset)
{
    return connect(name, asset, true);
}

bool AssetInstance::AddConnectedAsset(const WideString& name, IAssetInstance* asset)
{
    return connect(name, asset, false);
}

bool AssetInstance::DisconnectAssets(const WideString& name)
{
    const auto found = m_properties.find(name);
    if (found == m_properties.end() || found->second.connected.empty()) {
        return false;
    }
    if (found->second.type == EPropertyType::eReference) {
        m_properties.erase(found);
    } else {
        found->second.connected.clear();
    }
    return true;
}

WideString AssetInstance::GetName(const UTF8String& language) const
{
    if (const auto found = m_names.find(language); found != m_names.end()) {
        return found->second;
    }
    const auto english = m_names.find(s_englishLanguage);
    return english != m_names.end() ? english->second : WideString();
}

void AssetInstance::SetName(const UTF8String& language, const WideString& name)
{
    m_names[language] = name;
}

WideString AssetInstance::GetThumbnailImageURI() const
{
    WideString uri;
    GetStringValue(L"thumbnail", uri);
    return uri;
}

AssetInstance* AssetInstance::cloneInto(std::map<const AssetInstance*, AssetInstance*>& copies) const
{
    if (const auto done = copies.find(this); done != copies.end()) {
        done->second->AddRef();
        return done->second;
    }
    auto* copy = new AssetInstance(m_assetId, m_schema, m_definition);
    copies.emplace(this, copy);
    copy->m_names = m_names;
    for (const auto& [name, property] : m_properties) {
        Property copied = property;
        for (InstanceRef& connected : copied.connected) {
            connected = InstanceRef::adopt(connected->cloneInto(copies));
        }
        copy->m_properties.emplace(name, std::move(copied));
    }
    return copy;
}

IAssetInstance* AssetInstance::Clone() const
{
    std::map<const AssetInstance*, AssetInstance*> copies;
    return cloneInto(copies);
}

namespace {

bool sameProperty(const Property& left, const Property& right)
{
    if (left.type != right.type || left.value != right.value || left.constraint != right.constraint ||
        left.unit != right.unit || left.choices != right.choices || left.connected.size() != right.connected.size()) {
        return false;
    }
    for (std::size_t index = 0; index < left.connected.size(); ++index) {
        if (!left.connected[index]->IsEqual(right.connected[index].get())) {
            return false;
        }
    }
    return true;
}

} // namespace

bool AssetInstance::IsEqual(const IAssetInstance* other) const
{
    const AssetInstance* own = from(other);
    if (own == nullptr) {
        return false;
    }
    if (own == this) {
        return true;
    }
    return m_schema == own->m_schema && m_properties.size() == own->m_properties.size() &&
           std::equal(m_properties.begin(), m_properties.end(), own->m_properties.begin(),
               [](const auto& left, const auto& right) { return left.first == right.first && sameProperty(left.second, right.second); });
}

} // namespace telvarin::platform::assets
