#pragma once

#include "assets/AssetTypes.h"

#include <core/io/DataStream.h>

#include <cstdint>
#include <span>
#include <vector>

namespace telvarin::platform::assets {

class IAssetInstance;
class IAssetLibrary;

// Writes a set of instances, with everything connected to them, as a library database in bytes (the
// .tvrnlib layout, library kind 0), so that a document can carry its assets in one blob.
class IAssetSerializer {
public:
    virtual ~IAssetSerializer() = default;

    // Adds an instance under the caller's key (unique per serializer); the serializer holds a
    // reference until it goes. Refused for null, an instance of another implementation, or a key
    // already used.
    virtual bool RegisterAssetInstance(IAssetInstance* instance, const WideString& key) = 0;
    [[nodiscard]] virtual std::size_t GetAssetInstanceCount() const = 0;
    // Writes every registered instance at the stream's cursor. The same instances in the same order
    // give the same bytes.
    virtual bool Serialize(core::io::IDataWriteStream& stream, AssetError* error = nullptr) = 0;
    virtual bool SerializeToBytes(std::vector<std::uint8_t>& bytes, AssetError* error = nullptr) = 0;
};

// Answers the open library with an identifier, or null; whatever it opens is its own to release.
class IAssetLibraryRequest {
public:
    [[nodiscard]] virtual IAssetLibrary* RequestAssetLibrary(const WideString& libraryId) = 0;

protected:
    virtual ~IAssetLibraryRequest() = default;
};

// Reads back what an IAssetSerializer wrote.
class IAssetDeSerializer {
public:
    virtual ~IAssetDeSerializer() = default;

    // Reads the stream from its cursor to its end. For each library an instance came from, the
    // resolver (when given) is asked once; when it answers a library that holds the preset, the
    // instance's definition is that library's, otherwise one is rebuilt from the stored identity.
    // Values always come from the stream: they may carry the document's own changes. Any damage to
    // the bytes fails the whole read and keeps nothing.
    virtual bool Deserialize(core::io::IDataReadStream& stream, IAssetLibraryRequest* resolver = nullptr,
        AssetError* error = nullptr) = 0;
    virtual bool DeserializeFromBytes(std::span<const std::uint8_t> bytes, IAssetLibraryRequest* resolver = nullptr,
        AssetError* error = nullptr) = 0;
    // The keys read, in the order they were registered.
    [[nodiscard]] virtual std::vector<WideString> GetKeys() const = 0;
    // Hands the deserializer's reference on the instance to the caller (the count does not change)
    // and forgets it; null for an unknown key or one taken already. Instances nobody takes are
    // released with the deserializer.
    [[nodiscard]] virtual IAssetInstance* TakeAssetInstance(const WideString& key) = 0;
};

} // namespace telvarin::platform::assets
