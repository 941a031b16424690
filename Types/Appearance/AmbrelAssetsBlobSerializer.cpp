#include "Types/Appearance/AmbrelAssetsBlobSerializer.h"

#include "Types/Appearance/AmbrelManager.h"
#include "Types/Appearance/internal/MaterialValueSupport.h"

#include <base/AppLogMgr.h>
#include <base/Assert.h>
#include <base/Exception.h>
#include <base/FaultInjection.h>
#include <base/TempFile.h>
#include <core/io/FileDataStream.h>
#include <datamodel/BlobPart.h>

#include <mutex>
#include <system_error>

namespace Kx {

using telvarin::platform::core::io::FileDataStream;

AmbrelAssetsBlob::AmbrelAssetsBlob(Document* asset, BlobPart* part, BlobSerializer* serializer,
    std::filesystem::path filePath)
    : Blob(asset, part, serializer), m_filePath(std::move(filePath))
{
}

AmbrelAssetsBlob::~AmbrelAssetsBlob()
{
    destroyDeserializerFileStream();
    if (!m_filePath.empty()) {
        std::error_code ignored;
        std::filesystem::remove(m_filePath, ignored);
    }
}

std::unique_ptr<AmbrelAssetsBlob> AmbrelAssetsBlob::make(Document* asset, BlobPart* part)
{
    return std::unique_ptr<AmbrelAssetsBlob>(new AmbrelAssetsBlob(asset, part, nullptr, {}));
}

std::unique_ptr<AmbrelAssetsBlob> AmbrelAssetsBlob::make(Document* asset, BlobPart* part, BlobSerializer* serializer,
    std::filesystem::path filePath)
{
    return std::unique_ptr<AmbrelAssetsBlob>(new AmbrelAssetsBlob(asset, part, serializer, std::move(filePath)));
}

void AmbrelAssetsBlob::ambrelDeserializerFileStream(std::unique_ptr<FileDataStream> stream)
{
    destroyDeserializerFileStream();
    m_deserializerStream = std::move(stream);
}

void AmbrelAssetsBlob::destroyDeserializerFileStream()
{
    if (m_deserializerStream) {
        m_deserializerStream->close();
        m_deserializerStream.reset();
    }
}

AmbrelAssetsBlobSerializer& AmbrelAssetsBlobSerializer::get()
{
    static AmbrelAssetsBlobSerializer serializer;
    return serializer;
}

void AmbrelAssetsBlobSerializer::doSave(Blob* pBlob, BlobStatus&)
{
    KX_ASSERT(dynamic_cast<AmbrelAssetsBlob*>(pBlob) != NULL);
    auto* blob = dynamic_cast<AmbrelAssetsBlob*>(pBlob);
    if (blob == nullptr) {
        return;
    }
    KX_ASSERT(pBlob->blobPart());
    try {
        const TempFile file("AmbrelAssetsSerialized");
        if (FaultInjection::shouldFail("Kx::AmbrelAssetsBlobSerializer::doSave - Simulated Exception")) {
            throw Exception(L"Kx::AmbrelAssetsBlobSerializer::doSave - Simulated Exception");
        }
        bool written = false;
        {
            AmbrelManager* manager = MaterialValues::libraryManager();
            std::unique_lock<std::recursive_mutex> lock;
            if (manager != nullptr) {
                lock = std::unique_lock(manager->mutex());
            }
            FileDataStream stream(file.path(), FileDataStream::EOpenMode::eWrite);
            written = stream.open() && blob->ambrelSerializer() != nullptr && blob->ambrelSerializer()->Serialize(stream);
            stream.close();
            blob->ambrelSerializer(nullptr);
        }
        if (!written) {
            KX_ASSERT(false);
            throw Exception(L"AmbrelAssetsBlobSerializer - Could not serialize the Ambrel Assets to a file on disk!");
        }
        if (!pBlob->blobPart()->createZipPartFromFile(file.path()) || !pBlob->blobPart()->hasZipPart()) {
            KX_ASSERT(false);
            throw Exception(L"AmbrelAssetsBlobSerializer - createZipPartFromFile failed!");
        }
    } catch (const Exception& exception) {
        blob->ambrelSerializer(nullptr);
        AppLogMgr::appLogEx(ELogLevel::eInfo, exception.userText());
        throw;
    } catch (...) {
        blob->ambrelSerializer(nullptr);
        AppLogMgr::appLogEx(ELogLevel::eInfo, L"AmbrelAssetsBlobSerializer - Got an unknown exception during persistence Ambrel Assets "
                               L"to a local file on disk!");
        throw Exception(L"Got an unknown exception during persistence Ambrel Assets to a local file on disk!");
    }
}

Blob* AmbrelAssetsBlobSerializer::doLoad(Document* asset, BlobPart* part, BlobStatus&)
{
    // The file outlives this call: the registry reads it when the document's entities are in.
    std::filesystem::path path = TempFile("AmbrelAssetsDeserialized").release();
    const bool bLoad = part != nullptr && part->extractZipPartToFile(path);
    if (!bLoad) {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        KX_ASSERT(bLoad);
        throw Exception(L"The file you are trying to open is corrupt! The current operation will be aborted!",
            "Failed to extract BrepBlob: " + (part != nullptr ? part->name() : std::string("no part")));
    }
    return AmbrelAssetsBlob::make(asset, part, this, std::move(path)).release();
}

AmbrelAssetLibraryRequest* AmbrelAssetLibraryRequest::get()
{
    static AmbrelAssetLibraryRequest request;
    return &request;
}

telvarin::platform::assets::IAssetLibrary* AmbrelAssetLibraryRequest::RequestAssetLibrary(
    const telvarin::platform::assets::WideString& libraryId)
{
    AmbrelManager* manager = MaterialValues::libraryManager();
    return manager != nullptr && manager->LibsLoaded() ? manager->GetLibraryByIdentifier(libraryId) : nullptr;
}

namespace {
const bool s_registered = ((void)AmbrelAssetsBlobSerializer::get(), true);
} // namespace

} // namespace Kx
