#pragma once

#include "AssetDefinition.h"

#include "assets/IAssetInstance.h"

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace telvarin::platform::assets {

class AssetInstance;

// One counted reference on an instance; copying adds one.
class InstanceRef {
public:
    InstanceRef() = default;
    // Takes over a reference the caller already holds.
    static InstanceRef adopt(AssetInstance* instance);
    // Adds a reference of its own.
    static InstanceRef share(AssetInstance* instance);
    ~InstanceRef();
    InstanceRef(const InstanceRef& other);
    InstanceRef& operator=(const InstanceRef& other);
    InstanceRef(InstanceRef&& other) noexcept : m_instance(std::exchange(other.m_instance, nullptr)) {}
    InstanceRef& operator=(InstanceRef&& other) noexcept;

    [[nodiscard]] AssetInstance* get() const { return m_instance; }
    AssetInstance* operator->() const { return m_instance; }
    explicit operator bool() const { return m_instance != nullptr; }
    // Hands the reference to the caller.
    [[nodiscard]] AssetInstance* release() { return std::exchange(m_instance, nullptr); }

private:
    explicit InstanceRef(AssetInstance* instance) : m_instance(instance) {}
    AssetInstance* m_instance = nullptr;
};

using PropertyValue =
    std::variant<std::monostate, WideString, bool, int, double, AssetColor, std::vector<int>, std::vector<double>>;

struct Property {
    EPropertyType type = EPropertyType::eUndefined;
    PropertyValue value;
    std::optional<NumericConstraint> constraint;
    WideString unit;
    std::vector<ChoiceItem> choices;
    std::vector<InstanceRef> connected;
};

class AssetInstance final : public IAssetInstance {
public:
    // Starts with one reference, the creator's.
    AssetInstance(UTF8String assetId, WideString schema, std::shared_ptr<const AssetDefinition> definition);

    int AddRef() override;
    int Release() override;
    [[nodiscard]] int GetReferenceCount() const override;

    [[nodiscard]] IAssetDefinition* GetAssetDefinition() const override;
    [[nodiscard]] const UTF8String& GetAssetId() const override { return m_assetId; }
    [[nodiscard]] const WideString& GetSchemaName() const override { return m_schema; }

    [[nodiscard]] std::vector<WideString> GetPropertyNames() const override;
    [[nodiscard]] bool HasProperty(const WideString& name) const override;
    [[nodiscard]] EPropertyType GetPropertyType(const WideString& name) const override;
    bool RemoveProperty(const WideString& name) override;

    bool GetStringValue(const WideString& name, WideString& value) const override;
    bool SetStringValue(const WideString& name, const WideString& value) override;
    bool GetBoolValue(const WideString& name, bool& value) const override;
    bool SetBoolValue(const WideString& name, bool value) override;
    bool GetIntegerValue(const WideString& name, int& value) const override;
    bool SetIntegerValue(const WideString& name, int value) override;
    bool GetDoubleValue(const WideString& name, double& value) const override;
    bool SetDoubleValue(const WideString& name, double value) override;
    bool GetColorValue(const WideString& name, AssetColor& value) const override;
    bool SetColorValue(const WideString& name, const AssetColor& value) override;
    bool GetChoiceValue(const WideString& name, int& value) const override;
    bool SetChoiceValue(const WideString& name, int value) override;
    bool GetIntegerArrayValue(const WideString& name, std::vector<int>& value) const override;
    bool SetIntegerArrayValue(const WideString& name, const std::vector<int>& value) override;
    bool GetDoubleArrayValue(const WideString& name, std::vector<double>& value) const override;
    bool SetDoubleArrayValue(const WideString& name, const std::vector<double>& value) override;
    bool GetChoices(const WideString& name, std::vector<ChoiceItem>& choices) const override;
    bool SetChoices(const WideString& name, const std::vector<ChoiceItem>& choices) override;
    bool GetNumericConstraint(const WideString& name, NumericConstraint& constraint) const override;
    bool SetNumericConstraint(const WideString& name, const NumericConstraint& constraint) override;
    bool ClearNumericConstraint(const WideString& name) override;
    [[nodiscard]] WideString GetPropertyUnit(const WideString& name) const override;
    bool SetPropertyUnit(const WideString& name, const WideString& unit) override;

    [[nodiscard]] int GetConnectedAssetCount(const WideString& name) const override;
    [[nodiscard]] IAssetInstance* GetConnectedAsset(const WideString& name, int index) const override;
    bool SetConnectedAsset(const WideString& name, IAssetInstance* asset) override;
    bool AddConnectedAsset(const WideString& name, IAssetInstance* asset) override;
    bool DisconnectAssets(const WideString& name) override;

    [[nodiscard]] WideString GetName(const UTF8String& language) const override;
    void SetName(const UTF8String& language, const WideString& name) override;
    [[nodiscard]] std::map<UTF8String, WideString> GetNames() const override { return m_names; }
    [[nodiscard]] WideString GetThumbnailImageURI() const override;

    [[nodiscard]] IAssetInstance* Clone() const override;
    [[nodiscard]] bool IsEqual(const IAssetInstance* other) const override;

    // For the readers and writers of libraries.
    [[nodiscard]] const std::map<WideString, Property>& properties() const { return m_properties; }
    std::map<WideString, Property>& properties() { return m_properties; }
    std::map<UTF8String, WideString>& names() { return m_names; }
    [[nodiscard]] const std::map<UTF8String, WideString>& names() const { return m_names; }
    [[nodiscard]] const std::shared_ptr<const AssetDefinition>& definition() const { return m_definition; }
    // True when `target` is this instance or connected to it, directly or not.
    [[nodiscard]] bool reaches(const AssetInstance* target) const;

    // Null for null and for instances of another implementation.
    [[nodiscard]] static AssetInstance* from(IAssetInstance* instance);
    [[nodiscard]] static const AssetInstance* from(const IAssetInstance* instance);

private:
    ~AssetInstance() override = default;

    [[nodiscard]] const Property* find(const WideString& name, EPropertyType type) const;
    template <typename T>
    bool setValue(const WideString& name, EPropertyType type, T value);
    bool connect(const WideString& name, IAssetInstance* asset, bool replace);
    [[nodiscard]] AssetInstance* cloneInto(std::map<const AssetInstance*, AssetInstance*>& copies) const;

    std::atomic<int> m_references{1};
    UTF8String m_assetId;
    WideString m_schema;
    std::shared_ptr<const AssetDefinition> m_definition;
    std::map<WideString, Property> m_properties;
    std::map<UTF8String, WideString> m_names;
};

} // namespace telvarin::platform::assets
