#pragma once

#include "assets/AssetTypes.h"

#include <map>
#include <memory>
#include <vector>

namespace telvarin::platform::assets {

class IAssetDefinition;

// One material, appearance, aspect or texture with its own property values. Instances are shared
// and counted: whoever receives one from the API (create, clone, search, connected asset) holds one
// reference and gives it back with Release(); the last Release() destroys the instance. Counting is
// thread-safe; reading and changing properties is not, so an owner that shares instances between
// threads serialises access to them.
//
// Properties are addressed by name. Getters answer false, leaving the output alone, for a missing
// property or one of another type. Setters add a missing property with the setter's type; they
// refuse (false, nothing changed) a property of another type, a value outside the property's
// numeric constraint, NaN, and a choice that is not in the property's list.
class IAssetInstance {
public:
    // Answers the new count.
    virtual int AddRef() = 0;
    virtual int Release() = 0;
    [[nodiscard]] virtual int GetReferenceCount() const = 0;

    // The preset this instance was made from (also after cloning); null for assets made from
    // scratch and for assets that are only connected to a preset (aspects, textures).
    [[nodiscard]] virtual IAssetDefinition* GetAssetDefinition() const = 0;
    // The preset's material id, or the asset's own id (e.g. "CorvexMaterial-018/Structural").
    [[nodiscard]] virtual const UTF8String& GetAssetId() const = 0;
    [[nodiscard]] virtual const WideString& GetSchemaName() const = 0;

    // --- properties ---
    [[nodiscard]] virtual std::vector<WideString> GetPropertyNames() const = 0;
    [[nodiscard]] virtual bool HasProperty(const WideString& name) const = 0;
    [[nodiscard]] virtual EPropertyType GetPropertyType(const WideString& name) const = 0;
    virtual bool RemoveProperty(const WideString& name) = 0;

    virtual bool GetStringValue(const WideString& name, WideString& value) const = 0;
    virtual bool SetStringValue(const WideString& name, const WideString& value) = 0;
    virtual bool GetBoolValue(const WideString& name, bool& value) const = 0;
    virtual bool SetBoolValue(const WideString& name, bool value) = 0;
    virtual bool GetIntegerValue(const WideString& name, int& value) const = 0;
    virtual bool SetIntegerValue(const WideString& name, int value) = 0;
    virtual bool GetDoubleValue(const WideString& name, double& value) const = 0;
    virtual bool SetDoubleValue(const WideString& name, double value) = 0;
    virtual bool GetColorValue(const WideString& name, AssetColor& value) const = 0;
    virtual bool SetColorValue(const WideString& name, const AssetColor& value) = 0;
    virtual bool GetChoiceValue(const WideString& name, int& value) const = 0;
    // A missing choice property cannot be added by this setter (it has no list): use SetChoices first.
    virtual bool SetChoiceValue(const WideString& name, int value) = 0;
    virtual bool GetIntegerArrayValue(const WideString& name, std::vector<int>& value) const = 0;
    virtual bool SetIntegerArrayValue(const WideString& name, const std::vector<int>& value) = 0;
    virtual bool GetDoubleArrayValue(const WideString& name, std::vector<double>& value) const = 0;
    // Every element must satisfy the constraint.
    virtual bool SetDoubleArrayValue(const WideString& name, const std::vector<double>& value) = 0;

    // A choice property's allowed values. Setting the list adds the property when missing (its value
    // becomes the first item's) and refuses an empty list, repeated values, or a property of
    // another type; a current value that is no longer listed becomes the first item's.
    virtual bool GetChoices(const WideString& name, std::vector<ChoiceItem>& choices) const = 0;
    virtual bool SetChoices(const WideString& name, const std::vector<ChoiceItem>& choices) = 0;

    // Integer, double and double-array properties only. Setting a constraint leaves the current
    // value as it is, even outside it.
    virtual bool GetNumericConstraint(const WideString& name, NumericConstraint& constraint) const = 0;
    virtual bool SetNumericConstraint(const WideString& name, const NumericConstraint& constraint) = 0;
    virtual bool ClearNumericConstraint(const WideString& name) = 0;

    // The unit of a numeric property as text ("kg/m^3", "Pa"); empty for none or a missing property.
    [[nodiscard]] virtual WideString GetPropertyUnit(const WideString& name) const = 0;
    virtual bool SetPropertyUnit(const WideString& name, const WideString& unit) = 0;

    // --- connected assets ---
    // Any property may connect assets: a texture that drives a colour, the aspects of a physical
    // material, the appearance under "materialappearance". A property added only to connect assets
    // has type eReference. The getter answers the asset with a reference for the caller, or null.
    [[nodiscard]] virtual int GetConnectedAssetCount(const WideString& name) const = 0;
    [[nodiscard]] virtual IAssetInstance* GetConnectedAsset(const WideString& name, int index = 0) const = 0;
    // Replaces all connections of the property with `asset` (adding an eReference property when
    // missing). Refused for null, for an asset of another implementation, and when the connection
    // would make a cycle (the asset is, or connects to, this instance).
    virtual bool SetConnectedAsset(const WideString& name, IAssetInstance* asset) = 0;
    // Appends a connection; same refusals.
    virtual bool AddConnectedAsset(const WideString& name, IAssetInstance* asset) = 0;
    // Drops every connection of the property; an eReference property goes with them.
    virtual bool DisconnectAssets(const WideString& name) = 0;

    // --- names ---
    // The name in `language` ("eng", "deu"); without one, the English name; without that, empty.
    [[nodiscard]] virtual WideString GetName(const UTF8String& language) const = 0;
    virtual void SetName(const UTF8String& language, const WideString& name) = 0;
    [[nodiscard]] virtual std::map<UTF8String, WideString> GetNames() const = 0;

    // The string property "thumbnail": a file path or an embedded-resource URI
    // ("tvp:?asset=<name>", see IAssetLibrary::ReadEmbeddedResource); empty when there is none.
    [[nodiscard]] virtual WideString GetThumbnailImageURI() const = 0;

    // A deep copy (connected assets are copied too, shared ones stay shared) with the same
    // definition, id and names, and one reference for the caller.
    [[nodiscard]] virtual IAssetInstance* Clone() const = 0;
    // Same schema and the same properties with exactly equal values, constraints, units, choices
    // and (recursively) connected assets. Names and identity are not compared.
    [[nodiscard]] virtual bool IsEqual(const IAssetInstance* other) const = 0;

protected:
    // Only Release() destroys an instance.
    virtual ~IAssetInstance() = default;
};

// Gives back, when it goes, the one reference the API hands out with an instance.
struct ReleaseInstance {
    void operator()(IAssetInstance* instance) const
    {
        if (instance != nullptr) {
            instance->Release();
        }
    }
};
using InstancePtr = std::unique_ptr<IAssetInstance, ReleaseInstance>;

} // namespace telvarin::platform::assets
