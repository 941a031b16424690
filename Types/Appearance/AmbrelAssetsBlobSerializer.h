#pragma once

#include <assets/IAssetSerializer.h>
#include <datamodel/Blob.h>
#include <datamodel/BlobSerializer.h>

#include <filesystem>
#include <memory>
#include <vector>

namespace telvarin::platform::core::io {
class FileDataStream;
}

namespace Kx {

// The blob that stands for a document's material assets: the part "AmbrelAsset.ambrel", whose
// content is what the asset serializer writes (a library database in bytes). Before a save it
// carries the serializer the registry filled; after an open, the file the part was extracted to.
class AmbrelAssetsBlob final : public Blob {
public:
    using IAssetSerializer = telvarin::platform::assets::IAssetSerializer;
    using IAssetDeSerializer = telvarin::platform::assets::IAssetDeSerializer;
    using FileDataStream = telvarin::platform::core::io::FileDataStream;

    // A blob to save into `part`.
    [[nodiscard]] static std::unique_ptr<AmbrelAssetsBlob> make(Document* asset, BlobPart* part);
    // A blob read from `part`, whose bytes are in `filePath` (removed with the blob).
    [[nodiscard]] static std::unique_ptr<AmbrelAssetsBlob> make(Document* asset, BlobPart* part,
        BlobSerializer* serializer, std::filesystem::path filePath);
    ~AmbrelAssetsBlob() override;

    [[nodiscard]] IAssetSerializer* ambrelSerializer() const { return m_serializer.get(); }
    void ambrelSerializer(std::unique_ptr<IAssetSerializer> serializer) { m_serializer = std::move(serializer); }
    [[nodiscard]] IAssetDeSerializer* ambrelDeserializer() const { return m_deserializer.get(); }
    void ambrelDeserializer(std::unique_ptr<IAssetDeSerializer> deserializer) { m_deserializer = std::move(deserializer); }
    [[nodiscard]] FileDataStream* ambrelDeserializerFileStream() const { return m_deserializerStream.get(); }
    void ambrelDeserializerFileStream(std::unique_ptr<FileDataStream> stream);
    void destroyDeserializerFileStream();
    [[nodiscard]] const std::filesystem::path& filePath() const { return m_filePath; }

private:
    AmbrelAssetsBlob(Document* asset, BlobPart* part, BlobSerializer* serializer, std::filesystem::path filePath);

    std::unique_ptr<IAssetSerializer> m_serializer;
    std::unique_ptr<IAssetDeSerializer> m_deserializer;
    std::unique_ptr<FileDataStream> m_deserializerStream;
    std::filesystem::path m_filePath;
};

// Moves the blob between the zip part and a temporary file (kind "ambrel").
class AmbrelAssetsBlobSerializer final : public BlobSerializer {
public:
    [[nodiscard]] static AmbrelAssetsBlobSerializer& get();
    void doSave(Blob* pBlob, BlobStatus& status) override;
    [[nodiscard]] Blob* doLoad(Document* asset, BlobPart* part, BlobStatus& status) override;

private:
    AmbrelAssetsBlobSerializer() : BlobSerializer("ambrel") {}
};

// The libraries the deserializer asks for while it reads a document's assets: the open libraries
// of the library manager. A library missing on this machine is no failure: the asset keeps the
// identity it was saved with and its values come from the document.
class AmbrelAssetLibraryRequest final : public telvarin::platform::assets::IAssetLibraryRequest {
public:
    [[nodiscard]] static AmbrelAssetLibraryRequest* get();
    [[nodiscard]] telvarin::platform::assets::IAssetLibrary* RequestAssetLibrary(
        const telvarin::platform::assets::WideString& libraryId) override;
};

} // namespace Kx
