#pragma once

#include "AssetDefinition.h"
#include "AssetInstance.h"

#include "assets/IAssetSerializer.h"

#include <memory>
#include <utility>
#include <vector>

namespace telvarin::platform::assets {

class AssetSerializer final : public IAssetSerializer {
public:
    bool RegisterAssetInstance(IAssetInstance* instance, const WideString& key) override;
    [[nodiscard]] std::size_t GetAssetInstanceCount() const override { return m_instances.size(); }
    bool Serialize(core::io::IDataWriteStream& stream, AssetError* error) override;
    bool SerializeToBytes(std::vector<std::uint8_t>& bytes, AssetError* error) override;

private:
    std::vector<std::pair<WideString, InstanceRef>> m_instances;
};

class AssetDeSerializer final : public IAssetDeSerializer {
public:
    bool Deserialize(core::io::IDataReadStream& stream, IAssetLibraryRequest* resolver, AssetError* error) override;
    bool DeserializeFromBytes(std::span<const std::uint8_t> bytes, IAssetLibraryRequest* resolver,
        AssetError* error) override;
    [[nodiscard]] std::vector<WideString> GetKeys() const override;
    [[nodiscard]] IAssetInstance* TakeAssetInstance(const WideString& key) override;

private:
    std::vector<std::pair<WideString, InstanceRef>> m_instances;
};

} // namespace telvarin::platform::assets
